#include <Vela/System/Commons/Diagnostics/LogManager.hpp>
#include <Vela/System/Commons/Environment.hpp>
#include <Vela/System/Commons/Runtime/Process.hpp>
#include <Vela/System/Kiro/Internal/Program.hpp>

#include <iostream>

namespace Vela::System::Kiro::Internal
{
namespace
{

/// A text that cannot be formatted must not keep the process from being started.
template <typename... Args>
String Format(const char* format, const Args&... args)
{
    try
    {
        return fmt::vformat(format, fmt::make_format_args(args...));
    }
    catch (const std::exception& exception)
    {
        return fmt::format("{0} (the message cannot be formatted: {1})", format, exception.what());
    }
}

} // namespace

void Program::StartProcess(int argc, char** argv)
{
    String arguments;
    for (int index = 1; index < argc; ++index)
    {
        arguments += Commons::Runtime::QuoteArgument(argv[index]) + " ";
    }
    const String executable = Commons::Environment::GetExecutablePath();
    Log(Format("Starting Tarnex process, Executable Path = {0}, args = {1}...", executable, arguments).c_str());
    Commons::Runtime::Process::StartDaemon("", executable, arguments);
}

void Program::Log(const char* text)
{
    if (text == nullptr)
    {
        std::cout.setstate(std::ios_base::badbit);
    }
    else if (Commons::Diagnostics::LogManager::TryGetInstance() != nullptr)
    {
        log.Info("{0}", text);
    }
    else
    {
        std::cout << text << std::flush;
    }
}

void Program::Log(const char* format, const String& argument)
{
    Log(Format(format, argument).c_str());
}

void Program::Log(const char* format, const Exception& exception)
{
    Log(Format(format, exception.ToString()).c_str());
}

void Program::Log(const char* format, const std::exception& exception)
{
    Log(Format(format, exception.what()).c_str());
}

} // namespace Vela::System::Kiro::Internal
