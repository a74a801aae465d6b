#include <Pm/SharedLibraryLoader.hpp>
#include <Vela/AppDomain.hpp>
#include <Vela/CaughtException.hpp>
#include <Vela/Exceptions.hpp>
#include <Vela/Singleton.hpp>
#include <Vela/System/Commons/Io/File.hpp>
#include <Vela/System/Commons/Io/FileTrust.hpp>
#include <Vela/System/Commons/Io/Path.hpp>

#include <Contract/LibraryNote.hpp>

#include <string_view>

namespace Vela::System::Kiro::Internal::Pm
{

using namespace Commons::Io;
using Commons::Runtime::SharedLibrary;

namespace
{

/// "Pumps.dll", "libPumps.dll", "Pumps.so" and "libPumps.so" all mean "libPumps.so".
String GetLinuxFileName(const String& fileName)
{
    constexpr std::string_view prefix = "lib";
    constexpr std::string_view ending = ".so";
    for (const std::string_view known : {ending, std::string_view(".dll")})
    {
        if (fileName.ends_with(known))
        {
            const std::size_t begin = fileName.starts_with(prefix) ? prefix.size() : 0;
            return fmt::format("{}{}{}", prefix, fileName.substr(begin, fileName.size() - known.size() - begin),
                               ending);
        }
    }
    return fileName;
}

ILibrary* CallEntry(const SharedLibrary& sharedLibrary, const String& probedPath)
{
    if (void* address = sharedLibrary.GetFunctionAddress(SharedLibraryLoader::dlMainEntryName))
    {
        AppDomain& appDomain = Singleton<AppDomain>::GetInstance();
        const auto entry = reinterpret_cast<LibraryMain>(address);
        // The library is closed again when its entry fails, so the exception must not be the library's own object.
        return CallAcrossLibrary([&] { return &entry(appDomain); });
    }
    if (sharedLibrary.GetFunctionAddress(SharedLibraryLoader::dlMainEntryNameObsolete) != nullptr)
    {
        throw InvalidOperationException("Library '{0}' has SDK version 1.x and is not supported any more", probedPath);
    }
    return nullptr;
}

} // namespace

String SharedLibraryLoader::ProbeLibraryName(const String& libraryPath)
{
    if (File::Exists(libraryPath))
    {
        return libraryPath;
    }
    String probedPath =
        Path::Combine(Path::GetDirectoryName(libraryPath), GetLinuxFileName(Path::GetFileName(libraryPath)));
    if (!File::Exists(probedPath))
    {
        throw InvalidOperationException("Library '{0}' does not exist.", probedPath);
    }
    return probedPath;
}

std::vector<String> SharedLibraryLoader::ProbeLibraryNames(const std::vector<String>& paths)
{
    std::vector<String> probedPaths;
    probedPaths.reserve(paths.size());
    for (const String& path : paths)
    {
        probedPaths.push_back(ProbeLibraryName(path));
    }
    return probedPaths;
}

LoadedLibrary SharedLibraryLoader::Load(const String& libraryPath, bool shadowCopy,
                                        const std::vector<String>& dependencies)
{
    LoadedLibrary loaded;
    String probedPath = ProbeLibraryName(libraryPath);
    loaded.path = probedPath;
    FileTrust::Require(TrustedFile::Library, probedPath);
    if (shadowCopy)
    {
        loaded.shadowCopy = std::make_unique<ShadowCopy>(probedPath, ProbeLibraryNames(dependencies));
        loaded.shadowCopy->Copy();
        loaded.path = loaded.shadowCopy->GetDestinationLibraryPath();
        FileTrust::Require(TrustedFile::Library, loaded.path);
    }
    Contract::CheckLibraryFile(loaded.path);
    loaded.sharedLibrary = std::make_unique<SharedLibrary>();
    loaded.sharedLibrary->Load(loaded.path);
    loaded.library = CallEntry(*loaded.sharedLibrary, probedPath);
    return loaded;
}

bool SharedLibraryLoader::Unload(LoadedLibrary& library)
{
    if (library.sharedLibrary == nullptr)
    {
        return true;
    }
    const bool isInUse = library.usage->IsInUse();
    if (isInUse)
    {
        library.sharedLibrary->Abandon();
    }
    else
    {
        library.sharedLibrary->Unload();
    }
    if (library.shadowCopy != nullptr)
    {
        library.shadowCopy->Delete();
    }
    return !isInUse;
}

} // namespace Vela::System::Kiro::Internal::Pm
