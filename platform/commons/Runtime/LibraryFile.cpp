#include <Vela/System/Commons/SystemError.hpp>
#include <Vela/System/Commons/UniqueFd.hpp>

#include <Runtime/LibraryFile.hpp>
#include <fcntl.h>
#include <link.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cstring>
#include <vector>

namespace Vela::System::Commons::Runtime
{

namespace
{

/// False when the file does not have that many bytes there.
bool ReadAt(int file, void* target, std::size_t size, std::uint64_t offset)
{
    const auto count = RetryInterrupted([&] { return ::pread(file, target, size, static_cast<off_t>(offset)); });
    return count == static_cast<ssize_t>(size);
}

} // namespace

bool IsCutOff(const String& libraryPath)
{
    const UniqueFd file(::open(libraryPath.c_str(), O_RDONLY | O_CLOEXEC));
    struct stat status
    {
    };
    ElfW(Ehdr) header;
    if (!file.IsValid() || ::fstat(file.Get(), &status) != 0 || !ReadAt(file.Get(), &header, sizeof(header), 0) ||
        std::memcmp(&header, ELFMAG, SELFMAG) != 0 || header.e_phentsize != sizeof(ElfW(Phdr)))
    {
        return false;
    }
    std::vector<ElfW(Phdr)> segments(header.e_phnum);
    if (!ReadAt(file.Get(), segments.data(), segments.size() * sizeof(ElfW(Phdr)), header.e_phoff))
    {
        return false;
    }
    const auto size = static_cast<std::uint64_t>(status.st_size);
    return std::any_of(segments.begin(), segments.end(),
                       [size](const ElfW(Phdr) & segment)
                       {
                           const std::uint64_t begin = segment.p_offset;
                           return segment.p_type == PT_LOAD && (begin > size || segment.p_filesz > size - begin);
                       });
}

} // namespace Vela::System::Commons::Runtime
