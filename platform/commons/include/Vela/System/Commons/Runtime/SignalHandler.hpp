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
    /// process, before any thread exists. Signals that arrive before Setup wait until then. Dispositions that the
    /// process inherited for SIGTERM, SIGINT and SIGCHLD are reset to the default.
    static void BlockSignals();

    SignalHandler();
    SignalHandler(const SignalHandler&) = delete;
    SignalHandler& operator=(const SignalHandler&) = delete;
    /// Stops the threads and waits for a handler that runs; signals stay blocked.
    ~SignalHandler();

    /// Starts the thread that reads the signals.
    /// @throws Exception
    void Setup();
    /// Installs the handler, called for the first signal, on a thread of its own; a signal that came before is handed
    /// to it now. An exception out of it is logged. The second signal ends the process at once, also while the handler
    /// runs, with a line in the log and the exit code 128 plus the signal's number.
    void SetHandler(Handler handler);

private:
    struct Data;
    std::unique_ptr<Data> data;
};

} // namespace Vela::System::Commons::Runtime
