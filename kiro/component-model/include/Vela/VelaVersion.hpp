#pragma once

#include <Vela/BasicVersion.hpp>
#include <Vela/System/Kiro/Api.hpp>

namespace Vela
{

/// The version of the running platform.
class VELA_KIRO_API VelaVersion
{
public:
    /// The reference is valid to the end of the process. Thread-safe.
    static const BasicVersion& GetCurrent();
};

} // namespace Vela
