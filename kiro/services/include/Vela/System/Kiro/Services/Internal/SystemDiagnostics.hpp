#pragma once

#include <Vela/System/Kiro/Services/Internal/ProcessDiagnostics.hpp>

namespace Vela::System::Kiro::Services::Internal
{

/// One step of the system: of a component, a library, a process, or a whole phase.
struct TimedStep
{
    /// The phase to which it belongs, such as "settings"; empty outside.
    String phase;
    /// The operation, such as "InitializeComponent"; of a phase its name.
    String step;
    /// What it was done to: "phase", "process", "library" or "component".
    String subject;
    String name;
    String process;
    /// Nanoseconds since the system manager came up; the end of a running step is now.
    std::int64_t begin = 0;
    std::int64_t end = 0;
    /// "running", "done" or "failed".
    String outcome;
};

/// All steps that were timed, in the order in which they began.
struct Timeline
{
    /// The name of the main process.
    String system;
    /// When the system manager came up: UTC, microseconds since 1970.
    std::int64_t origin = 0;
    std::vector<TimedStep> steps;
    /// Steps for which there was no room.
    std::uint64_t dropped = 0;
};

/// A failure in full. Without a failure the time is 0.
struct FailureReport
{
    String phase;
    String step;
    std::int64_t time = 0;
    String text;
};

/// How the system does. Points in time are UTC, in microseconds since 1970.
struct SystemStatus
{
    /// The name of the main process.
    String name;
    /// "starting", "settings-ready", "config-ready", "running", "failed" or "stopping".
    String state;
    std::int64_t since = 0;
    std::int64_t startTime = 0;
    std::int64_t now = 0;
    bool hasError = false;
    /// The phase that runs; empty when none does.
    String phase;
    String configuration;
    /// What ended the set-up.
    FailureReport failure;
    /// The steps that run now, the outermost first.
    std::vector<TimedStep> running;
};

struct ProcessStatus
{
    String name;
    /// 0 when it is not running.
    std::int32_t processId = 0;
    /// "connected", "starting", "external" or "ended".
    String state;
    bool isMain = false;
    /// 0 when it was not started.
    std::int64_t startTime = 0;
    ProcessResources resources;
};

/// A configured component, and how far it has come.
struct ComponentStatus
{
    String name;
    String type;
    String library;
    String process;
    String settingsPath;
    /// Where it is configured: file and line.
    String position;
    /// The one that counts; the largest number when it is not known yet.
    std::uint32_t startOrder = 0;
    bool isRequired = false;
    bool isEnabled = false;
    bool isController = false;
    /// "configured", "external", "created", "disabled", "ignored", "initialized", "set-up", "configured-up", "running",
    /// "busy" in a step, "failed", "removed", "stopped", "disposed" or "destroyed".
    String state;
    /// The last step, running when the state is "busy"; empty when there was none.
    String phase;
    String step;
    /// Begin of a running step, end of another one.
    std::int64_t since = 0;
    FailureReport failure;
};

} // namespace Vela::System::Kiro::Services::Internal

namespace Vela::System::Rsc
{

template <>
struct StructFields<Kiro::Services::Internal::TimedStep>
{
    using Step = Kiro::Services::Internal::TimedStep;
    static constexpr auto fields = std::tuple(&Step::phase, &Step::step, &Step::subject, &Step::name, &Step::process,
                                              &Step::begin, &Step::end, &Step::outcome);
};

template <>
struct StructFields<Kiro::Services::Internal::Timeline>
{
    using Line = Kiro::Services::Internal::Timeline;
    static constexpr auto fields = std::tuple(&Line::system, &Line::origin, &Line::steps, &Line::dropped);
};

template <>
struct StructFields<Kiro::Services::Internal::FailureReport>
{
    using Report = Kiro::Services::Internal::FailureReport;
    static constexpr auto fields = std::tuple(&Report::phase, &Report::step, &Report::time, &Report::text);
};

template <>
struct StructFields<Kiro::Services::Internal::SystemStatus>
{
    using Status = Kiro::Services::Internal::SystemStatus;
    static constexpr auto fields =
        std::tuple(&Status::name, &Status::state, &Status::since, &Status::startTime, &Status::now, &Status::hasError,
                   &Status::phase, &Status::configuration, &Status::failure, &Status::running);
};

template <>
struct StructFields<Kiro::Services::Internal::ProcessStatus>
{
    using Status = Kiro::Services::Internal::ProcessStatus;
    static constexpr auto fields = std::tuple(&Status::name, &Status::processId, &Status::state, &Status::isMain,
                                              &Status::startTime, &Status::resources);
};

template <>
struct StructFields<Kiro::Services::Internal::ComponentStatus>
{
    using Status = Kiro::Services::Internal::ComponentStatus;
    static constexpr auto fields = std::tuple(
        &Status::name, &Status::type, &Status::library, &Status::process, &Status::settingsPath, &Status::position,
        &Status::startOrder, &Status::isRequired, &Status::isEnabled, &Status::isController, &Status::state,
        &Status::phase, &Status::step, &Status::since, &Status::failure);
};

} // namespace Vela::System::Rsc
