#pragma once

#include <Sm/ISystemManagerHost.hpp>
#include <Vela/System/Kiro/Services/ComponentInfo.hpp>

#include <functional>
#include <string>
#include <vector>

namespace Vela::Testing
{

/// The application around the system manager of a test, named "Main".
class FakeHost : public System::Kiro::Internal::Sm::ISystemManagerHost
{
public:
    std::string configPath;
    std::string executablePath;
    std::vector<System::Kiro::Services::ComponentInfo> defaultComponents;
    std::vector<String> records;
    /// Called when the default components are asked for.
    std::function<void()> onQuery;
    int shutdownRequests = 0;
    bool isAffinityOriginal = false;

    String GetName() const override
    {
        return "Main";
    }

    String GetConfigPath() const override
    {
        return configPath;
    }

    String GetExecutablePath() const override
    {
        return executablePath;
    }

    void RequestShutdown() override
    {
        ++shutdownRequests;
    }

    void RestartSystem() override
    {
    }

    void ReportStatus(const String& /*text*/) override
    {
    }

    void RecordFailure(const String& reason,
                       const std::vector<System::Kiro::Internal::Sm::ProcessState>& processes) override
    {
        records.push_back(reason);
        for (const auto& process : processes)
        {
            records.push_back(process.name + ": " + process.state);
        }
    }

    std::vector<System::Kiro::Services::ComponentInfo> GetDefaultComponentInfos() const override
    {
        if (onQuery)
        {
            onQuery();
        }
        return defaultComponents;
    }

    bool ResolveDeprecatedVariableName(const String& name, String& currentName) const override
    {
        const bool isOld = name == "OLD";
        if (isOld)
        {
            currentName = "NEW";
        }
        return isOld;
    }

    std::map<String, String> GetChildEnvironment() const override
    {
        return {{"CHILD_VARIABLE", "from the host"}};
    }

    void RunWithOriginalAffinity(const std::function<void()>& action) override
    {
        isAffinityOriginal = true;
        action();
        isAffinityOriginal = false;
    }
};

} // namespace Vela::Testing
