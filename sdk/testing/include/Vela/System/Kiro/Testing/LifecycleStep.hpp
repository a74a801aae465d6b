#pragma once

#include <Vela/EnumDictionary.hpp>

#include <cstdint>
#include <iosfwd>

namespace Vela::System::Kiro::Testing
{

/// What the runtime calls on a component, named like the operations of IComponent and IControllerComponent, in the
/// order of a whole life.
enum class LifecycleStep : std::uint8_t
{
    /// The constructor.
    Create,
    Initialize,
    SubscribeServices,
    LoadSettings,
    SetupSettings,
    PublishServices,
    LoadConfig,
    SetupConfig,
    Start,
    PowerDown,
    Stop,
    ResetConfig,
    Dispose,
    /// The destructor, and before it the withdrawal of the component's services.
    Destroy,
};

const EnumDictionary<LifecycleStep>& GetEnumDictionary(LifecycleStep step);
std::ostream& operator<<(std::ostream& stream, LifecycleStep step);

} // namespace Vela::System::Kiro::Testing
