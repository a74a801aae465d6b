#pragma once

#include <Vela/Exceptions.hpp>
#include <Vela/String.hpp>
#include <Vela/System/Commons/Api.hpp>

#include <cerrno>

namespace Vela::System::Commons
{

/// The text of an errno value; thread-safe.
VELA_COMMONS_API String GetErrorText(int errorNumber);

/// Repeats a system call that a signal interrupted.
template <typename Call>
auto RetryInterrupted(Call&& call)
{
    auto result = call();
    while (result < 0 && errno == EINTR)
    {
        result = call();
    }
    return result;
}

/// Throws Exception "<what>: <text of errno>".
[[noreturn]] VELA_COMMONS_API void ThrowSystemError(const String& what, int errorNumber = errno);

} // namespace Vela::System::Commons
