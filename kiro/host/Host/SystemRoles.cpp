#include <Host/ApplicationData.hpp>
#include <Host/SystemRoles.hpp>
#include <Vela/System/Commons/Environment.hpp>
#include <Vela/System/Commons/Io/Path.hpp>
#include <Vela/System/Kiro/Internal/ApplicationBase.hpp>

namespace Vela::System::Kiro::Internal
{

using Commons::Environment;

SystemRoles::SystemRoles(ApplicationBase& applicationObject, ApplicationData& applicationData)
    : application(applicationObject)
    , data(applicationData)
{
}

SystemRoles::~SystemRoles() = default;

void SystemRoles::RequestProcessShutdown()
{
    data.shutdown.RequestProcessShutdown();
}

String SystemRoles::GetName() const
{
    return application.GetName();
}

String SystemRoles::GetConfigPath() const
{
    return data.configPath;
}

String SystemRoles::GetExecutablePath() const
{
    return data.executablePath;
}

void SystemRoles::RequestShutdown()
{
    data.shutdown.RequestSystemShutdown();
}

void SystemRoles::RestartSystem()
{
    application.RestartSystem();
}

void SystemRoles::RecordFailure(const String& reason, const std::vector<Sm::ProcessState>& processes)
{
    data.failureRecord.Write(GetName(), reason, {}, {}, processes);
}

void SystemRoles::ReportStatus(const String& text)
{
    data.failureRecord.SetPhase(text);
    if (data.supervision)
    {
        data.supervision->ReportStatus(text);
    }
}

std::vector<Services::ComponentInfo> SystemRoles::GetDefaultComponentInfos() const
{
    const std::shared_ptr<DefaultLibraryManager> manager = data.GetDefaultLibraryManager();
    return manager ? manager->GetComponentInfos() : std::vector<Services::ComponentInfo>();
}

bool SystemRoles::ResolveDeprecatedVariableName(const String& name, String& currentName) const
{
    return data.settings.GetEnvironmentVariables().ResolveDeprecatedVariableName(name, currentName);
}

std::map<String, String> SystemRoles::GetChildEnvironment() const
{
    // The environment is published before the first child starts, so that children inherit all of it. A relative
    // runtime directory would be another one in a child with a working directory of its own.
    String directory;
    if (Environment::GetVariableValue(Environment::runtimeDirectoryName, directory) && !directory.empty())
    {
        return {{Environment::runtimeDirectoryName, Commons::Io::Path::GetFullPath(directory)}};
    }
    return {};
}

void SystemRoles::RunWithOriginalAffinity(const std::function<void()>& action)
{
    data.processors.RunUnbound(action);
}

} // namespace Vela::System::Kiro::Internal
