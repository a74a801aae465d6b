#include "RecorderStage.hpp"

#include <Vela/System/Commons/Environment.hpp>
#include <Vela/System/Kiro/Internal/Pm/StaticLibrariesLoader.hpp>
#include <Vela/System/Kiro/LibraryBase.hpp>

#include <TestSystem.hpp>

namespace Vela::Testing
{

using System::Commons::Environment;

namespace
{

// The recorders are linked into the test, too: they are its static library.
const bool isRegistered =
    (System::Kiro::Internal::Pm::StaticLibrariesLoader::RegisterLibrary(&VelaDynamicLibraryMain), true);

} // namespace

RecorderStage::RecorderStage()
{
    Environment::Setup();
    appDomain.SetApplicationName(LifecycleCase::mainProcess);
    Environment::SetVariable("RECORDING_TRACE", "");
    Environment::SetVariable("RECORDING_SCRIPT", directory / "script");
    library.Load(GetLibraryPath());
    log.Take();
}

RecorderStage::~RecorderStage()
{
    Environment::Dispose();
}

std::string RecorderStage::GetLibraryPath()
{
    return TestSystem::GetBuiltFile("lib/libRecording.so");
}

void RecorderStage::Prepare(const LifecycleCase& system) const
{
    directory.Write("script", system.GetScript());
}

void RecorderStage::TakeLog(Trace& trace)
{
    for (const LogLine& line : log.Take())
    {
        if (line.category.starts_with("Vela.System.Kiro.") || line.category.starts_with("Vela.Testing."))
        {
            trace.push_back(line.ToString());
        }
    }
}

} // namespace Vela::Testing
