#include "HelloLibrary.hpp"

#include "HelloComponent.hpp"

using namespace Vela;
using namespace Vela::System::Kiro;

namespace
{
HelloLibrary* instance = nullptr;
}

HelloLibrary::HelloLibrary(AppDomain& appDomain)
    : LibraryBase(appDomain, BasicVersion(1, 0))
{
    AddComponentFactoryMethod("Hello", &HelloComponent::Create);
    instance = this;
}

HelloLibrary& HelloLibrary::GetInstance()
{
    return *instance;
}

ILibrary& VelaDynamicLibraryMain(AppDomain& appDomain)
{
    static HelloLibrary library(appDomain);
    return library;
}
