#pragma once

#include <Vela/AppDomain.hpp>
#include <Vela/BasicVersion.hpp>
#include <Vela/System/Kiro/Api.hpp>

namespace Vela::System::Kiro
{

class IComponentFactory;

/// A component library. There is one object per library, owned by the library itself, alive until the library is
/// unloaded and so longer than all components that it created. The order of the virtual operations is a binary
/// contract with component libraries.
class VELA_KIRO_API ILibrary
{
public:
    virtual ~ILibrary();

    [[nodiscard]] virtual IComponentFactory& GetComponentFactory() = 0;
    /// The version that the library was built with.
    [[nodiscard]] virtual const BasicVersion& GetVersion() const = 0;
};

/// The type of a library's entry function.
using LibraryMain = ILibrary& (*)(AppDomain& appDomain);

} // namespace Vela::System::Kiro

#ifdef __clang__
#pragma clang diagnostic push
// The function has a plain name, but its callers are C++.
#pragma clang diagnostic ignored "-Wreturn-type-c-linkage"
#endif

/// The entry function that every shared component library defines and exports. The host calls it once after loading,
/// with its own application domain; it answers the library's one object:
/// @code
/// Vela::System::Kiro::ILibrary& VelaDynamicLibraryMain(Vela::AppDomain& appDomain)
/// {
///     static PumpLibrary library(appDomain);
///     return library;
/// }
/// @endcode
extern "C" __attribute__((visibility("default"))) Vela::System::Kiro::ILibrary&
VelaDynamicLibraryMain(Vela::AppDomain& appDomain);

#ifdef __clang__
#pragma clang diagnostic pop
#endif
