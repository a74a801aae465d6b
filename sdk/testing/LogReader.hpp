#pragma once

#include <Vela/String.hpp>
#include <Vela/System/Kiro/Testing/LogMessage.hpp>

#include <chrono>
#include <vector>

namespace Vela::System::Kiro::Testing
{

/// Reads a log file while the log is being written.
class LogReader
{
public:
    /// @param processName  as the lines of the log name it
    LogReader(String logFile, const String& processName);

    [[nodiscard]] std::vector<LogMessage> Read() const;
    /// The first message with this text in it.
    /// @throws Exception with the log when it does not come in time
    [[nodiscard]] LogMessage Await(const String& text, std::chrono::seconds patience) const;

private:
    const String file;
    const String processMark;
};

} // namespace Vela::System::Kiro::Testing
