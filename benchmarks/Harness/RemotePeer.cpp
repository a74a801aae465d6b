#include "Harness/RemotePeer.hpp"

#include "Rows/Rows.hpp"

#include <Vela/System/Rsc/RscManager.hpp>
#include <Vela/System/Rsc/ServiceManager.hpp>

#include <cstdlib>
#include <iostream>

namespace Vela::Benchmarks
{

using namespace System::Rsc;

namespace
{

constexpr const char* peerName = "Peer";

class BenchServiceProxy final : public RscServiceProxyBase<IBenchService>
{
public:
    using RscServiceProxyBase::RscServiceProxyBase;

    void Nothing() override
    {
        Invoke<&IBenchService::Nothing>();
    }

    void Name(const RscString<512>& component) override
    {
        Invoke<&IBenchService::Name>(component);
    }

    RscString<512> Strings(const RscString<512>& left, const RscString<512>& right) override
    {
        return Invoke<&IBenchService::Strings>(left, right);
    }

    void Gather(std::uint32_t count) override
    {
        Invoke<&IBenchService::Gather>(count);
    }
};

/// Room for 64 clients, each with a call of its own.
RscManagerOptions GetOptions()
{
    RscManagerOptions options;
    options.maxConnectionsPerProcess = 100;
    return options;
}

} // namespace

void BenchService::Nothing()
{
}

void BenchService::Name(const RscString<512>&)
{
}

RscString<512> BenchService::Strings(const RscString<512>& left, const RscString<512>&)
{
    return left;
}

void BenchService::Gather(std::uint32_t count)
{
    if (++gathered == count)
    {
        gathered.notify_all();
    }
    for (std::uint32_t present = gathered; present < count; present = gathered)
    {
        gathered.wait(present);
    }
}

RemotingScope::RemotingScope()
{
    ::setenv("VELA_PATH_RUNTIME_DIR", (directory / "run").c_str(), 1);
    RscManager::CreateInstance("Bench", 0, GetOptions(), true);
}

RemotingScope::~RemotingScope()
{
    RscManager::DisposeInstance();
    ::unsetenv("VELA_PATH_RUNTIME_DIR");
}

RemotePeer::RemotePeer()
    : process(Child::StartRole("server", {peerName}))
{
    process.AwaitLine("ready");
    service = FindBenchService(peerName);
}

std::shared_ptr<IBenchService> FindBenchService(const std::string& processName)
{
    static const RscServiceProxyFactory<IBenchService, BenchServiceProxy> factory;
    return ServiceManager::GetService(factory, ServiceProvider::Process(processName));
}

void ServeCalls(const Arguments& arguments)
{
    RscManager::CreateInstance(arguments.at(0), 0, GetOptions(), false);
    BenchService service;
    RscServiceFactory<IBenchService> factory(service);
    ServiceManager::PublishService({}, factory.GetInterfaceName(), factory);
    std::cout << "ready" << std::endl;
    AwaitEndOfInput();
    RscManager::DisposeInstance();
}

} // namespace Vela::Benchmarks
