#include <Sm/SystemManager.hpp>
#include <Vela/System/Commons/Environment.hpp>
#include <Vela/System/Commons/Io/Directory.hpp>
#include <Vela/System/Commons/Io/Path.hpp>

#include <boost/filesystem.hpp>

namespace Vela::System::Kiro::Internal::Sm
{

namespace
{

constexpr const char* engineeringDirectoryVariable = "VELA_PATH_PROJECT_ZORBE_DIR";
constexpr const char* currentDirectoryVariable = "VELA_PATH_PROJECT_CURRENT_DIR";

} // namespace

void SystemManager::CreateProjectSymlink()
{
    namespace fs = boost::filesystem;
    String engineering;
    String current;
    for (const auto& [variable, value] :
         {std::pair(engineeringDirectoryVariable, &engineering), std::pair(currentDirectoryVariable, &current)})
    {
        if (!Commons::Environment::GetVariableValue(variable, *value))
        {
            log.Info("{0} environment variable not set", variable);
            return;
        }
    }
    // Without a "/" at the end, which would name what the link leads to.
    const fs::path link(Commons::Io::Path::GetFullPath(current));
    // Anything that stands in the link's place belongs to somebody, a broken link included.
    if (Commons::Io::Directory::Exists(link.string()) || fs::symlink_status(link).type() != fs::file_not_found)
    {
        return;
    }
    fs::create_directory_symlink(fs::relative(engineering, link.parent_path()), link);
}

} // namespace Vela::System::Kiro::Internal::Sm
