#include "murcoredata/foundation/InitOnce.h"

void* InitOnce(InitOnceSlot& slot, InitOnceFunction initFunction, void* context,
               InitOnceGetAddressFunction getAddressFunction)
{
    std::call_once(slot.flag, initFunction, slot, context);
    return getAddressFunction(slot);
}
