#pragma once

#include <Vela/System/Nm/NotificationPayload.hpp>
#include <Vela/System/NmPayload/Kiro/SystemManagerState.hpp>

#include <tuple>

namespace Vela::System::NmPayload::Kiro
{

/// The system manager reached a state of start-up, with or without failed components on the way.
class SystemManagerStatePayload : public Nm::NotificationPayload
{
public:
    SystemManagerStatePayload() = default;

    SystemManagerStatePayload(const SystemManagerState& reachedState, bool hasFailures, bool stateFlag)
        : state(reachedState)
        , hasError(hasFailures)
        , flag(stateFlag)
    {
    }

    [[nodiscard]] SystemManagerState GetState() const noexcept
    {
        return state;
    }

    [[nodiscard]] bool HasError() const noexcept
    {
        return hasError;
    }

    [[nodiscard]] bool GetFlag() const noexcept
    {
        return flag;
    }

    static constexpr auto Fields()
    {
        return std::tuple(Nm::PayloadField("state", &SystemManagerStatePayload::state),
                          Nm::PayloadField("hasError", &SystemManagerStatePayload::hasError),
                          Nm::PayloadField("flag", &SystemManagerStatePayload::flag));
    }

private:
    SystemManagerState state = SystemManagerState::Starting;
    bool hasError = false;
    bool flag = false;
};

} // namespace Vela::System::NmPayload::Kiro
