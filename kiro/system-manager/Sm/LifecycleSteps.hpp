#pragma once

#include <Sm/Data/ComponentExecutionData.hpp>
#include <Vela/String.hpp>
#include <Vela/System/Kiro/Services/Internal/IProcessManagerService.hpp>

#include <fmt/format.h>

#include <span>

namespace Vela::System::Kiro::Internal::Sm
{

/// One call to the process manager of a component's process.
struct RemoteStep
{
    const char* name;
    void (*call)(Services::Internal::IProcessManagerService& service, const Data::ComponentData& component);
};

/// What a guard says about a failed step or phase: component, and the exception's text when it has one.
struct FailureTexts
{
    fmt::format_string<const String&, const String&> known;
    fmt::format_string<const String&> unspecified;
};

/// What happens to one component in a phase.
struct LifecycleStep
{
    /// Component and process.
    fmt::format_string<const String&, const String&> begins;
    fmt::format_string<const String&, const String&> ends;
    FailureTexts failure;
    std::span<const RemoteStep> calls;
    /// The mark of the step: a forward step sets it before its calls, a backward step runs only where it is set.
    bool& (*mark)(Data::ComponentExecutionData& entry);
};

/// A backward phase.
struct BackwardPhase
{
    const LifecycleStep& step;
    /// The mark is gone after the calls, failed or not.
    bool clearsMark;
};

/// A forward phase and its policy for a required component that fails.
struct ForwardPhase
{
    const LifecycleStep& step;
    /// A component that has the step's mark already has succeeded.
    bool isOnce;
    /// Only a component whose settings are set up can take the step.
    bool needsSettings;
    FailureTexts failure;
    /// Undoes the phase for the components visited so far, before the exception goes on; without it the failure is
    /// noted and the phase goes on.
    const BackwardPhase* rollBack;
};

namespace LifecycleSteps
{

extern const ForwardPhase setupSettings;
extern const ForwardPhase setupConfig;
extern const ForwardPhase start;

extern const BackwardPhase stop;
extern const BackwardPhase resetConfig;
extern const BackwardPhase dispose;
extern const BackwardPhase powerDown;
extern const BackwardPhase destroy;

} // namespace LifecycleSteps

} // namespace Vela::System::Kiro::Internal::Sm
