#include "EnvironmentCase.hpp"

#include <fmt/format.h>

#include <set>

namespace Vela::Testing
{

namespace
{

const std::vector<std::string> plainNames{"A", "B", "C", "D", "OLD", "VELA_FEATURE:f"};
const std::vector<std::string> pathNames{"VELA_PATH_OLD", "VELA_PATH_P", "VELA_PATH_Q"};
const std::vector<std::string> outsideNames{"OUTSIDE", "A", "VELA_PATH_P"};
const std::vector<std::string> filePaths{"Default.settings",
                                         "sub/More.settings",
                                         "Deprecated.kiro.settings",
                                         "Last.settings",
                                         "sub/Local.deprecated.kiro.settings",
                                         "sub/deep/Device.settings"};

bool IsDeprecatedFile(const std::string& path)
{
    return path.find("eprecated") != std::string::npos;
}

std::string GenerateValue(Random& random)
{
    static const std::vector<std::string> parts{"1", "2", "1", "2", "", "a b", "$$", "5$", "/abs", "rel/x", "true"};
    const std::size_t kind = random.Below(10);
    if (kind < 5)
    {
        return random.Pick(parts);
    }
    std::string value = kind == 9 ? random.Pick(parts) : "";
    for (std::size_t count = 1 + random.Below(kind < 8 ? 1 : 3); count > 0; --count)
    {
        value += "${" + (random.Chance(4) ? std::string("NOWHERE") : random.Pick(EnvironmentCase::names)) + "}";
        value += random.Chance(30) ? random.Pick(parts) : "";
    }
    return value;
}

VariableCase GenerateVariable(Random& random, bool isDeprecatedFile)
{
    VariableCase variable;
    const bool isPath = random.Chance(25);
    const auto& names = isPath ? pathNames : plainNames;
    variable.name = isDeprecatedFile && random.Chance(60) ? names[isPath ? 0 : 4] : random.Pick(names);
    // An old name stands for one of its own kind.
    variable.value = isDeprecatedFile && random.Chance(80) ? "${" + random.Pick(names) + "}" : GenerateValue(random);
    switch (random.Below(isDeprecatedFile ? 20 : 9))
    {
    case 0:
    case 1:
        variable.isOverride = random.Pick<std::string>({"true", "1", "false"});
        break;
    case 2:
        variable.isOverridden = "true";
        variable.isOverride = random.Chance(30) ? "false" : "";
        break;
    case 3:
    case 4:
        variable.isRedefine = "true";
        variable.isOverride = random.Chance(3) ? "true" : "";
        break;
    default:
        break;
    }
    return variable;
}

bool IsBasic(const VariableCase& variable)
{
    const std::string& isOverride = variable.isOverride.empty() ? variable.isOverridden : variable.isOverride;
    return variable.isRedefine.empty() && (isOverride.empty() || isOverride == "false");
}

/// Takes most of the contradictions out of the files, and most of the gaps: otherwise few cases get to the end.
void Reconcile(Random& random, std::vector<SettingsFile>& files)
{
    std::set<std::string> defined;
    for (SettingsFile& file : files)
    {
        std::erase_if(file.variables, [&](const VariableCase& variable)
                      { return IsBasic(variable) && !defined.insert(variable.name).second && !random.Chance(4); });
    }
    for (const std::string& name : EnvironmentCase::names)
    {
        if (!random.Chance(6) && defined.insert(name).second)
        {
            files.front().variables.push_back({.name = name, .value = "given"});
        }
    }
}

std::string GetAttribute(const char* name, const std::string& value)
{
    return value.empty() ? value : fmt::format(" {}=\"{}\"", name, value);
}

std::string DescribeOutside(const std::map<std::string, std::string>& outside)
{
    std::string text;
    for (const auto& [name, value] : outside)
    {
        text += fmt::format(" {}='{}'", name, value);
    }
    return text;
}

} // namespace

const std::vector<std::string> EnvironmentCase::names = []
{
    std::vector<std::string> all = plainNames;
    all.insert(all.end(), pathNames.begin(), pathNames.end());
    all.emplace_back("OUTSIDE");
    return all;
}();

std::string EnvironmentCase::GetDocument(const SettingsFile& file) const
{
    std::string text = "<KiroSettingsDocument>\n" + GetIncludesElement(files, file) + "<EnvironmentVariables>\n";
    for (const VariableCase& variable : file.variables)
    {
        text += fmt::format("<EnvironmentVariable name=\"{}\" value=\"{}\"{}{}{}/>\n", variable.name, variable.value,
                            GetAttribute("override", variable.isOverride),
                            GetAttribute("overridden", variable.isOverridden),
                            GetAttribute("redefine", variable.isRedefine));
    }
    return text + "</EnvironmentVariables>\n</KiroSettingsDocument>\n";
}

std::string EnvironmentCase::Describe() const
{
    std::string text = "Outside:" + DescribeOutside(outside) + "\n";
    for (const SettingsFile& file : files)
    {
        text += file.path + ":\n" + GetDocument(file);
    }
    for (const Publication& publication : publications)
    {
        text += fmt::format("Again, {}:{}\n", publication.isReset ? "all" : "what is left",
                            DescribeOutside(publication.outside));
    }
    return text;
}

EnvironmentCase GenerateEnvironment(Random& random)
{
    EnvironmentCase sample;
    for (const std::string& name : outsideNames)
    {
        if (random.Chance(50))
        {
            sample.outside[name] = "outer " + name;
        }
    }
    sample.files = GenerateFiles<SettingsFile>(random, filePaths);
    for (SettingsFile& file : sample.files)
    {
        for (std::size_t count = random.Below(6); count > 0; --count)
        {
            file.variables.push_back(GenerateVariable(random, IsDeprecatedFile(file.path)));
        }
    }
    Reconcile(random, sample.files);
    for (std::size_t count = random.Below(3); count > 0; --count)
    {
        Publication publication{.isReset = random.Chance(60), .outside = {}};
        if (random.Chance(60))
        {
            publication.outside[random.Pick(outsideNames)] = "changed";
        }
        sample.publications.push_back(std::move(publication));
    }
    return sample;
}

std::vector<EnvironmentCase> Simplify(const EnvironmentCase& sample)
{
    std::vector<EnvironmentCase> simpler;
    AppendWithoutEach(simpler, sample, &EnvironmentCase::publications);
    for (const auto& [name, value] : sample.outside)
    {
        simpler.push_back(sample);
        simpler.back().outside.erase(name);
    }
    AppendSimplerFiles(simpler, sample, &EnvironmentCase::files,
                       [](std::vector<SettingsFile>& changed, const SettingsFile& file)
                       {
                           AppendWithoutEach(changed, file, &SettingsFile::variables);
                           for (std::size_t index = 0; index < file.variables.size(); ++index)
                           {
                               if (file.variables[index].value != "1")
                               {
                                   changed.push_back(file);
                                   changed.back().variables[index].value = "1";
                               }
                           }
                       });
    return simpler;
}

} // namespace Vela::Testing
