#pragma once

#include "../Output/Json.hpp"

#include <Vela/System/Kiro/Services/Internal/SystemDiagnostics.hpp>

#include <string>
#include <string_view>
#include <vector>

namespace Vela::Kiroctl
{

using System::Kiro::Services::Internal::TimedStep;
using System::Kiro::Services::Internal::Timeline;

/// The document in which a timeline is kept.
Json ToDocument(const Timeline& timeline);
/// @throws CommandError naming the file: NotFound without one, Refused when it cannot be read, Usage when it holds no
/// timeline
Timeline ReadTimeline(const std::string& path);
/// The content of a file as JSON.
/// @throws CommandError as above
Json ReadJsonFile(const std::string& path);

/// Whether a phase brings the system up; the others take it down.
bool IsStartPhase(std::string_view phase);
/// Those steps of a timeline that belong to its start, or to its end.
Timeline Select(const Timeline& timeline, bool isStart);
/// Nanoseconds.
inline std::int64_t GetTime(const TimedStep& step)
{
    return step.end - step.begin;
}

} // namespace Vela::Kiroctl
