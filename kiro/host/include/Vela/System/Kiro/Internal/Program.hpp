#pragma once

#include <Vela/Exceptions.hpp>
#include <Vela/String.hpp>
#include <Vela/System/Commons/Diagnostics/Loggable.hpp>
#include <Vela/System/Kiro/Api.hpp>

namespace Vela::System::Kiro::Internal
{

/// What an executable needs besides its application object.
class VELA_KIRO_API Program : private Commons::Diagnostics::Loggable<Program>
{
public:
    /// Starts the running executable once more, as a daemon with the same arguments. This process goes on and does
    /// not wait for it.
    /// @throws Exception when it cannot be started
    static void StartProcess(int argc, char** argv);

    /// Writes one message to the log, as information, or to standard output as it is when there is no log yet.
    /// A null text sets the failure state of standard output.
    static void Log(const char* text);
    /// The same with a format and its one argument: a text, or the text of an exception.
    static void Log(const char* format, const String& argument);
    static void Log(const char* format, const Exception& exception);
    static void Log(const char* format, const std::exception& exception);
};

} // namespace Vela::System::Kiro::Internal
