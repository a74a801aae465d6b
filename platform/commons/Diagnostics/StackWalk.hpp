#pragma once

#include <Diagnostics/PlainWriter.hpp>

#include <array>
#include <cstddef>
#include <cstdint>

namespace Vela::System::Commons::Diagnostics
{

/// The return addresses of a thread, innermost first.
struct StackFrames
{
    static constexpr std::size_t mostFrames = 64;

    std::array<std::uintptr_t, mostFrames> addresses{};
    std::size_t count = 0;
};

/// Walks the stack of the calling thread from within a signal handler with that `context`, beginning with the
/// interrupted code. Async-signal-safe as far as the unwinder is, which takes no lock for objects that the dynamic
/// loader knows.
void WalkStack(void* context, StackFrames& frames) noexcept;

/// Writes a line for each frame: its address, and the file and the offset in it where the code was loaded from, as
/// addr2line takes it. Async-signal-safe.
void WriteStack(PlainWriter& writer, const StackFrames& frames) noexcept;

} // namespace Vela::System::Commons::Diagnostics
