#include <Config/KiroConfigurationLoader.hpp>

#include <CheckedLog.hpp>
#include <DocumentFiles.hpp>
#include <FuzzTarget.hpp>
#include <ObservedErrors.hpp>

namespace Vela::Fuzz
{

namespace
{

using namespace System::Kiro::Internal::Sm::Config;

struct Outcome
{
    explicit Outcome(const String& path, bool singleProcess)
        : refusal(GetRefusal([&] { KiroConfigurationLoader::Load(path, singleProcess, true, configuration); }))
    {
    }

    KiroConfiguration configuration;
    std::optional<String> refusal;
};

void Check(const KiroConfiguration& configuration)
{
    for (const auto& [name, component] : configuration.components.GetItems())
    {
        Require(name == component.name, "a component stands under its name");
        Require(component.process != Components::multiProcessIndicator, "a generic component runs nowhere itself");
        Require(component.startOrder >= -1, "a start order is not negative");
    }
    for (const auto& [name, process] : configuration.processes.GetItems())
    {
        Require(name == process.name, "a process stands under its name");
    }
    for (const auto& [name, library] : configuration.libraries.GetItems())
    {
        Require(name == library.name && library.Equals(library), "a library stands under its name");
    }
}

/// Who watches a load hears of errors exactly when it would be refused.
void CheckObserved(const String& path, bool isRefused)
{
    const ObservedErrors observed;
    const Outcome outcome(path, false);
    Require(!outcome.refusal, "a load that is watched goes on to its end");
    Require(observed.HasErrors() == isRefused, "the errors of a load are those for which it is refused");
}

bool Run(std::string_view input)
{
    static const DocumentFiles files{"System.kiro.config", "Plant.kiro.config", "parts/Control.kiro.config"};
    SetUpCheckedLog();
    if (!files.Write(input))
    {
        return false;
    }
    ClearEnvironment();
    const Outcome first(files.GetRootPath(), false);
    const Outcome second(files.GetRootPath(), false);
    Require(first.refusal == second.refusal, "the same documents are refused the same way again");
    CheckObserved(files.GetRootPath(), first.refusal.has_value());
    if (first.refusal)
    {
        return false;
    }
    Require(first.configuration.Equals(second.configuration), "the same documents give the same configuration");
    Check(first.configuration);
    Require(!Outcome(files.GetRootPath(), true).refusal, "a configuration also serves a single process");
    return true;
}

const FuzzTarget target("configuration", &Run);

} // namespace

} // namespace Vela::Fuzz
