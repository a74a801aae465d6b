#pragma once

#include <Vela/System/Rsc/RscCaller.hpp>

namespace Vela::System::Rsc
{

/// Makes a caller the present one of this thread, until the scope ends. Scopes nest.
class CallerScope
{
public:
    /// @param newCaller  must outlive the scope
    explicit CallerScope(const RscCaller& newCaller) noexcept;
    CallerScope(const CallerScope&) = delete;
    CallerScope& operator=(const CallerScope&) = delete;
    ~CallerScope();

private:
    const RscCaller* previous;
};

/// This process as a caller.
RscCaller GetOwnCaller();

} // namespace Vela::System::Rsc
