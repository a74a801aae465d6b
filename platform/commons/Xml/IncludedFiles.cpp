#include "IncludedFiles.hpp"

#include <Vela/Exceptions.hpp>
#include <Vela/System/Commons/Configuration/PlaceholderExpression.hpp>
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

/// What an include names: the path, and the same as a pattern in which only the wildcards of the document are special,
/// not those in values of variables.
struct ResolvedInclude
{
    explicit ResolvedInclude(const String& expression)
    {
        Configuration::PlaceholderExpression::Enumerator placeholders(expression);
        bool hasPlaceholder = true;
        while (hasPlaceholder)
        {
            hasPlaceholder = placeholders.MoveNext();
            const String& text = placeholders.GetTextBefore();
            hasWildcards = hasWildcards || text.find_first_of(wildcards) != String::npos;
            path += text;
            pattern += text;
            if (hasPlaceholder)
            {
                const String value = Configuration::PlaceholderExpression::Resolve("${" + placeholders.GetName() + "}");
                path += value;
                pattern += EscapeWildcards(value);
            }
        }
    }

    String path;
    String pattern;
    bool hasWildcards = false;
};

ResolvedInclude Resolve(const XmlSerializationContext::Include& include)
{
    try
    {
        return ResolvedInclude(include.path);
    }
    catch (const Exception& exception)
    {
        throw XmlException::At(include.position.ToString(),
                               fmt::format("The path '{0}' of an included file cannot be resolved: {1}", include.path,
                                           exception.GetMessage()));
    }
}

} // namespace

std::vector<String> FindIncludedFiles(const XmlSerializationContext::Include& include, const String& directory)
{
    const ResolvedInclude resolved = Resolve(include);
    if (resolved.path.empty())
    {
        throw XmlException::At(include.position.ToString(), "The path of an included file must not be empty.");
    }
    if (!resolved.hasWildcards)
    {
        return {Io::Path::GetFullPath(resolved.path, directory)};
    }
    const String pattern =
        Io::Path::IsAbsolute(resolved.path) ? resolved.pattern : EscapeWildcards(directory) + "/" + resolved.pattern;
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
