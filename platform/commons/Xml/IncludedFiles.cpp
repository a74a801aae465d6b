#include "IncludedFiles.hpp"

#include <Vela/Exceptions.hpp>
#include <Vela/System/Commons/Io/Path.hpp>
#include <Vela/System/Commons/SystemError.hpp>

#include <glob.h>

#include <algorithm>
#include <cerrno>

namespace Vela::System::Commons::Xml
{

namespace
{

constexpr const char* wildcards = "*?[";

String EscapeWildcards(const String& path)
{
    String escaped;
    for (const char character : path)
    {
        if (String(wildcards).append("\\").find(character) != String::npos)
        {
            escaped += '\\';
        }
        escaped += character;
    }
    return escaped;
}

/// A directory that is not there has no files that match; any other failure ends the search.
int EndsSearch(const char*, int errorNumber)
{
    return errorNumber != ENOENT && errorNumber != ENOTDIR ? 1 : 0;
}

class Search
{
public:
    explicit Search(const String& pattern)
        : status(glob(pattern.c_str(), GLOB_NOSORT | GLOB_MARK, &EndsSearch, &result))
        , errorNumber(errno)
    {
    }

    Search(const Search&) = delete;
    Search& operator=(const Search&) = delete;

    ~Search()
    {
        globfree(&result);
    }

    [[nodiscard]] bool HasFailed() const
    {
        return status != 0 && status != GLOB_NOMATCH;
    }

    [[nodiscard]] int GetErrorNumber() const
    {
        return errorNumber;
    }

    [[nodiscard]] std::vector<String> GetPaths() const
    {
        return {result.gl_pathv, result.gl_pathv + result.gl_pathc};
    }

private:
    glob_t result = {};
    const int status;
    const int errorNumber;
};

} // namespace

std::vector<String> FindIncludedFiles(const XmlSerializationContext::Include& include, const String& directory)
{
    if (include.path.find_first_of(wildcards) == String::npos)
    {
        return {Io::Path::GetFullPath(include.path, directory)};
    }
    const String pattern =
        Io::Path::IsAbsolute(include.path) ? include.path : EscapeWildcards(directory) + "/" + include.path;
    const Search search(pattern);
    if (search.HasFailed())
    {
        throw XmlException::At(include.position.ToString(), fmt::format("Cannot search for files '{0}': {1}", pattern,
                                                                        GetErrorText(search.GetErrorNumber())));
    }
    std::vector<String> files;
    for (const String& path : search.GetPaths())
    {
        // Directories are marked with a slash at their end.
        if (!path.ends_with('/'))
        {
            files.push_back(Io::Path::GetFullPath(path));
        }
    }
    std::sort(files.begin(), files.end());
    return files;
}

} // namespace Vela::System::Commons::Xml
