#include "ConfigurationModel.hpp"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <filesystem>
#include <set>

namespace Vela::Testing
{

namespace
{

std::string Resolve(const std::string& path, const std::string& directory)
{
    return path.empty() ? path : (std::filesystem::path(directory) / path).lexically_normal().string();
}

bool IsTrue(const std::string& text, bool byDefault = false)
{
    return text.empty() ? byDefault : text == "true" || text == "1";
}

} // namespace

std::string DescribeProcess(const std::string& name, const std::string& binaryPath, bool isExternal)
{
    return fmt::format("Process {} '{}'{}", name, binaryPath, isExternal ? " external" : "");
}

std::string DescribeLibrary(const std::string& name, const std::string& binaryPath,
                            const std::vector<std::string>& dependencies)
{
    return fmt::format("Library {} '{}' {}", name, binaryPath, dependencies);
}

std::string DescribeComponent(const std::vector<std::string>& texts, const std::vector<bool>& flags, int startOrder,
                              bool hasStartOrder)
{
    return fmt::format("Component {} {} {}{}", texts, flags, startOrder, hasStartOrder ? " given" : "");
}

ConfigurationModel::ConfigurationModel(const ConfigurationCase& configurationCase, std::string rootDirectory)
    : sample(configurationCase)
    , root(std::move(rootDirectory))
{
}

Trace ConfigurationModel::Run()
{
    try
    {
        Load();
        DropUnusedProcesses();
        DistributeGenericComponents();
        AppendConfiguration();
    }
    catch (const Failure& failure)
    {
        trace.push_back(failure.text);
    }
    return trace;
}

void ConfigurationModel::Load()
{
    for (const BuiltInComponent& builtIn : sample.builtIns)
    {
        Add({{.name = builtIn.name, .type = builtIn.type, .library = ""}, true});
    }
    for (const ConfigurationFile& file : GetReadingOrder(sample.files))
    {
        std::vector<void (ConfigurationModel::*)(const ConfigurationFile&)> sections{
            &ConfigurationModel::ReadProcesses, &ConfigurationModel::ReadLibraries,
            &ConfigurationModel::ReadComponents};
        if (file.isUpsideDown)
        {
            std::reverse(sections.begin(), sections.end());
        }
        for (const auto section : sections)
        {
            (this->*section)(file);
        }
    }
}

void ConfigurationModel::ReadProcesses(const ConfigurationFile& file)
{
    for (DeclaredProcess process : file.processes)
    {
        process.binaryPath = Resolve(process.binaryPath, file.GetDirectory(root));
        if (!processes.insert({process.name, process}).second)
        {
            throw Failure{fmt::format("XmlException: Process '{0}' is already declared!", process.name)};
        }
    }
}

void ConfigurationModel::ReadLibraries(const ConfigurationFile& file)
{
    for (DeclaredLibrary library : file.libraries)
    {
        library.binaryPath = Resolve(library.binaryPath, file.GetDirectory(root));
        std::set<std::string> known;
        for (std::string& dependency : library.dependencies)
        {
            dependency = Resolve(dependency, file.GetDirectory(root));
            if (dependency.empty())
            {
                throw Failure{"XmlException: Dependency's binaryPath must not be empty."};
            }
            if (!known.insert(dependency).second)
            {
                throw Failure{fmt::format("XmlException: Dependency '{0}' is already declared!", dependency)};
            }
        }
        if (!libraries.insert({library.name, library}).second)
        {
            throw Failure{fmt::format("XmlException: Library '{0}' is already declared!", library.name)};
        }
    }
}

void ConfigurationModel::ReadComponents(const ConfigurationFile& file)
{
    for (DeclaredComponent component : file.components)
    {
        component.settingsPath = Resolve(component.settingsPath, file.GetDirectory(root));
        Add({component, false});
    }
}

void ConfigurationModel::Add(const Component& component)
{
    const DeclaredComponent& from = component.declared;
    for (Components* table : {&components, &generics})
    {
        if (const auto found = table->find(from.name); found != table->end())
        {
            if (!found->second.isStatic)
            {
                throw Failure{
                    fmt::format("InvalidConfigException: Duplicated component name occurs: '{0}'", from.name)};
            }
            DeclaredComponent& to = found->second.declared;
            to.settingsPath = from.settingsPath.empty() ? to.settingsPath : from.settingsPath;
            to.process = from.process.empty() ? to.process : from.process;
            return;
        }
    }
    (from.process == "*" ? generics : components)[from.name] = component;
}

void ConfigurationModel::DropUnusedProcesses()
{
    std::erase_if(processes,
                  [this](const auto& process)
                  {
                      const bool isUsed = std::any_of(components.begin(), components.end(),
                                                      [&](const auto& component)
                                                      { return component.second.declared.process == process.first; });
                      const std::string& binaryPath = process.second.binaryPath;
                      const bool isForeign =
                          !binaryPath.empty() && binaryPath.find("Vela.System.Application") == std::string::npos;
                      return !isUsed && !isForeign && !IsTrue(process.second.isExternal);
                  });
}

void ConfigurationModel::DistributeGenericComponents()
{
    for (const auto& [genericName, generic] : generics)
    {
        for (const auto& [process, ignored] : processes)
        {
            const bool isReference = process.empty() || process == ConfigurationCase::mainProcess;
            if (!isReference && sample.isSingleProcess)
            {
                continue;
            }
            const DeclaredComponent copy{.name = isReference ? genericName : fmt::format("{}@{}", genericName, process),
                                         .type = generic.declared.type,
                                         .library = generic.declared.library,
                                         .process = process};
            const auto same = std::find_if(components.begin(), components.end(),
                                           [&](const auto& other) {
                                               return other.second.declared.type == copy.type &&
                                                      other.second.declared.process == copy.process;
                                           });
            if (same == components.end())
            {
                components.insert({copy.name, {copy, false}});
                continue;
            }
            trace.push_back(fmt::format("Warning: Component '{}' of type '{}' was explicitly configured in process "
                                        "'{}' but also through generic configuration using '*' as process name.",
                                        same->first, copy.type, copy.process));
        }
    }
}

void ConfigurationModel::AppendConfiguration()
{
    for (const auto& [name, process] : processes)
    {
        trace.push_back(DescribeProcess(name, process.binaryPath, IsTrue(process.isExternal)));
    }
    for (const auto& [name, library] : libraries)
    {
        trace.push_back(DescribeLibrary(name, library.binaryPath, library.dependencies));
    }
    for (const Components* table : {&components, &generics})
    {
        for (const auto& [name, component] : *table)
        {
            const DeclaredComponent& from = component.declared;
            trace.push_back(DescribeComponent(
                {name, from.type, from.library, from.process, from.settingsPath},
                {component.isStatic, IsTrue(from.isRequired), IsTrue(from.isEnabled, true), IsTrue(from.isFinal)},
                from.startOrder.empty() ? -1 : std::stoi(from.startOrder), !from.startOrder.empty()));
        }
    }
}

} // namespace Vela::Testing
