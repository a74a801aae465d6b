#pragma once

#include <Vela/String.hpp>
#include <Vela/System/Rsc/Api.hpp>
#include <Vela/System/Rsc/IRscAuthorizator.hpp>
#include <Vela/System/Rsc/IRscServiceStub.hpp>
#include <Vela/System/Rsc/OperationTable.hpp>
#include <Vela/System/Rsc/RscServiceAuthorizator.hpp>
#include <Vela/System/Rsc/RscServiceStub.hpp>

#include <atomic>
#include <concepts>
#include <functional>
#include <memory>
#include <utility>

namespace Vela::System::Rsc
{

/// Makes the server side of a service when it is published. Needed during the publication only.
class VELA_RSC_API IRscServiceFactory
{
public:
    IRscServiceFactory() = default;
    IRscServiceFactory(const IRscServiceFactory&) = delete;
    IRscServiceFactory& operator=(const IRscServiceFactory&) = delete;
    virtual ~IRscServiceFactory();

    [[nodiscard]] virtual const String& GetName() const noexcept = 0;
    [[nodiscard]] virtual const String& GetInterfaceName() const noexcept = 0;
    /// Whether calls of services made from now on are authorised.
    [[nodiscard]] virtual bool IsSecurityEnabled() const noexcept = 0;
    virtual void SetSecurityEnabled(bool isEnabled) noexcept = 0;
    /// A stub that owns its implementation; an authorising one when security is enabled.
    /// @param authorizator  must outlive the stub; may be null, which then refuses every call
    virtual std::unique_ptr<IRscServiceStub> CreateServiceStub(const char* serviceName,
                                                               const IRscAuthorizator* authorizator) = 0;
};

/// A factory's name (the provider that it publishes for; usually empty), interface and security switch (off).
class VELA_RSC_API RscServiceFactoryBase : public IRscServiceFactory
{
public:
    RscServiceFactoryBase(String factoryName, String interfaceId);
    ~RscServiceFactoryBase() override;

    [[nodiscard]] const String& GetName() const noexcept override;
    [[nodiscard]] const String& GetInterfaceName() const noexcept override;
    [[nodiscard]] bool IsSecurityEnabled() const noexcept override;
    void SetSecurityEnabled(bool isEnabled) noexcept override;

private:
    String name;
    String interfaceName;
    std::atomic<bool> isSecurityEnabled{false};
};

/// The factory of an interface and its implementation.
template <typename Interface, typename Impl = Interface>
class RscServiceFactory : public RscServiceFactoryBase
{
public:
    using Maker = std::function<std::shared_ptr<Interface>()>;

    /// Makes a new implementation for each publication.
    RscServiceFactory() requires std::default_initializable<Impl>
        : RscServiceFactory([] { return std::make_shared<Impl>(); })
    {
    }

    /// Lets `serviceMaker` make the implementation.
    explicit RscServiceFactory(Maker serviceMaker)
        : RscServiceFactoryBase({}, OperationTable<Interface>::interfaceName)
        , maker(std::move(serviceMaker))
    {
    }

    /// Publishes an object that somebody else owns, such as the component itself; it must live until the service is
    /// unpublished.
    explicit RscServiceFactory(Interface& service)
        : RscServiceFactory([&service] { return std::shared_ptr<Interface>(&service, [](Interface*) {}); })
    {
    }

    /// The process's factory of this type.
    static RscServiceFactory& GetInstance() requires std::default_initializable<Impl>
    {
        static RscServiceFactory instance;
        return instance;
    }

    [[nodiscard]] std::shared_ptr<Interface> CreateServiceImpl() const
    {
        return maker();
    }

    std::unique_ptr<IRscServiceStub> CreateServiceStub(const char* serviceName,
                                                       const IRscAuthorizator* authorizator) override
    {
        if (IsSecurityEnabled())
        {
            return std::make_unique<RscServiceSecurityStub<Interface>>(
                CreateServiceImpl(), RscServiceAuthorizator(serviceName, GetInterfaceName(), authorizator));
        }
        return std::make_unique<RscServiceStub<Interface>>(CreateServiceImpl());
    }

private:
    Maker maker;
};

} // namespace Vela::System::Rsc
