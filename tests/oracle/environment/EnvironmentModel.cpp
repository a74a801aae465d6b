#include "EnvironmentModel.hpp"

#include <fmt/format.h>

namespace Vela::Testing
{

namespace
{

/// A text in its parts: what stands for itself, and names of placeholders.
struct Part
{
    bool isPlaceholder;
    std::string text;
};

std::vector<Part> Split(const std::string& text)
{
    std::vector<Part> parts;
    for (std::size_t at = 0; at < text.size();)
    {
        if (text.compare(at, 2, "${") == 0)
        {
            const std::size_t end = text.find('}', at);
            parts.push_back({true, text.substr(at + 2, end - at - 2)});
            at = end + 1;
        }
        else
        {
            parts.push_back({false, text.substr(at, 1)});
            at += text.compare(at, 2, "$$") == 0 ? 2U : 1U;
        }
    }
    return parts;
}

bool IsPathName(const std::string& name)
{
    return name.starts_with("VELA_PATH_");
}

/// A relative path from a directory; absolute and empty ones stay.
std::string MakeAbsolute(const std::string& path, const std::string& directory)
{
    return path.empty() || path.starts_with("/") ? path : directory + "/" + path;
}

bool IsTrue(const std::string& text)
{
    return text == "true" || text == "1";
}

} // namespace

EnvironmentModel::EnvironmentModel(const EnvironmentCase& environmentCase, std::string rootDirectory)
    : sample(environmentCase)
    , root(std::move(rootDirectory))
    , process(sample.outside)
{
}

Trace EnvironmentModel::Run()
{
    const auto run = [this](const std::function<void()>& action)
    {
        bool isSuccess = true;
        try
        {
            action();
        }
        catch (const Failure& failure)
        {
            trace.push_back(failure.text);
            isSuccess = false;
        }
        AppendVariables();
        return isSuccess;
    };
    bool isGood = run(
        [this]
        {
            Load();
            Publish(false);
        });
    for (const Publication& publication : sample.publications)
    {
        for (const auto& [name, value] : publication.outside)
        {
            process[name] = value;
        }
        isGood = isGood && run([&] { Publish(publication.isReset); });
    }
    return trace;
}

void EnvironmentModel::Load()
{
    for (const SettingsFile& file : GetReadingOrder(sample.files))
    {
        for (const VariableCase& declared : file.variables)
        {
            Read(declared, file);
        }
    }
}

void EnvironmentModel::Read(const VariableCase& declared, const SettingsFile& file)
{
    Variable variable{.name = declared.name,
                      .value = declared.value,
                      .isOverride = IsTrue(declared.isOverride.empty() ? declared.isOverridden : declared.isOverride),
                      .isRedefine = IsTrue(declared.isRedefine),
                      .directory = file.GetDirectory(root)};
    if (variable.isOverride && variable.isRedefine)
    {
        throw Failure{
            fmt::format("XmlException: Environment variable '{0}' sets attribute 'redefine' and 'override' to "
                        "'true', this is not supported",
                        variable.name)};
    }
    if (IsPathName(variable.name) && !variable.value.starts_with("${"))
    {
        variable.value = MakeAbsolute(variable.value, variable.directory);
    }
    const std::string fileName = file.path.substr(file.path.rfind('/') + 1);
    if (!Add(variable, fileName == "Deprecated.kiro.settings" || fileName == "Local.deprecated.kiro.settings"))
    {
        throw Failure{fmt::format("XmlException: Environment variable '{0}' is already defined!", variable.name)};
    }
}

bool EnvironmentModel::Add(const Variable& variable, bool isFromDeprecatedFile)
{
    const std::vector<Part> parts = Split(variable.value);
    if (isFromDeprecatedFile && parts.size() == 1 && parts[0].isPlaceholder)
    {
        currentNames[variable.name] = parts[0].text;
    }
    if (variable.isOverride)
    {
        AddOverride(variable);
        return true;
    }
    Table& table = variable.isRedefine ? redefinitions : variables;
    const auto [found, isNew] = table.try_emplace(variable.name, variable);
    const bool isEqual = found->second.value == variable.value;
    if (isNew)
    {
        return true;
    }
    if (variable.isRedefine)
    {
        Say(isEqual ? fmt::format("Debug: Environment variable '{}' was redefined twice, but values are equal",
                                  variable.name)
                    : fmt::format("Debug: Environment variable '{}' was redefined twice with different values, new "
                                  "value is: {}",
                                  variable.name, variable.value));
        found->second = variable;
        return true;
    }
    Say(isEqual
            ? fmt::format("Debug: Environment variable '{}' was defined twice, but values are equal", variable.name)
            : fmt::format("Fatal: Environment variable '{}' was defined twice with different values", variable.name));
    return isEqual;
}

void EnvironmentModel::AddOverride(const Variable& variable)
{
    Names followed;
    for (auto next = currentNames.find(variable.name); next != currentNames.end();
         next = currentNames.find(next->second))
    {
        if (!followed.insert(next->first).second)
        {
            throw Failure{fmt::format("InvalidConfigException: Environment variable '{}' is overridden, but its old "
                                      "names lead to each other in a circle",
                                      variable.name)};
        }
    }
    const auto [found, isNew] = overrides.try_emplace(variable.name, variable);
    if (!isNew)
    {
        Say(found->second.value == variable.value
                ? fmt::format("Debug: Environment variable '{}' was overriden several times, but values are equal",
                              variable.name)
                : fmt::format("Debug: Environment variable '{}' was overriden twice with different values, new value "
                              "is: {}",
                              variable.name, variable.value));
        found->second = variable;
    }
    if (const auto current = currentNames.find(variable.name); current != currentNames.end())
    {
        Variable renamed = variable;
        renamed.name = current->second;
        AddOverride(renamed);
    }
}

void EnvironmentModel::Publish(bool isReset)
{
    if (isReset)
    {
        for (Table* table : {&variables, &overrides, &redefinitions})
        {
            for (auto& [name, variable] : *table)
            {
                variable.isResolved = variable.isPublished = false;
            }
        }
    }
    for (const auto& [name, redefinition] : redefinitions)
    {
        const auto found = variables.find(name);
        if (found == variables.end())
        {
            throw Failure{fmt::format(
                "InvalidConfigException: Environment variable '{}' was redefined without a basic definition!", name)};
        }
        found->second = redefinition;
    }
    Names visiting;
    for (const auto& [name, variable] : variables)
    {
        PublishByName(name, visiting);
    }
    for (auto& [name, variable] : overrides)
    {
        if (!variable.isPublished)
        {
            Say(fmt::format("Debug: Overridden variable '{}' does not have a base definition.", name));
            PublishOne(variable, visiting);
        }
    }
    for (const auto* published : {&publishedDefaults, &publishedOverrides})
    {
        for (const auto& [name, value] : *published)
        {
            process[name] = value;
        }
    }
}

void EnvironmentModel::PublishByName(const std::string& name, Names& visiting)
{
    if (const auto found = variables.find(name); found != variables.end())
    {
        PublishOne(found->second, visiting);
        if (const auto override = overrides.find(name); override != overrides.end())
        {
            PublishOne(override->second, visiting);
        }
    }
    else if (!Find(name))
    {
        throw Failure{fmt::format(
            "ArgumentException: Cannot publish environment variable '{}' because it does not exists.", name)};
    }
}

void EnvironmentModel::PublishOne(Variable& variable, Names& visiting)
{
    if (variable.isPublished)
    {
        return;
    }
    visiting.insert(variable.name);
    for (const Part& part : Split(variable.value))
    {
        if (part.isPlaceholder && visiting.contains(part.text))
        {
            throw Failure{fmt::format(
                "InvalidConfigException: Environment variable '{}' causes a circular dependency of variable '{}'",
                variable.name, part.text)};
        }
        if (part.isPlaceholder)
        {
            PublishByName(part.text, visiting);
        }
    }
    visiting.erase(variable.name);
    if (!variable.isResolved)
    {
        variable.resolved = Substitute(variable.value);
        if (IsPathName(variable.name))
        {
            variable.resolved = MakeAbsolute(variable.resolved, variable.directory);
        }
        variable.isResolved = true;
    }
    (variable.isOverride ? publishedOverrides : publishedDefaults)[variable.name] = variable.GetEffective();
    variable.isPublished = true;
}

std::optional<std::string> EnvironmentModel::Find(const std::string& name) const
{
    for (const auto* table : {&publishedOverrides, &publishedDefaults, &process})
    {
        if (const auto found = table->find(name); found != table->end())
        {
            return found->second;
        }
    }
    return std::nullopt;
}

std::string EnvironmentModel::Substitute(const std::string& text) const
{
    std::string result;
    for (const Part& part : Split(text))
    {
        result += part.isPlaceholder ? Find(part.text).value() : part.text;
    }
    return result;
}

void EnvironmentModel::Say(const std::string& line)
{
    trace.push_back(line);
}

void EnvironmentModel::AppendVariables()
{
    for (const std::string& name : EnvironmentCase::names)
    {
        const auto inherited = process.find(name);
        const auto current = currentNames.find(name);
        trace.push_back(fmt::format("{}={} process={} current name={}", name, Find(name).value_or("(none)"),
                                    inherited == process.end() ? "(none)" : inherited->second,
                                    current == currentNames.end() ? "(none)" : current->second));
    }
}

} // namespace Vela::Testing
