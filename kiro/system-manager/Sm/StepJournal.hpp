#pragma once

#include <Vela/String.hpp>
#include <Vela/System/Commons/Chrono/DateTime.hpp>

#include <array>
#include <atomic>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <map>
#include <memory>
#include <mutex>
#include <string_view>
#include <unordered_set>
#include <utility>
#include <vector>

namespace Vela::System::Kiro::Internal::Sm
{

/// When each step of the system began and ended, by the monotonic clock, and how each component failed last.
///
/// One thread at a time writes: whoever walks over the components. Readers come from any thread and do not make it wait
/// as long as there is room: entries are only appended, and stand still but for their end. The memory is bounded: what
/// no longer fits is counted, and only the latest step of each component, process and library is known besides.
class StepJournal
{
public:
    using Clock = std::chrono::steady_clock;

    static constexpr std::size_t chunkSize = 256;
    static constexpr std::size_t maximumChunks = 128;
    static constexpr std::size_t maximumErrorText = 16384;

    enum class Outcome : std::uint8_t
    {
        Running,
        Done,
        Failed,
    };

    /// A step as a reader sees it; the texts live as long as the journal.
    struct Step
    {
        const char* phase = nullptr;
        const char* step = nullptr;
        /// What it is done to: "phase", "process", "library" or "component".
        const char* subject = nullptr;
        const String* name = nullptr;
        const String* process = nullptr;
        Clock::time_point begin;
        /// Now for a running one.
        Clock::time_point end;
        Outcome outcome = Outcome::Running;
    };

    struct Failure
    {
        const char* phase = nullptr;
        const char* step = nullptr;
        String process;
        Commons::Chrono::DateTime time;
        String text;
    };

    /// Failures by component; under the empty name the one that ended the set-up.
    using Failures = std::map<String, std::shared_ptr<const Failure>>;

    class Entry;

    StepJournal();
    StepJournal(const StepJournal&) = delete;
    StepJournal& operator=(const StepJournal&) = delete;
    ~StepJournal();

    /// A new phase; ends the last one. Null: no phase follows.
    void BeginPhase(const char* phase) noexcept;
    /// Null when there is no memory, which End takes as well.
    Entry* Begin(const char* step, const char* subject, const String& name, const String& process,
                 Clock::time_point now = Clock::now()) noexcept;
    void End(Entry* entry, Outcome outcome) noexcept;
    /// Keeps the text as the last failure of a component.
    void NoteFailure(const char* step, const String& component, const String& process, const String& text) noexcept;

    [[nodiscard]] std::vector<Step> Read() const;
    /// The same, and behind it the latest step of each that had one after the journal was full.
    [[nodiscard]] std::vector<Step> ReadToLatest() const;
    [[nodiscard]] Failures GetFailures() const;
    /// The phase that runs; null between phases.
    [[nodiscard]] const char* GetPhase() const noexcept;
    [[nodiscard]] std::size_t GetDropped() const noexcept;
    /// The same moment by the clock of the day and by the monotonic one: from it steps are dated.
    [[nodiscard]] Commons::Chrono::DateTime GetOrigin() const noexcept;
    [[nodiscard]] Clock::time_point GetOriginTime() const noexcept;

private:
    using Chunk = std::array<Entry, chunkSize>;

    [[nodiscard]] std::vector<Step> ReadLatest() const;
    /// The kept copy of a text. Most steps follow one of the same component.
    const String* Intern(const String& text, const String*& last);

    const Commons::Chrono::DateTime origin = Commons::Chrono::DateTime::GetUtcNow();
    const Clock::time_point originTime = Clock::now();
    std::array<std::unique_ptr<Chunk>, maximumChunks> chunks;
    /// Entries below it are complete but for their end; with release and acquire.
    std::atomic<std::size_t> count{0};
    std::atomic<std::size_t> dropped{0};
    /// Those that did not fit, by subject and name. What is in them changes under the mutex, but for their ends.
    std::map<std::pair<std::string_view, const String*>, std::unique_ptr<Entry>> latest;
    mutable std::mutex latestMutex;
    std::atomic<const char*> phase{nullptr};
    Entry* phaseEntry = nullptr;
    /// Nodes stay where they are, and only the writer looks for one.
    std::unordered_set<String> names;
    const String* lastName = nullptr;
    const String* lastProcess = nullptr;
    mutable std::mutex failuresMutex;
    Failures failures;
};

} // namespace Vela::System::Kiro::Internal::Sm
