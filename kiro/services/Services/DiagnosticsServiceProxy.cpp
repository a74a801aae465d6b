#include <Vela/System/Kiro/Services/Internal/DiagnosticsServiceProxy.hpp>

namespace Vela::System::Kiro::Services::Internal
{

using Service = IDiagnosticsService;

IDiagnosticsService::~IDiagnosticsService() = default;
DiagnosticsServiceProxy::~DiagnosticsServiceProxy() = default;

ProcessIdentity DiagnosticsServiceProxy::GetIdentity()
{
    return Invoke<&Service::GetIdentity>();
}

ProcessResources DiagnosticsServiceProxy::GetResources()
{
    return Invoke<&Service::GetResources>();
}

std::vector<LogCategoryLevel> DiagnosticsServiceProxy::GetLogLevels()
{
    return Invoke<&Service::GetLogLevels>();
}

void DiagnosticsServiceProxy::SetLogLevel(const String& category, Commons::Diagnostics::LogLevel level)
{
    Invoke<&Service::SetLogLevel>(category, level);
}

LogPage DiagnosticsServiceProxy::GetLogLines(std::uint64_t after, std::uint32_t maximumCount)
{
    return Invoke<&Service::GetLogLines>(after, maximumCount);
}

std::uint32_t DiagnosticsServiceProxy::LogThreadStacks()
{
    return Invoke<&Service::LogThreadStacks>();
}

std::vector<EnvironmentValue> DiagnosticsServiceProxy::GetEnvironment()
{
    return Invoke<&Service::GetEnvironment>();
}

ProcessServices DiagnosticsServiceProxy::GetServices()
{
    return Invoke<&Service::GetServices>();
}

DiagnosticsServiceProxyFactory& DiagnosticsServiceProxyFactory::GetInstance()
{
    static DiagnosticsServiceProxyFactory instance;
    return instance;
}

} // namespace Vela::System::Kiro::Services::Internal
