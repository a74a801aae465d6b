#pragma once

#include "ConfigurationCase.hpp"

#include <map>

namespace Vela::Testing
{

/// The rules by which the files of a configuration are merged.
class ConfigurationModel
{
public:
    /// Kind and message of the exception.
    struct Failure
    {
        std::string text;
    };

    ConfigurationModel(const ConfigurationCase& configurationCase, std::string rootDirectory);

    /// What is said, and the configuration in the end.
    Trace Run();

private:
    struct Component
    {
        DeclaredComponent declared;
        bool isStatic = false;
    };

    using Components = std::map<std::string, Component>;

    void Load();
    void ReadProcesses(const ConfigurationFile& file);
    void ReadLibraries(const ConfigurationFile& file);
    void ReadComponents(const ConfigurationFile& file);
    void Add(const Component& component);
    void DropUnusedProcesses();
    void DistributeGenericComponents();
    void AppendConfiguration();

    const ConfigurationCase& sample;
    const std::string root;
    Trace trace;
    std::map<std::string, DeclaredProcess> processes;
    std::map<std::string, DeclaredLibrary> libraries;
    Components components;
    Components generics;
};

/// One line for each thing of a configuration, as model and test write it.
std::string DescribeProcess(const std::string& name, const std::string& binaryPath, bool isExternal);
std::string DescribeLibrary(const std::string& name, const std::string& binaryPath,
                            const std::vector<std::string>& dependencies);
/// @param texts  name, type, library, process and settings path
/// @param flags  static, required, enabled, final
std::string DescribeComponent(const std::vector<std::string>& texts, const std::vector<bool>& flags, int startOrder,
                              bool hasStartOrder);

} // namespace Vela::Testing
