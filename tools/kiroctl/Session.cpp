#include "Session.hpp"

#include "CommandError.hpp"

#include <Vela/Exceptions.hpp>
#include <Vela/System/Commons/Diagnostics/LogManager.hpp>
#include <Vela/System/Commons/Environment.hpp>
#include <Vela/System/Commons/Io/Path.hpp>
#include <Vela/System/Rsc/RscManager.hpp>

namespace Vela::Kiroctl
{

using System::Commons::Environment;

Session::Session(const CommonOptions& commonOptions)
    : output(commonOptions.isJson)
{
    Environment::Setup();
    // What the libraries log is no part of an answer.
    System::Commons::Diagnostics::LogManager::CreateInstance(System::Commons::Diagnostics::LogLevel::Off);
    if (!commonOptions.runtimeDirectory.empty() &&
        !Environment::SetVariable(Environment::runtimeDirectoryName,
                                  System::Commons::Io::Path::GetFullPath(commonOptions.runtimeDirectory)))
    {
        throw CommandError(ExitCode::Usage, "No directory can have the name '{}'.", commonOptions.runtimeDirectory);
    }
}

Session::~Session()
{
    if (isConnected)
    {
        System::Rsc::RscManager::DisposeInstance();
    }
    System::Commons::Diagnostics::LogManager::DisposeInstance();
    Environment::Dispose();
}

void Session::Connect()
{
    if (isConnected)
    {
        return;
    }
    try
    {
        System::Rsc::RscManager::CreateClientInstance("kiroctl");
    }
    catch (const Exception& exception)
    {
        throw CommandError(ExitCode::Unreachable, "{}", exception.what());
    }
    isConnected = true;
}

} // namespace Vela::Kiroctl
