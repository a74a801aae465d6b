#pragma once

#include <Pm/IProcessHost.hpp>
#include <Sm/ISystemManagerHost.hpp>
#include <Vela/String.hpp>
#include <Vela/System/Kiro/Services/ComponentInfo.hpp>

#include <functional>
#include <map>
#include <vector>

namespace Vela::System::Kiro::Internal
{

class ApplicationBase;
struct ApplicationData;

/// What the managers below may ask of the application that owns them.
class SystemRoles : public Pm::IProcessHost, public Sm::ISystemManagerHost
{
public:
    SystemRoles(ApplicationBase& applicationObject, ApplicationData& applicationData);
    ~SystemRoles() override;

    void RequestProcessShutdown() override;

    String GetName() const override;
    String GetConfigPath() const override;
    String GetExecutablePath() const override;
    void RequestShutdown() override;
    void RestartSystem() override;
    void ReportStatus(const String& text) override;
    void RecordFailure(const String& reason, const std::vector<Sm::ProcessState>& processes) override;
    std::vector<Services::ComponentInfo> GetDefaultComponentInfos() const override;
    bool ResolveDeprecatedVariableName(const String& name, String& currentName) const override;
    std::map<String, String> GetChildEnvironment() const override;
    void RunWithOriginalAffinity(const std::function<void()>& action) override;

private:
    ApplicationBase& application;
    ApplicationData& data;
};

} // namespace Vela::System::Kiro::Internal
