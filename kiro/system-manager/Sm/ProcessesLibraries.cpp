#include <Sm/ProcessesController.hpp>
#include <Vela/CaughtException.hpp>
#include <Vela/Exceptions.hpp>
#include <Vela/System/Rsc/RscString.hpp>

namespace Vela::System::Kiro::Internal::Sm
{

template <typename Action>
void ProcessesController::ForEachLibrary(Action&& action)
{
    for (const auto& [processName, process] : processes)
    {
        const auto service = process->processManagerService;
        if (!service)
        {
            continue;
        }
        for (const auto& [name, library] : process->libraries)
        {
            action(*service, processName, name, *library);
        }
    }
}

void ProcessesController::LoadLibraries()
{
    ForEachLibrary(
        [this](auto& service, const String& processName, const String& name, const Data::LibraryData& library)
        {
            try
            {
                const bool isLoaded = slowCalls.Watched(
                    "LoadLibrary", "library", name, processName,
                    [&] { return service.LoadLibrary(Rsc::RscString<512>(name), Rsc::RscString<512>(library.path)); });
                if (!isLoaded)
                {
                    throw Exception("Library '{0}' couldn't loaded in process {1}.", name, processName);
                }
            }
            catch (...)
            {
                // The cause names the file; which process wanted it is said here.
                log.Error("Library '{0}' couldn't loaded in process {1}.", name, processName);
                throw;
            }
            log.Info("Library '{0}' in process '{1}' loaded.", name, processName);
        });
}

void ProcessesController::UnloadLibraries()
{
    ForEachLibrary(
        [this](auto& service, const String& processName, const String& name, const Data::LibraryData&)
        {
            try
            {
                slowCalls.Watched("UnloadLibrary", "library", name, processName,
                                  [&] { service.UnloadLibrary(Rsc::RscString<512>(name)); });
                log.Info("Library '{0}' in process '{1}' unloaded.", name, processName);
            }
            catch (...)
            {
                log.Error("Library '{0}' in process '{1}' could not be unloaded: {2}", name, processName,
                          CaughtException::Current().GetText());
            }
        });
}

} // namespace Vela::System::Kiro::Internal::Sm
