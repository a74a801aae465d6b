#pragma once

#include "RunningSystem.hpp"

#include <functional>

namespace Vela::Kiroctl
{

/// Asks something that a process may leave unanswered; what it throws as its answer is thrown here.
/// @return whether it was answered
bool TryAsk(const std::function<void()>& question);

using ProcessQuestion =
    std::function<void(const String& process, const std::shared_ptr<Services::IDiagnosticsService>& service)>;

/// Asks processes in turns: one that hangs or has just died must not keep the others waiting, which may have only a
/// moment left themselves.
/// @return the processes that did not answer
std::vector<String> AskProcesses(const RunningSystem& system, const std::vector<String>& processes,
                                 const ProcessQuestion& question);

/// To be called when what the others have said has been shown.
/// @param what  what is missing of those that did not answer, such as "messages"
/// @throws CommandError (Unreachable) when there are any
void RequireAnswers(const char* what, const std::vector<String>& silentProcesses);

} // namespace Vela::Kiroctl
