#pragma once

#include <Vela/System/Kiro/Internal/MainApplicationBase.hpp>

namespace Vela::System::Kiro::Internal
{

/// A process that is run from a console: the key X ends it.
///
/// It looks at the shutdown-requested flag alone, which RestartSystem and the shutdown of the process set; a shutdown
/// of the system signals the shutdown event, on which this host does not wait.
class VELA_KIRO_API TestApplicationBase : public MainApplicationBase
{
public:
    TestApplicationBase(const String& name, bool childProcess, bool loadSettings);
    ~TestApplicationBase() override;

    /// Handles one key; any but X is ignored.
    void ProcessConsoleCommand(int character);

protected:
    std::int32_t Run() override;
};

} // namespace Vela::System::Kiro::Internal
