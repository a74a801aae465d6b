#pragma once

#include <Vela/String.hpp>
#include <Vela/System/Commons/Diagnostics/LogManager.hpp>

#include <TemporaryDirectory.hpp>

namespace Vela::Testing
{

/// Logs into a file while it lives, so that a test sees what an operator would.
class CapturedLog
{
public:
    explicit CapturedLog(System::Commons::Diagnostics::LogLevel level = System::Commons::Diagnostics::LogLevel::Debug)
        : manager(System::Commons::Diagnostics::LogManager::CreateInstance(level, directory / fileName))
    {
        earlierSize = GetText().size();
    }

    CapturedLog(const CapturedLog&) = delete;
    CapturedLog& operator=(const CapturedLog&) = delete;

    ~CapturedLog()
    {
        System::Commons::Diagnostics::LogManager::DisposeInstance();
    }

    /// What was logged since the construction, without the messages kept from before.
    [[nodiscard]] String GetText() const
    {
        manager.Flush();
        return directory.Read(fileName).substr(earlierSize);
    }

    [[nodiscard]] bool Contains(const String& text) const
    {
        return GetText().find(text) != String::npos;
    }

    /// How often a text was logged.
    [[nodiscard]] std::size_t Count(const String& text) const
    {
        const String lines = GetText();
        std::size_t count = 0;
        for (auto at = lines.find(text); at != String::npos; at = lines.find(text, at + 1))
        {
            ++count;
        }
        return count;
    }

private:
    static constexpr const char* fileName = "captured.log";

    TemporaryDirectory directory;
    System::Commons::Diagnostics::LogManager& manager;
    std::size_t earlierSize = 0;
};

} // namespace Vela::Testing
