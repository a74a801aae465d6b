#include "LifecycleCase.hpp"

#include <fmt/format.h>

namespace Vela::Testing
{

namespace
{

const std::map<Fault, std::string> faultNames{{Fault::Platform, "platform"},
                                              {Fault::Standard, "standard"},
                                              {Fault::Own, "own"},
                                              {Fault::Unknown, "unknown"},
                                              {Fault::Lost, "lost"}};

const std::vector<std::string> steps{
    "Initialize", "SubscribeServices", "LoadSettings", "SetupSettings", "PublishServices",
    "LoadConfig", "SetupConfig",       "Start",        "Stop",          "ResetConfig",
    "Dispose",    "PowerDown"};
/// What only a lost call can hit.
const std::string destroy = "Destroy";

/// The longest text that a remote call takes, and one more.
constexpr std::size_t maxTextLength = 511;

/// The start orders from which a custom component's own is lowered, and what surrounds them.
const std::vector<std::uint32_t> startOrders{0, 0, 0, 1, 2, 5, 1000, 100000, 4294966294U, 4294966295U, 4294967295U};
const std::vector<std::int32_t> configuredStartOrders{0, 1, 2, 5, 1000, 2147483647};

std::string DrawName(Random& random, std::vector<std::string>& names)
{
    std::string name = random.Draw(names);
    if (random.Chance(1))
    {
        name.resize(maxTextLength + random.Below(2), 'n');
    }
    return name;
}

ComponentCase GenerateComponent(Random& random, const LifecycleCase& system, std::string name)
{
    ComponentCase component{.name = std::move(name)};
    const std::size_t process = random.Below(system.processes.size() + 2);
    if (process < system.processes.size())
    {
        component.process = system.processes[process].name;
    }
    else if (random.Chance(50))
    {
        component.process = LifecycleCase::mainProcess;
    }
    component.category =
        random.Pick<std::string>({"custom", "custom", "custom", "custom", "system", "service", "none"});
    component.isController = random.Chance(70);
    component.isSingleton = random.Chance(3);
    component.startOrder = random.Pick(startOrders);
    if (random.Chance(30))
    {
        component.configuredStartOrder = random.Pick(configuredStartOrders);
    }
    component.isRequired = random.Chance(30);
    component.isEnabled = random.Chance(88);
    if (random.Chance(50))
    {
        component.settingsPath = "/settings/of-" + component.name.substr(0, 20);
    }
    if (random.Chance(1))
    {
        component.settingsPath = "/" + std::string(maxTextLength - 1 + random.Below(2), 's');
    }
    if (random.Chance(12))
    {
        component.library.clear();
    }
    return component;
}

/// What a start does not survive.
void BreakStart(Random& random, LifecycleCase& system)
{
    ComponentCase& component = system.components[random.Below(system.components.size())];
    switch (random.Below(4))
    {
    case 0:
        component.process = "Nowhere";
        break;
    case 1:
        component.library = "Missing";
        break;
    case 2:
        component.isKnownType = false;
        break;
    default:
        component.faults["Create"] = random.Pick<Fault>({Fault::Platform, Fault::Standard, Fault::Own, Fault::Unknown});
        break;
    }
}

void AddFaults(Random& random, LifecycleCase& system, bool hasLostCalls)
{
    std::vector<Fault> faults{Fault::Platform, Fault::Standard, Fault::Own, Fault::Unknown};
    std::vector<std::string> faultySteps = steps;
    if (hasLostCalls)
    {
        faults.push_back(Fault::Lost);
        faultySteps.push_back(destroy);
    }
    const unsigned density = random.Pick<unsigned>({0, 2, 5, 5, 10, 30});
    for (ComponentCase& component : system.components)
    {
        for (const std::string& step : faultySteps)
        {
            if (random.Chance(density))
            {
                component.faults[step] = step == destroy ? Fault::Lost : random.Pick(faults);
            }
        }
    }
}

/// The cases in which one component is changed in some way.
template <typename Change>
void AppendChanged(std::vector<LifecycleCase>& simpler, const LifecycleCase& sample, const Change& change)
{
    for (std::size_t index = 0; index < sample.components.size(); ++index)
    {
        LifecycleCase copy = sample;
        if (change(copy.components[index]))
        {
            simpler.push_back(std::move(copy));
        }
    }
}

template <typename T>
bool Assign(T& target, const T& value)
{
    const bool isChange = target != value;
    target = value;
    return isChange;
}

std::string GetElement(const ComponentCase& component)
{
    std::string text = fmt::format(
        R"(<Component name="{}" type="{}" library="{}" process="{}" isRequired="{}" isEnabled="{}")", component.name,
        component.GetType(), component.library, component.process, component.isRequired, component.isEnabled);
    if (component.configuredStartOrder)
    {
        text += fmt::format(R"( startOrder="{}")", *component.configuredStartOrder);
    }
    return text + (component.settingsPath.empty()
                       ? std::string("/>\n")
                       : fmt::format("><Settings path=\"{}\"/></Component>\n", component.settingsPath));
}

} // namespace

std::string GetFaultText(const std::string& component, const std::string& step)
{
    return step + " of {0} failed in " + component;
}

std::string ComponentCase::GetType() const
{
    std::string type = isKnownType ? "Recorder" : "Stranger";
    type += category == "custom" ? "" : ":" + category;
    type += isController ? ":controller" : "";
    type += isSingleton ? ":singleton" : "";
    return type + fmt::format(":order={}", startOrder);
}

std::string LifecycleCase::GetScript() const
{
    std::string script;
    for (const ComponentCase& component : components)
    {
        for (const auto& [step, fault] : component.faults)
        {
            if (fault != Fault::Lost)
            {
                script += fmt::format("{} {} throw {} {}\n", component.name, step, faultNames.at(fault),
                                      GetFaultText(component.name, step));
            }
        }
    }
    return script;
}

std::string LifecycleCase::GetDocument(const std::string& libraryPath) const
{
    std::string text = "<KiroConfigurationDocument>\n<Processes>\n";
    for (const ProcessCase& process : processes)
    {
        text += fmt::format("<Process name=\"{}\" external=\"{}\"/>\n", process.name, !process.isConnected);
    }
    text += fmt::format("</Processes>\n<Libraries><Library name=\"{}\" binaryPath=\"{}\"/></Libraries>\n<Components>\n",
                        recordingLibrary, libraryPath);
    for (const ComponentCase& component : components)
    {
        text += GetElement(component);
    }
    return text + "</Components>\n</KiroConfigurationDocument>\n";
}

std::string LifecycleCase::Describe() const
{
    std::string text = isSingleProcess ? "In a single process.\n" : "";
    text += GetDocument("libRecording.so");
    for (const ComponentCase& component : components)
    {
        for (const auto& [step, fault] : component.faults)
        {
            text += fmt::format("{} fails at {}: {}\n", component.name, step, faultNames.at(fault));
        }
    }
    return text + fmt::format("Operations: {}\n", fmt::join(operations, ", "));
}

std::vector<LifecycleCase> Simplify(const LifecycleCase& sample)
{
    std::vector<LifecycleCase> simpler;
    AppendWithoutEach(simpler, sample, &LifecycleCase::components);
    AppendWithoutEach(simpler, sample, &LifecycleCase::operations);
    AppendWithoutEach(simpler, sample, &LifecycleCase::processes);
    for (const ComponentCase& component : sample.components)
    {
        for (const auto& fault : component.faults)
        {
            AppendChanged(simpler, sample,
                          [&](ComponentCase& changed)
                          { return changed.name == component.name && changed.faults.erase(fault.first) > 0; });
        }
    }
    const ComponentCase plain{.name = ""};
    AppendChanged(simpler, sample, [&](ComponentCase& changed) { return Assign(changed.process, plain.process); });
    AppendChanged(simpler, sample, [&](ComponentCase& changed) { return Assign(changed.library, plain.library); });
    AppendChanged(simpler, sample,
                  [&](ComponentCase& changed) { return Assign(changed.settingsPath, plain.settingsPath); });
    AppendChanged(simpler, sample, [&](ComponentCase& changed) { return Assign(changed.category, plain.category); });
    AppendChanged(simpler, sample,
                  [&](ComponentCase& changed) { return Assign(changed.isController, plain.isController); });
    AppendChanged(simpler, sample,
                  [&](ComponentCase& changed) { return Assign(changed.isSingleton, plain.isSingleton); });
    AppendChanged(simpler, sample,
                  [&](ComponentCase& changed) { return Assign(changed.startOrder, plain.startOrder); });
    AppendChanged(simpler, sample,
                  [&](ComponentCase& changed)
                  { return Assign(changed.configuredStartOrder, plain.configuredStartOrder); });
    AppendChanged(simpler, sample,
                  [&](ComponentCase& changed) { return Assign(changed.isRequired, plain.isRequired); });
    AppendChanged(simpler, sample, [&](ComponentCase& changed) { return Assign(changed.isEnabled, plain.isEnabled); });
    if (sample.isSingleProcess)
    {
        simpler.push_back(sample);
        simpler.back().isSingleProcess = false;
    }
    return simpler;
}

LifecycleCase GenerateSystem(Random& random, const LifecycleChoices& choices)
{
    LifecycleCase system;
    system.isSingleProcess = random.Chance(8);
    std::vector<std::string> processNames{"A", "B", "a", "Zeta", "MainProcess2", "_p"};
    for (std::size_t count = random.Below(choices.maxProcesses + 1); count > 0; --count)
    {
        system.processes.push_back({random.Draw(processNames), !random.Chance(choices.external)});
    }
    std::vector<std::string> names{"pump",  "Pump", "pump2",     "valve", "Valve@A", "a", "A",
                                   "_tank", "z9",   "\xC3\xB6l", "b-1",   "B.1",     "aa"};
    for (std::size_t count = random.Below(choices.maxComponents + 1); count > 0; --count)
    {
        system.components.push_back(GenerateComponent(random, system, DrawName(random, names)));
    }
    AddFaults(random, system, choices.hasLostCalls);
    if (!system.components.empty() && random.Chance(6))
    {
        BreakStart(random, system);
    }
    return system;
}

} // namespace Vela::Testing
