#include <Settings/KiroSettingsLoader.hpp>
#include <Vela/System/Commons/Environment.hpp>

#include <CheckedLog.hpp>
#include <DocumentFiles.hpp>
#include <FuzzTarget.hpp>
#include <ObservedErrors.hpp>

namespace Vela::Fuzz
{

namespace
{

using namespace System::Kiro::Internal::Settings;
using System::Commons::Environment;

/// What somebody who uses the settings sees of them.
std::vector<String> Describe(const KiroSettings& settings)
{
    std::vector<String> texts{settings.GetRscSettings().GetPath(), settings.GetNmSettings().GetPath(),
                              settings.GetLogSettings().GetLogDir(), settings.GetLogSettings().GetConfigFile(),
                              settings.GetSecuritySettings().GetPath()};
    for (const auto& [name, variable] : settings.GetEnvironmentVariables().GetVariables())
    {
        texts.push_back(name);
        texts.push_back(Environment::GetVariableValueOr(name, "(nothing)"));
    }
    return texts;
}

struct Outcome
{
    std::optional<String> refusal;
    std::vector<String> texts;
    bool operator==(const Outcome&) const = default;
};

/// Loads the settings in a fresh environment.
Outcome Load(const String& path)
{
    ClearEnvironment();
    Environment::Setup();
    Outcome outcome;
    KiroSettings settings;
    Environment::SetupSettings(settings.GetEnvironmentVariables());
    outcome.refusal = GetRefusal([&] { KiroSettingsLoader::Load(path, settings, false); });
    if (!outcome.refusal)
    {
        outcome.texts = Describe(settings);
        for (const auto& [name, variable] : settings.GetEnvironmentVariables().GetVariables())
        {
            Require(variable.IsPublished(), "a variable of settings that were loaded is published");
        }
        const ProcessSettings& process = settings.GetProcessSettings();
        for (const auto time : {process.GetStartWaitTime(), process.GetStopWaitTime(), process.GetWatchdogIdleTime(),
                                process.GetWatchdogDelayTime(), process.GetSlowStepTime()})
        {
            Require(time >= std::chrono::milliseconds(0), "a time is not negative");
        }
    }
    Environment::Dispose();
    return outcome;
}

/// Who watches a load hears of errors exactly when it would be refused.
void CheckObserved(const String& path, bool isRefused)
{
    ClearEnvironment();
    Environment::Setup();
    {
        const ObservedErrors observed;
        KiroSettings settings;
        const bool hasThrown = GetRefusal([&] { KiroSettingsLoader::Load(path, settings, false); }).has_value();
        Require((observed.HasErrors() || hasThrown) == isRefused,
                "the errors of a load are those for which it is refused");
    }
    Environment::Dispose();
}

bool Run(std::string_view input)
{
    static const DocumentFiles files{"Default.kiro.settings", "Deprecated.kiro.settings", "more/Plant.kiro.settings"};
    SetUpCheckedLog();
    if (!files.Write(input))
    {
        return false;
    }
    const Outcome first = Load(files.GetRootPath());
    Require(first == Load(files.GetRootPath()), "the same documents give the same settings");
    CheckObserved(files.GetRootPath(), first.refusal.has_value());
    return !first.refusal;
}

const FuzzTarget target("settings", &Run);

} // namespace

} // namespace Vela::Fuzz
