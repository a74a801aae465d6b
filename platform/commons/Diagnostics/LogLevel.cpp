#include <Vela/System/Commons/Diagnostics/LogLevel.hpp>

namespace Vela::System::Commons::Diagnostics
{

const EnumDictionary<LogLevel>& GetEnumDictionary(LogLevel)
{
    // Never destroyed: messages are written to the very end of the process.
    static const auto& dictionary = *new EnumDictionary<LogLevel>{
        {LogLevel::None, "None"},   {LogLevel::Off, "Off"},         {LogLevel::Fatal, "Fatal"},
        {LogLevel::Error, "Error"}, {LogLevel::Warning, "Warning"}, {LogLevel::Info, "Info"},
        {LogLevel::Debug, "Debug"}, {LogLevel::Trace, "Trace"},
    };
    return dictionary;
}

} // namespace Vela::System::Commons::Diagnostics
