#include <Vela/System/Kiro/Testing/StepFailure.hpp>

#include <utility>

namespace Vela::System::Kiro::Testing
{

StepFailure::StepFailure(LifecycleStep failedStep, const String& componentName, CaughtException failureCause)
    : Exception("{0} of component '{1}' failed: {2}", failedStep, componentName, failureCause.GetText())
    , step(failedStep)
    , cause(std::move(failureCause))
{
}

StepFailure::~StepFailure() = default;

LifecycleStep StepFailure::GetStep() const noexcept
{
    return step;
}

const CaughtException& StepFailure::GetCause() const noexcept
{
    return cause;
}

} // namespace Vela::System::Kiro::Testing
