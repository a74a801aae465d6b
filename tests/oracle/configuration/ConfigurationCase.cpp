#include "ConfigurationCase.hpp"

#include <fmt/format.h>

#include <set>

namespace Vela::Testing
{

namespace
{

const std::vector<std::string> filePaths{"Default.config", "device/Device.config", "project/Project.config",
                                         "project/parts/More.config"};
const std::vector<std::string> processNames{"Main", "A", "B", "a", "Zeta", ""};
const std::vector<std::string> componentNames{"pump",      "Pump", "valve", "Scm",  "Diagnosis", "monitor",
                                              "monitor@A", "b.1",  "a",     "tank", "tank2",     "z"};
const std::vector<std::string> types{"Pump", "Valve", "Monitor", "Scm"};
const std::vector<std::string> binaryPaths{"",           "", "", "bin/Vela.System.Application", "/opt/tool/runner",
                                           "tools/other"};

DeclaredProcess GenerateProcess(Random& random)
{
    DeclaredProcess process{.name = random.Pick(processNames)};
    process.binaryPath = random.Pick(binaryPaths);
    process.isExternal = random.Pick<std::string>({"", "", "", "", "true", "false"});
    return process;
}

DeclaredLibrary GenerateLibrary(Random& random)
{
    DeclaredLibrary library{.name = random.Pick<std::string>({"L1", "L2", "L3", "L4"}),
                            .binaryPath = random.Pick<std::string>({"lib/libA.so", "/usr/lib/libB.so", "libC.so"})};
    for (std::size_t count = random.Chance(30) ? random.Below(4) : 0; count > 0; --count)
    {
        library.dependencies.push_back(random.Pick<std::string>({"d1.so", "../d2.so", "/d3.so", "d4.so", "d5.so"}));
    }
    if (random.Chance(1))
    {
        library.dependencies.emplace_back();
    }
    return library;
}

DeclaredComponent GenerateComponent(Random& random)
{
    DeclaredComponent component{.name = random.Pick(componentNames), .type = random.Pick(types), .library = "L1"};
    component.process = random.Chance(25) ? "*" : random.Chance(20) ? "" : random.Pick(processNames);
    const std::vector<std::string> booleans{"", "", "true", "false", "1", "0"};
    component.isRequired = random.Pick(booleans);
    component.isEnabled = random.Pick(booleans);
    component.isFinal = random.Pick(booleans);
    component.startOrder = random.Pick<std::string>({"", "", "0", "7", "2147483647"});
    component.settingsPath = random.Pick<std::string>({"", "", "s.settings", "../up.settings", "/etc/s.settings"});
    return component;
}

/// Leaves the first declaration of each name and few others, which end the load.
template <typename File, typename T>
void DropDuplicates(Random& random, std::vector<File>& files, std::vector<T> File::*list,
                    const std::set<std::string>& mayRecur = {})
{
    std::set<std::string> names;
    for (File& file : files)
    {
        std::erase_if(
            file.*list, [&](const T& declared)
            { return !names.insert(declared.name).second && !mayRecur.contains(declared.name) && !random.Chance(3); });
    }
}

std::string GetAttribute(const char* name, const std::string& value)
{
    return value.empty() ? value : fmt::format(" {}=\"{}\"", name, value);
}

std::string GetSection(const ConfigurationFile& file, const std::string& element)
{
    std::string text = "<" + element + ">\n";
    if (element == "Processes")
    {
        for (const DeclaredProcess& process : file.processes)
        {
            text += fmt::format("<Process name=\"{}\"{}{}/>\n", process.name,
                                GetAttribute("binaryPath", process.binaryPath),
                                GetAttribute("external", process.isExternal));
        }
    }
    else if (element == "Libraries")
    {
        for (const DeclaredLibrary& library : file.libraries)
        {
            text +=
                fmt::format("<Library name=\"{}\" binaryPath=\"{}\"><Dependencies>", library.name, library.binaryPath);
            for (const std::string& dependency : library.dependencies)
            {
                text += fmt::format("<Dependency binaryPath=\"{}\"/>", dependency);
            }
            text += "</Dependencies></Library>\n";
        }
    }
    else
    {
        for (const DeclaredComponent& component : file.components)
        {
            text += fmt::format(
                "<Component name=\"{}\" type=\"{}\" library=\"{}\"{}{}{}{}{}>", component.name, component.type,
                component.library, GetAttribute("process", component.process),
                GetAttribute("isRequired", component.isRequired), GetAttribute("isEnabled", component.isEnabled),
                GetAttribute("final", component.isFinal), GetAttribute("startOrder", component.startOrder));
            text += component.settingsPath.empty() ? std::string()
                                                   : fmt::format("<Settings path=\"{}\"/>", component.settingsPath);
            text += "</Component>\n";
        }
    }
    return text + "</" + element + ">\n";
}

} // namespace

std::string ConfigurationCase::GetDocument(const ConfigurationFile& file) const
{
    std::vector<std::string> sections{GetSection(file, "Processes"), GetSection(file, "Libraries"),
                                      GetSection(file, "Components")};
    if (file.isUpsideDown)
    {
        std::reverse(sections.begin(), sections.end());
    }
    return fmt::format("<KiroConfigurationDocument>\n{}{}</KiroConfigurationDocument>\n",
                       GetIncludesElement(files, file), fmt::join(sections, ""));
}

std::string ConfigurationCase::Describe() const
{
    std::string text = isSingleProcess ? "In a single process.\n" : "";
    for (const BuiltInComponent& builtIn : builtIns)
    {
        text += fmt::format("Built in: {} of type {}\n", builtIn.name, builtIn.type);
    }
    for (const ConfigurationFile& file : files)
    {
        text += file.path + ":\n" + GetDocument(file);
    }
    return text;
}

ConfigurationCase GenerateConfiguration(Random& random)
{
    ConfigurationCase sample;
    sample.isSingleProcess = random.Chance(20);
    if (random.Chance(40))
    {
        sample.builtIns = {{"Scm", "Scm"}, {"Diagnosis", "Monitor"}};
    }
    sample.files = GenerateFiles<ConfigurationFile>(random, filePaths);
    for (ConfigurationFile& file : sample.files)
    {
        std::generate_n(std::back_inserter(file.processes), random.Below(4), [&] { return GenerateProcess(random); });
        std::generate_n(std::back_inserter(file.libraries), random.Below(3), [&] { return GenerateLibrary(random); });
        std::generate_n(std::back_inserter(file.components), random.Below(6),
                        [&] { return GenerateComponent(random); });
        file.isUpsideDown = random.Chance(20);
    }
    std::set<std::string> builtInNames;
    for (const BuiltInComponent& builtIn : sample.builtIns)
    {
        builtInNames.insert(builtIn.name);
    }
    DropDuplicates(random, sample.files, &ConfigurationFile::processes);
    DropDuplicates(random, sample.files, &ConfigurationFile::libraries);
    DropDuplicates(random, sample.files, &ConfigurationFile::components, builtInNames);
    return sample;
}

std::vector<ConfigurationCase> Simplify(const ConfigurationCase& sample)
{
    std::vector<ConfigurationCase> simpler;
    AppendWithoutEach(simpler, sample, &ConfigurationCase::builtIns);
    AppendSimplerFiles(simpler, sample, &ConfigurationCase::files,
                       [](std::vector<ConfigurationFile>& shorter, const ConfigurationFile& file)
                       {
                           AppendWithoutEach(shorter, file, &ConfigurationFile::processes);
                           AppendWithoutEach(shorter, file, &ConfigurationFile::libraries);
                           AppendWithoutEach(shorter, file, &ConfigurationFile::components);
                       });
    return simpler;
}

} // namespace Vela::Testing
