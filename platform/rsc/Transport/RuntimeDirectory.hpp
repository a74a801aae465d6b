#pragma once

#include <Vela/String.hpp>
#include <Vela/System/Commons/UniqueFd.hpp>

#include <sys/types.h>

#include <chrono>
#include <vector>

namespace Vela::System::Rsc
{

/// The directory in which the processes of one system find each other: their sockets, a link for the main process and
/// for each component with services, the main process's lock and the secret of the TCP endpoints.
///
/// Thread-safe: it keeps nothing but the directory's descriptor and path.
class RuntimeDirectory
{
public:
    enum class Use
    {
        /// By a process of the system: the directory is made when it is missing, and must belong to its user.
        Share,
        /// By a tool, perhaps of another user: the directory must be there.
        Look,
    };

    /// Opens the directory that VELA_PATH_RUNTIME_DIR names, or else one below the user's own runtime directory, or
    /// else one of the user's in /tmp.
    /// @throws InvalidOperationException when others could write into it; Exception when it cannot be made or opened
    explicit RuntimeDirectory(Use use);

    [[nodiscard]] const String& GetPath() const noexcept
    {
        return path;
    }

    /// The system's user, whose processes are trusted.
    [[nodiscard]] uid_t GetOwner() const noexcept
    {
        return owner;
    }

    [[nodiscard]] int GetDescriptor() const noexcept
    {
        return descriptor.Get();
    }

    /// A socket that listens under a file name. A file that a killed process left is replaced. The file appears when
    /// the socket listens.
    /// @param mode  who may connect at all
    /// @throws InvalidOperationException when somebody listens there already
    [[nodiscard]] Commons::UniqueFd Listen(const String& fileName, const String& applicationName, mode_t mode) const;
    /// Connects to the socket that a file or link leads to; an invalid descriptor when nobody listens. A process that
    /// does not accept lets its callers queue up; behind a full queue a connection waits for its time limit.
    /// @throws TransportException
    [[nodiscard]] Commons::UniqueFd Connect(const String& fileName, std::chrono::milliseconds limit) const;

    /// Makes a link to a socket file, in the place of one that leads nowhere.
    /// @throws InvalidOperationException when it leads to another live process
    void Link(const String& linkName, const String& socketFileName) const;
    /// Removes a file or link; nothing happens when there is none.
    void Remove(const String& fileName) const noexcept;
    /// The same.
    /// @return 0 when it is gone, otherwise the number of the system's error
    [[nodiscard]] int TryRemove(const String& fileName) const noexcept;
    /// Removes a link if it leads to that socket file.
    void Unlink(const String& linkName, const String& socketFileName) const noexcept;

    /// Removes the sockets and links of processes that are gone, and the secret of a system that is.
    void RemoveLeftovers() const;

private:
    [[nodiscard]] String ReadLink(const String& linkName) const;
    [[nodiscard]] std::vector<String> List() const;
    [[nodiscard]] bool IsLive(const String& fileName) const;

    String path;
    Commons::UniqueFd descriptor;
    uid_t owner = 0;
};

/// Makes a main process the only one of a runtime directory, for as long as the object lives.
class SystemLock
{
public:
    /// @throws InvalidOperationException naming the directory and the holder's process id
    explicit SystemLock(const RuntimeDirectory& runtimeDirectory);
    SystemLock(const SystemLock&) = delete;
    SystemLock& operator=(const SystemLock&) = delete;
    ~SystemLock();

    /// The process that holds the lock, or was killed while it did; 0 when nobody has left a trace.
    [[nodiscard]] static pid_t FindHolder(const RuntimeDirectory& runtimeDirectory);

private:
    const RuntimeDirectory& directory;
    Commons::UniqueFd file;
};

} // namespace Vela::System::Rsc
