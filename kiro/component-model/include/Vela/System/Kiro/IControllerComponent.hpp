#pragma once

#include <Vela/System/Kiro/Api.hpp>

namespace Vela::System::Kiro
{

/// Implemented, beside IComponent, by a component that is started and stopped. The framework finds the interface by a
/// cast from IComponent. The order of the virtual operations is a binary contract with component libraries.
class VELA_KIRO_API IControllerComponent
{
public:
    virtual ~IControllerComponent();

    /// Begins the component's work, usually on a thread of its own. Called when all components are configured.
    virtual void Start() = 0;
    /// Ends the work; afterwards Start may be called again. Also called when Start of a required component failed; an
    /// optional one whose Start failed is disposed and destroyed at once, without Stop.
    virtual void Stop() = 0;
};

} // namespace Vela::System::Kiro
