// A process with a test service, for tests that need another process: rsc-peer NAME [main] [port=N] [settings=FILE]
// [security=FILE] [component=NAME] [unpublished]. It obeys the lines on its standard input (publish, unpublish) and
// ends when that ends.
#include "TestServiceImpl.hpp"

#include <Vela/AppDomain.hpp>
#include <Vela/System/Commons/Diagnostics/LogManager.hpp>
#include <Vela/System/Commons/Environment.hpp>
#include <Vela/System/Rsc/RscManager.hpp>

#include <exception>
#include <iostream>
#include <map>
#include <string>

using namespace Vela;
using namespace Vela::System::Rsc;
using namespace Vela::System::Rsc::Testing;

namespace
{

void Say(const String& line)
{
    std::cout << line + "\n" << std::flush;
}

int Run(const String& name, const std::map<String, String>& options)
{
    const auto get = [&options](const char* key)
    {
        const auto found = options.find(key);
        return found == options.end() ? String() : found->second;
    };
    System::Commons::Environment::Setup();
    System::Commons::Diagnostics::LogManager::CreateInstance(System::Commons::Diagnostics::LogLevel::Warning);
    System::Commons::Environment::SetupSecuritySettings(get("security"));
    RscManager::CreateInstance(name, options.contains("port") ? std::stoi(get("port")) : 0, get("settings"),
                               options.contains("main"));

    TestServiceImpl service(name, [] { Say("waiting"); });
    RscServiceFactory<ITestService> factory(service);
    const String component = get("component");
    const auto publish = [&]
    {
        ServiceManager::PublishService({}, factory.GetInterfaceName(), factory);
        if (!component.empty())
        {
            ServiceManager::PublishComponentService(component, nullptr, &factory);
        }
        Say("published");
    };
    if (!options.contains("unpublished"))
    {
        publish();
    }
    Say("ready");
    String line;
    while (std::getline(std::cin, line))
    {
        if (line == "publish")
        {
            publish();
        }
        else if (line == "unpublish")
        {
            ServiceManager::UnpublishService({}, factory.GetInterfaceName());
            ServiceManager::UnpublishComponentServices(component);
            Say("unpublished");
        }
    }
    Say(fmt::format("closed {} after {} calls", RscManager::DisposeInstance(), service.calls.load()));
    System::Commons::Diagnostics::LogManager::DisposeInstance();
    System::Commons::Environment::Dispose();
    return 0;
}

} // namespace

int main(int argc, char** argv)
{
    try
    {
        std::map<String, String> options;
        for (int i = 2; i < argc; ++i)
        {
            const String option = argv[i];
            const auto equals = option.find('=');
            options[option.substr(0, equals)] = equals == String::npos ? String() : option.substr(equals + 1);
        }
        return Run(argc > 1 ? argv[1] : "", options);
    }
    catch (const std::exception& exception)
    {
        Say(exception.what());
        return 1;
    }
}
