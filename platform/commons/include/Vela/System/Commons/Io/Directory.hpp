#pragma once

#include <Vela/String.hpp>
#include <Vela/System/Commons/Api.hpp>

namespace Vela::System::Commons::Io
{

/// Operations on directories.
class VELA_COMMONS_API Directory
{
public:
    /// True for a directory, links followed.
    static bool Exists(const String& path);
    /// Makes a directory and those above it; one that is there already is fine.
    /// @throws Exception
    static void Create(const String& path);
    /// Deletes a directory with all that is in it; links are removed, never followed.
    /// @throws Exception
    static void Delete(const String& path);
    /// The current working directory.
    /// @throws Exception
    static String GetCurrent();
};

} // namespace Vela::System::Commons::Io
