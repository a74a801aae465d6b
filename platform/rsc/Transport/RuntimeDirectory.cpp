#include "Transport/RuntimeDirectory.hpp"

#include "Transport/EndpointName.hpp"
#include "Transport/Socket.hpp"
#include "Transport/TransportException.hpp"

#include <Vela/Exceptions.hpp>
#include <Vela/System/Commons/Environment.hpp>
#include <Vela/System/Commons/Io/Directory.hpp>
#include <Vela/System/Commons/Io/FileTrust.hpp>
#include <Vela/System/Commons/Io/Path.hpp>
#include <Vela/System/Commons/SystemError.hpp>

#include <dirent.h>
#include <fcntl.h>
#include <fmt/format.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <climits>
#include <memory>

namespace Vela::System::Rsc
{

using Commons::Environment;
using Commons::ThrowSystemError;
using Commons::UniqueFd;

namespace
{

/// A runtime directory of the user's own that the system's manager has made; empty when there is none.
String FindUserDirectory()
{
    String directory = Environment::GetVariableValueOr("XDG_RUNTIME_DIR", fmt::format("/run/user/{}", ::geteuid()));
    struct stat status
    {
    };
    const bool isOurs = ::stat(directory.c_str(), &status) == 0 && S_ISDIR(status.st_mode) &&
                        status.st_uid == ::geteuid() && ::access(directory.c_str(), W_OK | X_OK) == 0;
    return isOurs ? directory : String();
}

String ChoosePath()
{
    String path;
    if (Environment::GetVariableValue(Environment::runtimeDirectoryName, path) && !path.empty())
    {
        return Commons::Io::Path::GetFullPath(path);
    }
    const String userDirectory = FindUserDirectory();
    return userDirectory.empty() ? fmt::format("/tmp/vela-{}", ::geteuid())
                                 : Commons::Io::Path::Combine(userDirectory, "vela");
}

void Create(const String& path)
{
    const String parent = Commons::Io::Path::GetDirectoryName(path);
    if (!parent.empty())
    {
        Commons::Io::Directory::Create(parent);
    }
    if (::mkdir(path.c_str(), 0700) != 0 && errno != EEXIST)
    {
        ThrowSystemError(fmt::format("Cannot make runtime directory '{}'", path));
    }
}

/// The address of a file in the directory: by path, or through the directory's descriptor when the path is too long.
sockaddr_un MakeAddress(const RuntimeDirectory& directory, const String& fileName)
{
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    String path = Commons::Io::Path::Combine(directory.GetPath(), fileName);
    if (path.size() >= sizeof(address.sun_path))
    {
        path = fmt::format("/proc/self/fd/{}/{}", directory.GetDescriptor(), fileName);
    }
    if (path.size() >= sizeof(address.sun_path))
    {
        throw InvalidOperationException("The socket name '{}' is too long.", fileName);
    }
    std::copy(path.begin(), path.end(), std::begin(address.sun_path));
    return address;
}

UniqueFd MakeSocket()
{
    UniqueFd socket(::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0));
    if (!socket.IsValid())
    {
        ThrowSystemError("socket");
    }
    return socket;
}

using LinkTarget = std::array<char, NAME_MAX + 1>;

/// Empty when there is no such link.
std::string_view ReadLinkTarget(int directory, const String& linkName, LinkTarget& target) noexcept
{
    const auto length = ::readlinkat(directory, linkName.c_str(), target.data(), target.size());
    return {target.data(), length < 0 ? 0 : static_cast<std::size_t>(length)};
}

} // namespace

