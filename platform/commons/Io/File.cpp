#include <Vela/Exceptions.hpp>
#include <Vela/System/Commons/Io/Directory.hpp>
#include <Vela/System/Commons/Io/File.hpp>
#include <Vela/System/Commons/Io/Path.hpp>
#include <Vela/System/Commons/SystemError.hpp>
#include <Vela/System/Commons/UniqueFd.hpp>

#include <fcntl.h>
#include <stdlib.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdio>
#include <filesystem>
#include <memory>
#include <system_error>
#include <utility>

namespace Vela::System::Commons::Io
{

namespace
{

/// A file beside the target that becomes the target, or goes when something fails on the way.
class ReplacementFile
{
public:
    explicit ReplacementFile(const String& target)
        : path(target + ".XXXXXX")
        , descriptor(::mkostemp(path.data(), O_CLOEXEC))
    {
        if (!descriptor.IsValid())
        {
            ThrowSystemError(fmt::format("Could not write file '{0}'", target));
        }
    }

    ReplacementFile(const ReplacementFile&) = delete;
    ReplacementFile& operator=(const ReplacementFile&) = delete;

    ~ReplacementFile()
    {
        if (!path.empty())
        {
            ::unlink(path.c_str());
        }
    }

    void Write(const char* bytes, std::size_t count)
    {
        while (count > 0)
        {
            const auto written = RetryInterrupted([&] { return ::write(descriptor.Get(), bytes, count); });
            if (written < 0)
            {
                ThrowSystemError(fmt::format("Could not write file '{0}'", path));
            }
            bytes += written;
            count -= static_cast<std::size_t>(written);
        }
    }

    void Become(const String& target, mode_t mode)
    {
        if (::fchmod(descriptor.Get(), mode) != 0 || std::rename(path.c_str(), target.c_str()) != 0)
        {
            ThrowSystemError(fmt::format("Could not write file '{0}'", target));
        }
        path.clear();
    }

private:
    String path;
    UniqueFd descriptor;
};

} // namespace

bool File::Exists(const String& path)
{
    std::error_code error;
    return std::filesystem::is_regular_file(path, error);
}

void File::Copy(const String& source, const String& target, bool failIfExists, bool createDirectory)
{
    const UniqueFd input(RetryInterrupted([&] { return ::open(source.c_str(), O_RDONLY | O_CLOEXEC); }));
    struct stat status
    {
    };
    if (!input.IsValid() || ::fstat(input.Get(), &status) != 0)
    {
        ThrowSystemError(fmt::format("Could not read file '{0}'", source));
    }
    if (!S_ISREG(status.st_mode))
    {
        throw Exception("Could not copy '{0}': it is not a file", source);
    }
    if (failIfExists && Exists(target))
    {
        throw Exception("Could not copy '{0}': '{1}' exists already", source, target);
    }
    if (const String directory = Path::GetDirectoryName(target); createDirectory && !directory.empty())
    {
        Directory::Create(directory);
    }
    ReplacementFile output(target);
    constexpr std::size_t bufferSize = std::size_t{64} * 1024;
    const auto buffer = std::make_unique<char[]>(bufferSize);
    for (;;)
    {
        const auto count = RetryInterrupted([&] { return ::read(input.Get(), buffer.get(), bufferSize); });
        if (count < 0)
        {
            ThrowSystemError(fmt::format("Could not read file '{0}'", source));
        }
        if (count == 0)
        {
            break;
        }
        output.Write(buffer.get(), static_cast<std::size_t>(count));
    }
    constexpr mode_t permissions = 07777;
    output.Become(target, status.st_mode & permissions);
}

bool File::Delete(const String& path)
{
    if (::unlink(path.c_str()) == 0)
    {
        return true;
    }
    if (errno != ENOENT)
    {
        ThrowSystemError(fmt::format("Could not delete file '{0}'", path));
    }
    return false;
}

} // namespace Vela::System::Commons::Io
