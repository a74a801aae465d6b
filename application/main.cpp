#include <Vela/System/Kiro/Internal/MainApplicationBase.hpp>
#include <Vela/System/Kiro/Internal/StartState.hpp>

#include <cstdlib>
#include <exception>
#include <iostream>

int main(int argc, char** argv)
{
    using Vela::System::Commons::Diagnostics::LogLevel;
    using namespace Vela::System::Kiro::Internal;
    try
    {
        const StartState startState(argc, argv);
        MainApplicationBase application("MainProcess", true, false, true);
        const int exitCode = application.Main(argc, argv, LogLevel::None);
        // Taking the system down clears the flag.
        const bool isRestartRequested = application.IsRestartRequested();
        const bool isOrderly = application.Dispose();
        if (isRestartRequested && !application.IsRestartWithdrawn())
        {
            startState.StartAgain();
        }
        if (!isOrderly)
        {
            // A thread may still be inside a component: nothing may be taken away from under it.
            std::cout.flush();
            std::_Exit(exitCode != 0 ? exitCode : 1);
        }
        return exitCode;
    }
    catch (const std::exception& exception)
    {
        std::cerr << "Vela.System.Application: " << exception.what() << std::endl;
        return 2;
    }
}
