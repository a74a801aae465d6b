#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>

namespace Vela::Testing
{

/// The slot of a virtual member function in its class's table, by the Itanium C++ ABI; the two destructors come first.
template <typename Method>
std::size_t GetVtableSlot(Method method)
{
    struct
    {
        std::uintptr_t function;
        std::ptrdiff_t adjustment;
    } parts{};
    static_assert(sizeof parts == sizeof method);
    std::memcpy(&parts, &method, sizeof parts);
#if !defined(__arm__) && !defined(__aarch64__)
    // Elsewhere the lowest bit marks the function as virtual; on ARM it is the adjustment's.
    parts.function -= 1;
#endif
    return parts.function / sizeof(void*);
}

/// True when the operations stand in the table as they are given here: behind the destructors, one after the other.
template <typename... Methods>
bool AreSlotsInOrder(Methods... methods)
{
    std::size_t slot = 2;
    return ((GetVtableSlot(methods) == slot++) && ...);
}

} // namespace Vela::Testing
