#pragma once

#include <Vela/String.hpp>
#include <Vela/System/Commons/Diagnostics/Loggable.hpp>
#include <Vela/System/Rsc/RscCaller.hpp>
#include <Vela/System/Rsc/RscServiceAuthorizator.hpp>

namespace Vela::System::Rsc
{

/// What somebody who watches over a system wants to know of it, one line each.
class Audit : private Commons::Diagnostics::Loggable<RscServiceAuthorizator>
{
public:
    static void LogRefusal(const RscCaller& caller, const String& service, const char* operation);
};

} // namespace Vela::System::Rsc
