#pragma once

#include "ExitCode.hpp"

#include <fmt/format.h>

#include <stdexcept>
#include <string_view>
#include <utility>

namespace Vela
{
class Exception;
}

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

/// The code that fits an exception of the platform best.
ExitCode GetExitCode(const Exception& exception);

/// One line on standard error, whatever the text holds.
void TellFailure(std::string_view text);

} // namespace Vela::Kiroctl
