#pragma once

#include <Vela/CaughtException.hpp>
#include <Vela/System/Kiro/Testing/LifecycleStep.hpp>

namespace Vela::System::Kiro::Testing
{

/// A lifecycle step of a component has failed. A test that does not expect it fails with the text
/// "Start of component 'Pump1' failed: InvalidOperationException: The valve is stuck."
class StepFailure : public Exception
{
public:
    StepFailure(LifecycleStep failedStep, const String& componentName, CaughtException failureCause);
    ~StepFailure() override;

    [[nodiscard]] LifecycleStep GetStep() const noexcept;
    /// What the component, or the runtime in its place, has thrown.
    [[nodiscard]] const CaughtException& GetCause() const noexcept;

private:
    LifecycleStep step;
    CaughtException cause;
};

} // namespace Vela::System::Kiro::Testing
