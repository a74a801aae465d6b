#pragma once

#include <Host/CommandLine.hpp>
#include <Host/DefaultLibraryManager.hpp>
#include <Host/FailureRecord.hpp>
#include <Host/ParentProcess.hpp>
#include <Host/ProcessorBinding.hpp>
#include <Host/ShutdownRequest.hpp>
#include <Host/Supervision.hpp>
#include <Host/SystemRoles.hpp>
#include <Settings/KiroSettings.hpp>
#include <Vela/String.hpp>
#include <Vela/System/Commons/Runtime/SignalHandler.hpp>

#include <cstdint>
#include <memory>
#include <mutex>

namespace Vela::System::Kiro::Internal
{

/// The state of an application. Built and changed by the main thread; what other threads reach is guarded.
struct ApplicationData
{
    ApplicationData(ApplicationBase& application, const String& name, bool loadSettings)
        : areSettingsEnabled(loadSettings)
        , roles(application, *this)
        , applicationName(name)
    {
    }

    [[nodiscard]] String GetName() const
    {
        const std::lock_guard lock(mutex);
        return applicationName;
    }

    void SetName(const String& name)
    {
        const std::lock_guard lock(mutex);
        applicationName = name;
    }

    [[nodiscard]] std::shared_ptr<DefaultLibraryManager> GetDefaultLibraryManager() const
    {
        const std::lock_guard lock(mutex);
        return defaultLibraryManager;
    }

    void SetDefaultLibraryManager(std::shared_ptr<DefaultLibraryManager> manager)
    {
        const std::lock_guard lock(mutex);
        defaultLibraryManager = std::move(manager);
    }

    ShutdownRequest shutdown;
    const bool areSettingsEnabled;
    String settingsPath;
    CommandLine commandLine;
    ParentProcess parent;
    std::int32_t localTcpPort = 0;
    /// Remoting was refused: the runtime directory belongs to the system of another main process.
    bool isDirectoryTaken = false;
    bool isDebugBreak = false;
    bool singleProcess = false;
    bool isSingleProcessGiven = false;
    std::int32_t core = 0;
    /// 0 means the first processor when the settings say so; on the command line it means no binding.
    bool isCoreFromSettings = false;
    String configPath;
    String executablePath;
    Settings::KiroSettings settings;
    ProcessorBinding processors;
    std::unique_ptr<Commons::Runtime::SignalHandler> signalHandler;
    FailureRecord failureRecord;
    bool isSetUp = false;
    bool hasSignalHandler = false;
    /// Of the main process alone.
    std::unique_ptr<Supervision> supervision;
    SystemRoles roles;
    /// A call of another process goes on: what it may use must stay to the end of the process.
    bool hasRunningCalls = false;

private:
    mutable std::mutex mutex;
    String applicationName;
    std::shared_ptr<DefaultLibraryManager> defaultLibraryManager;
};

} // namespace Vela::System::Kiro::Internal
