#pragma once

#include <Vela/CaughtException.hpp>
#include <Vela/Exceptions.hpp>
#include <Vela/String.hpp>
#include <Vela/System/Rsc/Api.hpp>
#include <Vela/System/Rsc/Marshaling.hpp>
#include <Vela/System/Rsc/OperationTable.hpp>
#include <Vela/System/Rsc/RscClient.hpp>
#include <Vela/System/Rsc/ServiceProvider.hpp>

#include <concepts>
#include <memory>
#include <tuple>
#include <type_traits>
#include <utility>

namespace Vela::System::Rsc
{

/// What all proxies have in common.
class VELA_RSC_API IRscServiceProxy
{
public:
    IRscServiceProxy() = default;
    IRscServiceProxy(const IRscServiceProxy&) = delete;
    IRscServiceProxy& operator=(const IRscServiceProxy&) = delete;
    virtual ~IRscServiceProxy();

    /// Name of the process that the calls go to.
    [[nodiscard]] virtual const String& GetProcessName() const noexcept = 0;
};

/// Base of the proxy of an interface, whose operations are one line each:
/// @code
/// class TankServiceProxy final : public RscServiceProxyBase<ITankService>
/// {
/// public:
///     using RscServiceProxyBase::RscServiceProxyBase;
///     double GetLevel() const override { return Invoke<&ITankService::GetLevel>(); }
/// };
/// @endcode
/// A call runs on the caller's thread and is thread-safe. Calls to a service of the own process go straight to it. An
/// exception of the service arrives as an exception of the same class, as a copy; failures on the way are RscException.
template <typename Interface>
class RscServiceProxyBase : public Interface, public IRscServiceProxy
{
public:
    explicit RscServiceProxyBase(RscServiceBinding serviceBinding)
        : binding(std::move(serviceBinding))
    {
    }

    [[nodiscard]] const String& GetProcessName() const noexcept override
    {
        return binding.client->GetProcessName();
    }

protected:
    template <auto Method, typename... Args>
    typename MethodTraits<decltype(Method)>::Result Invoke(Args&&... args) const
    {
        using Traits = MethodTraits<decltype(Method)>;
        static_assert(sizeof...(Args) == std::tuple_size_v<typename Traits::Storage>, "pass all arguments on");
        constexpr OperationInfo operation = GetOperationInfo<Interface, Method>();
        const RscCall call{OperationTable<Interface>::interfaceName, binding.serviceNumber, binding.serviceGeneration,
                           operation};
        if (const auto lease = binding.client->TryLease(call))
        {
            // The interface's name was matched when the service was bound.
            auto& service = static_cast<Interface&>(lease->GetService());
            return CallAcrossLibrary([&] { return (service.*Method)(std::forward<Args>(args)...); });
        }
        return InvokeRemote<Traits>(call, Traits::indexes, args...);
    }

private:
    template <typename Traits, std::size_t... Index, typename... Args>
    typename Traits::Result InvokeRemote(const RscCall& call, std::index_sequence<Index...>, Args&... args) const
    {
        const auto transaction = binding.client->BeginTransaction(call);
        [[maybe_unused]] RemotingWriter& writer = transaction->BeginServiceInvocationRequest();
        try
        {
            (WriteInArgument<Traits::template isOut<Index>>(writer, args), ...);
        }
        catch (const RscException& exception)
        {
            throw MakeCallFailure(call, GetProcessName(), exception.GetMessage());
        }
        transaction->EndServiceInvocationRequest();

        [[maybe_unused]] RemotingReader& reader = transaction->BeginServiceInvocationResponse();
        try
        {
            if constexpr (std::is_void_v<typename Traits::Result>)
            {
                (ReadOutArgument<Traits::template isOut<Index>>(reader, args), ...);
                transaction->EndServiceInvocationResponse();
            }
            else
            {
                typename Traits::Result result{};
                ReadRemote(reader, result);
                (ReadOutArgument<Traits::template isOut<Index>>(reader, args), ...);
                transaction->EndServiceInvocationResponse();
                return result;
            }
        }
        catch (const RscException& exception)
        {
            throw transaction->MakeMalformedResponse(exception.GetMessage());
        }
    }

    RscServiceBinding binding;
};

/// An interface's name and where its service is looked up when the caller does not say.
class VELA_RSC_API RscServiceProxyFactoryBase
{
public:
    RscServiceProxyFactoryBase(String interfaceId, ServiceProvider provider);
    RscServiceProxyFactoryBase(const RscServiceProxyFactoryBase&) = delete;
    RscServiceProxyFactoryBase& operator=(const RscServiceProxyFactoryBase&) = delete;
    virtual ~RscServiceProxyFactoryBase();

    [[nodiscard]] const String& GetInterfaceName() const noexcept;
    [[nodiscard]] const ServiceProvider& GetDefaultProvider() const noexcept;
    /// Name of the default provider; empty when there is none.
    [[nodiscard]] const String& GetProviderName() const noexcept;

private:
    String interfaceName;
    ServiceProvider defaultProvider;
};

/// Makes the proxies of an interface.
template <typename Interface, typename Proxy>
class RscServiceProxyFactory : public RscServiceProxyFactoryBase
{
    static_assert(std::derived_from<Proxy, RscServiceProxyBase<Interface>>);

public:
    explicit RscServiceProxyFactory(ServiceProvider provider = {})
        : RscServiceProxyFactoryBase(OperationTable<Interface>::interfaceName, std::move(provider))
    {
    }

    [[nodiscard]] std::shared_ptr<Interface> CreateServiceProxy(RscServiceBinding binding) const
    {
        return std::make_shared<Proxy>(std::move(binding));
    }
};

} // namespace Vela::System::Rsc
