#include <Host/GuardedSteps.hpp>

namespace Vela::System::Kiro::Internal
{

void GuardedSteps::Run(const std::function<void()>& step)
{
    try
    {
        step();
    }
    catch (...)
    {
        const auto failure = CaughtException::Current();
        if (firstFailure)
        {
            log.Error("{0}", failure.Describe("Exception occurs: {0}", "Unspecified exception occurs."));
        }
        else
        {
            firstFailure = failure;
        }
    }
}

void GuardedSteps::ThrowFirstFailure() const
{
    if (firstFailure)
    {
        firstFailure->Throw();
    }
}

} // namespace Vela::System::Kiro::Internal
