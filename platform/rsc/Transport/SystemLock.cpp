#include "Transport/EndpointName.hpp"
#include "Transport/RuntimeDirectory.hpp"

#include <Vela/Exceptions.hpp>
#include <Vela/System/Commons/Environment.hpp>
#include <Vela/System/Commons/SystemError.hpp>

#include <fcntl.h>
#include <fmt/format.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <charconv>

namespace Vela::System::Rsc
{

using Commons::ThrowSystemError;

namespace
{

/// 0 when it is not written yet.
pid_t ReadHolder(int file)
{
    std::array<char, 32> text{};
    const auto length = ::pread(file, text.data(), text.size(), 0);
    pid_t holder = 0;
    std::from_chars(text.data(), text.data() + std::max<ssize_t>(length, 0), holder);
    return holder;
}

/// Whether the locked file is the one that stands in the directory: the previous holder may have removed it meanwhile.
bool IsCurrent(const RuntimeDirectory& directory, int file)
{
    struct stat ours
    {
    };
    struct stat present
    {
    };
    return ::fstat(file, &ours) == 0 && ::fstatat(directory.GetDescriptor(), lockFileName, &present, 0) == 0 &&
           ours.st_dev == present.st_dev && ours.st_ino == present.st_ino;
}

} // namespace

SystemLock::SystemLock(const RuntimeDirectory& runtimeDirectory)
    : directory(runtimeDirectory)
{
    do
    {
        file.Reset(::openat(directory.GetDescriptor(), lockFileName, O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW, 0600));
        if (!file.IsValid())
        {
            ThrowSystemError(fmt::format("Cannot open the lock of runtime directory '{}'", directory.GetPath()));
        }
        if (Commons::RetryInterrupted([this] { return ::flock(file.Get(), LOCK_EX | LOCK_NB); }) != 0)
        {
            if (errno == EWOULDBLOCK)
            {
                throw InvalidOperationException(
                    "Another main process (pid {}) runs in runtime directory '{}'; each system needs a directory of "
                    "its own ({}).",
                    ReadHolder(file.Get()), directory.GetPath(), Commons::Environment::runtimeDirectoryName);
            }
            ThrowSystemError(fmt::format("Cannot lock runtime directory '{}'", directory.GetPath()));
        }
    } while (!IsCurrent(directory, file.Get()));

    const String holder = std::to_string(::getpid());
    if (::ftruncate(file.Get(), 0) != 0 ||
        ::pwrite(file.Get(), holder.data(), holder.size(), 0) != static_cast<ssize_t>(holder.size()))
    {
        ThrowSystemError(fmt::format("Cannot write the lock of runtime directory '{}'", directory.GetPath()));
    }
}

pid_t SystemLock::FindHolder(const RuntimeDirectory& runtimeDirectory)
{
    const Commons::UniqueFd lock(
        ::openat(runtimeDirectory.GetDescriptor(), lockFileName, O_RDONLY | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK));
    return lock.IsValid() ? ReadHolder(lock.Get()) : 0;
}

SystemLock::~SystemLock()
{
    directory.Remove(lockFileName);
}

} // namespace Vela::System::Rsc
