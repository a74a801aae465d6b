#include <Sm/SlowCallWatcher.hpp>
#include <Vela/CaughtException.hpp>

#include <utility>

namespace Vela::System::Kiro::Internal::Sm
{

namespace
{

/// Points in time beyond it could not be computed with.
constexpr std::chrono::hours longestLimit{24 * 365};

} // namespace

SlowCallWatcher::Watch::Watch(SlowCallWatcher& slowCallWatcher, const char* step, const char* subject,
                              const String& name, const String& process)
    : watcher(slowCallWatcher)
{
    const auto now = Clock::now();
    const std::lock_guard lock(watcher.mutex);
    watcher.call = {step, subject, &name, &process, now, watcher.limit, false};
    if (watcher.isWaitingForCall)
    {
        watcher.isWaitingForCall = false;
        watcher.condition.notify_one();
    }
    if (watcher.journal != nullptr)
    {
        entry = watcher.journal->Begin(step, subject, name, process, now);
    }
}

SlowCallWatcher::Watch::~Watch()
{
    if (watcher.journal != nullptr)
    {
        watcher.journal->End(entry, outcome);
    }
    const std::lock_guard lock(watcher.mutex);
    watcher.call.step = nullptr;
}

void SlowCallWatcher::Watch::Fail() noexcept
{
    outcome = StepJournal::Outcome::Failed;
    if (watcher.journal != nullptr)
    {
        const auto& failed = watcher.call;
        watcher.journal->NoteFailure(failed.step, *failed.name, *failed.process, CaughtException::Current().GetText());
    }
}

SlowCallWatcher::SlowCallWatcher(std::chrono::milliseconds slowCallTime, ReportHung reportHung,
                                 StepJournal* stepJournal)
    : limit(std::min<std::chrono::milliseconds>(slowCallTime, longestLimit))
    , hungFunction(std::move(reportHung))
    , journal(stepJournal)
{
    if (limit > std::chrono::milliseconds::zero())
    {
        thread = Commons::Threading::Thread("SlowCallWatcher", [this] { Run(); });
    }
}

SlowCallWatcher::~SlowCallWatcher()
{
    {
        const std::lock_guard lock(mutex);
        isStopping = true;
    }
    condition.notify_one();
    thread.Join();
}

void SlowCallWatcher::Run()
{
    std::unique_lock lock(mutex);
    while (!isStopping)
    {
        if (call.step == nullptr)
        {
            isWaitingForCall = true;
            condition.wait(lock, [this] { return isStopping || !isWaitingForCall; });
            if (call.step == nullptr)
            {
                // The call was over before this thread was awake. The next one tells nobody of its begin.
                condition.wait_until(lock, Clock::now() + limit, [this] { return isStopping; });
            }
            continue;
        }
        const auto now = Clock::now();
        const auto due = call.start + call.nextReport;
        if (now >= due)
        {
            Report();
            call.nextReport *= 2;
            if (!std::exchange(call.isReported, true) && hungFunction)
            {
                // May take its time, in which calls begin and end.
                const String process = *call.process;
                lock.unlock();
                hungFunction(process);
                lock.lock();
            }
            continue;
        }
        // Calls that end and begin meanwhile wake nobody: a wait no longer than the limit ends before theirs is over.
        condition.wait_until(lock, std::min(due, now + limit), [this] { return isStopping; });
    }
}

String SlowCallWatcher::FindCallBeyond(std::chrono::milliseconds patience) const
{
    const std::lock_guard lock(mutex);
    return call.step != nullptr && Clock::now() - call.start > patience ? DescribeCall() : String();
}

void SlowCallWatcher::Report() const
{
    log.Warning("{0}", DescribeCall());
}

String SlowCallWatcher::DescribeCall() const
{
    const std::chrono::duration<double> seconds = Clock::now() - call.start;
    return fmt::format("{0} of {1} '{2}' in process '{3}' has not returned after {4:.1f} s.", call.step, call.subject,
                       *call.name, *call.process, seconds.count());
}

} // namespace Vela::System::Kiro::Internal::Sm
