#pragma once

namespace Vela::System::Kiro::Internal::Pm
{

/// What the process manager needs of the application that hosts it.
class IProcessHost
{
public:
    virtual ~IProcessHost() = default;

    /// Asks the process to end and not to start again. Returns at once; thread-safe.
    virtual void RequestProcessShutdown() = 0;
};

} // namespace Vela::System::Kiro::Internal::Pm
