#include <Host/Supervision.hpp>

#include <fmt/format.h>

#include <ctime>
#include <utility>

namespace Vela::System::Kiro::Internal
{

namespace
{

/// Lets a supervisor tell a message that it expects from one that was sent before.
String GetMonotonicTime()
{
    timespec now{};
    clock_gettime(CLOCK_MONOTONIC, &now);
    constexpr long nanosecondsInMicrosecond = 1000;
    return fmt::format("MONOTONIC_USEC={}{:06}", now.tv_sec, now.tv_nsec / nanosecondsInMicrosecond);
}

} // namespace

Supervision::Supervision()
{
    using std::chrono::duration_cast;
    using std::chrono::milliseconds;
    const auto limit = supervisor.GetWatchdogTime();
    if (limit.count() > 0)
    {
        // Twice as often as need be: one that is late does no harm.
        keeper = std::make_unique<Commons::Threading::WorkerThread>(
            "KeepAlive", [this] { KeepAlive(); }, duration_cast<milliseconds>(limit / 2));
        keeper->Start();
    }
}

Supervision::~Supervision() = default;

void Supervision::SetExamination(Examination newExamination)
{
    const std::lock_guard lock(mutex);
    examination = std::move(newExamination);
}

void Supervision::KeepAlive()
{
    const std::lock_guard lock(mutex);
    const auto patience = std::chrono::duration_cast<std::chrono::milliseconds>(supervisor.GetWatchdogTime());
    const String fault = examination ? examination(patience) : String();
    const bool wasSilent = std::exchange(isSilent, !fault.empty());
    if (!isSilent)
    {
        supervisor.Notify({"WATCHDOG=1"});
    }
    if (isSilent && !wasSilent)
    {
        log.Error("The service supervisor gets no keep-alive any more: {0}", fault);
        SendStatus(fault);
    }
    if (wasSilent && !isSilent)
    {
        log.Warning("The service supervisor gets keep-alives again.");
        const std::lock_guard statusLock(statusMutex);
        SendStatus(status);
    }
}

void Supervision::ReportStatus(const String& text)
{
    const std::lock_guard lock(statusMutex);
    if (supervisor.IsPresent() && !hasFailed)
    {
        status = text;
        SendStatus(text);
    }
}

void Supervision::ReportFailure(const String& text)
{
    ReportStatus(text);
    const std::lock_guard lock(statusMutex);
    hasFailed = true;
}

void Supervision::SendStatus(const String& text) const noexcept
{
    supervisor.Notify({"STATUS=" + text});
}

void Supervision::ReportReady() const noexcept
{
    supervisor.Notify({"READY=1"});
}

void Supervision::ReportStopping() const noexcept
{
    supervisor.Notify({"STOPPING=1"});
}

void Supervision::ReportRestarting() const noexcept
{
    if (supervisor.IsPresent())
    {
        supervisor.Notify({"RELOADING=1", GetMonotonicTime()});
    }
}

} // namespace Vela::System::Kiro::Internal
