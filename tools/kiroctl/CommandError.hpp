#pragma once

#include "ExitCode.hpp"

#include <fmt/format.h>

#include <stdexcept>
#include <utility>

namespace Vela::Kiroctl
{

/// Ends a command: one line on standard error, and the exit code.
class CommandError : public std::runtime_error
{
public:
    template <typename... Args>
    explicit CommandError(ExitCode exitCode, fmt::format_string<Args...> format, Args&&... args)
        : std::runtime_error(fmt::format(format, std::forward<Args>(args)...))
        , code(exitCode)
    {
    }

    [[nodiscard]] ExitCode GetCode() const noexcept
    {
        return code;
    }

private:
    ExitCode code;
};

} // namespace Vela::Kiroctl
