#include <Vela/System/Kiro/LibraryBase.hpp>
#include <Vela/VelaVersion.hpp>

#include <Scm/ScmComponent.hpp>

#include <memory>

namespace Vela::System::Scm
{
namespace
{

class ScmLibrary : public Kiro::LibraryBase
{
public:
    explicit ScmLibrary(AppDomain& appDomain)
        : LibraryBase(appDomain, VelaVersion::GetCurrent())
    {
        instance = this;
        AddComponentFactoryMethod("Vela::System::Scm::ScmComponent", &CreateComponent);
    }

private:
    static std::shared_ptr<Kiro::IComponent> CreateComponent(Kiro::IApplication& application, const String& name)
    {
        return std::make_shared<ScmComponent>(application, *instance, name);
    }

    static inline ScmLibrary* instance = nullptr;
};

} // namespace
} // namespace Vela::System::Scm

Vela::System::Kiro::ILibrary& VelaDynamicLibraryMain(Vela::AppDomain& appDomain)
{
    static Vela::System::Scm::ScmLibrary library(appDomain);
    return library;
}
