#pragma once

#include <Vela/System/Kiro/Api.hpp>
#include <Vela/System/Kiro/Services/Internal/ProcessDiagnostics.hpp>
#include <Vela/System/Rsc/IRscService.hpp>
#include <Vela/System/Rsc/OperationTable.hpp>

#include <cstdint>
#include <vector>

namespace Vela::System::Kiro::Services::Internal
{

/// What an operator asks a process about itself; every process publishes it. The operations may be called at any
/// time and return at once unless they say otherwise. The order of the operations is fixed.
class VELA_KIRO_API IDiagnosticsService : public Rsc::IRscService
{
public:
    ~IDiagnosticsService() override;

    virtual ProcessIdentity GetIdentity() = 0;
    virtual ProcessResources GetResources() = 0;
    /// All levels that are set: that of the empty prefix first, then the others by category.
    virtual std::vector<LogCategoryLevel> GetLogLevels() = 0;
    /// Sets the level of a category prefix; the empty prefix means all categories and forgets the others.
    /// @throws ArgumentException for a level that there is not
    virtual void SetLogLevel(const String& category, Commons::Diagnostics::LogLevel level) = 0;
    /// What was logged lately, as far as it is still in memory: the oldest, at most `maximumCount`, of the messages
    /// behind number `after`. The answer to a count of 0 tells the number of the newest message.
    virtual LogPage GetLogLines(std::uint64_t after, std::uint32_t maximumCount) = 0;
    /// Logs the stack of each thread of the process, with what it does for which component. Takes three seconds at
    /// most.
    /// @return the number of threads
    virtual std::uint32_t LogThreadStacks() = 0;
    /// The variables that the system has defined in this process, by name.
    virtual std::vector<EnvironmentValue> GetEnvironment() = 0;
    /// Which services the process publishes, and which it uses.
    virtual ProcessServices GetServices() = 0;
};

} // namespace Vela::System::Kiro::Services::Internal

template <>
struct Vela::System::Rsc::OperationTable<Vela::System::Kiro::Services::Internal::IDiagnosticsService>
{
    using Service = Kiro::Services::Internal::IDiagnosticsService;
    static constexpr const char* interfaceName = "Vela.System.Kiro.Services.Internal.IDiagnosticsService";
    static constexpr auto operations = Operations(
        Operation<1, &Service::GetIdentity>("GetIdentity"), Operation<2, &Service::GetResources>("GetResources"),
        Operation<3, &Service::GetLogLevels>("GetLogLevels"), Operation<4, &Service::SetLogLevel>("SetLogLevel"),
        Operation<5, &Service::GetLogLines>("GetLogLines"), Operation<6, &Service::LogThreadStacks>("LogThreadStacks"),
        Operation<7, &Service::GetEnvironment>("GetEnvironment"), Operation<8, &Service::GetServices>("GetServices"));
};
