#pragma once

#include "../DocumentFiles.hpp"
#include "../Oracle.hpp"

#include <map>
#include <optional>

namespace Vela::Testing
{

/// One definition of a variable; a switch that is empty is not written.
struct VariableCase
{
    std::string name;
    std::string value;
    std::string isOverride = {};
    std::string isOverridden = {};
    std::string isRedefine = {};
};

struct SettingsFile : DocumentFile
{
    std::vector<VariableCase> variables;
};

/// All is published once more, after the environment has changed.
struct Publication
{
    bool isReset = false;
    std::map<std::string, std::string> outside;
};

/// Settings documents that define variables, in an environment.
struct EnvironmentCase
{
    /// All names that a case can speak of.
    static const std::vector<std::string> names;

    [[nodiscard]] std::string GetDocument(const SettingsFile& file) const;
    [[nodiscard]] std::string Describe() const;

    /// Variables of the process before anything is read.
    std::map<std::string, std::string> outside;
    std::vector<SettingsFile> files;
    std::vector<Publication> publications;
};

EnvironmentCase GenerateEnvironment(Random& random);
std::vector<EnvironmentCase> Simplify(const EnvironmentCase& sample);

} // namespace Vela::Testing
