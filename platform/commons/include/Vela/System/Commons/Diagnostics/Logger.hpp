#pragma once

#include <Vela/String.hpp>
#include <Vela/System/Commons/Api.hpp>
#include <Vela/System/Commons/Diagnostics/LogLevel.hpp>

#include <fmt/format.h>

#include <atomic>
#include <typeinfo>
#include <utility>

namespace Vela::System::Commons::Diagnostics
{

/// Writes the messages of one category. Loggers are made by the registry, live to the end of the process and are
/// thread-safe. A disabled level costs one comparison and formats nothing.
///
/// Before the log manager exists messages are kept, up to a bound, and written as soon as it does; if it never does,
/// fatal messages and errors go to standard output at the end of the process. After the manager is disposed they go
/// there at once.
class VELA_COMMONS_API Logger
{
public:
    explicit Logger(String loggerCategory);
    Logger(const Logger&) = delete;
    Logger& operator=(const Logger&) = delete;

    /// The logger of a category; the same object for the same text.
    static Logger& Get(const String& category);
    /// The logger of a class: its name with dots for "::".
    static Logger& Get(const std::type_info& type);

    [[nodiscard]] const String& GetCategory() const noexcept
    {
        return category;
    }

    [[nodiscard]] LogLevel GetLevel() const noexcept
    {
        return level.load(std::memory_order_relaxed);
    }

    void SetLevel(LogLevel newLevel) noexcept
    {
        level.store(newLevel, std::memory_order_relaxed);
    }

    [[nodiscard]] bool IsEnabled(LogLevel messageLevel) const noexcept
    {
        return messageLevel <= GetLevel();
    }

    /// Writes a text as it is, when the level is enabled; never throws.
    void Write(LogLevel messageLevel, const String& text) noexcept;

    /// Formats with fmt and writes; never throws.
    template <typename... Args>
    void Log(LogLevel messageLevel, fmt::format_string<Args...> format, Args&&... args)
    {
        if (IsEnabled(messageLevel))
        {
            WriteFormatted(messageLevel, format, fmt::make_format_args(args...));
        }
    }

    template <typename... Args>
    void Fatal(fmt::format_string<Args...> format, Args&&... args)
    {
        Log(LogLevel::Fatal, format, std::forward<Args>(args)...);
    }

    template <typename... Args>
    void Error(fmt::format_string<Args...> format, Args&&... args)
    {
        Log(LogLevel::Error, format, std::forward<Args>(args)...);
    }

    template <typename... Args>
    void Warning(fmt::format_string<Args...> format, Args&&... args)
    {
        Log(LogLevel::Warning, format, std::forward<Args>(args)...);
    }

    template <typename... Args>
    void Info(fmt::format_string<Args...> format, Args&&... args)
    {
        Log(LogLevel::Info, format, std::forward<Args>(args)...);
    }

    template <typename... Args>
    void Debug(fmt::format_string<Args...> format, Args&&... args)
    {
        Log(LogLevel::Debug, format, std::forward<Args>(args)...);
    }

    template <typename... Args>
    void Trace(fmt::format_string<Args...> format, Args&&... args)
    {
        Log(LogLevel::Trace, format, std::forward<Args>(args)...);
    }

private:
    void WriteFormatted(LogLevel messageLevel, fmt::string_view format, fmt::format_args arguments) noexcept;

    const String category;
    std::atomic<LogLevel> level;
};

} // namespace Vela::System::Commons::Diagnostics
