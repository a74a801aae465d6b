// The entry of the library: which component types it makes.

#include "AlarmServiceComponent.hpp"
#include "PlantLibrary.hpp"
#include "ResourceMonitor.hpp"

extern "C" Vela::System::Kiro::ILibrary& VelaDynamicLibraryMain(Vela::AppDomain& appDomain)
{
    static WaterTanks::PlantLibrary library(appDomain);
    return library.Add<WaterTanks::AlarmServiceComponent>("WaterTanks::AlarmService")
        .Add<WaterTanks::ResourceMonitor>("WaterTanks::ResourceMonitor");
}
