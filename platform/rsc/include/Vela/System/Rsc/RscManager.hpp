#pragma once

#include <Vela/AppDomain.hpp>
#include <Vela/String.hpp>
#include <Vela/System/Rsc/Api.hpp>
#include <Vela/System/Rsc/RscManagerOptions.hpp>

#include <sys/types.h>

#include <cstdint>
#include <memory>

namespace Vela::System::Rsc
{

class RscRuntime;

/// The remoting of a process: its endpoint, published services and connections; an app-domain singleton.
///
/// Every process has a Unix socket in the system's runtime directory, which VELA_PATH_RUNTIME_DIR names; without the
/// variable it stands in the user's own runtime directory. The main process holds the directory's lock for its life.
class VELA_RSC_API RscManager
{
public:
    /// Opens the endpoint and begins to serve.
    /// @param port  TCP port to listen on besides, on the loopback interface; 0: none; -1: the one that the environment
    ///              variable "VelaGatewayPort" names, if any
    /// @throws InvalidOperationException when there is a manager already, another main process has the runtime
    ///         directory or another process has the name; Exception when an endpoint cannot be made
    static RscManager& CreateInstance(const String& applicationName, int port, const RscManagerOptions& options,
                                      bool isMainProcess);
    /// The same, with the options of a settings file.
    /// @throws as RscManagerOptions::Load besides
    static RscManager& CreateInstance(const String& applicationName, int port, const String& settingsPath,
                                      bool isMainProcess);
    /// Makes the remoting of a tool: it has no endpoint and publishes nothing, needs no name of its own, and may belong
    /// to another user than the system, whose security settings then say what it may call.
    /// @param name  for the log of the processes that it calls
    /// @throws InvalidOperationException when there is a manager already; Exception when the system's runtime directory
    ///         does not exist
    static RscManager& CreateClientInstance(const String& name, const RscManagerOptions& options = {});
    /// Reads a security settings file as the main process does when it opens its endpoint.
    /// @throws NotExistException, XmlException
    static void CheckSecuritySettings(const String& path);
    /// The TCP port that the environment variable "VelaGatewayPort" names; 0 without one.
    /// @throws InvalidOperationException when it has another value
    static std::uint16_t FindGatewayPort();
    /// Closes the endpoint, lets calls in progress end and be answered within the close time-out, then closes every
    /// connection. Proxies may outlive it; their calls fail. Without an instance nothing happens. Not from inside a
    /// call.
    /// @return false when a call is still running: the code that it runs must stay mapped
    static bool DisposeInstance();
    /// The path of the runtime directory that the environment gives to processes of this user, checked as for a
    /// remoting.
    /// @param isForSystem  true: it is made when it is missing, and must be this user's; false: it must be there
    /// @throws InvalidOperationException when others could write into it; Exception when it cannot be made or opened
    static String FindRuntimeDirectory(bool isForSystem);
    /// The id of the process that was the last to have that runtime directory for its system: of one that lives, also
    /// when it does not answer, or of one that was killed. 0 without one, or when this user must not know.
    /// @throws as FindRuntimeDirectory with false
    static pid_t FindMainProcess();
    /// Called by component libraries, so that they publish into the host's remoting.
    static void AssignAppDomain(AppDomain& appDomain);

    /// Closes the connections to all other processes for good: calls of proxies made so far fail, services looked up
    /// later connect anew.
    /// @param abortCalls  true: calls in progress fail at once; false: they may end
    void CloseAllClients(bool abortCalls);
    /// The TCP port that the process listens on; 0: none.
    [[nodiscard]] int GetPort() const noexcept;
    /// How long a call of this process waits for its answer.
    [[nodiscard]] std::chrono::milliseconds GetCallTimeout() const noexcept;

    explicit RscManager(std::shared_ptr<RscRuntime> rscRuntime);
    RscManager(const RscManager&) = delete;
    RscManager& operator=(const RscManager&) = delete;
    ~RscManager();

    /// The variable with the main process's TCP port.
    static constexpr const char* gatewayPortVariable = "VelaGatewayPort";

private:
    std::shared_ptr<RscRuntime> runtime;
};

} // namespace Vela::System::Rsc
