#pragma once

#include <Vela/System/Kiro/Internal/ApplicationBase.hpp>

#include <functional>

namespace Vela::System::Kiro::Testing
{

/// The application object of a host: what a process has, without a system manager, and without the loop of a process.
class HostApplication final : public Internal::ApplicationBase
{
public:
    /// @param signalHandler  called for SIGTERM and SIGINT, on a thread of its own
    HostApplication(const String& name, std::function<void(int signal)> signalHandler);
    ~HostApplication() override;

    /// Brings everything up. Dispose must be called afterwards, also when this throws.
    void SetUp(const String& settingsPath);

protected:
    void SetupInternal() override;

private:
    const std::function<void(int signal)> handler;
};

} // namespace Vela::System::Kiro::Testing
