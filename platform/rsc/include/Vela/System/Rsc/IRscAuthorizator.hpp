#pragma once

#include <Vela/String.hpp>
#include <Vela/System/Rsc/Api.hpp>
#include <Vela/System/Rsc/RscCaller.hpp>

namespace Vela::System::Rsc
{

/// Decides who may call what. Thread-safe.
class VELA_RSC_API IRscAuthorizator
{
public:
    IRscAuthorizator() = default;
    IRscAuthorizator(const IRscAuthorizator&) = delete;
    IRscAuthorizator& operator=(const IRscAuthorizator&) = delete;
    virtual ~IRscAuthorizator();

    [[nodiscard]] virtual bool IsAllowed(const RscCaller& caller, const String& interfaceName,
                                         const String& operationName) const = 0;
};

} // namespace Vela::System::Rsc
