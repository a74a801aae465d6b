#pragma once

#include <Vela/System/Kiro/Services/Internal/IDiagnosticsService.hpp>
#include <Vela/System/Rsc/RscServiceProxy.hpp>

namespace Vela::System::Kiro::Services::Internal
{

/// Calls the diagnostics service of a process. Thread-safe.
class VELA_KIRO_API DiagnosticsServiceProxy final : public Rsc::RscServiceProxyBase<IDiagnosticsService>
{
public:
    using RscServiceProxyBase::RscServiceProxyBase;
    ~DiagnosticsServiceProxy() override;

    ProcessIdentity GetIdentity() override;
    ProcessResources GetResources() override;
    std::vector<LogCategoryLevel> GetLogLevels() override;
    void SetLogLevel(const String& category, Commons::Diagnostics::LogLevel level) override;
    LogPage GetLogLines(std::uint64_t after, std::uint32_t maximumCount) override;
    std::uint32_t LogThreadStacks() override;
    std::vector<EnvironmentValue> GetEnvironment() override;
    ProcessServices GetServices() override;
};

/// Makes proxies of the diagnostics service. There is one in every process, so the caller names the provider.
class VELA_KIRO_API DiagnosticsServiceProxyFactory final
    : public Rsc::RscServiceProxyFactory<IDiagnosticsService, DiagnosticsServiceProxy>
{
public:
    static DiagnosticsServiceProxyFactory& GetInstance();

private:
    DiagnosticsServiceProxyFactory() = default;
};

} // namespace Vela::System::Kiro::Services::Internal
