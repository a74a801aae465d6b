#pragma once

#include <Vela/System/Kiro/ComponentCategory.hpp>
#include <Vela/System/Rsc/Marshaling.hpp>

#include <cstdint>
#include <tuple>

namespace Vela::System::Kiro::Services::Internal
{

/// What a component says of itself when it has been created.
struct ComponentProperties
{
    std::uint32_t StartOrder = 0;
    ComponentCategory Category = ComponentCategory::None;
    bool IsSystemComponent = false;
    /// The component can be started and stopped.
    bool IsControllerComponent = false;

    bool operator==(const ComponentProperties&) const = default;
};

} // namespace Vela::System::Kiro::Services::Internal

template <>
struct Vela::System::Rsc::StructFields<Vela::System::Kiro::Services::Internal::ComponentProperties>
{
    using Properties = Kiro::Services::Internal::ComponentProperties;
    static constexpr auto fields = std::tuple(&Properties::StartOrder, &Properties::Category,
                                              &Properties::IsSystemComponent, &Properties::IsControllerComponent);
};
