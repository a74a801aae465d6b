#pragma once

#include <Sm/StepJournal.hpp>
#include <Vela/String.hpp>
#include <Vela/System/Commons/Diagnostics/Loggable.hpp>
#include <Vela/System/Commons/Threading/Thread.hpp>

#include <chrono>
#include <condition_variable>
#include <functional>
#include <mutex>
#include <utility>

namespace Vela::System::Kiro::Internal::Sm
{

/// Says which call into component code does not return: a warning when it takes longer than a limit, and again each
/// time that its duration has doubled. One call is watched at a time.
///
/// Watching a call costs two uncontended locks; the watcher's thread wakes at most once per limit.
class SlowCallWatcher : private Commons::Diagnostics::Loggable<SlowCallWatcher>
{
public:
    /// Watches a call as long as it lives; the texts must live as long.
    class Watch
    {
    public:
        /// @param step  the operation, such as "InitializeComponent"
        /// @param subject  what it is called on: "component" or "library"
        Watch(SlowCallWatcher& slowCallWatcher, const char* step, const char* subject, const String& name,
              const String& process);
        Watch(const Watch&) = delete;
        Watch& operator=(const Watch&) = delete;
        ~Watch();

        /// Notes the exception being handled as the end of the call.
        void Fail() noexcept;

    private:
        SlowCallWatcher& watcher;
        StepJournal::Entry* entry = nullptr;
        StepJournal::Outcome outcome = StepJournal::Outcome::Done;
    };

    using ReportHung = std::function<void(const String& process)>;

    /// @param slowCallTime  0: nothing is watched
    /// @param reportHung  is called once for each slow call, behind the first warning, on the watcher's thread
    /// @param stepJournal  takes the times of all calls; may be null
    explicit SlowCallWatcher(std::chrono::milliseconds slowCallTime, ReportHung reportHung = {},
                             StepJournal* stepJournal = nullptr);
    SlowCallWatcher(const SlowCallWatcher&) = delete;
    SlowCallWatcher& operator=(const SlowCallWatcher&) = delete;
    ~SlowCallWatcher();

    /// Calls `action` while it is watched and timed; an exception is noted and goes on.
    template <typename Action>
    auto Watched(const char* step, const char* subject, const String& name, const String& process, Action&& action)
    {
        Watch watch(*this, step, subject, name, process);
        try
        {
            return std::forward<Action>(action)();
        }
        catch (...)
        {
            watch.Fail();
            throw;
        }
    }

    [[nodiscard]] StepJournal* GetJournal() const noexcept
    {
        return journal;
    }

    /// Which call has not returned for longer than `patience`, in words; empty when there is none. From any thread,
    /// also when nothing is watched.
    [[nodiscard]] String FindCallBeyond(std::chrono::milliseconds patience) const;

private:
    using Clock = std::chrono::steady_clock;

    struct Call
    {
        const char* step = nullptr;
        const char* subject = nullptr;
        const String* name = nullptr;
        const String* process = nullptr;
        Clock::time_point start;
        std::chrono::milliseconds nextReport{0};
        bool isReported = false;
    };

    void Run();
    void Report() const;
    [[nodiscard]] String DescribeCall() const;

    const std::chrono::milliseconds limit;
    const ReportHung hungFunction;
    StepJournal* const journal;
    mutable std::mutex mutex;
    std::condition_variable condition;
    Call call;
    bool isWaitingForCall = false;
    bool isStopping = false;
    Commons::Threading::Thread thread;
};

} // namespace Vela::System::Kiro::Internal::Sm
