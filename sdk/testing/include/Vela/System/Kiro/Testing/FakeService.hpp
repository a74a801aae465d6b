#pragma once

#include <Vela/String.hpp>
#include <Vela/System/Kiro/Testing/ComponentHost.hpp>
#include <Vela/System/Kiro/Testing/FakeServiceCalls.hpp>
#include <Vela/System/Rsc/RscServiceFactory.hpp>
#include <Vela/System/Rsc/ServiceManager.hpp>

#include <memory>
#include <utility>

namespace Vela::System::Kiro::Testing
{

/// A service for the component under test to find, in place of one that another component of the system publishes.
///
/// @code
/// CalmTanks tanks; // implements ITankService
/// FakeService<ITankService> service(host, "Simulator", tanks);
/// ...
/// service.FailOn<&ITankService::SetActuators>(RscException("The plant does not answer."));
/// EXPECT_EQ(service.CountCalls<&ITankService::SetActuators>(), 3U);
/// @endcode
/// A service that is missing needs no object at all; one that goes away in the middle is withdrawn. Failures and counts
/// concern the calls out of the test's own process. Thread-safe.
template <typename Interface>
class FakeService
{
public:
    /// Publishes the service; the host must be there already.
    /// @param provider  the component as whose service it is found; empty: that of the process, which as the main
    ///                  process is found by ServiceProvider::MainProcess, too
    /// @param implementation  takes the calls, on the caller's thread; must outlive this object
    /// @param name  the name under which it is found; empty: the interface's name
    /// @throws InvalidOperationException when the provider publishes that name already
    FakeService(ComponentHost&, const String& provider, Interface& implementation, const String& name = {})
        : providerName(provider)
        , serviceName(name.empty() ? String(Rsc::OperationTable<Interface>::interfaceName) : name)
        , calls(std::make_shared<FakeServiceCalls>())
    {
        Factory factory(implementation, calls);
        if (providerName.empty())
        {
            Rsc::ServiceManager::PublishService(providerName, serviceName, factory);
        }
        else
        {
            Rsc::ServiceManager::PublishComponentService(providerName, serviceName.c_str(), &factory);
        }
    }

    FakeService(const FakeService&) = delete;
    FakeService& operator=(const FakeService&) = delete;

    /// Withdraws.
    ~FakeService()
    {
        Withdraw();
    }

    /// Lets each call of an operation throw this exception in place of calling the implementation.
    template <auto Method, typename E>
    void FailOn(E exception)
    {
        calls->SetFailure(operationName<Method>, [exception = std::move(exception)] { throw exception; });
    }

    /// The same for all operations.
    template <typename E>
    void FailOnAll(E exception)
    {
        calls->SetFailureOfAll([exception = std::move(exception)] { throw exception; });
    }

    /// Lets all operations reach the implementation again.
    void Heal()
    {
        calls->ClearFailures();
    }

    /// Takes the service away: calls through proxies that were made before fail with RscException, lookups do not find
    /// it any more. Waits a bounded time for calls in progress.
    void Withdraw() noexcept
    {
        Rsc::ServiceManager::UnpublishService(providerName, serviceName);
    }

    /// How often an operation has been called, failed calls included.
    template <auto Method>
    [[nodiscard]] std::size_t CountCalls() const
    {
        return calls->Count(operationName<Method>);
    }

private:
    /// Sees each call of the own process before the implementation does, where it is authorised.
    class Stub final : public Rsc::RscServiceStub<Interface>
    {
    public:
        Stub(std::shared_ptr<Interface> implementation, std::shared_ptr<FakeServiceCalls> serviceCalls)
            : Rsc::RscServiceStub<Interface>(std::move(implementation))
            , calls(std::move(serviceCalls))
        {
        }

        void Authorize(const char* name) const override
        {
            calls->Begin(name);
        }

    private:
        const std::shared_ptr<FakeServiceCalls> calls;
    };

    class Factory final : public Rsc::RscServiceFactoryBase
    {
    public:
        Factory(Interface& serviceImplementation, std::shared_ptr<FakeServiceCalls> serviceCalls)
            : Rsc::RscServiceFactoryBase({}, Rsc::OperationTable<Interface>::interfaceName)
            , implementation(serviceImplementation)
            , calls(std::move(serviceCalls))
        {
        }

        std::unique_ptr<Rsc::IRscServiceStub> CreateServiceStub(const char*, const Rsc::IRscAuthorizator*) override
        {
            return std::make_unique<Stub>(std::shared_ptr<Interface>(&implementation, [](Interface*) {}), calls);
        }

    private:
        Interface& implementation;
        const std::shared_ptr<FakeServiceCalls> calls;
    };

    template <auto Method>
    static constexpr const char* operationName = Rsc::GetOperationInfo<Interface, Method>().name;

    const String providerName;
    const String serviceName;
    const std::shared_ptr<FakeServiceCalls> calls;
};

} // namespace Vela::System::Kiro::Testing
