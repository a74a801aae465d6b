#pragma once

#include <Settings/ReadOnlyXml.hpp>

#include <chrono>
#include <cstdint>

namespace Vela::System::Kiro::Internal::Settings
{

/// How processes are started, watched and stopped.
class ProcessSettings : public ReadOnlyXml
{
public:
    static constexpr const char* elementXmlName = "ProcessSettings";
    static constexpr const char* singleProcessXmlName = "singleProcess";
    static constexpr const char* startWaitTimeXmlName = "startWaitTime";
    static constexpr const char* stopWaitTimeXmlName = "stopWaitTime";
    static constexpr const char* watchdogIdleTimeXmlName = "watchdogIdleTime";
    static constexpr const char* watchdogDelayTimeXmlName = "watchdogDelayTime";
    static constexpr const char* defaultProcessAffinityMaskXmlName = "defaultProcessAffinityMask";
    static constexpr const char* slowStepTimeXmlName = "slowStepTime";

    void ReadXml(Commons::Xml::XmlReader& reader, Commons::Xml::XmlSerializationContext& context) override;

    /// Whether all components run in the main process.
    [[nodiscard]] bool IsSingleProcess() const noexcept;
    /// For the command line, whose word counts more.
    void SetSingleProcess(bool isSingle) noexcept;
    /// How long the start of the processes is waited for.
    [[nodiscard]] std::chrono::milliseconds GetStartWaitTime() const noexcept;
    /// How long their end is waited for.
    [[nodiscard]] std::chrono::milliseconds GetStopWaitTime() const noexcept;
    /// Pause between two rounds of the process watchdog.
    [[nodiscard]] std::chrono::milliseconds GetWatchdogIdleTime() const noexcept;
    /// Delay of the process watchdog.
    [[nodiscard]] std::chrono::milliseconds GetWatchdogDelayTime() const noexcept;
    /// After this time a lifecycle call that has not returned is logged.
    [[nodiscard]] std::chrono::milliseconds GetSlowStepTime() const noexcept;
    /// The processor for processes that set none; -1 means all.
    [[nodiscard]] std::int32_t GetDefaultProcessAffinityMask() const noexcept;

private:
    bool singleProcess = false;
    std::chrono::milliseconds startWaitTime{6000};
    std::chrono::milliseconds stopWaitTime{3000};
    std::chrono::milliseconds watchdogIdleTime{1000};
    std::chrono::milliseconds watchdogDelayTime{1000};
    std::chrono::milliseconds slowStepTime{10000};
    std::int32_t defaultProcessAffinityMask = -1;
};

} // namespace Vela::System::Kiro::Internal::Settings
