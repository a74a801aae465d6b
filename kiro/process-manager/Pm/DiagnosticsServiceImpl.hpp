#pragma once

#include <Vela/System/Commons/Chrono/DateTime.hpp>
#include <Vela/System/Kiro/Services/Internal/IDiagnosticsService.hpp>
#include <Vela/System/Rsc/RscServiceFactory.hpp>

namespace Vela::System::Kiro::Services::Internal
{

/// Answers from the process's own tables and the kernel's: nothing is collected for it.
class DiagnosticsServiceImpl : public IDiagnosticsService
{
public:
    ProcessIdentity GetIdentity() override;
    ProcessResources GetResources() override;
    std::vector<LogCategoryLevel> GetLogLevels() override;
    void SetLogLevel(const String& category, Commons::Diagnostics::LogLevel level) override;
    LogPage GetLogLines(std::uint64_t after, std::uint32_t maximumCount) override;
    std::uint32_t LogThreadStacks() override;
    std::vector<EnvironmentValue> GetEnvironment() override;
    ProcessServices GetServices() override;

private:
    /// The service is made when the process comes up.
    const Commons::Chrono::DateTime startTime = Commons::Chrono::DateTime::GetUtcNow();
};

using DiagnosticsServiceFactory = Rsc::RscServiceFactory<IDiagnosticsService, DiagnosticsServiceImpl>;

} // namespace Vela::System::Kiro::Services::Internal
