#include "Harness/Processor.hpp"

#include <Vela/System/Commons/SystemError.hpp>

namespace Vela::Benchmarks
{

PinnedScope::PinnedScope()
{
    if (::sched_getaffinity(0, sizeof(previous), &previous) != 0)
    {
        System::Commons::ThrowSystemError("sched_getaffinity");
    }
    std::size_t last = CPU_SETSIZE - 1;
    while (!CPU_ISSET(last, &previous))
    {
        --last;
    }
    cpu_set_t one;
    CPU_ZERO(&one);
    CPU_SET(last, &one);
    if (::sched_setaffinity(0, sizeof(one), &one) != 0)
    {
        System::Commons::ThrowSystemError("sched_setaffinity");
    }
}

PinnedScope::~PinnedScope()
{
    ::sched_setaffinity(0, sizeof(previous), &previous);
}

} // namespace Vela::Benchmarks
