#include "RunningSystem.hpp"

#include "../CommandError.hpp"

#include <Config/Components.hpp>
#include <Vela/System/Commons/Diagnostics/CrashRecords.hpp>
#include <Vela/System/Kiro/Services/Internal/DiagnosticsServiceProxy.hpp>
#include <Vela/System/Kiro/Services/Internal/SystemDiagnosticsServiceProxy.hpp>
#include <Vela/System/Kiro/Services/Internal/SystemManagerServiceProxy.hpp>
#include <Vela/System/Rsc/RscManager.hpp>
#include <Vela/System/Rsc/ServiceManager.hpp>

#include <signal.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cctype>
#include <cerrno>
#include <limits>
#include <numeric>

namespace Vela::Kiroctl
{

namespace
{

using System::Kiro::Internal::Sm::Config::Components;
using System::Rsc::RscManager;

bool IsAlive(pid_t process)
{
    return process != 0 && (::kill(process, 0) == 0 || errno == EPERM);
}

/// Why no main process answers, and what to type next.
std::string DescribeSilence()
{
    const String directory = RscManager::FindRuntimeDirectory(false);
    const pid_t process = RscManager::FindMainProcess();
    if (IsAlive(process))
    {
        struct stat status
        {
        };
        const bool isOthers = ::stat(directory.c_str(), &status) == 0 && status.st_uid != ::geteuid();
        return fmt::format("The system in '{}' does not answer; its main process is {}.{}", directory, process,
                           isOthers ? fmt::format(" It is user {}'s: ask as that user, or as one to whom its "
                                                  "security settings grant something.",
                                                  status.st_uid)
                                    : "");
    }
    const bool hasRecord = !System::Commons::Diagnostics::CrashRecords(directory).List().empty();
    return fmt::format("No system runs in '{}'{}.{}", directory,
                       process == 0 ? "" : fmt::format("; its main process ({}) has died", process),
                       hasRecord ? " 'kiroctl crashes last' shows the last failure." : "");
}

template <typename Factory>
auto Find(Factory& factory, const System::Rsc::ServiceProvider& provider)
{
    auto service = System::Rsc::ServiceManager::TryGetService(factory, provider, RunningSystem::GetPatience());
    if (!service)
    {
        const bool isMain = provider.GetKind() == System::Rsc::ServiceProvider::Kind::MainProcess;
        throw CommandError(ExitCode::Unreachable, "{}",
                           isMain ? DescribeSilence()
                                  : fmt::format("Process '{}' does not answer.", provider.GetName()));
    }
    return service;
}

std::size_t CountChanges(std::string_view left, std::string_view right)
{
    std::vector<std::size_t> row(right.size() + 1);
    std::iota(row.begin(), row.end(), std::size_t{0});
    for (std::size_t i = 0; i < left.size(); ++i)
    {
        std::size_t diagonal = row[0];
        row[0] = i + 1;
        for (std::size_t j = 0; j < right.size(); ++j)
        {
            const bool isSame =
                std::tolower(static_cast<unsigned char>(left[i])) == std::tolower(static_cast<unsigned char>(right[j]));
            const std::size_t changed = diagonal + (isSame ? 0 : 1);
            diagonal = row[j + 1];
            row[j + 1] = std::min({changed, row[j] + 1, row[j + 1] + 1});
        }
    }
    return row.back();
}

constexpr std::size_t isFar = std::numeric_limits<std::size_t>::max();

std::size_t GetDistance(std::string_view name, std::string_view candidate)
{
    const std::size_t changes = CountChanges(name, candidate);
    return changes <= std::max<std::size_t>(2, std::max(name.size(), candidate.size()) / 2) ? changes : isFar;
}

} // namespace

RunningSystem::RunningSystem(Session& session)
{
    session.Connect();
}

std::shared_ptr<Services::ISystemDiagnosticsService> RunningSystem::GetDiagnostics() const
{
    return Find(Services::SystemDiagnosticsServiceProxyFactory::GetInstance(),
                System::Rsc::ServiceProvider::MainProcess());
}

std::shared_ptr<Services::ISystemManagerService> RunningSystem::GetManager() const
{
    return Find(Services::SystemManagerServiceProxyFactory::GetInstance(), System::Rsc::ServiceProvider::MainProcess());
}

std::shared_ptr<Services::IDiagnosticsService> RunningSystem::GetProcess(const String& process) const
{
    return Find(Services::DiagnosticsServiceProxyFactory::GetInstance(),
                System::Rsc::ServiceProvider::Process(process));
}

std::shared_ptr<Services::IDiagnosticsService> RunningSystem::TryGetProcess(const String& process,
                                                                            std::chrono::milliseconds patience) const
{
    return System::Rsc::ServiceManager::TryGetService(Services::DiagnosticsServiceProxyFactory::GetInstance(),
                                                      System::Rsc::ServiceProvider::Process(process), patience);
}

std::chrono::milliseconds RunningSystem::GetPatience()
{
    return std::chrono::milliseconds(IsAlive(RscManager::FindMainProcess()) ? 3000 : 500);
}

bool RunningSystem::CanAnswer(const Services::ProcessStatus& process)
{
    return process.isMain || process.state == "connected";
}

std::vector<String> RunningSystem::SelectProcesses(const String& name) const
{
    std::vector<String> known;
    std::vector<String> selected;
    for (const auto& process : GetDiagnostics()->GetProcesses())
    {
        known.push_back(process.name);
        if (name == process.name || (name.empty() && CanAnswer(process)))
        {
            selected.push_back(process.name);
        }
    }
    if (selected.empty())
    {
        ThrowUnknown("process", name, known);
    }
    return selected;
}

std::vector<String> RunningSystem::ListComponents(const std::vector<Services::ComponentStatus>& components)
{
    std::vector<String> names;
    names.reserve(components.size());
    for (const auto& component : components)
    {
        names.push_back(component.name);
    }
    return names;
}

void ThrowUnknown(const char* kind, const std::string& name, std::span<const String> known)
{
    throw CommandError(ExitCode::NotFound, "There is no {} '{}'.{}", kind, name, SuggestNames(name, known));
}

std::vector<std::string> FindNearest(const std::string& name, std::span<const String> known)
{
    std::vector<std::pair<std::size_t, std::string>> distances;
    for (const String& candidate : known)
    {
        // The copies of a generic component, "Name@Process", are also meant by its name in the configuration.
        const std::string generic = candidate.substr(0, candidate.rfind(Components::processSeparator));
        const std::size_t changes = std::min(GetDistance(name, candidate), GetDistance(name, generic));
        if (changes != isFar)
        {
            distances.emplace_back(changes, candidate);
        }
    }
    std::sort(distances.begin(), distances.end());
    std::vector<std::string> nearest;
    for (const auto& [changes, candidate] : distances)
    {
        if (nearest.size() < 3 || changes == 0)
        {
            nearest.push_back(candidate);
        }
    }
    return nearest;
}

std::string SuggestNames(const std::string& name, std::span<const String> known)
{
    const auto nearest = FindNearest(name, known);
    if (nearest.empty())
    {
        return {};
    }
    std::string text = " Did you mean";
    for (std::size_t i = 0; i < nearest.size(); ++i)
    {
        text += i == 0 ? " '" : i + 1 == nearest.size() ? " or '" : ", '";
        text += nearest[i] + "'";
    }
    return text + "?";
}

} // namespace Vela::Kiroctl
