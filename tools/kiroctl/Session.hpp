#pragma once

#include "Output/Output.hpp"

#include <Vela/String.hpp>

namespace Vela::Kiroctl
{

/// What the command line says for every command.
struct CommonOptions
{
    bool isJson = false;
    /// Empty: where the runtime itself would look.
    String runtimeDirectory;
};

/// One run of the tool: where its results go and, for commands that ask for it, the way to the running system.
class Session
{
public:
    explicit Session(const CommonOptions& commonOptions);
    Session(const Session&) = delete;
    Session& operator=(const Session&) = delete;
    ~Session();

    [[nodiscard]] Output& GetOutput() noexcept
    {
        return output;
    }

    /// Makes remoting work towards the system of the runtime directory; nothing happens when it does already. From
    /// then on proxies can be made. A system that does not answer shows at the first call.
    /// @throws CommandError (Unreachable) when there is no runtime directory
    void Connect();

private:
    Output output;
    bool isConnected = false;
};

} // namespace Vela::Kiroctl
