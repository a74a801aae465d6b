#include "Harness/Processor.hpp"
#include "Harness/RawPingPong.hpp"
#include "Harness/TemporaryDirectory.hpp"
#include "Rows/Rows.hpp"

#include <Vela/System/Nm/NotificationManagerSetup.hpp>
#include <Vela/System/Nm/NotificationRegistration.hpp>
#include <Vela/System/Nm/NotificationSubscription.hpp>
#include <Vela/System/Rsc/RscManager.hpp>

#include <fmt/format.h>

#include <iostream>

namespace Vela::Benchmarks
{

using namespace System::Nm;
using System::Rsc::RscManager;

namespace
{

constexpr const char* notificationName = "Bench.Level";
constexpr const char* received = "received";

class LevelPayload : public NotificationPayload
{
public:
    static constexpr auto Fields()
    {
        return std::tuple(PayloadField("level", &LevelPayload::level));
    }

    double level = 0;
};

/// Remoting and notifications of a process in the benchmark's system.
class NotificationScope
{
public:
    NotificationScope(const std::string& processName, bool isMain)
    {
        RscManager::CreateInstance(processName, 0, System::Rsc::RscManagerOptions{}, isMain);
        NotificationManagerSetup::Setup(processName, isMain);
    }

    NotificationScope(const NotificationScope&) = delete;
    NotificationScope& operator=(const NotificationScope&) = delete;

    ~NotificationScope()
    {
        NotificationManagerSetup::Dispose();
        RscManager::DisposeInstance();
    }
};

Row MeasureSubscribers(Effort effort, unsigned subscribers)
{
    const PinnedScope pinned;
    const TemporaryDirectory directory;
    ::setenv("VELA_PATH_RUNTIME_DIR", (directory / "run").c_str(), 1);
    Child broker = Child::StartRole("broker", {});
    broker.AwaitLine("ready");
    std::vector<Child> processes;
    for (unsigned i = 0; i < subscribers; ++i)
    {
        processes.push_back(Child::StartRole("subscriber", {fmt::format("Subscriber{}", i)}));
        processes.back().AwaitLine("ready");
    }
    Comparison comparison;
    {
        const NotificationScope notifications("Sender", false);
        const NotificationRegistration<LevelPayload> registration(notificationName, "Benchmark", Severity::Information);
        const RawServer server(directory / "raw");
        RawClient raw(server.GetPath(), 200);
        const unsigned count = effort.Choose(3200 / subscribers, 2);
        comparison = Compare(fmt::format("notifications to {}", subscribers), effort.Choose(15, 1),
                             PerCall(count,
                                     [&]
                                     {
                                         registration.Send(LevelPayload());
                                         for (Child& process : processes)
                                         {
                                             process.AwaitLine(received);
                                         }
                                     }),
                             PerCall(count,
                                     [&]
                                     {
                                         for (unsigned i = 0; i <= subscribers; ++i)
                                         {
                                             raw.PingPong();
                                         }
                                     }));
    }
    for (Child& process : processes)
    {
        process.End();
    }
    broker.End();
    ::unsetenv("VELA_PATH_RUNTIME_DIR");
    return {fmt::format("notify: {} subscribing processes", subscribers), "us", comparison,
            fmt::format("{} ping-pongs: to the broker, from it to each", subscribers + 1)};
}

} // namespace

std::vector<Row> MeasureNotifications(Effort effort)
{
    return {MeasureSubscribers(effort, 1), MeasureSubscribers(effort, effort.Choose(32, 2))};
}

void RunBroker(const Arguments&)
{
    const NotificationScope notifications("Broker", true);
    NotificationManagerSetup::StartDispatching();
    std::cout << "ready" << std::endl;
    AwaitEndOfInput();
}

void RunSubscriber(const Arguments& arguments)
{
    const NotificationScope notifications(arguments.at(0), false);
    const NotificationSubscription subscription(notificationName,
                                                [](const Notification&) { std::cout << received << std::endl; });
    std::cout << "ready" << std::endl;
    AwaitEndOfInput();
}

} // namespace Vela::Benchmarks
