#pragma once

#include "../DocumentFiles.hpp"
#include "../Oracle.hpp"

#include <optional>

namespace Vela::Testing
{

struct DeclaredProcess
{
    std::string name;
    /// As it is written; empty: not at all. The same for all texts below.
    std::string binaryPath = {};
    std::string isExternal = {};
};

struct DeclaredLibrary
{
    std::string name;
    std::string binaryPath;
    std::vector<std::string> dependencies = {};
};

struct DeclaredComponent
{
    std::string name;
    std::string type;
    std::string library;
    std::string process = {};
    std::string isRequired = {};
    std::string isEnabled = {};
    std::string isFinal = {};
    std::string startOrder = {};
    std::string settingsPath = {};
};

struct ConfigurationFile : DocumentFile
{
    std::vector<DeclaredProcess> processes;
    std::vector<DeclaredLibrary> libraries;
    std::vector<DeclaredComponent> components;
    /// The sections stand in the reverse order.
    bool isUpsideDown = false;
};

struct BuiltInComponent
{
    std::string name;
    std::string type;
};

/// A configuration in several files.
struct ConfigurationCase
{
    static constexpr const char* mainProcess = "Main";

    [[nodiscard]] std::string GetDocument(const ConfigurationFile& file) const;
    [[nodiscard]] std::string Describe() const;

    bool isSingleProcess = false;
    std::vector<BuiltInComponent> builtIns;
    std::vector<ConfigurationFile> files;
};

ConfigurationCase GenerateConfiguration(Random& random);
std::vector<ConfigurationCase> Simplify(const ConfigurationCase& sample);

} // namespace Vela::Testing
