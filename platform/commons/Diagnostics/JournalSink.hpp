#pragma once

#include <Vela/System/Commons/UniqueFd.hpp>

#include <Diagnostics/LogSinks.hpp>

#include <memory>

namespace Vela::System::Commons::Diagnostics
{

/// Hands messages to the system's journal by its own protocol, so that level, process and category are fields that it
/// can be asked for. What the journal does not take this way goes to standard output, which leads there as well, with
/// the level in front.
class JournalSink : public StandardOutputSink
{
public:
    explicit JournalSink(LogLevel maximumLevel);

protected:
    void WriteRecord(const LogRecord& record, const String& processName) override;

private:
    [[nodiscard]] bool Send(const String& message) const noexcept;

    UniqueFd socket;
};

/// The sink for standard output: the journal when standard output is a stream to it.
[[nodiscard]] std::unique_ptr<LogSink> MakeStandardOutputSink(LogLevel maximumLevel);

} // namespace Vela::System::Commons::Diagnostics
