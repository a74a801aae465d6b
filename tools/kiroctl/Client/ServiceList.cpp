#include "ServiceList.hpp"

#include <map>
#include <tuple>
#include <utility>

namespace Vela::Kiroctl
{

namespace
{

using System::Rsc::PublishedService;
using System::Rsc::ServiceProvider;
using System::Rsc::UsedService;

class ServiceTable
{
public:
    void AddPublished(const Services::ProcessStatus& process, const PublishedService& service)
    {
        const std::size_t index = list.size();
        const auto kind = service.provider.empty() ? ServiceProvider::Kind::Process : ServiceProvider::Kind::Component;
        indexes[{kind, service.provider.empty() ? process.name : service.provider, service.serviceName}] = index;
        if (process.isMain && service.provider.empty())
        {
            indexes[{ServiceProvider::Kind::MainProcess, {}, service.serviceName}] = index;
        }
        list.push_back({{"name", service.serviceName},
                        {"interface", service.interfaceName},
                        {"process", process.name},
                        {"component", service.provider.empty() ? service.publisher : service.provider},
                        {"users", Json::array()}});
    }

    /// A service that has been withdrawn since has no users.
    void AddUse(const String& process, const UsedService& use)
    {
        const bool isNamed =
            use.providerKind == ServiceProvider::Kind::Process || use.providerKind == ServiceProvider::Kind::Component;
        // The port of this machine that leads to the system is the main process's.
        const auto found = indexes.find(isNamed ? Key(use.providerKind, use.provider, use.serviceName)
                                                : Key(ServiceProvider::Kind::MainProcess, {}, use.serviceName));
        if (found != indexes.end())
        {
            list[found->second]["users"].push_back({{"process", process}, {"component", use.user}});
        }
    }

    [[nodiscard]] Json Take() noexcept
    {
        return std::move(list);
    }

private:
    /// How and where a service is looked up, and its name.
    using Key = std::tuple<ServiceProvider::Kind, String, String>;

    Json list = Json::array();
    std::map<Key, std::size_t> indexes;
};

} // namespace

Json ListServices(const RunningSystem& system)
{
    ServiceTable table;
    std::vector<std::pair<String, std::vector<UsedService>>> users;
    for (const auto& process : system.GetDiagnostics()->GetProcesses())
    {
        if (RunningSystem::CanAnswer(process))
        {
            auto services = system.GetProcess(process.name)->GetServices();
            for (const PublishedService& service : services.published)
            {
                table.AddPublished(process, service);
            }
            users.emplace_back(process.name, std::move(services.used));
        }
    }
    for (const auto& [process, uses] : users)
    {
        for (const UsedService& use : uses)
        {
            table.AddUse(process, use);
        }
    }
    return table.Take();
}

} // namespace Vela::Kiroctl
