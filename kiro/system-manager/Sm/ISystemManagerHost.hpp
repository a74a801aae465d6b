#pragma once

#include <Vela/String.hpp>

#include <sys/types.h>

#include <functional>
#include <map>
#include <vector>

namespace Vela::System::Kiro::Services
{
class ComponentInfo;
}

namespace Vela::System::Kiro::Internal::Sm
{

/// A child process as the main process sees it.
struct ProcessState
{
    String name;
    pid_t id = 0;
    bool hasExited = false;
    /// "running", or how it ended.
    String state;
};

/// What the system manager needs of the application that owns it. Operations may be called from any thread unless they
/// say otherwise.
class ISystemManagerHost
{
public:
    virtual ~ISystemManagerHost() = default;

    /// The name of the main process.
    virtual String GetName() const = 0;
    /// The configuration document's path.
    virtual String GetConfigPath() const = 0;
    /// The executable that children are started from.
    virtual String GetExecutablePath() const = 0;

    /// Ends the application's wait for shutdown, without a restart. A request that comes before that wait is kept.
    virtual void RequestShutdown() = 0;
    /// Ends the application's wait for shutdown and has the system start again.
    virtual void RestartSystem() = 0;
    /// What the system does now, in a few words, for whoever supervises the main process.
    virtual void ReportStatus(const String& text) = 0;
    /// Leaves a record of a failure that ends the system.
    /// @param processes  all children
    virtual void RecordFailure(const String& reason, const std::vector<ProcessState>& processes) = 0;

    /// Descriptions of the components that the main process has without any configuration.
    virtual std::vector<Services::ComponentInfo> GetDefaultComponentInfos() const = 0;
    /// Writes the current name of a variable and answers true when `name` is an old one.
    virtual bool ResolveDeprecatedVariableName(const String& name, String& currentName) const = 0;

    /// Variables that a child gets on top of this process's environment.
    virtual std::map<String, String> GetChildEnvironment() const = 0;
    /// Calls `action` on the calling thread while that has the processor affinity with which the main process was
    /// started, so that a child started by the action does not inherit the core of the main process. Main thread.
    virtual void RunWithOriginalAffinity(const std::function<void()>& action) = 0;
};

} // namespace Vela::System::Kiro::Internal::Sm
