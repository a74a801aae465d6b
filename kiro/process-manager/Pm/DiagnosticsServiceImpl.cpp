#include <Pm/DiagnosticsServiceImpl.hpp>
#include <Vela/AppDomain.hpp>
#include <Vela/AppDomainSingleton.hpp>
#include <Vela/EnumDictionary.hpp>
#include <Vela/Exceptions.hpp>
#include <Vela/Singleton.hpp>
#include <Vela/System/Commons/Diagnostics/LogManager.hpp>
#include <Vela/System/Commons/Diagnostics/ThreadStacks.hpp>
#include <Vela/System/Commons/Environment.hpp>
#include <Vela/System/Commons/EnvironmentData.hpp>
#include <Vela/System/Commons/Runtime/ProcessUsage.hpp>
#include <Vela/VelaVersion.hpp>

#include <unistd.h>

#include <algorithm>

namespace Vela::System::Kiro::Services::Internal
{

using Commons::Diagnostics::LogLevel;
using Commons::Diagnostics::LogManager;

namespace
{

/// What a caller may set, in bytes and in number: levels are kept to the end of the process.
constexpr std::size_t maximumCategory = 512;
constexpr std::size_t maximumLevels = 256;

LogManager& GetLog()
{
    if (auto* manager = LogManager::TryGetInstance())
    {
        return *manager;
    }
    throw InvalidOperationException("The process has no log at the moment.");
}

} // namespace

ProcessIdentity DiagnosticsServiceImpl::GetIdentity()
{
    return {.name = Singleton<AppDomain>::GetInstance().GetApplicationName(),
            .processId = ::getpid(),
            .startTime = startTime.GetMicroseconds(),
            .executable = Commons::Environment::GetExecutablePath(),
            .version = VelaVersion::GetCurrent().ToString()};
}

ProcessResources DiagnosticsServiceImpl::GetResources()
{
    const auto usage = Commons::Runtime::ReadProcessUsage(::getpid());
    if (!usage)
    {
        throw Exception("The kernel's figures of this process cannot be read.");
    }
    return {.residentBytes = usage->residentBytes,
            .proportionalBytes = usage->proportionalBytes,
            .userTime = usage->userTime.count(),
            .systemTime = usage->systemTime.count(),
            .threads = usage->threads,
            .state = String(1, usage->state)};
}

std::vector<LogCategoryLevel> DiagnosticsServiceImpl::GetLogLevels()
{
    std::vector<LogCategoryLevel> levels;
    for (auto& [category, level] : GetLog().GetLevels())
    {
        levels.push_back({std::move(category), level});
    }
    return levels;
}

void DiagnosticsServiceImpl::SetLogLevel(const String& category, LogLevel level)
{
    if (level == LogLevel::None || FindEnumString(level) == nullptr)
    {
        throw ArgumentException::ForParameter("level", fmt::format("{} is no log level", static_cast<int>(level)));
    }
    if (category.size() > maximumCategory)
    {
        throw ArgumentException::ForParameter("category",
                                              fmt::format("a category of {} bytes is too long", category.size()));
    }
    auto& manager = GetLog();
    const auto levels = manager.GetLevels();
    const bool isNew =
        std::none_of(levels.begin(), levels.end(), [&](const auto& known) { return known.category == category; });
    if (isNew && levels.size() >= maximumLevels)
    {
        throw InvalidOperationException("{} categories have levels of their own; no more can be set.", levels.size());
    }
    manager.SetLevel(category, level);
}

LogPage DiagnosticsServiceImpl::GetLogLines(std::uint64_t after, std::uint32_t maximumCount)
{
    auto history = GetLog().GetHistory(after, maximumCount);
    LogPage page;
    page.lastNumber = history.lastNumber;
    page.lines.reserve(history.entries.size());
    for (auto& entry : history.entries)
    {
        page.lines.push_back({.number = entry.number,
                              .time = entry.time.GetMicroseconds(),
                              .level = entry.level,
                              .category = std::move(entry.category),
                              .text = std::move(entry.text)});
    }
    return page;
}

std::uint32_t DiagnosticsServiceImpl::LogThreadStacks()
{
    return static_cast<std::uint32_t>(Commons::Diagnostics::ThreadStacks::Log());
}

std::vector<EnvironmentValue> DiagnosticsServiceImpl::GetEnvironment()
{
    std::vector<EnvironmentValue> values;
    if (const auto* data = AppDomainSingleton<Commons::EnvironmentData>::TryGetInstance())
    {
        for (auto& variable : data->GetVariables())
        {
            values.push_back({std::move(variable.name), std::move(variable.value), variable.isOverridden});
        }
    }
    return values;
}

ProcessServices DiagnosticsServiceImpl::GetServices()
{
    return {.published = Rsc::ServiceUsage::GetPublished(), .used = Rsc::ServiceUsage::GetUsed()};
}

} // namespace Vela::System::Kiro::Services::Internal
