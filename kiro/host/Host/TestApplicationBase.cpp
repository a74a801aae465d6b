#include <Vela/System/Commons/Diagnostics/Logger.hpp>
#include <Vela/System/Commons/Threading/Thread.hpp>
#include <Vela/System/Kiro/Internal/TestApplicationBase.hpp>

#include <poll.h>
#include <unistd.h>

namespace Vela::System::Kiro::Internal
{
namespace
{

/// The bit that tells small letters from capitals.
constexpr int caseBit = 0x20;

} // namespace

TestApplicationBase::TestApplicationBase(const String& name, bool childProcess, bool loadSettings)
    : MainApplicationBase(name, !childProcess, false, loadSettings)
{
}

TestApplicationBase::~TestApplicationBase() = default;

std::int32_t TestApplicationBase::Run()
{
    Commons::Diagnostics::Logger::Get(typeid(TestApplicationBase)).Info("Commands: X) Exit");
    // Never blocks in a read: the flag is also set by other threads.
    while (!IsShutdownRequested())
    {
        pollfd input{STDIN_FILENO, POLLIN, 0};
        if (poll(&input, 1, shutdownPollingTime) <= 0)
        {
            continue;
        }
        char key = 0;
        if (read(STDIN_FILENO, &key, 1) == 1)
        {
            ProcessConsoleCommand(key);
        }
        else
        {
            Commons::Threading::Thread::Sleep(shutdownPollingTime);
        }
    }
    return 0;
}

void TestApplicationBase::ProcessConsoleCommand(int character)
{
    if ((character & ~caseBit) == 'X')
    {
        RequestConsoleShutdown();
    }
}

} // namespace Vela::System::Kiro::Internal
