#pragma once

#include "Oracle.hpp"

#include <Vela/System/Commons/Diagnostics/LogManager.hpp>
#include <Vela/System/Commons/UniqueFd.hpp>

namespace Vela::Testing
{

/// One line of a log.
struct LogLine
{
    /// @param text  "<time> <process>[<id>] <level> <category>: <message>"
    static LogLine Parse(const std::string& text);

    /// "<level> <category's last part>: <message>".
    [[nodiscard]] std::string ToString() const;

    std::string process;
    std::string level;
    std::string category;
    std::string message;
};

/// The log of this process while it lives, in memory, at all levels.
class LogStream
{
public:
    LogStream();
    LogStream(const LogStream&) = delete;
    LogStream& operator=(const LogStream&) = delete;
    ~LogStream();

    /// The lines since the last call.
    std::vector<LogLine> Take();

private:
    System::Commons::UniqueFd memory;
};

} // namespace Vela::Testing
