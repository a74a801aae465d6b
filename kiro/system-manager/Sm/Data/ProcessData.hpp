#pragma once

#include <Sm/Data/ComponentData.hpp>
#include <Sm/Data/LibraryData.hpp>
#include <Vela/String.hpp>
#include <Vela/System/Commons/Runtime/Process.hpp>
#include <Vela/System/Kiro/Services/Internal/IProcessManagerService.hpp>

#include <cstdint>
#include <map>
#include <memory>

namespace Vela::System::Kiro::Internal::Sm::Data
{

/// A process of the system, the main process included.
class ProcessData
{
public:
    virtual ~ProcessData() = default;

    String name;
    String settingsPath;
    /// Bound to this processor core when greater than 0.
    std::int32_t core = 0;
    /// A TCP endpoint besides the local one when greater than 0.
    std::int32_t localTcpPort = 0;
    /// Waits for a debugger at its start.
    bool debugBreak = false;
    /// Belongs to somebody else: never started, connected, watched, awaited or killed.
    bool isExternal = false;
    String args;
    String processOwner;
    String workingDirectory;
    /// Runs this executable instead of the main one when not empty.
    String binaryPath;

    /// The running child; not started for the main process and for external ones.
    Commons::Runtime::Process process;
    /// Empty until the process is connected.
    std::shared_ptr<Services::Internal::IProcessManagerService> processManagerService;
    std::map<String, std::shared_ptr<LibraryData>> libraries;
    std::map<String, std::shared_ptr<ComponentData>> components;
};

/// All processes by name.
using ProcessTable = std::map<String, std::shared_ptr<ProcessData>>;

} // namespace Vela::System::Kiro::Internal::Sm::Data
