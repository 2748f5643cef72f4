#pragma once

namespace TestHost {

// Calls slot `slot` of an interface pointer directly from its table, as a host built without the
// library's headers would. Slots 3 and 4 are the two destructors that follow Release.
template <typename Result, typename... Args>
Result CallSlot(void* object, int slot, Args... args)
{
    using Function = Result (*)(void*, Args...);
    Function* table = *static_cast<Function**>(object);
    return table[slot](object, args...);
}

} // namespace TestHost
