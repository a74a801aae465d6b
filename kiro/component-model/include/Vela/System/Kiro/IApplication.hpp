#pragma once

#include <Vela/System/Kiro/Api.hpp>

namespace Vela::System::Kiro
{

/// The process that hosts a component. It outlives all its components.
class VELA_KIRO_API IApplication
{
public:
    virtual ~IApplication();

    /// The name of this process in the system. Thread-safe once components exist.
    [[nodiscard]] virtual String GetName() const = 0;
};

} // namespace Vela::System::Kiro
