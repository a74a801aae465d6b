#pragma once

#include <Vela/System/Rsc/Api.hpp>
#include <Vela/System/Rsc/IRscService.hpp>
#include <Vela/System/Rsc/RscServerContext.hpp>

namespace Vela::System::Rsc
{

/// Takes the calls of a published service. Called by several threads at once.
class VELA_RSC_API IRscServiceStub
{
public:
    IRscServiceStub() = default;
    IRscServiceStub(const IRscServiceStub&) = delete;
    IRscServiceStub& operator=(const IRscServiceStub&) = delete;
    virtual ~IRscServiceStub();

    /// Reads the arguments, calls the implementation and writes the answer. An unknown number aborts the request with
    /// RscErrorCode::UnknownOperation and no message. Exceptions of the implementation pass through.
    virtual void Invoke(int operationNumber, RscServerContext& context) = 0;
    /// Called before a call that goes to the implementation directly.
    /// @throws RscException when the present caller may not call the operation
    virtual void Authorize(const char* operationName) const = 0;
    /// The name of an operation; null when there is none of that number.
    [[nodiscard]] virtual const char* GetOperationName(int operationNumber) const noexcept = 0;
    /// Whether each call is authorised.
    [[nodiscard]] virtual bool IsSecure() const noexcept = 0;
    /// The implementation.
    [[nodiscard]] virtual IRscService& GetService() noexcept = 0;
};

} // namespace Vela::System::Rsc
