#pragma once

#include <Vela/String.hpp>
#include <Vela/System/Commons/Api.hpp>

namespace Vela::System::Commons::Io
{

/// Path texts; nothing here touches the file system except GetFullPath of a relative path.
class VELA_COMMONS_API Path
{
public:
    /// All before the last "/": "/a/b.so" gives "/a", "/a" gives "/", "a" gives an empty text, "/a/" gives "/a".
    static String GetDirectoryName(const String& path);
    /// All behind the last "/".
    static String GetFileName(const String& path);
    /// The file name without its last extension; a leading dot begins no extension.
    static String GetFileTitle(const String& path);
    /// `second` when it is absolute or `first` is empty; otherwise both, joined by one "/".
    static String Combine(const String& first, const String& second);
    static bool IsAbsolute(const String& path);
    /// Absolute, without ".", ".." and doubled "/"; relative to `base` (absolute) when it is relative.
    static String GetFullPath(const String& path, const String& base);
    /// The same, relative to the working directory.
    static String GetFullPath(const String& path);
};

} // namespace Vela::System::Commons::Io
