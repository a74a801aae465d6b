#include "Harness/Processor.hpp"
#include "Harness/TemporaryDirectory.hpp"
#include "Rows/Rows.hpp"

#include <Vela/System/Commons/Diagnostics/LogManager.hpp>
#include <Vela/System/Commons/Diagnostics/Loggable.hpp>
#include <Vela/System/Commons/UniqueFd.hpp>

#include <fcntl.h>
#include <unistd.h>

#include <atomic>
#include <tuple>

namespace Vela::Benchmarks
{

using namespace System::Commons::Diagnostics;

namespace
{

constexpr double nanosecondsPerMicrosecond = 1000;

class Writer : private Loggable<Writer>
{
public:
    static void WriteDisabled(const std::string& component, const std::string& process)
    {
        log.Debug("Component '{0}' in process '{1}' created.", component, process);
    }

    static void WriteLine(const std::string& component, const std::string& process)
    {
        log.Info("Component '{0}' in process '{1}' created.", component, process);
    }
};

std::string ReadFirstLine(const std::string& path)
{
    std::ifstream file(path);
    std::string line;
    std::getline(file, line);
    return line + '\n';
}

} // namespace

std::vector<Row> MeasureLog(Effort effort)
{
    const PinnedScope pinned;
    const TemporaryDirectory directory;
    const std::string component = "Plant.Section001.Unit00101";
    const std::string process = "Process01";
    LogManager::CreateInstance(LogLevel::Info, directory / "bench.log");
    Writer::WriteLine(component, process);
    const std::string line = ReadFirstLine(directory / "bench.log");
    const System::Commons::UniqueFd file(
        ::open((directory / "floor").c_str(), O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, 0600));
    std::atomic<bool> isEnabled{false};

    const unsigned rounds = effort.Choose(15, 1);
    auto disabled = Compare("disabled log statement", rounds,
                            PerCall(effort.Choose(5'000'000, 1000), [&] { Writer::WriteDisabled(component, process); }),
                            PerCall(effort.Choose(5'000'000, 1000),
                                    [&]
                                    {
                                        if (isEnabled.load(std::memory_order_relaxed))
                                        {
                                            asm volatile("");
                                        }
                                    }));
    disabled.measured *= nanosecondsPerMicrosecond;
    disabled.floor *= nanosecondsPerMicrosecond;
    const auto written = Compare(
        "log line", rounds, PerCall(effort.Choose(10'000, 10), [&] { Writer::WriteLine(component, process); }),
        PerCall(effort.Choose(10'000, 10), [&] { std::ignore = ::write(file.Get(), line.data(), line.size()); }));
    LogManager::DisposeInstance();
    return {{"log: disabled statement", "ns", disabled, "a branch that is not taken"},
            {"log: line to a file", "us", written, "write(2) of the same bytes"}};
}

} // namespace Vela::Benchmarks
