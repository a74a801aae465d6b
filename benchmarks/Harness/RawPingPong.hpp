#pragma once

#include "Harness/Child.hpp"

#include <Vela/System/Commons/UniqueFd.hpp>

#include <cstddef>
#include <string>
#include <vector>

namespace Vela::Benchmarks
{

/// The floor of every call: a message over a blocking Unix stream socket, and the same bytes back.
class RawClient
{
public:
    /// @param path  where a raw server listens
    RawClient(const std::string& path, std::size_t messageSize);
    void PingPong();

private:
    System::Commons::UniqueFd socket;
    std::vector<char> message;
};

/// A process that echoes, each connection on a thread of its own.
class RawServer
{
public:
    explicit RawServer(std::string socketPath);

    [[nodiscard]] const std::string& GetPath() const noexcept
    {
        return path;
    }

    [[nodiscard]] const Child& GetProcess() const noexcept
    {
        return process;
    }

private:
    std::string path;
    Child process;
};

} // namespace Vela::Benchmarks
