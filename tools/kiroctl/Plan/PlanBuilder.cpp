#include "PlanBuilder.hpp"

#include "CommandError.hpp"
#include "Helper/HelperProcess.hpp"
#include "Library/LibraryProbe.hpp"

#include <Pm/SharedLibraryLoader.hpp>
#include <Sm/ChildCommandLine.hpp>
#include <Sm/ComponentsController.hpp>
#include <Vela/Exceptions.hpp>

#include <algorithm>
#include <limits>

namespace Vela::Kiroctl
{

using System::Commons::Runtime::QuoteArgument;
using System::Commons::Xml::XmlPosition;
using System::Kiro::Internal::Pm::SharedLibraryLoader;
using System::Kiro::Internal::Sm::ComponentsController;
using System::Kiro::Internal::Sm::Config::Components;

namespace
{

/// Where a component comes whose own start order is unknown: behind all others.
constexpr auto unknownOrder = std::numeric_limits<std::uint32_t>::max();

/// The chain of includes belongs to the check; here the line is enough.
String GetOrigin(const XmlPosition& position)
{
    return position.GetFile().empty() ? String() : fmt::format("{}:{}", position.GetFile(), position.GetLine());
}

std::vector<LoadRecord::Finding> FindErrors(const LoadRecord& record)
{
    using namespace System::Commons::Diagnostics;
    auto findings = record.GetFindings();
    std::erase_if(findings,
                  [](const Finding& finding) { return Describe(finding.code).severity != FindingSeverity::Error; });
    return findings;
}

/// The files that errors stand in; what stands nowhere comes from the settings.
std::set<String> ListFaultyFiles(const std::vector<LoadRecord::Finding>& errors, const String& settings)
{
    std::set<String> files;
    for (const auto& error : errors)
    {
        files.insert(error.position.GetFile().empty() ? settings : error.position.GetFile());
    }
    return files;
}

} // namespace

PlanBuilder::PlanBuilder(const OfflineSystem& offlineSystem, const LoadRecord& loadRecord, bool mayLoad)
    : system(offlineSystem)
    , record(loadRecord)
    , mayLoadLibraries(mayLoad)
{
}

Json PlanBuilder::Build()
{
    Order();
    const auto errors = FindErrors(record);
    return {{"settings", system.documents.settings},
            {"configuration", system.documents.configuration},
            {"singleProcess", system.IsSingleProcess()},
            {"errors", errors.size()},
            {"faultyFiles", ListFaultyFiles(errors, system.documents.settings)},
            {"processes", BuildProcesses()},
            {"components", BuildComponents()},
            {"variables", BuildVariables()},
            {"values", BuildValues()}};
}

/// Creates nothing but goes the runtime's way through processes and components, and lets its code decide on the order.
void PlanBuilder::Order()
{
    for (const auto& [processName, process] : system.processes)
    {
        for (const auto& [libraryName, library] : process->libraries)
        {
            std::vector<ProbedComponent> components;
            for (const auto& [name, component] : process->components)
            {
                if (component->library == libraryName && !process->isExternal)
                {
                    components.push_back({name, component->type});
                }
            }
            LibraryFacts facts;
            try
            {
                facts = mayLoadLibraries && !components.empty()
                            ? ProbeLibrary(SharedLibraryLoader::ProbeLibraryName(library->path), components,
                                           ProbeDepth::Components)
                            : LibraryFacts();
            }
            catch (const Exception& exception)
            {
                facts.failure = exception.GetMessage();
            }
            for (const ProbedComponent& probed : components)
            {
                ComponentData& component = *process->components.at(probed.name);
                const auto found = facts.components.find(probed.name);
                component.isCreated = found != facts.components.end();
                if (component.isCreated)
                {
                    component.isControllerComponent = found->second.isController;
                    component.isRequired = component.isRequired || found->second.isSystemComponent;
                    component.startOrder = ComponentsController::ChooseStartOrder(component, found->second.startOrder);
                    if (!found->second.hasCategory)
                    {
                        problems[probed.name] = "has no category and takes no part";
                    }
                }
                else if (mayLoadLibraries)
                {
                    const auto failed = facts.failedComponents.find(probed.name);
                    problems[probed.name] = !facts.failure.empty() ? "cannot be created: " + facts.failure
                                            : failed != facts.failedComponents.end()
                                                ? "cannot be created: " + failed->second
                                                : "cannot be created: its type is unknown";
                }
            }
        }
    }
    for (const auto& [processName, process] : system.processes)
    {
        for (const auto& [name, component] : process->components)
        {
            const auto own = component->isCreated ? component->startOrder : unknownOrder;
            ComponentsController::AddToExecutionList(executionList, process, component,
                                                     ComponentsController::ChooseStartOrder(*component, own), true);
        }
    }
}

Json PlanBuilder::BuildProcesses() const
{
    Json list = Json::array();
    for (const auto& [name, process] : system.processes)
    {
        list.push_back(BuildProcess(*process));
    }
    return list;
}

String PlanBuilder::GetCommand(const ProcessData& process) const
{
    const String executable = QuoteArgument(OfflineSystem::GetExecutable(process));
    if (process.isExternal)
    {
        return {};
    }
    if (!OfflineSystem::IsStarted(process))
    {
        return fmt::format("{} --settings={} --config={}", executable, QuoteArgument(system.documents.settings),
                           QuoteArgument(system.documents.configuration));
    }
    if (!process.binaryPath.empty())
    {
        return process.args.empty() ? executable : executable + " " + process.args;
    }
    return executable + " " + System::Kiro::Internal::Sm::BuildChildArguments(process);
}

Json PlanBuilder::BuildProcess(const ProcessData& process) const
{
    const auto& configured = system.configuration.processes.GetItems();
    const auto found = configured.find(process.name);
    Json libraries = Json::array();
    for (const auto& [name, library] : process.libraries)
    {
        libraries.push_back({{"name", name},
                             {"path", library->path},
                             {"origin", GetOrigin(system.configuration.libraries.GetItems().at(name).position)}});
    }
    return {{"name", process.name},
            {"kind", process.isExternal                   ? "external"
                     : !OfflineSystem::IsStarted(process) ? "main"
                     : process.binaryPath.empty()         ? "child"
                                                          : "executable"},
            {"command", GetCommand(process)},
            {"workingDirectory", process.workingDirectory},
            {"settings", system.GetSettingsPath(process)},
            {"libraries", std::move(libraries)},
            {"origin", found == configured.end() ? String() : GetOrigin(found->second.position)}};
}

Json PlanBuilder::BuildComponents() const
{
    Json list = Json::array();
    for (const auto& [startOrder, entry] : executionList)
    {
        list.push_back(BuildComponent(*entry.process, *entry.component));
    }
    return list;
}

Json PlanBuilder::BuildComponent(const ProcessData& process, const ComponentData& component) const
{
    const Component& configured = system.configuration.components.GetItems().at(component.name);
    const auto& generics = system.configuration.components.GetMultiProcessItems();
    const String genericName = component.name.substr(0, component.name.rfind(Components::processSeparator));
    const auto problem = problems.find(component.name);
    Json json{{"name", component.name},
              {"type", component.type},
              {"library", component.library},
              {"process", process.name},
              {"startOrder", nullptr},
              {"orderFrom", component.hasStartOrder ? "configuration"
                            : component.isCreated   ? "component"
                                                    : "unknown"},
              {"enabled", component.isEnabled},
              {"required", component.isRequired},
              {"controller", nullptr},
              {"settings", component.settingsPath},
              {"copyOf", generics.contains(component.name) ? component.name
                         : generics.contains(genericName)  ? genericName
                                                           : String()},
              {"origin", GetOrigin(configured.position)},
              {"problem", process.isExternal          ? "is not created: its process is external"
                          : problem != problems.end() ? problem->second
                                                      : String()}};
    if (component.hasStartOrder || component.isCreated)
    {
        json["startOrder"] = component.startOrder;
    }
    if (component.isCreated)
    {
        json["controller"] = component.isControllerComponent;
    }
    return json;
}

Json PlanBuilder::BuildVariables() const
{
    struct Definition
    {
        String name;
        String value;
        XmlPosition position;
    };
    // The loaders read a definition's name first, then its value.
    std::vector<Definition> definitions;
    for (const ReadAttribute& attribute : record.GetAttributes())
    {
        using System::Kiro::Internal::Settings::EnvironmentVariable;
        if (attribute.element != EnvironmentVariable::elementXmlName)
        {
            continue;
        }
        if (attribute.name == EnvironmentVariable::nameXmlName)
        {
            definitions.push_back({attribute.value, "", attribute.position});
        }
        else if (attribute.name == EnvironmentVariable::valueXmlName && !definitions.empty())
        {
            definitions.back().value = attribute.value;
        }
    }
    const auto& variables = system.settings.GetEnvironmentVariables();
    std::map<String, const System::Kiro::Internal::Settings::EnvironmentVariable*> effective;
    for (const auto* map : {&variables.GetVariables(), &variables.GetOverriddenVariables()})
    {
        for (const auto& [name, variable] : *map)
        {
            effective[name] = &variable;
        }
    }
    Json list = Json::array();
    for (const auto& [name, variable] : effective)
    {
        const String origin = GetOrigin(variable->GetPosition());
        Json overrode = Json::array();
        String raw = variable->GetValue();
        for (const Definition& definition : definitions)
        {
            if (definition.name == name && GetOrigin(definition.position) != origin)
            {
                overrode.push_back({{"value", definition.value}, {"origin", GetOrigin(definition.position)}});
            }
            else if (definition.name == name)
            {
                raw = definition.value;
            }
        }
        list.push_back({{"name", name},
                        {"raw", raw},
                        {"value", variable->GetEffectiveValue()},
                        {"kind", variable->IsOverride()   ? "override"
                                 : variable->IsRedefine() ? "redefinition"
                                                          : "definition"},
                        {"origin", origin},
                        {"overrode", std::move(overrode)}});
    }
    return list;
}

Json PlanBuilder::BuildValues() const
{
    static const std::set<String> sections{"LogSettings", "ProcessSettings",  "RscSettings",
                                           "NmSettings",  "SecuritySettings", "FileTrust"};
    // The last one counts.
    std::map<String, Json> values;
    for (const ReadAttribute& attribute : record.GetAttributes())
    {
        if (!sections.contains(attribute.element))
        {
            continue;
        }
        const String name = attribute.element + "/" + attribute.name;
        Json value{{"name", name},
                   {"value", attribute.value},
                   {"origin", GetOrigin(attribute.position)},
                   {"overrode", Json::array()}};
        if (const auto earlier = values.find(name); earlier != values.end())
        {
            value["overrode"] = earlier->second["overrode"];
            value["overrode"].push_back({{"value", earlier->second["value"]}, {"origin", earlier->second["origin"]}});
        }
        values[name] = std::move(value);
    }
    Json list = Json::array();
    for (auto& [name, value] : values)
    {
        list.push_back(std::move(value));
    }
    return list;
}

Json BuildPlan(const SystemDocuments& documents, bool mayLoad)
{
    // Longer than all libraries together may take.
    constexpr std::chrono::minutes limit{5};
    HelperResult result = RunInHelper(
        [&]
        {
            LoadRecord record;
            const OfflineSystem system(documents, record);
            return PlanBuilder(system, record, mayLoad).Build();
        },
        limit);
    if (!result.answer)
    {
        throw CommandError(ExitCode::Failed, "The plan cannot be made: {}", result.failure);
    }
    return std::move(*result.answer);
}

} // namespace Vela::Kiroctl
