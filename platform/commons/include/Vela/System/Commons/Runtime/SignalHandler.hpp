#pragma once

#include <Vela/System/Commons/Api.hpp>

#include <functional>
#include <memory>

namespace Vela::System::Commons::Runtime
{

/// Turns SIGTERM and SIGINT into ordinary calls on a thread of its own; no work is done in signal context.
class VELA_COMMONS_API SignalHandler
{
public:
    using Handler = std::function<void(int signal)>;

    /// Blocks SIGTERM and SIGINT in the calling thread and all that it starts, and ignores SIGPIPE. The first act of a
    /// process, before any thread exists. Signals that arrive before Setup wait until then.
    static void BlockSignals();

    SignalHandler();
    SignalHandler(const SignalHandler&) = delete;
    SignalHandler& operator=(const SignalHandler&) = delete;
    /// Stops the thread; signals stay blocked.
    ~SignalHandler();

    /// Starts the dispatch thread.
    void Setup();
    /// Installs the handler, called for each signal in turn; a signal that came before is handed to it now. The second
    /// signal ends the process at once, with a line in the log.
    void SetHandler(Handler handler);

private:
    struct Data;
    std::unique_ptr<Data> data;
};

} // namespace Vela::System::Commons::Runtime
