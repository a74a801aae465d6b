#pragma once

#include <sched.h>

namespace Vela::Benchmarks
{

/// Binds this thread, and whatever it starts meanwhile, to one processor: the last of those that it may use.
class PinnedScope
{
public:
    PinnedScope();
    PinnedScope(const PinnedScope&) = delete;
    PinnedScope& operator=(const PinnedScope&) = delete;
    ~PinnedScope();

private:
    cpu_set_t previous{};
};

} // namespace Vela::Benchmarks
