#pragma once

#include "../CommandError.hpp"

#include <Vela/EnumDictionary.hpp>
#include <Vela/System/Commons/Diagnostics/LogLevel.hpp>

#include <algorithm>
#include <cctype>
#include <string>

namespace Vela::Kiroctl
{

using System::Commons::Diagnostics::LogLevel;

/// A level by its name, in upper or lower case.
/// @throws CommandError (Usage)
inline LogLevel ParseLogLevel(const std::string& text)
{
    const auto isSame = [&](const std::string& name)
    {
        return std::equal(name.begin(), name.end(), text.begin(), text.end(),
                          [](unsigned char left, unsigned char right)
                          { return std::tolower(left) == std::tolower(right); });
    };
    for (const auto& [level, name] : GetEnumDictionary(LogLevel()).GetEntries())
    {
        if (level != LogLevel::None && isSame(name))
        {
            return level;
        }
    }
    throw CommandError(ExitCode::Usage, "'{}' is no log level: Off, Fatal, Error, Warning, Info, Debug, Trace.", text);
}

/// The level's name, also for one that a newer system may have.
inline std::string GetLevelName(LogLevel level)
{
    const char* name = FindEnumString(level);
    return name != nullptr ? name : fmt::format("{}", static_cast<int>(level));
}

} // namespace Vela::Kiroctl
