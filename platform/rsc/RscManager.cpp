#include "RscRuntime.hpp"
#include "Security/AccessControl.hpp"
#include "Security/Audit.hpp"
#include "Transport/RuntimeDirectory.hpp"

#include <Vela/AppDomainSingleton.hpp>
#include <Vela/Exceptions.hpp>
#include <Vela/System/Commons/Diagnostics/LogManager.hpp>
#include <Vela/System/Commons/Environment.hpp>
#include <Vela/System/Rsc/RscManager.hpp>

#include <charconv>
#include <utility>

namespace Vela::System::Rsc
{

namespace
{

template <typename MakeRuntime>
RscManager& Register(MakeRuntime&& makeRuntime)
{
    AppDomain::CreateInstance();
    if (AppDomainSingleton<RscManager>::TryGetInstance() != nullptr)
    {
        throw InvalidOperationException("The process has a remoting manager already.");
    }
    std::shared_ptr<RscRuntime> runtime = makeRuntime();
    RscManager& manager = AppDomainSingleton<RscManager>::CreateInstance(runtime);
    RscRuntime::SetInstance(std::move(runtime));
    return manager;
}

} // namespace

RscManager& RscManager::CreateInstance(const String& applicationName, int port, const RscManagerOptions& options,
                                       bool isMainProcess)
{
    return Register(
        [&]
        {
            return std::make_shared<RscRuntime>(applicationName, port, options,
                                                isMainProcess ? RscRuntime::Role::Main : RscRuntime::Role::Child);
        });
}

RscManager& RscManager::CreateClientInstance(const String& name, const RscManagerOptions& options)
{
    return Register([&] { return std::make_shared<RscRuntime>(name, 0, options, RscRuntime::Role::Client); });
}

RscManager& RscManager::CreateInstance(const String& applicationName, int port, const String& settingsPath,
                                       bool isMainProcess)
{
    return CreateInstance(applicationName, port, RscManagerOptions::Load(settingsPath), isMainProcess);
}

void RscManager::CheckSecuritySettings(const String& path)
{
    static_cast<void>(AccessControl::Load(path));
}

std::uint16_t RscManager::FindGatewayPort()
{
    String text;
    if (!Commons::Environment::GetVariableValue(gatewayPortVariable, text) || text.empty())
    {
        return 0;
    }
    std::uint16_t port = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), port);
    if (error != std::errc() || end != text.data() + text.size())
    {
        throw InvalidOperationException("Environment variable '{0}' has the value '{1}', which is no TCP port.",
                                        gatewayPortVariable, text);
    }
    return port;
}

bool RscManager::DisposeInstance()
{
    RscManager* manager = AppDomainSingleton<RscManager>::TryGetInstance();
    if (manager == nullptr)
    {
        return true;
    }
    const bool hasEnded = manager->runtime->Close();
    RscRuntime::SetInstance(nullptr);
    AppDomainSingleton<RscManager>::DisposeInstance();
    Audit::Finish();
    return hasEnded;
}

String RscManager::FindRuntimeDirectory(bool isForSystem)
{
    return RuntimeDirectory(isForSystem ? RuntimeDirectory::Use::Share : RuntimeDirectory::Use::Look).GetPath();
}

pid_t RscManager::FindMainProcess()
{
    return SystemLock::FindHolder(RuntimeDirectory(RuntimeDirectory::Use::Look));
}

void RscManager::AssignAppDomain(AppDomain& appDomain)
{
    // One application domain serves all libraries of the platform.
    Commons::Diagnostics::LogManager::AssignAppDomain(appDomain);
}

void RscManager::CloseAllClients(bool abortCalls)
{
    runtime->GetFinder().CloseClients(abortCalls);
}

int RscManager::GetPort() const noexcept
{
    return runtime->GetPort();
}

std::chrono::milliseconds RscManager::GetCallTimeout() const noexcept
{
    return runtime->GetOptions().callTimeout;
}

RscManager::RscManager(std::shared_ptr<RscRuntime> rscRuntime)
    : runtime(std::move(rscRuntime))
{
}

RscManager::~RscManager() = default;

} // namespace Vela::System::Rsc
