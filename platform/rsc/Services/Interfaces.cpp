#include <Vela/System/Rsc/IRscAuthorizator.hpp>
#include <Vela/System/Rsc/IRscService.hpp>
#include <Vela/System/Rsc/IRscServiceStub.hpp>
#include <Vela/System/Rsc/RscClient.hpp>
#include <Vela/System/Rsc/RscServiceFactory.hpp>
#include <Vela/System/Rsc/RscServiceProxy.hpp>

// The destructors stand here so that each class has its vtable and type information in this library alone.
namespace Vela::System::Rsc
{

IRscService::~IRscService() = default;
IRscServiceStub::~IRscServiceStub() = default;
IRscServiceProxy::~IRscServiceProxy() = default;
IRscServiceFactory::~IRscServiceFactory() = default;
IRscAuthorizator::~IRscAuthorizator() = default;
IRscTransaction::~IRscTransaction() = default;
IRscServiceLease::~IRscServiceLease() = default;
RscClient::~RscClient() = default;

} // namespace Vela::System::Rsc
