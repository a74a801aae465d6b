#pragma once

#include <Vela/String.hpp>
#include <Vela/System/Rsc/Api.hpp>

#include <cstdint>

namespace Vela::System::Rsc
{

/// Says where a service is looked up.
class VELA_RSC_API ServiceProvider
{
public:
    enum class Kind : std::uint8_t
    {
        None,
        Process,
        MainProcess,
        Component,
        LocalPort,
    };

    /// No provider.
    ServiceProvider() = default;
    /// A process by its application name.
    static ServiceProvider Process(const String& applicationName);
    /// The main process, whatever its name.
    static ServiceProvider MainProcess();
    /// A component, in whichever process it lives.
    /// @param serviceName  the name under which the component published the service; empty: its interface's name
    static ServiceProvider Component(const String& componentName, const String& serviceName = {});
    /// The process that listens on a TCP port of this machine. Calling it takes the right to read the system's secret.
    static ServiceProvider LocalPort(std::uint16_t port);

    [[nodiscard]] Kind GetKind() const noexcept;
    /// Name of the process or component; the port as text; "main process"; empty without a provider.
    [[nodiscard]] const String& GetName() const noexcept;
    [[nodiscard]] const String& GetServiceName() const noexcept;
    [[nodiscard]] std::uint16_t GetPort() const noexcept;

private:
    ServiceProvider(Kind providerKind, String providerName);

    Kind kind = Kind::None;
    String name;
    String serviceName;
    std::uint16_t port = 0;
};

} // namespace Vela::System::Rsc
