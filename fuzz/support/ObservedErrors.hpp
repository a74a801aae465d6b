#pragma once

#include <Vela/System/Commons/Diagnostics/LoadObserver.hpp>

namespace Vela::Fuzz
{

/// Watches a load while it lives, and remembers whether it heard of an error.
class ObservedErrors final : public System::Commons::Diagnostics::LoadObserver
{
public:
    void OnFinding(System::Commons::Diagnostics::Finding finding) override
    {
        using namespace System::Commons::Diagnostics;
        hasErrors = hasErrors || Describe(finding.code).severity == FindingSeverity::Error;
    }

    [[nodiscard]] bool HasErrors() const noexcept
    {
        return hasErrors;
    }

private:
    bool hasErrors = false;
    const Scope scope{*this};
};

} // namespace Vela::Fuzz
