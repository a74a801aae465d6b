#include "DocumentFiles.hpp"

#include "FuzzTarget.hpp"

#include <Vela/System/Commons/SystemError.hpp>
#include <Vela/System/Commons/UniqueFd.hpp>

#include <fcntl.h>
#include <stdlib.h>
#include <unistd.h>

#include <algorithm>
#include <filesystem>

namespace Vela::Fuzz
{

namespace
{

constexpr char separator = '\x1f';

bool Contains(std::string_view text, std::initializer_list<std::string_view> parts)
{
    return std::any_of(parts.begin(), parts.end(),
                       [text](std::string_view part) { return text.find(part) != std::string_view::npos; });
}

/// Looks at every value between quotes.
bool MaySearchOutside(std::string_view input)
{
    while (!input.empty())
    {
        const std::string_view value = input.substr(0, input.find_first_of("\"'"));
        if (Contains(value, {"*", "?", "["}) && (value.starts_with('/') || Contains(value, {"..", "&#", "${"})))
        {
            return true;
        }
        input.remove_prefix(std::min(value.size() + 1, input.size()));
    }
    return false;
}

void WriteFile(const String& path, std::string_view text)
{
    const System::Commons::UniqueFd file(::open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0600));
    if (::write(file.Get(), text.data(), text.size()) != static_cast<ssize_t>(text.size()))
    {
        System::Commons::ThrowSystemError(path);
    }
}

} // namespace

DocumentFiles::DocumentFiles(std::initializer_list<const char*> names)
{
    for (const char* name : names)
    {
        paths.push_back(directory / name);
        std::filesystem::create_directories(std::filesystem::path(paths.back()).parent_path());
    }
}

bool DocumentFiles::Write(std::string_view input) const
{
    if (paths.size() > 1 && MaySearchOutside(input))
    {
        return false;
    }
    bool isLeft = true;
    for (const String& path : paths)
    {
        if (!isLeft)
        {
            ::unlink(path.c_str());
            continue;
        }
        const auto end = path == paths.back() ? input.npos : input.find(separator);
        WriteFile(path, input.substr(0, end));
        isLeft = end != input.npos;
        input.remove_prefix(isLeft ? end + 1 : 0);
    }
    return true;
}

const String& DocumentFiles::GetRootPath() const noexcept
{
    return paths.front();
}

void ClearEnvironment()
{
    ::clearenv();
}

} // namespace Vela::Fuzz
