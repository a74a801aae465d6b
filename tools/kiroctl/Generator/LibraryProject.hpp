#pragma once

#include "ProjectNames.hpp"

#include <filesystem>
#include <string>
#include <vector>

namespace Vela::Kiroctl
{

/// A new project for a component library, made from the templates of the SDK.
class LibraryProject
{
public:
    /// @param isController  whether the component can be started and stopped
    /// @throws CommandError when a name is not usable, or the templates are not where this executable's installation
    ///         has them
    LibraryProject(ProjectNames projectNames, bool isController);

    /// Writes the project into a new directory of the library's name, below the working directory. When that fails,
    /// nothing is left.
    /// @return the files, relative to the directory, in byte order
    /// @throws CommandError (Refused) when there is something of that name already; it stays as it is
    std::vector<std::string> Write() const;

    /// The lines for a system's configuration.
    [[nodiscard]] const std::string& GetConfiguration() const noexcept;
    /// Where the runtime is installed.
    [[nodiscard]] const std::string& GetPrefix() const noexcept;

private:
    struct File
    {
        std::string name;
        std::string text;
    };

    [[nodiscard]] static std::string Indent(const std::string& text);

    const ProjectNames names;
    std::string prefix;
    std::string configuration;
    std::vector<File> files;
};

} // namespace Vela::Kiroctl
