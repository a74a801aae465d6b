#include <Host/FailureRecord.hpp>
#include <Vela/CaughtException.hpp>
#include <Vela/System/Commons/Io/Path.hpp>
#include <Vela/System/Commons/SystemError.hpp>
#include <Vela/System/Commons/UniqueFd.hpp>
#include <Vela/System/Rsc/RscManager.hpp>

#include <fcntl.h>
#include <fmt/format.h>
#include <signal.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <string_view>

namespace Vela::System::Kiro::Internal
{

using Commons::Diagnostics::CrashRecords;

namespace
{

String Describe(const CrashRecords& records, const std::vector<Sm::ProcessState>& processes, std::time_t since)
{
    String text;
    for (const Sm::ProcessState& process : processes)
    {
        const bool isCrashing = !process.hasExited && !records.FindOf(process.id, since).empty();
        text += fmt::format("{0}[{1}]: {2}\n", process.name, process.id, isCrashing ? "crashing" : process.state);
    }
    return text;
}

/// What one of the processes has recorded itself; empty when none has. One that crashes takes a while to end: the calls
/// that fail of it may be first.
String FindRecord(const CrashRecords& records, const std::vector<Sm::ProcessState>& processes, std::time_t since)
{
    for (const Sm::ProcessState& process : processes)
    {
        String name = records.FindOf(process.id, since);
        if (!name.empty())
        {
            return name;
        }
    }
    return {};
}

} // namespace

void FailureRecord::SetPhase(const String& text)
{
    const std::lock_guard lock(mutex);
    phase = text;
}

void FailureRecord::Write(const String& processName, const String& reason, const String& error,
                          const CrashRecords::Fields& place, const std::vector<Sm::ProcessState>& processes) noexcept
{
    try
    {
        const std::lock_guard lock(mutex);
        const CrashRecords records(Rsc::RscManager::FindRuntimeDirectory(true));
        name = name.empty() ? FindRecord(records, processes, startTime) : name;
        const bool isFirst = name.empty();
        CrashRecords::Fields fields{{isFirst ? "reason" : "failure", reason}};
        if (isFirst)
        {
            fields.insert(fields.end(), {{"process", processName}, {"pid", std::to_string(getpid())}});
            fields.insert(fields.end(), place.begin(), place.end());
        }
        fields.insert(fields.end(), {{"phase", phase},
                                     {"error", error},
                                     {"processes", Describe(records, processes, startTime)},
                                     {isFirst ? "log" : "log of " + processName, CrashRecords::GetRecentMessages()}});
        std::erase_if(fields, [](const auto& field) { return field.second.empty(); });
        if (isFirst)
        {
            name = records.Begin(fields);
        }
        else
        {
            records.Append(name, fields);
        }
    }
    catch (...)
    {
        log.Warning("No record of the failure could be left: {0}", CaughtException::Current().GetText());
    }
}

bool FailureRecord::IsDirectoryTaken() noexcept
{
    try
    {
        const pid_t owner = Rsc::RscManager::FindMainProcess();
        return owner != 0 && owner != ::getpid() && (::kill(owner, 0) == 0 || errno == EPERM);
    }
    catch (...)
    {
        // There is none yet.
        return false;
    }
}

void FailureRecord::WriteTimeline(const String& document) noexcept
{
    try
    {
        const String path = Commons::Io::Path::Combine(
            Commons::Io::Path::Combine(Rsc::RscManager::FindRuntimeDirectory(true), CrashRecords::directoryName),
            CrashRecords::timelineFileName);
        const Commons::UniqueFd file(
            ::open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC | O_NOFOLLOW, S_IRUSR | S_IWUSR));
        for (std::string_view rest = document; !rest.empty();)
        {
            const auto count = file.IsValid() ? ::write(file.Get(), rest.data(), rest.size()) : -1;
            if (count <= 0)
            {
                Commons::ThrowSystemError(fmt::format("Cannot write '{0}'", path));
            }
            rest.remove_prefix(static_cast<std::size_t>(count));
        }
    }
    catch (...)
    {
        log.Warning("The times of the start could not be left: {0}", CaughtException::Current().GetText());
    }
}

} // namespace Vela::System::Kiro::Internal
