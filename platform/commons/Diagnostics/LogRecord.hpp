#pragma once

#include <Vela/String.hpp>
#include <Vela/System/Commons/Chrono/DateTime.hpp>
#include <Vela/System/Commons/Diagnostics/LogLevel.hpp>

namespace Vela::System::Commons::Diagnostics
{

/// One message on its way to the sinks.
struct LogRecord
{
    Chrono::DateTime time;
    LogLevel level;
    /// Belongs to a logger, and so lives to the end of the process.
    const String& category;
    String text;
};

/// The line of a record: "2024-08-01T12:34:56.123456Z MainProcess[1234] Info  Vela.Pump: message" and a newline.
/// Further lines of a text are indented by four blanks, so that none of them passes for a message of its own.
String FormatLine(const LogRecord& record, const String& processName);

/// The name under which this process logs: the application's, or the executable's before it has one.
String GetLogProcessName();

} // namespace Vela::System::Commons::Diagnostics
