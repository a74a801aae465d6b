#pragma once

#include <Vela/System/Commons/Diagnostics/Loggable.hpp>

#include <sched.h>

#include <cstdint>
#include <functional>

namespace Vela::System::Kiro::Internal
{

/// Binds the process to one processor and remembers on which ones it was allowed to run before.
///
/// Affinity belongs to threads and passes to those that a thread starts, so the process is bound while the main thread
/// is its only one.
class ProcessorBinding : private Commons::Diagnostics::Loggable<ProcessorBinding>
{
public:
    /// Binds the calling thread; a processor that does not exist, or that the process may not use, is a warning.
    void Bind(std::int32_t processor);
    /// Calls `function` with the affinity that the calling thread had before Bind. From the thread that called Bind.
    void RunUnbound(const std::function<void()>& function) const;

private:
    bool isBound = false;
    cpu_set_t original{};
    cpu_set_t bound{};
};

} // namespace Vela::System::Kiro::Internal