RuntimeDirectory::RuntimeDirectory(Use use)
    : path(ChoosePath())
{
    if (use == Use::Share)
    {
        Create(path);
    }
    descriptor.Reset(::open(path.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    struct stat status
    {
    };
    if (!descriptor.IsValid() || ::fstat(descriptor.Get(), &status) != 0)
    {
        ThrowSystemError(fmt::format("Cannot open runtime directory '{}'", path));
    }
    owner = status.st_uid;
    const bool isStrange = use == Use::Share && owner != ::geteuid();
    if (isStrange || (status.st_mode & (S_IWGRP | S_IWOTH)) != 0)
    {
        throw InvalidOperationException(
            "Runtime directory '{}' (owner {}, mode {:o}) must belong to user {} and be writable for nobody else.",
            path, owner, status.st_mode & 07777U, use == Use::Share ? ::geteuid() : owner);
    }
    // The way to it as well: who can put another directory in its place takes the place of every process.
    Commons::Io::FileTrust::Require(Commons::Io::TrustedFile::RuntimeDirectory, path, descriptor.Get(), owner);
}

UniqueFd RuntimeDirectory::Listen(const String& fileName, const String& applicationName, mode_t mode) const
{
    // The socket is given its name only once it listens, so that whoever finds the name can connect.
    const String temporaryName = fmt::format("new-{}", ::getpid());
    Remove(temporaryName);
    UniqueFd socket = MakeSocket();
    const sockaddr_un address = MakeAddress(*this, temporaryName);
    if (::bind(socket.Get(), reinterpret_cast<const sockaddr*>(&address), sizeof(address)) != 0 ||
        ::fchmodat(descriptor.Get(), temporaryName.c_str(), mode, 0) != 0 || ::listen(socket.Get(), SOMAXCONN) != 0)
    {
        const int error = errno;
        Remove(temporaryName);
        ThrowSystemError(fmt::format("Cannot listen in runtime directory '{}'", path), error);
    }
    while (::linkat(descriptor.Get(), temporaryName.c_str(), descriptor.Get(), fileName.c_str(), 0) != 0)
    {
        int error = errno;
        if (error == EEXIST && !IsLive(fileName))
        {
            error = TryRemove(fileName);
            if (error == 0)
            {
                continue;
            }
        }
        Remove(temporaryName);
        if (error == EEXIST)
        {
            throw InvalidOperationException("Another process of runtime directory '{}' has the name '{}' already.",
                                            path, applicationName);
        }
        ThrowSystemError(fmt::format("Cannot make socket '{}' in runtime directory '{}'", fileName, path), error);
    }
    Remove(temporaryName);
    return socket;
}

UniqueFd RuntimeDirectory::Connect(const String& fileName, std::chrono::milliseconds limit) const
{
    UniqueFd socket = MakeSocket();
    // No time at all would mean no limit.
    SetSendTimeout(socket.Get(), std::max(limit, std::chrono::milliseconds(1)));
    const sockaddr_un address = MakeAddress(*this, fileName);
    const auto connected = Commons::RetryInterrupted(
        [&] { return ::connect(socket.Get(), reinterpret_cast<const sockaddr*>(&address), sizeof(address)); });
    if (connected != 0)
    {
        if (errno == ENOENT || errno == ECONNREFUSED)
        {
            return UniqueFd();
        }
        if (errno == EAGAIN)
        {
            throw TransportException(TransportFailure::TimedOut, "timed out");
        }
        throw TransportException(TransportFailure::System, fmt::format("connect: {}", Commons::GetErrorText(errno)));
    }
    SetSendTimeout(socket.Get(), std::chrono::milliseconds(0));
    return socket;
}

void RuntimeDirectory::Link(const String& linkName, const String& socketFileName) const
{
    while (::symlinkat(socketFileName.c_str(), descriptor.Get(), linkName.c_str()) != 0)
    {
        if (errno != EEXIST)
        {
            ThrowSystemError(fmt::format("Cannot make link '{}' in runtime directory '{}'", linkName, path));
        }
        const String present = ReadLink(linkName);
        if (present == socketFileName)
        {
            return;
        }
        if (!present.empty() && IsLive(present))
        {
            throw InvalidOperationException("Link '{}' in runtime directory '{}' belongs to another process ('{}').",
                                            linkName, path, present);
        }
        if (const int error = TryRemove(linkName); error != 0)
        {
            ThrowSystemError(fmt::format("Cannot make link '{}' in runtime directory '{}'", linkName, path), error);
        }
    }
}

void RuntimeDirectory::Remove(const String& fileName) const noexcept
{
    static_cast<void>(TryRemove(fileName));
}

int RuntimeDirectory::TryRemove(const String& fileName) const noexcept
{
    return ::unlinkat(descriptor.Get(), fileName.c_str(), 0) == 0 || errno == ENOENT ? 0 : errno;
}

void RuntimeDirectory::Unlink(const String& linkName, const String& socketFileName) const noexcept
{
    LinkTarget target{};
    if (ReadLinkTarget(descriptor.Get(), linkName, target) == socketFileName)
    {
        Remove(linkName);
    }
}

void RuntimeDirectory::RemoveLeftovers() const
{
    const std::vector<String> names = List();
    for (const String& name : names)
    {
        const bool isNamed = IsSocketFileName(name) || IsComponentFileName(name);
        if ((!isNamed && name.starts_with("new-")) || name == secretFileName ||
            (IsSocketFileName(name) && !IsLive(name)))
        {
            Remove(name);
        }
    }
    for (const String& name : names)
    {
        if ((IsComponentFileName(name) || name == mainProcessFileName) && !IsLive(name))
        {
            Remove(name);
        }
    }
}

String RuntimeDirectory::ReadLink(const String& linkName) const
{
    LinkTarget target{};
    return String(ReadLinkTarget(descriptor.Get(), linkName, target));
}

std::vector<String> RuntimeDirectory::List() const
{
    std::vector<String> names;
    UniqueFd copy(::openat(descriptor.Get(), ".", O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    const std::unique_ptr<DIR, int (*)(DIR*)> directory(copy.IsValid() ? ::fdopendir(copy.Get()) : nullptr, ::closedir);
    if (directory == nullptr)
    {
        ThrowSystemError(fmt::format("Cannot read runtime directory '{}'", path));
    }
    static_cast<void>(copy.Release());
    while (const dirent* entry = ::readdir(directory.get()))
    {
        names.emplace_back(static_cast<const char*>(entry->d_name));
    }
    return names;
}

bool RuntimeDirectory::IsLive(const String& fileName) const
{
    try
    {
        return Connect(fileName, std::chrono::milliseconds(1)).IsValid();
    }
    catch (const TransportException& exception)
    {
        // It does not accept at the moment, but it is there.
        if (exception.GetFailure() != TransportFailure::TimedOut)
        {
            throw;
        }
        return true;
    }
}

} // namespace Vela::System::Rsc
