#pragma once

#include <Vela/BasicVersion.hpp>
#include <Vela/String.hpp>
#include <Vela/System/Nm/NotificationPayload.hpp>

#include <tuple>

namespace Vela::System::NmPayload::Kiro
{

/// The system begins to start.
class SystemStartupPayload : public Nm::NotificationPayload
{
public:
    SystemStartupPayload() = default;

    explicit SystemStartupPayload(const BasicVersion& systemVersion)
        : version(systemVersion.ToString())
    {
    }

    /// The system's version.
    /// @throws Exception when the sender's version text is none
    [[nodiscard]] BasicVersion GetVersion() const
    {
        return BasicVersion::Parse(version);
    }

    static constexpr auto Fields()
    {
        return std::tuple(Nm::PayloadField("version", &SystemStartupPayload::version));
    }

private:
    String version;
};

} // namespace Vela::System::NmPayload::Kiro
