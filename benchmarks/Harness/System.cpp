#include "Harness/System.hpp"

#include <Vela/Exceptions.hpp>
#include <Vela/System/Commons/SystemError.hpp>

#include <fcntl.h>
#include <fmt/format.h>
#include <poll.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <csignal>
#include <sstream>

namespace Vela::Benchmarks
{

using System::Commons::RetryInterrupted;
using System::Commons::ThrowSystemError;

namespace
{

constexpr const char* mainProcessName = "MainProcess";
constexpr int patience = 120'000;

std::string GetProcessName(unsigned number)
{
    return fmt::format("Process{:02}", number);
}

std::string MakeComponent(const std::string& name, const std::string& type, const std::string& process,
                          unsigned startOrder)
{
    return fmt::format(R"(    <Component name="{}" type="{}" library="KiroBenchComponents" process="{}" )"
                       R"(isRequired="true" startOrder="{}">
      <Settings path="{}.settings"/>
    </Component>
)",
                       name, type, process, startOrder, name);
}

std::string MakeDocument(const std::string& elements)
{
    return "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<KiroConfigurationDocument>\n" + elements +
           "</KiroConfigurationDocument>\n";
}

/// "First" comes first and goes last; "Last" comes last, behind a reporter in each child process.
std::string MakeReporters(unsigned childProcesses)
{
    std::string text = MakeComponent("First", "Reporter", mainProcessName, 0);
    for (unsigned process = 0; process < childProcesses; ++process)
    {
        text += MakeComponent("Reporter" + GetProcessName(process), "Reporter", GetProcessName(process), 1'000'000);
    }
    return text + MakeComponent("Last", "Reporter", mainProcessName, 1'000'001);
}

std::string MakeComponents(const SystemPlan& plan, unsigned begin, unsigned end)
{
    std::string text = "  <Components>\n";
    for (unsigned i = begin; i < end; ++i)
    {
        text += MakeComponent(fmt::format("Plant.Section{:03}.Unit{:05}", i / 100, i), "Idler",
                              plan.childProcesses == 0 ? mainProcessName : GetProcessName(i % plan.childProcesses),
                              2000 + i % 10);
    }
    return text + "  </Components>\n";
}

} // namespace

void WriteConfiguration(const TemporaryDirectory& directory, const SystemPlan& plan, unsigned files)
{
    std::string text = files == 0 ? "" : "  <Includes><Include path=\"part*.config\"/></Includes>\n";
    text += "  <Processes>\n";
    for (unsigned process = 0; process < plan.childProcesses; ++process)
    {
        text += fmt::format("    <Process name=\"{}\"/>\n", GetProcessName(process));
    }
    text += fmt::format("  </Processes>\n  <Libraries>\n    <Library name=\"KiroBenchComponents\" binaryPath=\"{}\"/>\n"
                        "  </Libraries>\n",
                        GetBuiltFile("lib/libKiroBenchComponents.so"));
    if (plan.hasReporters)
    {
        text += "  <Components>\n" + MakeReporters(plan.childProcesses) + "  </Components>\n";
    }
    for (unsigned file = 0; file < files; ++file)
    {
        directory.Write(
            fmt::format("part{:03}.config", file),
            MakeDocument(MakeComponents(plan, file * plan.components / files, (file + 1) * plan.components / files)));
    }
    if (files == 0)
    {
        text += MakeComponents(plan, 0, plan.components);
    }
    directory.Write("Default.kiro.config", MakeDocument(text));
}

BenchSystem::BenchSystem(const SystemPlan& systemPlan)
    : plan(systemPlan)
{
    WriteConfiguration(directory, plan, 0);
    // With many components a reader of the log would take part in what is measured.
    directory.Write("Default.kiro.settings",
                    fmt::format("<KiroSettingsDocument>{}<ProcessSettings singleProcess=\"false\" "
                                "startWaitTime=\"60s\" stopWaitTime=\"60s\"/>"
                                "</KiroSettingsDocument>\n",
                                plan.hasReporters ? "<LogSettings logDir=\"log\"/>" : ""));
    const std::string pipe = directory / "reports";
    if (::mkfifo(pipe.c_str(), S_IRUSR | S_IWUSR) != 0)
    {
        ThrowSystemError("mkfifo");
    }
    // Open for writing, too, so that it does not end with its first writer.
    reports.Reset(::open(pipe.c_str(), O_RDWR | O_CLOEXEC));
    startTime = Clock::now();
    process.emplace(
        GetBuiltFile("bin/Vela.System.Application"), std::vector<std::string>{},
        std::map<std::string, std::string>{{"VELA_PATH_RUNTIME_DIR", directory / "run"}, {"KIRO_BENCH_REPORTS", pipe}},
        directory / ".");
}

void BenchSystem::AwaitConnected()
{
    for (unsigned connected = 0; connected <= plan.childProcesses; ++connected)
    {
        process->AwaitLine("' started successfully.");
    }
}

void BenchSystem::AwaitUp()
{
    process->AwaitLine("Application '" + std::string(mainProcessName) + "' was setup successfully.");
}

void BenchSystem::Stop() const
{
    process->Signal(SIGTERM);
}

void BenchSystem::AwaitEnd()
{
    process->End();
}

BenchSystem::Report BenchSystem::AwaitReport()
{
    while (received.find('\n') == std::string::npos)
    {
        pollfd readable{reports.Get(), POLLIN, 0};
        std::array<char, 4096> buffer{};
        if (RetryInterrupted([&readable] { return ::poll(&readable, 1, patience); }) <= 0)
        {
            throw Exception("The system does not report.");
        }
        const auto count = RetryInterrupted([&] { return ::read(reports.Get(), buffer.data(), buffer.size()); });
        if (count <= 0)
        {
            ThrowSystemError("read");
        }
        received.append(buffer.data(), static_cast<std::size_t>(count));
    }
    const auto end = received.find('\n');
    std::istringstream line(received.substr(0, end));
    received.erase(0, end + 1);
    Report report;
    line >> report.component >> report.step >> report.microseconds >> report.memory;
    if (!line)
    {
        throw Exception("A report is not as expected: {0}", line.str());
    }
    return report;
}

} // namespace Vela::Benchmarks
