#pragma once

#include <Vela/String.hpp>

#include <vector>

namespace Vela::System::Kiro::Internal::Pm
{

/// A copy of a library and its dependencies in a directory of its own, so that the files in place can be replaced
/// while the copies are in use. Destroying the object leaves the directory; Delete removes it.
class ShadowCopy
{
public:
    /// The environment variable with the root of all shadow directories.
    static constexpr const char* shadowDirEnvName = "VELA_PATH_SHADOW_DIR";
    /// Stands before the library's title in the name of its shadow directory.
    static constexpr const char* shadowPrefix = "~";

    /// Copies go to GetShadowPath(libraryPath).
    /// @throws ArgumentNullException for an empty destination or library path
    ShadowCopy(const String& libraryPath, const std::vector<String>& dependencies);
    /// @throws ArgumentNullException for an empty destination or library path
    ShadowCopy(const String& destination, const String& libraryPath, const std::vector<String>& dependencies);

    /// The shadow directory of a library: below the root that the environment names, otherwise beside the library;
    /// empty when the library's path has no directory either.
    [[nodiscard]] static String GetShadowPath(const String& libraryPath);

    [[nodiscard]] const String& GetDestination() const noexcept;
    [[nodiscard]] const String& GetSourceLibraryPath() const;
    [[nodiscard]] String GetDestinationFilePath(const String& file) const;
    [[nodiscard]] String GetDestinationLibraryPath() const;

    /// All of these throw the platform's exceptions of files and directories.
    void MakeDirectory() const;
    void DeleteDirectory() const;
    void CopyFiles() const;
    /// Makes the directory and copies all files.
    void Copy() const;
    /// Deletes the directory with all that is in it.
    void Delete() const;

private:
    String destination;
    std::vector<String> files;
};

} // namespace Vela::System::Kiro::Internal::Pm
