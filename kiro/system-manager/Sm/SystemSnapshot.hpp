#pragma once

#include <Sm/Data/ComponentExecutionData.hpp>
#include <Vela/String.hpp>
#include <Vela/System/Kiro/Services/ComponentInfo.hpp>
#include <Vela/System/Kiro/Services/Internal/IProcessManagerService.hpp>

#include <cstdint>
#include <map>
#include <memory>
#include <mutex>
#include <vector>

namespace Vela::System::Kiro::Internal::Sm
{

/// The connected processes by name.
using ServiceTable = std::map<String, std::shared_ptr<Services::Internal::IProcessManagerService>>;

/// What remote queries are answered from: the state of the system after a phase. Never changed once it is made.
struct SystemSnapshot
{
    struct Component
    {
        String name;
        String type;
        String library;
        String process;
        std::uint32_t startOrder;
        bool isRequired;
        bool isEnabled;
    };

    ServiceTable services;
    /// In execution order.
    std::vector<Component> components;

    [[nodiscard]] static std::shared_ptr<const SystemSnapshot> Make(const ServiceTable& services,
                                                                    const Data::ExecutionList& executionList);

    /// The names of the connected processes in ascending order.
    [[nodiscard]] std::vector<String> GetApplicationNames() const;
    /// The names of all components of exactly this type in execution order.
    [[nodiscard]] std::vector<String> GetComponentsOfType(const String& type) const;
    /// Empty when there is no such component.
    [[nodiscard]] String GetProcessNameOfComponent(const String& name) const;
    /// The given descriptions, then one for each component in execution order.
    /// @throws ArgumentException for a text that a description cannot hold
    [[nodiscard]] std::vector<Services::ComponentInfo>
    GetComponentInfos(std::vector<Services::ComponentInfo> defaultInfos) const;
};

/// Hands the newest snapshot from the thread that changes the system to those that answer queries. Thread-safe.
class PublishedSnapshot
{
public:
    void Publish(std::shared_ptr<const SystemSnapshot> newSnapshot);
    /// Never null; empty before the first publication.
    [[nodiscard]] std::shared_ptr<const SystemSnapshot> Get() const;

private:
    mutable std::mutex mutex;
    std::shared_ptr<const SystemSnapshot> snapshot = std::make_shared<SystemSnapshot>();
};

} // namespace Vela::System::Kiro::Internal::Sm
