#pragma once

#include <Vela/String.hpp>
#include <Vela/System/Commons/Diagnostics/LogLevel.hpp>

namespace Vela::System::Kiro::Testing
{

/// One message of the log.
struct LogMessage
{
    Commons::Diagnostics::LogLevel level = Commons::Diagnostics::LogLevel::None;
    /// The class that wrote it, with dots: "Plant.Pump".
    String category;
    /// The lines of the message, as they were given to the logger.
    String text;
};

} // namespace Vela::System::Kiro::Testing
