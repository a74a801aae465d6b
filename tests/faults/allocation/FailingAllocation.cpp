#include "FailingAllocation.hpp"

#include <execinfo.h>
#include <unistd.h>

#include <array>
#include <atomic>
#include <cstdlib>
#include <new>
#include <tuple>

namespace
{

std::atomic<long> failing{0};
std::atomic<long> count{0};

} // namespace

namespace Vela::Testing::FailingAllocation
{

void Arm(long ordinal)
{
    // Its first call allocates.
    void* frame = nullptr;
    std::ignore = backtrace(&frame, 1);
    count = 0;
    failing = ordinal;
}

long GetCount()
{
    return count;
}

} // namespace Vela::Testing::FailingAllocation

// These take the place of the standard library's in the whole process, shared libraries included.

void* operator new(std::size_t size)
{
    void* memory = nullptr;
    if (++count == failing)
    {
        std::array<void*, 48> frames{};
        backtrace_symbols_fd(frames.data(), backtrace(frames.data(), static_cast<int>(frames.size())), STDERR_FILENO);
    }
    else
    {
        memory = std::malloc(size == 0 ? 1 : size);
    }
    if (memory == nullptr)
    {
        throw std::bad_alloc();
    }
    return memory;
}

void operator delete(void* memory) noexcept
{
    std::free(memory);
}

void operator delete(void* memory, std::size_t) noexcept
{
    std::free(memory);
}
