#include "CommandError.hpp"

#include <Vela/Exceptions.hpp>
#include <Vela/System/Commons/PlainText.hpp>

#include <cstdio>

namespace Vela::Kiroctl
{

/// The failures of calls have one exception class; what it says first tells a refusal from silence.
ExitCode GetExitCode(const Exception& exception)
{
    switch (exception.GetKind())
    {
    case ExceptionKind::Rsc:
        return exception.GetMessage().find("not allowed to") == String::npos ? ExitCode::Unreachable
                                                                             : ExitCode::Refused;
    case ExceptionKind::NotExist:
    case ExceptionKind::KeyNotFound:
        return ExitCode::NotFound;
    default:
        return ExitCode::Failed;
    }
}

void TellFailure(std::string_view text)
{
    const std::string line = "kiroctl: " + System::Commons::MakePlainText(text) + "\n";
    std::fwrite(line.data(), 1, line.size(), stderr);
}

} // namespace Vela::Kiroctl
