#include <Sm/StepJournal.hpp>

namespace Vela::System::Kiro::Internal::Sm
{

class StepJournal::Entry
{
public:
    [[nodiscard]] Step Get(Clock::time_point now) const
    {
        Step copy = step;
        copy.outcome = outcome.load(std::memory_order_acquire);
        copy.end = copy.outcome == Outcome::Running
                       ? now
                       : Clock::time_point(Clock::duration(end.load(std::memory_order_relaxed)));
        return copy;
    }

    Step step;
    std::atomic<Outcome> outcome{Outcome::Running};
    /// Written before the outcome says so.
    std::atomic<std::int64_t> end{0};
};

StepJournal::StepJournal() = default;
StepJournal::~StepJournal() = default;

const String* StepJournal::Intern(const String& text, const String*& last)
{
    if (last == nullptr || *last != text)
    {
        last = &*names.insert(text).first;
    }
    return last;
}

void StepJournal::BeginPhase(const char* newPhase) noexcept
{
    End(phaseEntry, Outcome::Done);
    phaseEntry = nullptr;
    phase = newPhase;
    if (newPhase != nullptr)
    {
        static const String none;
        phaseEntry = Begin(newPhase, "phase", none, none);
    }
}

StepJournal::Entry* StepJournal::Begin(const char* step, const char* subject, const String& name, const String& process,
                                       Clock::time_point now) noexcept
{
    try
    {
        const Step begun{phase.load(std::memory_order_relaxed), step, subject, Intern(name, lastName),
                         Intern(process, lastProcess),          now,  {}};
        const std::size_t index = count.load(std::memory_order_relaxed);
        if (index < chunkSize * maximumChunks)
        {
            auto& chunk = chunks[index / chunkSize];
            if (!chunk)
            {
                chunk = std::make_unique<Chunk>();
            }
            Entry& entry = (*chunk)[index % chunkSize];
            entry.step = begun;
            count.store(index + 1, std::memory_order_release);
            return &entry;
        }
        const std::lock_guard lock(latestMutex);
        auto& entry = latest[{subject, begun.name}];
        if (!entry)
        {
            entry = std::make_unique<Entry>();
        }
        entry->step = begun;
        entry->outcome = Outcome::Running;
        dropped.fetch_add(1, std::memory_order_relaxed);
        return entry.get();
    }
    catch (const std::bad_alloc&)
    {
        // The step itself matters more than its time.
        dropped.fetch_add(1, std::memory_order_relaxed);
        return nullptr;
    }
}

void StepJournal::End(Entry* entry, Outcome outcome) noexcept
{
    if (entry != nullptr)
    {
        entry->end.store(Clock::now().time_since_epoch().count(), std::memory_order_relaxed);
        entry->outcome.store(outcome, std::memory_order_release);
    }
}

void StepJournal::NoteFailure(const char* step, const String& component, const String& process,
                              const String& text) noexcept
{
    try
    {
        auto failure = std::make_shared<Failure>();
        failure->phase = GetPhase();
        failure->step = step;
        failure->process = process;
        failure->time = Commons::Chrono::DateTime::GetUtcNow();
        failure->text = text.substr(0, maximumErrorText);
        const std::lock_guard lock(failuresMutex);
        failures[component] = std::move(failure);
    }
    catch (const std::bad_alloc&)
    {
        // It is in the log.
        return;
    }
}

std::vector<StepJournal::Step> StepJournal::Read() const
{
    const std::size_t size = count.load(std::memory_order_acquire);
    const auto now = Clock::now();
    std::vector<Step> steps;
    steps.reserve(size);
    for (std::size_t i = 0; i < size; ++i)
    {
        steps.push_back((*chunks[i / chunkSize])[i % chunkSize].Get(now));
    }
    return steps;
}

std::vector<StepJournal::Step> StepJournal::ReadToLatest() const
{
    std::vector<Step> steps = Read();
    const std::vector<Step> others = ReadLatest();
    steps.insert(steps.end(), others.begin(), others.end());
    return steps;
}

std::vector<StepJournal::Step> StepJournal::ReadLatest() const
{
    std::vector<Step> steps;
    const std::lock_guard lock(latestMutex);
    const auto now = Clock::now();
    for (const auto& [key, entry] : latest)
    {
        if (entry)
        {
            steps.push_back(entry->Get(now));
        }
    }
    return steps;
}

StepJournal::Failures StepJournal::GetFailures() const
{
    const std::lock_guard lock(failuresMutex);
    return failures;
}

const char* StepJournal::GetPhase() const noexcept
{
    return phase.load(std::memory_order_relaxed);
}

std::size_t StepJournal::GetDropped() const noexcept
{
    return dropped.load(std::memory_order_relaxed);
}

Commons::Chrono::DateTime StepJournal::GetOrigin() const noexcept
{
    return origin;
}

StepJournal::Clock::time_point StepJournal::GetOriginTime() const noexcept
{
    return originTime;
}

} // namespace Vela::System::Kiro::Internal::Sm
