#pragma once

#include <cstdlib>

namespace Vela::Testing
{

/// Whether the tests of another architecture run here. Much of what a program can find out about itself and others then
/// holds for the emulator.
inline bool IsEmulated()
{
    return std::getenv("QEMU_LD_PREFIX") != nullptr;
}

} // namespace Vela::Testing
