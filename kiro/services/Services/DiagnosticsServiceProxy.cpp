#include <Vela/System/Kiro/Services/Internal/DiagnosticsServiceProxy.hpp>

namespace Vela::System::Kiro::Services::Internal
{

IDiagnosticsService::~IDiagnosticsService() = default;
DiagnosticsServiceProxy::~DiagnosticsServiceProxy() = default;

ProcessIdentity DiagnosticsServiceProxy::GetIdentity()
{
    return Invoke<&IDiagnosticsService::GetIdentity>();
}

ProcessResources DiagnosticsServiceProxy::GetResources()
{
    return Invoke<&IDiagnosticsService::GetResources>();
}

std::vector<LogCategoryLevel> DiagnosticsServiceProxy::GetLogLevels()
{
    return Invoke<&IDiagnosticsService::GetLogLevels>();
}

void DiagnosticsServiceProxy::SetLogLevel(const String& category, Commons::Diagnostics::LogLevel level)
{
    Invoke<&IDiagnosticsService::SetLogLevel>(category, level);
}

LogPage DiagnosticsServiceProxy::GetLogLines(std::uint64_t after, std::uint32_t maximumCount)
{
    return Invoke<&IDiagnosticsService::GetLogLines>(after, maximumCount);
}

std::uint32_t DiagnosticsServiceProxy::LogThreadStacks()
{
    return Invoke<&IDiagnosticsService::LogThreadStacks>();
}

std::vector<EnvironmentValue> DiagnosticsServiceProxy::GetEnvironment()
{
    return Invoke<&IDiagnosticsService::GetEnvironment>();
}

ProcessServices DiagnosticsServiceProxy::GetServices()
{
    return Invoke<&IDiagnosticsService::GetServices>();
}

DiagnosticsServiceProxyFactory& DiagnosticsServiceProxyFactory::GetInstance()
{
    static DiagnosticsServiceProxyFactory instance;
    return instance;
}

} // namespace Vela::System::Kiro::Services::Internal
