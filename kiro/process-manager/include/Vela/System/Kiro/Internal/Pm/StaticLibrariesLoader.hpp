#pragma once

#include <Vela/System/Kiro/Api.hpp>
#include <Vela/System/Kiro/ILibrary.hpp>

#include <list>
#include <vector>

namespace Vela::System::Kiro::Internal::Pm
{

class LoadedLibrary;

/// Component libraries that are linked into the executable. Such a library registers itself by a static initialiser:
/// @code
/// const bool isRegistered = (StaticLibrariesLoader::RegisterLibrary(&PumpLibraryMain), true);
/// @endcode
class VELA_KIRO_API StaticLibrariesLoader
{
public:
    /// Adds a library's main function to the process's list. Before `main` runs; not thread-safe.
    static void RegisterLibrary(LibraryMain libraryMain);
    /// All main functions, in the order of their registration.
    [[nodiscard]] static const std::vector<LibraryMain>& GetRegisteredLibararies();

    /// Calls each registered function with the process's application domain.
    /// @throws Exception when there is no application domain; whatever a function throws
    [[nodiscard]] std::list<LoadedLibrary> LoadLibraries() const;
    /// Static libraries stay: nothing happens.
    void UnloadLibraries(std::list<LoadedLibrary>& libraries) const;
};

} // namespace Vela::System::Kiro::Internal::Pm
