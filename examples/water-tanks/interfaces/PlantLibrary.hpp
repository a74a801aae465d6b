#pragma once

#include <Vela/System/Kiro/LibraryBase.hpp>

#include <memory>

namespace WaterTanks
{

/// The library object of each of the plant's component libraries: which types it makes is said in its entry function.
class PlantLibrary final : public Vela::System::Kiro::LibraryBase
{
public:
    explicit PlantLibrary(Vela::AppDomain& appDomain)
        : LibraryBase(appDomain, Vela::BasicVersion(1, 0, 0, 0))
    {
        instance = this;
    }

    template <typename Component>
    PlantLibrary& Add(const Vela::String& type)
    {
        AddComponentFactoryMethod(type,
                                  [](Vela::System::Kiro::IApplication& application,
                                     const Vela::String& name) -> std::shared_ptr<Vela::System::Kiro::IComponent>
                                  { return std::make_shared<Component>(application, *instance, name); });
        return *this;
    }

private:
    /// Hidden in each library, so that each has its own.
    static inline PlantLibrary* instance = nullptr;
};

} // namespace WaterTanks
