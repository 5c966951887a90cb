#pragma once

#include "murcoredata/foundation/Export.h"

#include <atomic>
#include <cstdint>
#include <cstddef>
#include <type_traits>
#include <utility>

/// Ends the process at once, for a state that must not occur.
[[noreturn]] MURCOREDATA_EXPORT void ICrashNow() noexcept;

/// Base of objects shared by intrusive count. A new object has a count of zero; the last
/// `RemoveReference` destroys it. The count is atomic, so references may be taken and
/// dropped on any thread; the object itself is immutable once shared.
class MURCOREDATA_EXPORT RefCntObject
{
public:
    /// The count at which another reference ends the process instead of wrapping.
    static constexpr int32_t kMaxReferences = 0x7FFFFFFE;

    void AddReference() const noexcept
    {
        if (m_refCount.fetch_add(1, std::memory_order_relaxed) >= kMaxReferences)
            ICrashNow();
    }

    void RemoveReference() const noexcept
    {
        if (m_refCount.fetch_sub(1, std::memory_order_acq_rel) == 1)
            delete this;
    }

    int32_t GetReferenceCount() const noexcept { return m_refCount.load(std::memory_order_relaxed); }

protected:
    RefCntObject() noexcept = default;
    // A copy is a new object: it starts unshared.
    RefCntObject(const RefCntObject&) noexcept {}
    RefCntObject& operator=(const RefCntObject&) noexcept { return *this; }
    virtual ~RefCntObject() = default;

private:
    mutable std::atomic<int32_t> m_refCount{0};
};

/// Reports the use of a null `RefCntPtr` by throwing a `LogicException`.
[[noreturn]] MURCOREDATA_EXPORT void reportNullPtr();

/// The owning pointer over a `RefCntObject` (or any `Base` with `AddReference` and
/// `RemoveReference`). Dereferencing a null pointer reports it instead of crashing.
template <typename T, typename Base = RefCntObject>
class RefCntPtr
{
public:
    RefCntPtr() noexcept = default;
    RefCntPtr(std::nullptr_t) noexcept {}
    RefCntPtr(T* object) noexcept : m_ptr(object) { Acquire(); }
    RefCntPtr(const RefCntPtr& other) noexcept : m_ptr(other.m_ptr) { Acquire(); }
    RefCntPtr(RefCntPtr&& other) noexcept : m_ptr(other.m_ptr) { other.m_ptr = nullptr; }
    template <typename U, typename = std::enable_if_t<std::is_convertible<U*, T*>::value>>
    RefCntPtr(const RefCntPtr<U, Base>& other) noexcept : m_ptr(other.get())
    {
        Acquire();
    }
    ~RefCntPtr() { Release(); }

    RefCntPtr& operator=(const RefCntPtr& other) noexcept
    {
        RefCntPtr(other).swap(*this);
        return *this;
    }
    RefCntPtr& operator=(RefCntPtr&& other) noexcept
    {
        RefCntPtr(std::move(other)).swap(*this);
        return *this;
    }
    RefCntPtr& operator=(T* object) noexcept
    {
        RefCntPtr(object).swap(*this);
        return *this;
    }

    T* get() const noexcept { return m_ptr; }
    T* operator->() const
    {
        if (m_ptr == nullptr)
            reportNullPtr();
        return m_ptr;
    }
    T& operator*() const
    {
        if (m_ptr == nullptr)
            reportNullPtr();
        return *m_ptr;
    }
    explicit operator bool() const noexcept { return m_ptr != nullptr; }

    void reset() noexcept { RefCntPtr().swap(*this); }
    void swap(RefCntPtr& other) noexcept { std::swap(m_ptr, other.m_ptr); }
    /// Gives up ownership without dropping the reference.
    T* release() noexcept
    {
        T* p = m_ptr;
        m_ptr = nullptr;
        return p;
    }

    friend bool operator==(const RefCntPtr& a, const RefCntPtr& b) noexcept { return a.m_ptr == b.m_ptr; }
    friend bool operator!=(const RefCntPtr& a, const RefCntPtr& b) noexcept { return a.m_ptr != b.m_ptr; }

private:
    void Acquire() const noexcept
    {
        if (m_ptr != nullptr)
            static_cast<const Base*>(m_ptr)->AddReference();
    }
    void Release() const noexcept
    {
        if (m_ptr != nullptr)
            static_cast<const Base*>(m_ptr)->RemoveReference();
    }

    T* m_ptr = nullptr;
};

/// Makes a counted object and its first reference.
template <typename T, typename... Args>
RefCntPtr<T> makeRefCnt(Args&&... args)
{
    return RefCntPtr<T>(new T(std::forward<Args>(args)...));
}
