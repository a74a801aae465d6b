#pragma once

#include "LoadRecord.hpp"

#include <Config/KiroConfiguration.hpp>
#include <Settings/KiroSettings.hpp>
#include <Sm/Data/ProcessData.hpp>

namespace Vela::Kiroctl
{

/// The documents that a system is started with.
struct SystemDocuments
{
    String settings = "Default.kiro.settings";
    String configuration = "Default.kiro.config";
};

/// A system as its main process would set it up from its documents, loaded by the same code, up to the moment at which
/// it would start something.
///
/// The settings' variables are put into the environment of this process: one object per process.
class OfflineSystem
{
public:
    /// Loads the documents and everything that they name; the record hears what is wrong.
    OfflineSystem(const SystemDocuments& systemDocuments, LoadRecord& loadRecord);

    /// The settings of a child process, which inherits the environment of this one; only what is wrong counts.
    static void CheckChildSettings(const String& path, LoadRecord& loadRecord);

    static constexpr const char* mainProcessName = "MainProcess";
    static constexpr const char* applicationName = "Vela.System.Application";

    [[nodiscard]] bool IsSingleProcess() const noexcept
    {
        return settings.GetProcessSettings().IsSingleProcess();
    }
    /// Whether this is a child that the main process starts.
    [[nodiscard]] static bool IsStarted(const System::Kiro::Internal::Sm::Data::ProcessData& process);
    /// The executable that it runs; empty when it starts none.
    [[nodiscard]] static String GetExecutable(const System::Kiro::Internal::Sm::Data::ProcessData& process);
    /// The settings document that it reads; empty when it reads none, as far as anybody knows.
    [[nodiscard]] String GetSettingsPath(const System::Kiro::Internal::Sm::Data::ProcessData& process) const;

    SystemDocuments documents;
    System::Kiro::Internal::Settings::KiroSettings settings;
    System::Kiro::Internal::Sm::Config::KiroConfiguration configuration;
    /// With the libraries and components of each process.
    System::Kiro::Internal::Sm::Data::ProcessTable processes;

private:
    /// What the system configuration manager switches on and off becomes variables.
    void LoadSwitches();
};

} // namespace Vela::Kiroctl
