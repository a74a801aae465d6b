#include <Pm/LoadedLibrary.hpp>
#include <Vela/AppDomain.hpp>
#include <Vela/Singleton.hpp>
#include <Vela/System/Kiro/Internal/Pm/StaticLibrariesLoader.hpp>

namespace Vela::System::Kiro::Internal::Pm
{

namespace
{

// Made on first use: registrations come from static initialisers, in no particular order.
std::vector<LibraryMain>& GetLibraryMains()
{
    static std::vector<LibraryMain> libraryMains;
    return libraryMains;
}

} // namespace

void StaticLibrariesLoader::RegisterLibrary(LibraryMain libraryMain)
{
    GetLibraryMains().push_back(libraryMain);
}

const std::vector<LibraryMain>& StaticLibrariesLoader::GetRegisteredLibararies()
{
    return GetLibraryMains();
}

std::list<LoadedLibrary> StaticLibrariesLoader::LoadLibraries() const
{
    std::list<LoadedLibrary> libraries;
    for (const LibraryMain libraryMain : GetLibraryMains())
    {
        libraries.emplace_back().library = &libraryMain(Singleton<AppDomain>::GetInstance());
    }
    return libraries;
}

void StaticLibrariesLoader::UnloadLibraries(std::list<LoadedLibrary>& /*libraries*/) const
{
}

} // namespace Vela::System::Kiro::Internal::Pm
