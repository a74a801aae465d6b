#include <Vela/Exceptions.hpp>
#include <Vela/System/Commons/Diagnostics/CrashRecords.hpp>
#include <Vela/System/Commons/Io/Path.hpp>
#include <Vela/System/Commons/SystemError.hpp>
#include <Vela/System/Commons/UniqueFd.hpp>

#include <Diagnostics/LogRegistry.hpp>
#include <Diagnostics/PlainWriter.hpp>
#include <dirent.h>
#include <fcntl.h>
#include <fmt/format.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <ctime>
#include <memory>
#include <string_view>

namespace Vela::System::Commons::Diagnostics
{

namespace
{

/// Far more than any record has; what somebody else has put there is cut.
constexpr std::size_t mostBytes = std::size_t{256} * 1024;

void WriteFields(int file, const CrashRecords::Fields& fields)
{
    String text;
    for (const auto& [name, value] : fields)
    {
        text += name;
        text += ':';
        const bool isLong = value.find('\n') != String::npos;
        for (std::size_t start = 0; start < value.size();)
        {
            const std::size_t end = std::min(value.find('\n', start), value.size());
            text.append(isLong ? "\n  " : " ").append(value, start, end - start);
            start = end + 1;
        }
        text += '\n';
    }
    for (std::string_view rest = text; !rest.empty();)
    {
        const auto count = RetryInterrupted([&] { return ::write(file, rest.data(), rest.size()); });
        if (count < 0)
        {
            ThrowSystemError("Cannot write a crash record");
        }
        rest.remove_prefix(static_cast<std::size_t>(count));
    }
}

String ReadAll(int file)
{
    String text(mostBytes, '\0');
    std::size_t length = 0;
    while (length < text.size())
    {
        const auto count = RetryInterrupted([&] { return ::read(file, text.data() + length, text.size() - length); });
        if (count <= 0)
        {
            break;
        }
        length += static_cast<std::size_t>(count);
    }
    text.resize(length);
    return text;
}

} // namespace

CrashRecords::CrashRecords(const String& runtimeDirectory)
    : directory(Io::Path::Combine(runtimeDirectory, directoryName))
{
}

std::vector<String> CrashRecords::List() const
{
    std::vector<String> names;
    const std::unique_ptr<DIR, int (*)(DIR*)> opened(::opendir(directory.c_str()), ::closedir);
    while (const dirent* entry = opened == nullptr ? nullptr : ::readdir(opened.get()))
    {
        String name = static_cast<const char*>(entry->d_name);
        if (name.ends_with(fileNameEnd))
        {
            names.push_back(std::move(name));
        }
    }
    // The time stands in front.
    std::sort(names.begin(), names.end());
    return names;
}

String CrashRecords::FindOf(pid_t process, std::int64_t since) const
{
    const String end = fmt::format("-{}{}", process, fileNameEnd);
    for (const String& name : List())
    {
        struct stat status
        {
        };
        if (name.ends_with(end) && ::stat(GetPath(name).c_str(), &status) == 0 && status.st_mtime >= since)
        {
            return name;
        }
    }
    return {};
}

CrashRecords::Fields CrashRecords::Read(const String& name) const
{
    const bool isName = name.find('/') == String::npos && name.ends_with(fileNameEnd);
    const UniqueFd file(isName ? ::open(GetPath(name).c_str(), O_RDONLY | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK) : -1);
    if (!file.IsValid())
    {
        throw NotExistException("There is no crash record '{0}' in '{1}'.", name, directory);
    }
    const String text = ReadAll(file.Get());
    Fields fields;
    for (std::size_t start = 0; start < text.size();)
    {
        const std::size_t end = std::min(text.find('\n', start), text.size());
        const std::string_view line = std::string_view(text).substr(start, end - start);
        const std::size_t colon = line.find(':');
        if (line.starts_with("  ") && !fields.empty())
        {
            String& value = fields.back().second;
            value.append(value.empty() ? "" : "\n").append(line.substr(2));
        }
        else if (colon != std::string_view::npos)
        {
            fields.emplace_back(line.substr(0, colon), line.substr(std::min(colon + 2, line.size())));
        }
        start = end + 1;
    }
    return fields;
}

String CrashRecords::Begin(const Fields& fields) const
{
    if (::mkdir(directory.c_str(), S_IRWXU) != 0 && errno != EEXIST)
    {
        ThrowSystemError(fmt::format("Cannot make '{}'", directory));
    }
    // Makes room first: where the clock has been set back, the new record is not the youngest by its name.
    RemoveOldest(mostRecords - 1);
    PlainWriter writer;
    writer.CompactTime().Text("-").Number(static_cast<std::uint64_t>(::getpid())).Text(fileNameEnd);
    String name = writer.GetLine();
    const UniqueFd file(
        ::open(GetPath(name).c_str(), O_WRONLY | O_CREAT | O_APPEND | O_NOFOLLOW | O_CLOEXEC, S_IRUSR | S_IWUSR));
    if (!file.IsValid())
    {
        ThrowSystemError(fmt::format("Cannot make '{}'", GetPath(name)));
    }
    writer.Clear();
    writer.Time(std::time(nullptr));
    Fields all = fields;
    all.insert(all.begin() + (all.empty() ? 0 : 1), {"time", writer.GetLine()});
    WriteFields(file.Get(), all);
    return name;
}

void CrashRecords::Append(const String& name, const Fields& fields) const
{
    const UniqueFd file(::open(GetPath(name).c_str(), O_WRONLY | O_APPEND | O_NOFOLLOW | O_CLOEXEC));
    if (!file.IsValid())
    {
        ThrowSystemError(fmt::format("Cannot open '{}'", GetPath(name)));
    }
    WriteFields(file.Get(), fields);
}

void CrashRecords::RemoveOldest(std::size_t most) const
{
    const auto names = List();
    for (std::size_t index = 0; index + most < names.size(); ++index)
    {
        static_cast<void>(::unlink(GetPath(names[index]).c_str()));
    }
}

String CrashRecords::GetRecentMessages()
{
    // Through a file in memory: a crash writes them the same way, without an allocation.
    const UniqueFd file(::memfd_create("messages", MFD_CLOEXEC));
    PlainWriter writer;
    writer.AddTarget(file.Get());
    LogRegistry::GetInstance().WriteRecentMessages(writer);
    ::lseek(file.Get(), 0, SEEK_SET);
    return ReadAll(file.Get());
}

String CrashRecords::GetPath(const String& name) const
{
    return Io::Path::Combine(directory, name);
}

} // namespace Vela::System::Commons::Diagnostics
