#pragma once

#include <Vela/System/Commons/Api.hpp>

#include <utility>

namespace Vela::System::Commons
{

/// Owns a file descriptor and closes it.
class VELA_COMMONS_API UniqueFd
{
public:
    UniqueFd() noexcept = default;

    explicit UniqueFd(int descriptor) noexcept
        : fd(descriptor)
    {
    }

    UniqueFd(UniqueFd&& other) noexcept
        : fd(other.Release())
    {
    }

    UniqueFd& operator=(UniqueFd&& other) noexcept
    {
        Reset(other.Release());
        return *this;
    }

    UniqueFd(const UniqueFd&) = delete;
    UniqueFd& operator=(const UniqueFd&) = delete;

    ~UniqueFd()
    {
        Reset();
    }

    [[nodiscard]] int Get() const noexcept
    {
        return fd;
    }

    [[nodiscard]] bool IsValid() const noexcept
    {
        return fd >= 0;
    }

    [[nodiscard]] int Release() noexcept
    {
        return std::exchange(fd, -1);
    }

    void Reset(int descriptor = -1) noexcept;

private:
    int fd = -1;
};

} // namespace Vela::System::Commons
