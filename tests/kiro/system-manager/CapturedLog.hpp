#pragma once

#include <Vela/System/Commons/Diagnostics/LogManager.hpp>

#include <TemporaryDirectory.hpp>

#include <algorithm>
#include <chrono>
#include <sstream>
#include <string>
#include <thread>
#include <vector>

namespace Vela::Testing
{

/// The log of this process while it lives, up to the debug level.
class CapturedLog
{
public:
    CapturedLog()
    {
        LogManager::CreateInstance(System::Commons::Diagnostics::LogLevel::Debug, directory / file);
    }

    CapturedLog(const CapturedLog&) = delete;
    CapturedLog& operator=(const CapturedLog&) = delete;

    ~CapturedLog()
    {
        LogManager::DisposeInstance();
    }

    /// Level and message of each line so far: "Error: message".
    [[nodiscard]] std::vector<std::string> GetLines() const
    {
        LogManager::TryGetInstance()->Flush();
        std::vector<std::string> lines;
        std::istringstream stream(directory.Read(file));
        for (std::string line; std::getline(stream, line);)
        {
            // Time, process, level, category and message.
            std::istringstream words(line);
            std::string time, process, level, category, message;
            words >> time >> process >> level >> category >> std::ws;
            std::getline(words, message);
            lines.push_back(level.append(": ").append(message));
        }
        return lines;
    }

    [[nodiscard]] bool Has(const std::string& line) const
    {
        return Count(line) > 0;
    }

    [[nodiscard]] std::ptrdiff_t Count(const std::string& line) const
    {
        const auto lines = GetLines();
        return std::count(lines.begin(), lines.end(), line);
    }

    /// The lines of one level.
    [[nodiscard]] std::vector<std::string> GetLines(const std::string& level) const
    {
        auto lines = GetLines();
        std::erase_if(lines, [&](const std::string& line) { return !line.starts_with(level + ": "); });
        return lines;
    }

private:
    using LogManager = System::Commons::Diagnostics::LogManager;

    static constexpr const char* file = "test.log";

    TemporaryDirectory directory;
};

} // namespace Vela::Testing
