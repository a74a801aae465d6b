#pragma once

#include <Config/Components.hpp>
#include <Config/Libraries.hpp>
#include <Vela/String.hpp>
#include <Vela/System/Commons/Diagnostics/Loggable.hpp>
#include <Vela/System/Kiro/Services/ComponentInfo.hpp>

#include <deque>
#include <mutex>
#include <vector>

namespace Vela::System::Kiro::Internal::Pm
{
class ProcessManager;
}

namespace Vela::System::Kiro::Internal
{

/// Brings up the system component that the main process always has, whatever the configuration says, and takes it down
/// again. Main thread, but for the component infos, which may be asked for at any time.
class DefaultLibraryManager : private Commons::Diagnostics::Loggable<DefaultLibraryManager>
{
public:
    /// @param systemDirectory  may be empty; the component's settings are then looked for in the working directory
    void AddDefaultComponents(const String& librariesDirectory, const String& systemDirectory);
    /// Loads the libraries and brings up the components. What failed has been rolled back by the process manager.
    void BuildUpDefaultComponents(Pm::ProcessManager& processManager);
    /// Takes down what was built up, last first. A failure is logged and the next component follows.
    void TearDownDefaultComponents(Pm::ProcessManager& processManager);

    [[nodiscard]] std::vector<Services::ComponentInfo> GetComponentInfos() const;

private:
    void LogError(const String& message);

    Sm::Config::Libraries libraries;
    Sm::Config::Components components;
    std::deque<String> builtUpComponents;
    mutable std::mutex mutex;
    std::vector<Services::ComponentInfo> componentInfos;
};

} // namespace Vela::System::Kiro::Internal
