#pragma once

#include "../Output/Json.hpp"
#include "../Output/Style.hpp"

#include <Vela/System/Kiro/Services/Internal/SystemDiagnostics.hpp>

#include <cstdint>
#include <string>
#include <string_view>

namespace Vela::Kiroctl
{

/// "740 us", "12.3 ms", "4.21 s", "5 min 12 s", "3 h 20 min", "12 d 3 h".
std::string FormatDuration(std::int64_t microseconds);
/// "812 kB", "12.3 MB"; a dash for 0.
std::string FormatBytes(std::uint64_t bytes);
/// "2024-08-01T12:34:56.123456Z".
std::string FormatTime(std::int64_t microsecondsSinceEpoch);
/// How a state is to be seen.
Style GetStateStyle(std::string_view state);

Json ToJson(const System::Kiro::Services::Internal::FailureReport& failure);
Json ToJson(const System::Kiro::Services::Internal::TimedStep& step);
Json ToJson(const System::Kiro::Services::Internal::ProcessStatus& process);
Json ToJson(const System::Kiro::Services::Internal::ComponentStatus& component);
/// "StartComponent of component 'Tank1' in process 'Plant'".
std::string Describe(const System::Kiro::Services::Internal::TimedStep& step);

} // namespace Vela::Kiroctl
