#pragma once

#include <Pm/LoadedLibrary.hpp>
#include <Vela/String.hpp>

#include <vector>

namespace Vela::System::Kiro::Internal::Pm
{

/// Loads component libraries from files and unloads them. Holds no state; thread-safe.
class SharedLibraryLoader
{
public:
    static constexpr const char* dlMainEntryName = "VelaDynamicLibraryMain";
    /// The entry of libraries of the first SDK generation, which are refused.
    static constexpr const char* dlMainEntryNameObsolete = "DynamicLibrary_Main";

    /// The file to load for a configured path: the path itself when it exists, otherwise the same with the file name
    /// as it is on Linux ("Foo.dll", "libFoo.dll" and "Foo.so" become "libFoo.so").
    /// @throws InvalidOperationException when neither exists
    [[nodiscard]] static String ProbeLibraryName(const String& libraryPath);
    /// The same for several paths, in their order.
    [[nodiscard]] static std::vector<String> ProbeLibraryNames(const std::vector<String>& paths);

    /// Loads a library and calls its entry function with the process's application domain. A shared object without an
    /// entry function is loaded too.
    /// @param shadowCopy  load a copy of the file, made together with copies of `dependencies`
    /// @throws InvalidOperationException when there is no such file, when it was made with the first SDK, for another
    ///         architecture or with another contract (see BinaryContract); Exception of
    ///         the platform's loader; whatever the entry function throws, as a copy. Nothing stays loaded then.
    [[nodiscard]] static LoadedLibrary Load(const String& libraryPath, bool shadowCopy,
                                            const std::vector<String>& dependencies);

    /// Unmaps a library and deletes its shadow copy. One that is still in use stays mapped to the end of the process.
    /// A library that is linked into the executable is left alone.
    /// @return false when the library stays mapped
    /// @throws Exception when the shadow copy cannot be deleted
    static bool Unload(LoadedLibrary& library);
};

} // namespace Vela::System::Kiro::Internal::Pm
