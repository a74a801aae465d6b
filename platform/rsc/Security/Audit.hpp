#pragma once

#include <Vela/String.hpp>
#include <Vela/System/Commons/Diagnostics/Loggable.hpp>
#include <Vela/System/Rsc/RscCaller.hpp>
#include <Vela/System/Rsc/RscServiceAuthorizator.hpp>

namespace Vela::System::Rsc
{

class PeerLog;

/// What somebody who watches over a system wants to know of it, one line each; of somebody who never stops a few lines,
/// and how many more they would have been. Thread-safe.
class Audit : private Commons::Diagnostics::Loggable<RscServiceAuthorizator>
{
public:
    static void LogRefusal(const RscCaller& caller, const String& service, const char* operation);
    /// Writes what is still only counted.
    static void Finish();

private:
    static PeerLog& GetRefusals();
};

} // namespace Vela::System::Rsc
