// A process without broker for the tests of notifications between processes. Arguments: application name, pattern,
// "tool" for a process without endpoint. It subscribes to the pattern and writes a line for everything it receives or
// misses; each line that it reads from standard input it sends as a notification "Peer.Said". At the end of its input
// it ends.

#include <Vela/AppDomain.hpp>
#include <Vela/CaughtException.hpp>
#include <Vela/System/Nm/NotificationManagerSetup.hpp>
#include <Vela/System/Nm/NotificationRegistration.hpp>
#include <Vela/System/Nm/NotificationSubscription.hpp>
#include <Vela/System/NmPayload/Security/SecurityNotificationPayload.hpp>
#include <Vela/System/Rsc/RscManager.hpp>

#include <cstdio>
#include <iostream>
#include <string>
#include <vector>

using namespace Vela;
using namespace Vela::System;

namespace
{

void Print(const std::string& line)
{
    std::fputs((line + "\n").c_str(), stdout);
    std::fflush(stdout);
}

void Run(const std::string& name, const std::string& pattern)
{
    const Nm::NotificationRegistration<NmPayload::Security::SecurityNotificationPayload> said("Peer.Said", name,
                                                                                              Nm::Severity::Warning);
    const Nm::NotificationSubscription subscription(
        pattern, [](const Nm::Notification& notification) { Print("received " + notification.ToString()); },
        [](std::uint64_t count) {
            Print(count == Nm::NotificationSubscription::unknownCount ? "missed some"
                                                                      : "missed " + std::to_string(count));
        });
    Print("subscribed");
    for (std::string line; std::getline(std::cin, line);)
    {
        said.Send(NmPayload::Security::SecurityNotificationPayload(line));
    }
}

} // namespace

int main(int argc, char** argv)
{
    const std::vector<std::string> arguments(argv + 1, argv + argc);
    if (arguments.size() < 2)
    {
        return 2;
    }
    const std::string& name = arguments[0];
    try
    {
        AppDomain::CreateInstance().SetApplicationName(name);
        if (arguments.back() == "tool")
        {
            Rsc::RscManager::CreateClientInstance(name);
        }
        else
        {
            Rsc::RscManager::CreateInstance(name, 0, Rsc::RscManagerOptions{}, false);
        }
        Nm::NotificationManagerSetup::Setup(name, false);
        Run(name, arguments[1]);
        Nm::NotificationManagerSetup::Dispose();
        return Rsc::RscManager::DisposeInstance() ? 0 : 1;
    }
    catch (...)
    {
        Print("failed: " + CaughtException::Current().GetText());
        return 1;
    }
}
