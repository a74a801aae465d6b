#include <Vela/System/Commons/Diagnostics/Logger.hpp>
#include <Vela/TypeName.hpp>

#include <Diagnostics/LogRegistry.hpp>

#include <utility>

namespace Vela::System::Commons::Diagnostics
{

Logger::Logger(String loggerCategory)
    : category(std::move(loggerCategory))
    , level(LogLevel::Trace)
{
}

Logger& Logger::Get(const String& category)
{
    return LogRegistry::GetInstance().GetLogger(category);
}

Logger& Logger::Get(const std::type_info& type)
{
    return Get(GetLogCategory(type));
}

void Logger::Write(LogLevel messageLevel, const String& text) noexcept
{
    if (!IsEnabled(messageLevel))
    {
        return;
    }
    try
    {
        LogRegistry::GetInstance().Write({Chrono::DateTime::GetUtcNow(), messageLevel, category, text});
    }
    catch (...)
    {
        // Without memory for the copy the message is lost; the process goes on.
        return;
    }
}

void Logger::WriteFormatted(LogLevel messageLevel, fmt::string_view format, fmt::format_args arguments) noexcept
{
    try
    {
        Write(messageLevel, fmt::vformat(format, arguments));
    }
    catch (...)
    {
        Write(messageLevel, String(format.data(), format.size()));
    }
}

} // namespace Vela::System::Commons::Diagnostics
