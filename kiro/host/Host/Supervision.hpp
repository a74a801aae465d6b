#pragma once

#include <Vela/String.hpp>
#include <Vela/System/Commons/Diagnostics/Loggable.hpp>
#include <Vela/System/Commons/Runtime/ServiceSupervisor.hpp>
#include <Vela/System/Commons/Threading/WorkerThread.hpp>

#include <chrono>
#include <functional>
#include <memory>
#include <mutex>

namespace Vela::System::Kiro::Internal
{

/// What the main process tells the service supervisor that started it: when it is ready, what it does, that it goes
/// down or starts again in place, and, while it is healthy, that it is. Without a supervisor nothing happens and no
/// thread runs.
///
/// ReportStatus and ReportFailure may come from any thread, all others are the main thread's.
class Supervision : private Commons::Diagnostics::Loggable<Supervision>
{
public:
    /// Answers what is wrong with the system when something takes longer than the given time; empty when it is healthy.
    using Examination = std::function<String(std::chrono::milliseconds patience)>;

    /// Takes the supervisor's variables out of the environment, and begins to keep alive if that is expected.
    Supervision();
    Supervision(const Supervision&) = delete;
    Supervision& operator=(const Supervision&) = delete;
    ~Supervision();

    /// From now on keep-alives depend on the examination; an empty function ends that, and none is in progress when the
    /// operation returns.
    void SetExamination(Examination newExamination);

    void ReportStatus(const String& text);
    /// The last status: why the process ends must not be hidden by how it does.
    void ReportFailure(const String& text);
    void ReportReady() const noexcept;
    void ReportStopping() const noexcept;
    /// The process will be the same one, and ready again, so it must not be taken for one that ends.
    void ReportRestarting() const noexcept;

private:
    void KeepAlive();
    void SendStatus(const String& text) const noexcept;

    const Commons::Runtime::ServiceSupervisor supervisor;
    std::mutex mutex;
    Examination examination;
    bool isSilent = false;
    std::mutex statusMutex;
    String status;
    bool hasFailed = false;
    std::unique_ptr<Commons::Threading::WorkerThread> keeper;
};

} // namespace Vela::System::Kiro::Internal
