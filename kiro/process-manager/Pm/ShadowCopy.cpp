#include <Pm/ShadowCopy.hpp>
#include <Vela/Exceptions.hpp>
#include <Vela/System/Commons/Environment.hpp>
#include <Vela/System/Commons/Io/Directory.hpp>
#include <Vela/System/Commons/Io/File.hpp>
#include <Vela/System/Commons/Io/Path.hpp>

namespace Vela::System::Kiro::Internal::Pm
{

using namespace Commons::Io;

ShadowCopy::ShadowCopy(const String& libraryPath, const std::vector<String>& dependencies)
    : ShadowCopy(GetShadowPath(libraryPath), libraryPath, dependencies)
{
}

ShadowCopy::ShadowCopy(const String& destination, const String& libraryPath, const std::vector<String>& dependencies)
    : destination(destination)
{
    if (destination.empty())
    {
        throw ArgumentNullException("destination");
    }
    if (libraryPath.empty())
    {
        throw ArgumentNullException("libraryPath");
    }
    files.reserve(dependencies.size() + 1);
    files.push_back(libraryPath);
    files.insert(files.end(), dependencies.begin(), dependencies.end());
}

String ShadowCopy::GetShadowPath(const String& libraryPath)
{
    String root;
    if (!Commons::Environment::GetVariableValue(shadowDirEnvName, root) || root.empty())
    {
        root = Path::GetDirectoryName(libraryPath);
    }
    return root.empty() ? String() : Path::Combine(root, shadowPrefix + Path::GetFileTitle(libraryPath));
}

const String& ShadowCopy::GetDestination() const noexcept
{
    return destination;
}

const String& ShadowCopy::GetSourceLibraryPath() const
{
    return files.at(0);
}

String ShadowCopy::GetDestinationFilePath(const String& file) const
{
    return Path::Combine(destination, Path::GetFileName(file));
}

String ShadowCopy::GetDestinationLibraryPath() const
{
    return GetDestinationFilePath(GetSourceLibraryPath());
}

void ShadowCopy::MakeDirectory() const
{
    if (!Directory::Exists(destination))
    {
        Directory::Create(destination);
    }
}

void ShadowCopy::DeleteDirectory() const
{
    if (Directory::Exists(destination))
    {
        Directory::Delete(destination);
    }
}

void ShadowCopy::CopyFiles() const
{
    for (const String& file : files)
    {
        File::Copy(file, GetDestinationFilePath(file), false, true);
    }
}

void ShadowCopy::Copy() const
{
    MakeDirectory();
    CopyFiles();
}

void ShadowCopy::Delete() const
{
    DeleteDirectory();
}

} // namespace Vela::System::Kiro::Internal::Pm
