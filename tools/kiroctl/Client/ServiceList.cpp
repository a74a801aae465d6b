#include "ServiceList.hpp"

#include "ProcessAnswers.hpp"

#include <Vela/System/Commons/PlainText.hpp>

#include <algorithm>
#include <map>
#include <set>
#include <tuple>
#include <utility>

namespace Vela::Kiroctl
{

namespace
{

using System::Commons::MakePlainText;
using System::Rsc::PublishedService;
using System::Rsc::UsedService;

/// Names of services are what component code says they are; they go into documents that must be read again.
std::string Clean(const String& text)
{
    return RepairText(MakePlainText(text));
}

class ServiceTable
{
public:
    explicit ServiceTable(std::set<String> knownComponents)
        : components(std::move(knownComponents))
    {
    }

    void AddPublished(const String& process, const PublishedService& service)
    {
        const String& publisher = Check(service.publisher);
        Json& entry = Add({process, service.provider, service.serviceName},
                          publisher.empty() ? Check(service.provider) : publisher);
        entry["interface"] = Clean(service.interfaceName);
        entry["isPublished"] = true;
    }

    void AddUse(const String& process, const UsedService& use)
    {
        const Key key{use.process, use.provider, use.serviceName};
        const auto known = indexes.find(key);
        Json& users = (known != indexes.end() ? list[known->second] : Add(key, Check(use.provider))).at("users");
        // All components of a process are notified over one connection, which the first that subscribes brings about.
        const bool isShared = use.serviceName.starts_with("Vela.System.Nm.");
        const Json user{{"process", process}, {"component", isShared ? String() : Check(use.user)}};
        if (std::find(users.begin(), users.end(), user) == users.end())
        {
            users.push_back(user);
        }
    }

    [[nodiscard]] Json Take() noexcept
    {
        return std::move(list);
    }

private:
    /// Process, provider and name.
    using Key = std::tuple<String, String, String>;

    /// What the framework brings along is in no configuration: it counts for its process.
    [[nodiscard]] const String& Check(const String& component) const
    {
        static const String none;
        return components.contains(component) ? component : none;
    }

    Json& Add(const Key& key, const String& component)
    {
        const auto& [process, provider, name] = key;
        indexes[key] = list.size();
        list.push_back({{"name", Clean(name)},
                        {"interface", ""},
                        {"process", process},
                        {"provider", Clean(provider)},
                        {"component", component},
                        {"isPublished", false},
                        {"users", Json::array()}});
        return list.back();
    }

    const std::set<String> components;
    Json list = Json::array();
    std::map<Key, std::size_t> indexes;
};

} // namespace

void ServiceList::CheckComplete() const
{
    RequireAnswers("services", silentProcesses);
}

ServiceList ListServices(const RunningSystem& system)
{
    const auto names = RunningSystem::ListComponents(system.GetDiagnostics()->GetComponents());
    std::set<String> components(names.begin(), names.end());
    std::map<String, Services::ProcessServices> answers;
    ServiceList list;
    list.silentProcesses = AskProcesses(system, system.SelectProcesses(""),
                                        [&answers](const String& process, const auto& service)
                                        { answers[process] = service->GetServices(); });
    ServiceTable table(std::move(components));
    for (const auto& [process, services] : answers)
    {
        for (const PublishedService& service : services.published)
        {
            table.AddPublished(process, service);
        }
    }
    for (const auto& [process, services] : answers)
    {
        for (const UsedService& use : services.used)
        {
            table.AddUse(process, use);
        }
    }
    list.services = table.Take();
    return list;
}

} // namespace Vela::Kiroctl
