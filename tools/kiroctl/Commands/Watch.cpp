#include "../Client/Format.hpp"
#include "../Client/RunningSystem.hpp"
#include "../Command.hpp"

#include <Vela/Exceptions.hpp>
#include <Vela/System/Commons/PlainText.hpp>
#include <Vela/System/Nm/NotificationManagerSetup.hpp>
#include <Vela/System/Nm/NotificationSubscription.hpp>

#include <chrono>
#include <condition_variable>
#include <deque>
#include <mutex>

namespace Vela::Kiroctl
{

namespace
{

namespace Nm = System::Nm;

/// Notifications that wait for a reader of the output that is slow.
constexpr std::size_t mostWaiting = 10'000;

/// The tool as a client of notifications, as long as it lives.
struct Client
{
    Client()
    {
        Nm::NotificationManagerSetup::Setup("kiroctl", false);
    }
    Client(const Client&) = delete;
    Client& operator=(const Client&) = delete;
    ~Client()
    {
        Nm::NotificationManagerSetup::Dispose();
    }
};

Json ToJson(const Nm::Notification& notification)
{
    Json fields = Json::object();
    for (const auto& field : notification.fields)
    {
        fields[field.name] = std::visit([](const auto& value) { return Json(value); }, field.value);
    }
    return Json{{"time", FormatTime(notification.timeStamp.GetMicroseconds())},
                {"name", notification.name},
                {"severity", fmt::format("{}", FindEnumString(notification.severity))},
                {"process", notification.process},
                {"sender", notification.sender},
                {"payload", notification.payloadType},
                {"fields", fields}};
}

class Watch final : public Command
{
public:
    void Declare(const CommandDeclaration& command) override
    {
        command.AddText("PATTERN", pattern, "Name of a notification, or the beginning of names and '*'; default: all");
        command.AddNumber("-n,--count", count, {1, 1'000'000'000}, "End after this many");
        command.SetFooter("Ends when the system does.");
    }

    ExitCode Run(Session& session) override
    {
        const RunningSystem system(session);
        const auto diagnostics = system.GetDiagnostics();
        const Client client;
        std::mutex mutex;
        std::condition_variable condition;
        std::deque<Nm::Notification> queue;
        bool hasMissed = false;
        Nm::NotificationSubscription subscription(
            pattern,
            [&](const Nm::Notification& notification)
            {
                const std::lock_guard lock(mutex);
                if (queue.size() == mostWaiting)
                {
                    hasMissed = true;
                    return;
                }
                queue.push_back(notification);
                condition.notify_one();
            },
            [&](std::uint64_t)
            {
                const std::lock_guard lock(mutex);
                hasMissed = true;
            });

        Output& output = session.GetOutput();
        if (!output.IsJson())
        {
            output.WriteLine(fmt::format("Watching '{}'.", pattern));
            output.Flush();
        }
        for (int shown = 0; count == 0 || shown < count;)
        {
            std::unique_lock lock(mutex);
            if (!condition.wait_for(lock, std::chrono::seconds(1), [&] { return !queue.empty(); }))
            {
                lock.unlock();
                if (!IsThere(*diagnostics))
                {
                    break;
                }
                continue;
            }
            const Nm::Notification notification = std::move(queue.front());
            queue.pop_front();
            lock.unlock();
            ++shown;
            if (output.IsJson())
            {
                output.WriteJsonLine(ToJson(notification));
            }
            else
            {
                output.WriteLine(System::Commons::MakePlainText(notification.ToString()));
                output.Flush();
            }
        }
        subscription.Dispose();
        if (hasMissed)
        {
            throw CommandError(ExitCode::Negative, "Notifications were missed: they came faster than they were read.");
        }
        return ExitCode::Success;
    }

private:
    static bool IsThere(Services::ISystemDiagnosticsService& diagnostics)
    {
        try
        {
            diagnostics.GetStatus();
            return true;
        }
        catch (const Exception&)
        {
            return false;
        }
    }

    std::string pattern = "*";
    int count = 0;
};

} // namespace

std::unique_ptr<Command> CreateWatch()
{
    return std::make_unique<Watch>();
}

} // namespace Vela::Kiroctl
