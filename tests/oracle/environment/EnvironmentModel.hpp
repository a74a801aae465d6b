#pragma once

#include "EnvironmentCase.hpp"

#include <set>

namespace Vela::Testing
{

/// The rules by which settings documents define variables, over tables.
class EnvironmentModel
{
public:
    /// Kind and message of the exception.
    struct Failure
    {
        std::string text;
    };

    EnvironmentModel(const EnvironmentCase& environmentCase, std::string rootDirectory);

    /// What happens from the load to the last publication, and what the variables are after each.
    Trace Run();

private:
    struct Variable
    {
        std::string name;
        std::string value;
        bool isOverride = false;
        bool isRedefine = false;
        std::string directory;
        std::string resolved = {};
        bool isResolved = false;
        bool isPublished = false;

        [[nodiscard]] const std::string& GetEffective() const
        {
            return isResolved ? resolved : value;
        }
    };

    using Table = std::map<std::string, Variable>;
    using Names = std::set<std::string>;

    void Load();
    void Read(const VariableCase& declared, const SettingsFile& file);
    bool Add(const Variable& variable, bool isFromDeprecatedFile);
    void AddOverride(const Variable& variable);

    void Publish(bool isReset);
    void PublishByName(const std::string& name, Names& visiting);
    void PublishOne(Variable& variable, Names& visiting);

    [[nodiscard]] std::optional<std::string> Find(const std::string& name) const;
    [[nodiscard]] std::string Substitute(const std::string& text) const;
    void Say(const std::string& line);
    void AppendVariables();

    const EnvironmentCase& sample;
    const std::string root;
    Trace trace;
    Table variables;
    Table overrides;
    Table redefinitions;
    std::map<std::string, std::string> currentNames;

    /// The platform's environment: an override beats a default, a default what the process inherited.
    std::map<std::string, std::string> publishedOverrides;
    std::map<std::string, std::string> publishedDefaults;
    std::map<std::string, std::string> process;
};

} // namespace Vela::Testing
