#pragma once

#include "../Session.hpp"

#include <Vela/System/Kiro/Services/Internal/IDiagnosticsService.hpp>
#include <Vela/System/Kiro/Services/Internal/ISystemDiagnosticsService.hpp>
#include <Vela/System/Kiro/Services/Internal/ISystemManagerService.hpp>

#include <chrono>
#include <memory>
#include <span>
#include <vector>

namespace Vela::Kiroctl
{

namespace Services = System::Kiro::Services::Internal;

/// The services of the system in the runtime directory.
class RunningSystem
{
public:
    /// @throws CommandError (Unreachable) when there is no runtime directory
    explicit RunningSystem(Session& session);

    /// Each throws CommandError (Unreachable) when the process does not answer.
    [[nodiscard]] std::shared_ptr<Services::ISystemDiagnosticsService> GetDiagnostics() const;
    [[nodiscard]] std::shared_ptr<Services::ISystemManagerService> GetManager() const;
    [[nodiscard]] std::shared_ptr<Services::IDiagnosticsService> GetProcess(const String& process) const;
    /// Nothing when the process does not answer in time.
    [[nodiscard]] std::shared_ptr<Services::IDiagnosticsService>
    TryGetProcess(const String& process, std::chrono::milliseconds patience) const;

    /// How long a process may take to answer: a system that has only just been started gets its time.
    [[nodiscard]] static std::chrono::milliseconds GetPatience();

    /// Whether the process is one of those that answer questions about themselves.
    [[nodiscard]] static bool CanAnswer(const Services::ProcessStatus& process);
    /// The names of the processes that answer: the one that is given, or all without a name.
    /// @throws CommandError (NotFound) with the nearest names
    [[nodiscard]] std::vector<String> SelectProcesses(const String& name) const;
    /// Their names.
    [[nodiscard]] static std::vector<String> ListComponents(const std::vector<Services::ComponentStatus>& components);
};

/// @throws CommandError (NotFound) with the nearest names
[[noreturn]] void ThrowUnknown(const char* kind, const std::string& name, std::span<const String> known);
/// For the names that somebody may have meant: " Did you mean 'A' or 'B'?", nearest first; empty when none is near.
std::string SuggestNames(const std::string& name, std::span<const String> known);
/// At most three of the known names, nearest first by the number of letters to change; besides all copies of the
/// generic component of that name.
std::vector<std::string> FindNearest(const std::string& name, std::span<const String> known);

} // namespace Vela::Kiroctl
