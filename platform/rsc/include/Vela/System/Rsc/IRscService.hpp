#pragma once

#include <Vela/System/Rsc/Api.hpp>

namespace Vela::System::Rsc
{

/// Base of all service interfaces.
///
/// An interface derives from it, declares its operations as pure virtual functions and gets an OperationTable beside
/// it.
class VELA_RSC_API IRscService
{
public:
    IRscService() = default;
    IRscService(const IRscService&) = default;
    IRscService& operator=(const IRscService&) = default;
    virtual ~IRscService();
};

} // namespace Vela::System::Rsc
