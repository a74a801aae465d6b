#pragma once

#include <Vela/String.hpp>
#include <Vela/System/Commons/UniqueFd.hpp>

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
    /// Opens the directory that VELA_PATH_RUNTIME_DIR names, or else one below the user's own runtime directory, or
    /// else one of the user's in /tmp; makes it when it is missing.
    /// @throws InvalidOperationException when others could write into it; Exception when it cannot be made
    RuntimeDirectory();

    [[nodiscard]] const String& GetPath() const noexcept
    {
        return path;
    }

    [[nodiscard]] int GetDescriptor() const noexcept
    {
        return descriptor.Get();
    }

    /// A socket that listens under a file name. A file that a killed process left is replaced. The file appears when
    /// the socket listens.
    /// @throws InvalidOperationException when somebody listens there already
    [[nodiscard]] Commons::UniqueFd Listen(const String& fileName, const String& applicationName) const;
    /// Connects to the socket that a file or link leads to; an invalid descriptor when nobody listens.
    /// @throws TransportException
    [[nodiscard]] Commons::UniqueFd Connect(const String& fileName) const;

    /// Makes a link to a socket file, in the place of one that leads nowhere.
    /// @throws InvalidOperationException when it leads to another live process
    void Link(const String& linkName, const String& socketFileName) const;
    /// Removes a file or link; nothing happens when there is none.
    void Remove(const String& fileName) const noexcept;
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

private:
    const RuntimeDirectory& directory;
    Commons::UniqueFd file;
};

} // namespace Vela::System::Rsc
