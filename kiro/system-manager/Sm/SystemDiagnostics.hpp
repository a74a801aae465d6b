#pragma once

#include <Sm/Data/ComponentExecutionData.hpp>
#include <Sm/Data/ProcessData.hpp>
#include <Sm/StepJournal.hpp>
#include <Vela/String.hpp>
#include <Vela/System/Kiro/Services/Internal/SystemDiagnostics.hpp>

#include <memory>
#include <mutex>
#include <set>
#include <vector>

namespace Vela::System::Kiro::Internal::Sm
{

/// What the system tells about itself while it runs. The main thread publishes the tables after each phase; the journal
/// tells what happens meanwhile. Queries come from any thread, and the main thread waits for none of them.
class SystemDiagnostics
{
public:
    /// @param systemName  the name of the main process
    SystemDiagnostics(String systemName, const String& configurationPath);
    SystemDiagnostics(const SystemDiagnostics&) = delete;
    SystemDiagnostics& operator=(const SystemDiagnostics&) = delete;
    ~SystemDiagnostics();

    [[nodiscard]] StepJournal& GetJournal() noexcept
    {
        return journal;
    }

    /// @param newState  one of those that SystemStatus names
    /// @param hasError  once true, it stays so
    void SetState(const char* newState, bool hasError = false);
    /// Keeps what ended the set-up.
    void NoteFailure(const String& text);
    void PublishProcesses(const Data::ProcessTable& processes);
    void PublishComponents(const Data::ProcessTable& processes, const Data::ExecutionList& executionList);

    [[nodiscard]] Services::Internal::SystemStatus GetStatus() const;
    [[nodiscard]] std::vector<Services::Internal::ProcessStatus> GetProcesses() const;
    [[nodiscard]] std::vector<Services::Internal::ComponentStatus> GetComponents() const;
    [[nodiscard]] Services::Internal::Timeline GetTimeline() const;

private:
    using ProcessList = std::vector<Services::Internal::ProcessStatus>;

    struct Component
    {
        /// What changes in it after the configuration has been loaded belongs to the main thread and is copied here.
        std::shared_ptr<const Data::ComponentData> data;
        /// One of processNames.
        const String* process;
        std::uint32_t startOrder;
        bool isRequired;
        bool isController;
        bool isExternal;
    };
    using ComponentList = std::vector<Component>;

    struct State
    {
        const char* name = "starting";
        Commons::Chrono::DateTime since = Commons::Chrono::DateTime::GetUtcNow();
        bool hasError = false;
    };

    [[nodiscard]] Component Describe(const Data::ProcessData& process,
                                     const std::shared_ptr<Data::ComponentData>& component, std::uint32_t startOrder);
    [[nodiscard]] static Services::Internal::ComponentStatus Describe(const Component& component);
    template <typename List>
    [[nodiscard]] std::shared_ptr<const List> Get(const std::shared_ptr<const List>& list) const
    {
        const std::lock_guard lock(mutex);
        return list;
    }
    [[nodiscard]] std::int64_t ToUtc(StepJournal::Clock::time_point time) const;
    [[nodiscard]] Services::Internal::TimedStep Describe(const StepJournal::Step& step) const;
    [[nodiscard]] static Services::Internal::FailureReport Describe(const StepJournal::Failure& failure);

    const String name;
    const String configuration;
    StepJournal journal;
    /// For a pointer and a few numbers at a time.
    mutable std::mutex mutex;
    State state;
    std::shared_ptr<const ProcessList> processList = std::make_shared<ProcessList>();
    std::shared_ptr<const ComponentList> componentList = std::make_shared<ComponentList>();
    /// Names that the lists point to; only the main thread adds to it, and nothing is ever removed.
    std::set<String> processNames;
};

} // namespace Vela::System::Kiro::Internal::Sm
