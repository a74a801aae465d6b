#include "TestSystem.hpp"

#include <sys/stat.h>

#include <algorithm>

namespace Vela::Testing
{

namespace fs = std::filesystem;

TestSystem::TestSystem()
    : environment{{"VELA_PATH_RUNTIME_DIR", GetRuntimeDirectory()}}
{
    mkdir(GetRuntimeDirectory().c_str(), S_IRWXU);
    WriteSettings("");
    WriteConfig("");
}

void TestSystem::WriteSettings(const std::string& elements) const
{
    directory.Write("Default.kiro.settings", "<KiroSettingsDocument>\n" + elements + "\n</KiroSettingsDocument>\n");
}

void TestSystem::WriteConfig(const std::string& elements) const
{
    directory.Write("Default.kiro.config",
                    "<KiroConfigurationDocument>\n" + elements + "\n</KiroConfigurationDocument>\n");
}

StartedProcess TestSystem::Start(const std::vector<std::string>& arguments, int standardInput) const
{
    return StartedProcess(GetBuiltFile("bin/Vela.System.Application"), arguments, environment,
                          directory.GetPath().string(), standardInput);
}

std::string TestSystem::FindLeftovers() const
{
    std::string names;
    for (const fs::directory_entry& entry : fs::directory_iterator(GetRuntimeDirectory()))
    {
        const std::string name = entry.path().filename().string();
        if (name.find("lock") == std::string::npos)
        {
            names += name + " ";
        }
    }
    return names;
}

std::string TestSystem::TakeCrashRecord() const
{
    const fs::path records = fs::path(GetRuntimeDirectory()) / "crashes";
    if (!fs::exists(records))
    {
        return "no record";
    }
    std::vector<fs::path> files(fs::directory_iterator(records), fs::directory_iterator{});
    const bool isPrivate =
        fs::status(records).permissions() == fs::perms::owner_all &&
        std::all_of(files.begin(), files.end(),
                    [](const fs::path& file)
                    { return fs::status(file).permissions() == (fs::perms::owner_read | fs::perms::owner_write); });
    // The times of a failed start are no record.
    std::erase_if(files, [](const fs::path& file) { return file.filename() == "timeline.json"; });
    std::string text = "several records";
    if (files.size() == 1 && isPrivate)
    {
        std::ifstream stream(files.front());
        text.assign(std::istreambuf_iterator<char>(stream), {});
    }
    fs::remove_all(records);
    return isPrivate ? text : "a record that others can read";
}

std::string TestSystem::GetBuiltFile(const std::string& name)
{
    return (fs::read_symlink("/proc/self/exe").parent_path().parent_path() / name).string();
}

} // namespace Vela::Testing
