#pragma once

#include <Vela/System/Kiro/IComponent.hpp>

#include <map>
#include <memory>

namespace Vela::System::Kiro::Internal::Pm
{

using ComponentTable = std::map<String, std::shared_ptr<IComponent>>;

/// Finds components by name. Thread-safe.
class IComponentProvider
{
public:
    virtual ~IComponentProvider() = default;

    /// The component; empty when there is none of that name.
    [[nodiscard]] virtual std::shared_ptr<IComponent> GetComponent(const String& name) const = 0;
    /// The components that are there now, in name order. A copy: the table itself may change at any time.
    [[nodiscard]] virtual ComponentTable GetComponents() const = 0;
};

} // namespace Vela::System::Kiro::Internal::Pm
