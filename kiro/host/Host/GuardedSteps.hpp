#pragma once

#include <Vela/CaughtException.hpp>
#include <Vela/System/Commons/Diagnostics/Loggable.hpp>

#include <functional>
#include <optional>

namespace Vela::System::Kiro::Internal
{

/// Runs the steps of a tear-down: each one is tried, whatever became of those before it.
///
/// The first failure is kept, as texts, since the code of the exception's class may be unloaded by a later step; it is
/// for the caller to report. Further failures are logged as they come.
class GuardedSteps : private Commons::Diagnostics::Loggable<GuardedSteps>
{
public:
    void Run(const std::function<void()>& step);
    /// Nothing happens when all steps went well.
    void ThrowFirstFailure() const;

private:
    std::optional<CaughtException> firstFailure;
};

} // namespace Vela::System::Kiro::Internal
