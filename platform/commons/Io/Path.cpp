#include <Vela/System/Commons/Io/Directory.hpp>
#include <Vela/System/Commons/Io/Path.hpp>

#include <string_view>
#include <vector>

namespace Vela::System::Commons::Io
{

String Path::GetDirectoryName(const String& path)
{
    const auto slash = path.rfind('/');
    if (slash == String::npos)
    {
        return {};
    }
    return slash == 0 ? "/" : path.substr(0, slash);
}

String Path::GetFileName(const String& path)
{
    return path.substr(path.rfind('/') + 1);
}

String Path::GetFileTitle(const String& path)
{
    String name = GetFileName(path);
    const auto dot = name.rfind('.');
    if (dot != String::npos && dot > 0 && name != "..")
    {
        name.resize(dot);
    }
    return name;
}

String Path::Combine(const String& first, const String& second)
{
    if (first.empty() || IsAbsolute(second))
    {
        return second;
    }
    return first.ends_with('/') ? first + second : first + '/' + second;
}

bool Path::IsAbsolute(const String& path)
{
    return path.starts_with('/');
}

String Path::GetFullPath(const String& path, const String& base)
{
    const String combined = Combine(base, path);
    std::vector<std::string_view> parts;
    std::string_view rest = combined;
    while (!rest.empty())
    {
        const auto end = std::min(rest.find('/'), rest.size());
        const auto part = rest.substr(0, end);
        rest.remove_prefix(std::min(end + 1, rest.size()));
        if (part.empty() || part == ".")
        {
            continue;
        }
        if (part != "..")
        {
            parts.push_back(part);
        }
        else if (!parts.empty())
        {
            parts.pop_back();
        }
    }
    String full;
    for (const auto part : parts)
    {
        full.append("/").append(part);
    }
    return full.empty() ? "/" : full;
}

String Path::GetFullPath(const String& path)
{
    return IsAbsolute(path) ? GetFullPath(path, "/") : GetFullPath(path, Directory::GetCurrent());
}

} // namespace Vela::System::Commons::Io
