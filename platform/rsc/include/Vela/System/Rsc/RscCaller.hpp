#pragma once

#include <Vela/String.hpp>
#include <Vela/System/Rsc/Api.hpp>

#include <sys/types.h>

namespace Vela::System::Rsc
{

/// Who made the remote call that a thread is working on.
struct VELA_RSC_API RscCaller
{
    uid_t userId = 0;
    /// Id of the calling process; 0 when it is not known (TCP).
    pid_t processId = 0;
    /// The name under which the calling process introduced itself: for messages, proof of nothing.
    String processName;

    /// The caller of the call that this thread is working on; this process itself when there is none.
    static RscCaller GetCurrent();
    /// "process 'name' (pid 12, uid 1000)".
    [[nodiscard]] String ToString() const;
};

} // namespace Vela::System::Rsc
