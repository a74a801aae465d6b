#pragma once

#include <Vela/String.hpp>
#include <Vela/System/Commons/Diagnostics/LogLevel.hpp>
#include <Vela/System/Rsc/Marshaling.hpp>
#include <Vela/System/Rsc/ServiceUsage.hpp>

#include <cstdint>
#include <tuple>
#include <vector>

namespace Vela::System::Kiro::Services::Internal
{

/// Which process it is that answers. Points in time are UTC, in microseconds since 1970.
struct ProcessIdentity
{
    String name;
    std::int32_t processId = 0;
    std::int64_t startTime = 0;
    String executable;
    /// The version of the platform.
    String version;
};

/// What a process takes of the machine: memory in bytes, processor time in microseconds.
struct ProcessResources
{
    std::uint64_t residentBytes = 0;
    /// Each shared page counted in equal parts for its users; 0 where the kernel does not tell.
    std::uint64_t proportionalBytes = 0;
    std::int64_t userTime = 0;
    std::int64_t systemTime = 0;
    std::uint32_t threads = 0;
    /// The kernel's letter, such as "S"; empty when the process is gone.
    String state;
};

/// The level of a category prefix; the empty prefix stands for all categories without a level of their own.
struct LogCategoryLevel
{
    String category;
    Commons::Diagnostics::LogLevel level = Commons::Diagnostics::LogLevel::None;
};

/// One message of the log.
struct LogLine
{
    /// Counts the messages of the process from 1.
    std::uint64_t number = 0;
    std::int64_t time = 0;
    Commons::Diagnostics::LogLevel level = Commons::Diagnostics::LogLevel::None;
    String category;
    String text;
};

/// A part of the log, oldest first.
struct LogPage
{
    std::vector<LogLine> lines;
    /// The number of the process's last message.
    std::uint64_t lastNumber = 0;
};

/// An environment variable that settings or somebody at run time have defined.
struct EnvironmentValue
{
    String name;
    String value;
    /// It beats every default.
    bool isOverridden = false;
};

/// Services that the process publishes, and those that it has looked up.
struct ProcessServices
{
    std::vector<Rsc::PublishedService> published;
    std::vector<Rsc::UsedService> used;
};

} // namespace Vela::System::Kiro::Services::Internal

namespace Vela::System::Rsc
{

template <>
struct StructFields<Kiro::Services::Internal::ProcessIdentity>
{
    using Identity = Kiro::Services::Internal::ProcessIdentity;
    static constexpr auto fields = std::tuple(&Identity::name, &Identity::processId, &Identity::startTime,
                                              &Identity::executable, &Identity::version);
};

template <>
struct StructFields<Kiro::Services::Internal::ProcessResources>
{
    using Resources = Kiro::Services::Internal::ProcessResources;
    static constexpr auto fields =
        std::tuple(&Resources::residentBytes, &Resources::proportionalBytes, &Resources::userTime,
                   &Resources::systemTime, &Resources::threads, &Resources::state);
};

template <>
struct StructFields<Kiro::Services::Internal::LogCategoryLevel>
{
    using Level = Kiro::Services::Internal::LogCategoryLevel;
    static constexpr auto fields = std::tuple(&Level::category, &Level::level);
};

template <>
struct StructFields<Kiro::Services::Internal::LogLine>
{
    using Line = Kiro::Services::Internal::LogLine;
    static constexpr auto fields = std::tuple(&Line::number, &Line::time, &Line::level, &Line::category, &Line::text);
};

template <>
struct StructFields<Kiro::Services::Internal::EnvironmentValue>
{
    using Value = Kiro::Services::Internal::EnvironmentValue;
    static constexpr auto fields = std::tuple(&Value::name, &Value::value, &Value::isOverridden);
};

template <>
struct StructFields<Kiro::Services::Internal::ProcessServices>
{
    using Services = Kiro::Services::Internal::ProcessServices;
    static constexpr auto fields = std::tuple(&Services::published, &Services::used);
};

template <>
struct StructFields<Kiro::Services::Internal::LogPage>
{
    using Page = Kiro::Services::Internal::LogPage;
    static constexpr auto fields = std::tuple(&Page::lines, &Page::lastNumber);
};

} // namespace Vela::System::Rsc
