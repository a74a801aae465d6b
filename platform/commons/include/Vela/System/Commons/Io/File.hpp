#pragma once

#include <Vela/String.hpp>
#include <Vela/System/Commons/Api.hpp>

namespace Vela::System::Commons::Io
{

/// Operations on files.
class VELA_COMMONS_API File
{
public:
    /// True for a regular file, links followed.
    static bool Exists(const String& path);
    /// Copies contents and permissions. The target is written beside itself and renamed into place, so that nobody
    /// sees half a file and a library that is mapped from the old one stays intact.
    /// @param failIfExists  throw when there is a target already; otherwise it is replaced
    /// @param createDirectory  make the target's directory when it is missing
    /// @throws Exception
    static void Copy(const String& source, const String& target, bool failIfExists, bool createDirectory);
    /// Answers false when there was none.
    /// @throws Exception
    static bool Delete(const String& path);
};

} // namespace Vela::System::Commons::Io
