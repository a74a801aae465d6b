#include "LibraryProject.hpp"

#include "../CommandError.hpp"
#include "Template.hpp"

#include <Vela/System/Commons/Environment.hpp>

#include <algorithm>
#include <fstream>
#include <sstream>
#include <utility>

namespace Vela::Kiroctl
{

namespace
{

namespace fs = std::filesystem;

constexpr const char* configurationFile = "configuration-lines.in";

std::string ReadTemplate(const fs::path& path)
{
    std::ifstream stream(path, std::ios::binary);
    std::ostringstream text;
    text << stream.rdbuf();
    if (!stream)
    {
        throw CommandError(ExitCode::Failed, "The template '{}' cannot be read.", path.string());
    }
    return text.str();
}

std::string RenderName(const std::string& name, const TemplateValues& values)
{
    std::string line = RenderTemplate(name, values);
    line.pop_back();
    return line;
}

void WriteFile(const fs::path& path, const std::string& text)
{
    fs::create_directories(path.parent_path());
    std::ofstream stream(path, std::ios::binary);
    stream << text;
    stream.close();
    if (!stream)
    {
        throw CommandError(ExitCode::Failed, "'{}' cannot be written.", path.string());
    }
}

} // namespace

LibraryProject::LibraryProject(ProjectNames projectNames, bool isController)
    : names(std::move(projectNames))
{
    CheckProjectNames(names);
    const fs::path installation =
        fs::path(System::Commons::Environment::GetExecutablePath()).parent_path().parent_path();
    const fs::path templates = installation / "share/vela/template/library";
    if (!fs::is_directory(templates))
    {
        throw CommandError(ExitCode::NotFound, "There are no templates in '{}'.", templates.string());
    }
    prefix = installation.string();
    TemplateValues values;
    values.texts = {
        {"library", names.library}, {"component", names.component}, {"interface", names.interface}, {"prefix", prefix}};
    if (isController)
    {
        values.conditions.insert("controller");
    }
    if (!names.interface.empty())
    {
        values.conditions.insert("service");
    }
    configuration = RenderTemplate(ReadTemplate(templates / configurationFile), values);
    values.texts.emplace("configuration", Indent(configuration));
    for (const fs::directory_entry& entry : fs::recursive_directory_iterator(templates))
    {
        if (!entry.is_regular_file() || entry.path().filename() == configurationFile)
        {
            continue;
        }
        // A file that is nothing but conditions that do not hold is none.
        if (std::string text = RenderTemplate(ReadTemplate(entry.path()), values); !text.empty())
        {
            // Without ".in", which keeps tools for sources away from templates.
            const fs::path name = fs::relative(entry.path(), templates).replace_extension();
            files.push_back({RenderName(name.string(), values), std::move(text)});
        }
    }
    std::ranges::sort(files, {}, &File::name);
}

std::vector<std::string> LibraryProject::Write() const
{
    const fs::path directory = names.library;
    std::error_code error;
    if (fs::exists(fs::symlink_status(directory, error)) || !fs::create_directory(directory, error))
    {
        throw CommandError(ExitCode::Refused, "'{}' cannot be made: {}.", directory.string(),
                           error ? error.message() : "there is something of that name already");
    }
    std::vector<std::string> written;
    try
    {
        for (const File& file : files)
        {
            WriteFile(directory / file.name, file.text);
            written.push_back(file.name);
        }
    }
    catch (...)
    {
        fs::remove_all(directory, error);
        throw;
    }
    return written;
}

const std::string& LibraryProject::GetConfiguration() const noexcept
{
    return configuration;
}

const std::string& LibraryProject::GetPrefix() const noexcept
{
    return prefix;
}

std::string LibraryProject::Indent(const std::string& text)
{
    std::string result;
    std::istringstream stream(text);
    for (std::string line; std::getline(stream, line);)
    {
        result += (result.empty() ? "  " : "\n  ") + line;
    }
    return result;
}

} // namespace Vela::Kiroctl
