#pragma once

#include <Vela/System/Kiro/Api.hpp>
#include <Vela/System/Kiro/IApplication.hpp>
#include <Vela/System/Kiro/IComponent.hpp>
#include <Vela/System/Kiro/ILibrary.hpp>

#include <cstdint>
#include <limits>

namespace Vela::System::Rsc
{
class IRscServiceFactory;
}

namespace Vela::System::Kiro
{

/// The ready-made base of components: it keeps what a component says of itself and does nothing in every lifecycle
/// operation, so that a component overrides only those that it needs. When and on which thread they are called is
/// described at IComponent.
class VELA_KIRO_API ComponentBase : public IComponent
{
public:
    /// Room that is kept free above the start orders of custom components.
    static constexpr std::uint32_t customComponentStartOrderShift = 1000;
    static constexpr std::uint32_t maxComponentStartOrder = std::numeric_limits<std::uint32_t>::max();

    /// The start order of a component that does not care.
    [[nodiscard]] static std::uint32_t GetDefaultStartOrder() noexcept;

    /// @param application  the hosting process; outlives the component
    /// @param library  the library that creates the component; outlives it
    /// @param startOrder  place in the order of phases, unless the configuration gives another; lowered by
    ///                    customComponentStartOrderShift for a custom component in the topmost range of that width
    /// @param isSingleton  whether a process may hold only one component of this type
    ComponentBase(IApplication& application, ILibrary& library, const String& name, ComponentCategory category,
                  std::uint32_t startOrder, bool isSingleton);
    ComponentBase(const ComponentBase&) = delete;
    ComponentBase& operator=(const ComponentBase&) = delete;
    ~ComponentBase() override;

    [[nodiscard]] IApplication& GetApplication() override;
    [[nodiscard]] ILibrary& GetLibrary() override;
    [[nodiscard]] String GetName() const override;
    /// The library's version.
    [[nodiscard]] BasicVersion GetVersion() const override;
    [[nodiscard]] ComponentCategory GetCategory() const override;
    [[nodiscard]] std::uint32_t GetStartOrder() const override;
    [[nodiscard]] bool IsSingleton() const override;
    [[nodiscard]] bool IsSystemComponent() const override;

    void Initialize() override;
    void SubscribeServices() override;
    void LoadSettings(const String& settingsPath) override;
    void SetupSettings() override;
    void PublishServices() override;
    void LoadConfig() override;
    void SetupConfig() override;
    void ResetConfig() override;
    void Dispose() override;
    void PowerDown() override;

protected:
    /// Publishes a remote service under this component's name; for use in PublishServices. The framework withdraws it
    /// when the component is destroyed.
    /// @param serviceName  the name that the service is found by; null or empty: its interface's name
    /// @param serviceFactory  makes the service's objects; needed during the call only
    /// @throws InvalidOperationException when the component publishes that name already; Exception without remoting
    void PublishComponentService(const char* serviceName, Rsc::IRscServiceFactory* serviceFactory);

private:
    IApplication& application;
    ILibrary& library;
    String name;
    ComponentCategory category;
    std::uint32_t startOrder;
    bool isSingleton;
    bool isSystemComponent = false;
};

} // namespace Vela::System::Kiro
