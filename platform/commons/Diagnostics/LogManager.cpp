#include <Vela/AppDomainSingleton.hpp>
#include <Vela/System/Commons/Diagnostics/LogManager.hpp>

#include <Diagnostics/JournalSink.hpp>
#include <Diagnostics/LogConfiguration.hpp>
#include <Diagnostics/LogManagerData.hpp>
#include <Diagnostics/LogRegistry.hpp>

#include <utility>

namespace Vela::System::Commons::Diagnostics
{

namespace
{

LogManager& Create(std::shared_ptr<LogManagerData> data)
{
    AppDomain::CreateInstance();
    // A second manager must not touch the sinks of the first.
    if (LogManager::TryGetInstance() != nullptr)
    {
        throw InvalidOperationException("Logging was set up already");
    }
    return AppDomainSingleton<LogManager>::CreateInstance(std::move(data));
}

LogManager& CreateWithSink(LogLevel level, std::unique_ptr<LogSink> sink)
{
    std::vector<std::unique_ptr<LogSink>> sinks;
    sinks.push_back(std::move(sink));
    return Create(std::make_shared<LogManagerData>(LogLevels(level), std::move(sinks)));
}

} // namespace

LogManager& LogManager::CreateInstance(LogLevel level)
{
    return CreateWithSink(level, MakeStandardOutputSink(LogLevel::Trace));
}

LogManager& LogManager::CreateInstance(LogLevel level, const String& file)
{
    return CreateWithSink(level, std::make_unique<FileSink>(LogLevel::Trace, file, LogRotation()));
}

LogManager& LogManager::CreateInstanceFromFile(LogLevel level, const String& configFile)
{
    return Create(LogConfiguration(level, configFile).MakeData());
}

void LogManager::CheckConfiguration(const String& configFile)
{
    const LogConfiguration configuration(LogLevel::Info, configFile);
}

void LogManager::DisposeInstance()
{
    AppDomainSingleton<LogManager>::DisposeInstance();
}

LogManager* LogManager::TryGetInstance()
{
    return AppDomainSingleton<LogManager>::TryGetInstance();
}

void LogManager::AssignAppDomain(AppDomain& appDomain)
{
    if (Singleton<AppDomain>::TryGetInstance() == nullptr)
    {
        Singleton<AppDomain>::SetInstance(appDomain);
    }
}

void LogManager::WriteKeptErrors() noexcept
{
    LogRegistry::GetInstance().WriteKeptErrors();
}

LogManager::LogManager(std::shared_ptr<LogManagerData> managerData)
{
    LogRegistry::GetInstance().Attach(std::move(managerData));
}

LogManager::~LogManager()
{
    LogRegistry::GetInstance().Detach();
}

LogLevel LogManager::GetLevel() const
{
    return LogRegistry::GetInstance().GetLevel();
}

void LogManager::SetLevel(const String& categoryPrefix, LogLevel level)
{
    LogRegistry::GetInstance().SetLevel(categoryPrefix, level);
}

std::vector<CategoryLevel> LogManager::GetLevels() const
{
    return LogRegistry::GetInstance().GetLevels();
}

LogHistory LogManager::GetHistory(std::uint64_t after, std::size_t maximumCount) const
{
    return LogRegistry::GetInstance().GetHistory(after, maximumCount);
}

void LogManager::Flush() noexcept
{
    LogRegistry::GetInstance().Flush();
}

} // namespace Vela::System::Commons::Diagnostics
