#include "CheckedLog.hpp"

#include "FuzzTarget.hpp"

#include <Vela/AppDomainSingleton.hpp>
#include <Vela/System/Commons/Diagnostics/LogManager.hpp>

#include <Diagnostics/LogManagerData.hpp>
#include <Diagnostics/LogRecord.hpp>

#include <memory>
#include <utility>

namespace Vela::Fuzz
{

namespace
{

using namespace System::Commons::Diagnostics;

class CheckingSink final : public LogSink
{
public:
    CheckingSink()
        : LogSink(LogLevel::Trace)
    {
    }

private:
    void WriteRecord(const LogRecord& record, const String& processName) override
    {
        const String line = FormatLine(record, processName);
        Require(line.ends_with('\n'), "a log line ends");
        for (auto end = line.find('\n'); end + 1 < line.size(); end = line.find('\n', end + 1))
        {
            Require(line.compare(end + 1, 4, "    ") == 0, "a further line of a log message is indented");
        }
    }
};

/// The process's log from its construction to the end of the process.
struct CheckedLog
{
    CheckedLog()
    {
        AppDomain::CreateInstance().SetApplicationName("Fuzz");
        std::vector<std::unique_ptr<LogSink>> sinks;
        sinks.push_back(std::make_unique<CheckingSink>());
        AppDomainSingleton<LogManager>::CreateInstance(
            std::make_shared<LogManagerData>(LogLevels(LogLevel::Trace), std::move(sinks)));
    }

    CheckedLog(const CheckedLog&) = delete;
    CheckedLog& operator=(const CheckedLog&) = delete;

    ~CheckedLog()
    {
        LogManager::DisposeInstance();
    }
};

} // namespace

void SetUpCheckedLog()
{
    static const CheckedLog log;
}

} // namespace Vela::Fuzz
