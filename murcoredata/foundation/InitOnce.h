#pragma once

#include "murcoredata/foundation/Export.h"

#include <boost/any.hpp>

#include <memory>
#include <mutex>

/// The slot of a once-made object: the flag and the object itself, held by a `boost::any`.
/// Declare it where the object should live (a function-local static); it is never freed.
struct InitOnceSlot
{
    std::once_flag flag;
    boost::any object;
};

using InitOnceFunction = void (*)(InitOnceSlot& slot, void* context);
using InitOnceGetAddressFunction = void* (*)(InitOnceSlot& slot);

/// Runs `initFunction(slot, context)` exactly once per slot, however many threads race to
/// be first, then returns `getAddressFunction(slot)`. Callers that lose the race wait until
/// the object is made. If `initFunction` throws, the next caller tries again.
MURCOREDATA_EXPORT void* InitOnce(InitOnceSlot& slot, InitOnceFunction initFunction, void* context,
                                  InitOnceGetAddressFunction getAddressFunction);

/// Supplies `Init` and `GetAddress` for an object of type `T` made by `Factory`:
/// `Factory()(context)` returns the `T` by value. `Shared` keeps the object behind a
/// `shared_ptr<T>` (so that it may be handed out as one); otherwise it is held by value.
/// `Checked` makes `GetAddress` verify the held type and answer null on a mismatch.
template <bool Shared, bool Checked, typename Factory, typename T>
struct InitOnceHelper
{
    static void Init(InitOnceSlot& slot, void* context)
    {
        if constexpr (Shared)
            slot.object = std::make_shared<T>(Factory()(context));
        else
            slot.object = Factory()(context);
    }

    static void* GetAddress(InitOnceSlot& slot)
    {
        if constexpr (Shared) {
            auto* held = Checked ? boost::any_cast<std::shared_ptr<T>>(&slot.object)
                                 : boost::unsafe_any_cast<std::shared_ptr<T>>(&slot.object);
            return held ? held->get() : nullptr;
        } else {
            return Checked ? boost::any_cast<T>(&slot.object) : boost::unsafe_any_cast<T>(&slot.object);
        }
    }

    /// The object, made on first use.
    static T& Get(InitOnceSlot& slot, void* context = nullptr)
    {
        return *static_cast<T*>(InitOnce(slot, &Init, context, &GetAddress));
    }
};
