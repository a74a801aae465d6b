#pragma once

#include <Vela/Exceptions.hpp>
#include <Vela/System/Kiro/Services/Internal/IProcessManagerService.hpp>

#include <functional>
#include <map>
#include <mutex>
#include <string>
#include <vector>

namespace Vela::Testing
{

/// What the fake processes were asked, in order: "process: Operation argument...". Thread-safe.
class Journal
{
public:
    void Add(const std::string& entry)
    {
        const std::lock_guard lock(mutex);
        entries.push_back(entry);
    }

    /// The entries so far; the next call begins behind them.
    std::vector<std::string> Take()
    {
        const std::lock_guard lock(mutex);
        return std::exchange(entries, {});
    }

private:
    std::mutex mutex;
    std::vector<std::string> entries;
};

/// The process manager of a process that exists in the test only. Writes each call into a journal; calls can be made to
/// fail or to do something.
class FakeProcess : public System::Kiro::Services::Internal::IProcessManagerService
{
public:
    using Properties = System::Kiro::Services::Internal::ComponentProperties;
    using Variable = System::Rsc::RscString<128>;

    FakeProcess(std::string processName, Journal& processJournal)
        : name(std::move(processName))
        , journal(processJournal)
    {
    }

    /// What happens on a call, by its text in the journal without the process: "StartComponent pump".
    std::map<std::string, std::function<void()>> reactions;
    /// What a component says of itself when it is created; a custom component with start order 0 by default.
    std::map<std::string, Properties> properties;
    bool canLoadLibraries = true;

    void ShutdownProcess() override
    {
        Call("ShutdownProcess");
    }

    bool LoadLibrary(const Text& libraryName, const Text& libraryPath) override
    {
        Call("LoadLibrary " + libraryName.ToString() + " " + libraryPath.ToString());
        return canLoadLibraries;
    }

    void UnloadLibrary(const Text& libraryName) override
    {
        Call("UnloadLibrary " + libraryName.ToString());
    }

    Properties CreateComponent(const Text& type, const Text& componentName, const Text& libraryName) override
    {
        Call("CreateComponent " + type.ToString() + " " + componentName.ToString() + " " + libraryName.ToString());
        const auto found = properties.find(componentName.ToString());
        return found != properties.end() ? found->second
                                         : Properties{0, System::Kiro::ComponentCategory::Custom, false, true};
    }

    void LoadComponentSettings(const Text& component, const Text& settingsPath) override
    {
        Call("LoadComponentSettings " + component.ToString() + " " + settingsPath.ToString());
    }

    bool SetEnvironmentVariable(const Variable& variable, System::Rsc::RscVariant<512> value) override
    {
        Call("SetEnvironmentVariable " + variable.ToString() + " " + value.ToString());
        return true;
    }

    // clang-format off
    void DestroyComponent(const Text& component) override { Call("DestroyComponent", component); }
    void InitializeComponent(const Text& component) override { Call("InitializeComponent", component); }
    void SetupComponentSettings(const Text& component) override { Call("SetupComponentSettings", component); }
    void SubscribeComponentServices(const Text& component) override { Call("SubscribeComponentServices", component); }
    void LoadComponentConfig(const Text& component) override { Call("LoadComponentConfig", component); }
    void SetupComponentConfig(const Text& component) override { Call("SetupComponentConfig", component); }
    void PublishComponentServices(const Text& component) override { Call("PublishComponentServices", component); }
    void StartComponent(const Text& component) override { Call("StartComponent", component); }
    void StopComponent(const Text& component) override { Call("StopComponent", component); }
    void ResetComponentConfig(const Text& component) override { Call("ResetComponentConfig", component); }
    void DisposeComponent(const Text& component) override { Call("DisposeComponent", component); }
    void PowerDownComponent(const Text& component) override { Call("PowerDownComponent", component); }
    // clang-format on

private:
    void Call(const char* operation, const Text& component)
    {
        Call(std::string(operation) + " " + component.ToString());
    }

    void Call(const std::string& text)
    {
        journal.Add(name + ": " + text);
        if (const auto found = reactions.find(text); found != reactions.end())
        {
            found->second();
        }
    }

    const std::string name;
    Journal& journal;
};

/// A reaction that throws.
template <typename Thrown>
std::function<void()> Throw(Thrown thrown)
{
    return [thrown]
    {
        throw thrown;
    };
}

} // namespace Vela::Testing
