#include <Vela/AppDomain.hpp>
#include <Vela/Singleton.hpp>
#include <Vela/TypeName.hpp>

#include <fmt/format.h>

#include <cstdio>
#include <mutex>

namespace Vela
{

AppDomain::~AppDomain()
{
    const std::unique_lock lock(mutex);
    if (singletons.size() > 1)
    {
        for (const auto& [rawTypeName, instance] : singletons)
        {
            fmt::print("WARN: singleton of type '{}' was not disposed. Call DisposeInstance() on it, in "
                       "IComponent::Dispose().\n",
                       rawTypeName);
        }
        std::fflush(stdout);
    }
    singletons.clear();
}

AppDomain& AppDomain::CreateInstance()
{
    // A static object of this library ends after those of the executable and of every library that is loaded later.
    static struct Owner
    {
        ~Owner()
        {
            Singleton<AppDomain>::DisposeInstance();
        }
    } owner;
    if (AppDomain* domain = Singleton<AppDomain>::TryGetInstance())
    {
        return *domain;
    }
    return Singleton<AppDomain>::CreateInstance();
}

void AppDomain::SetApplicationName(const String& name)
{
    const std::unique_lock lock(mutex);
    applicationName = name;
}

String AppDomain::GetApplicationName() const
{
    const std::shared_lock lock(mutex);
    return applicationName;
}

bool AppDomain::AddSingleton(const char* rawTypeName, void* instance)
{
    const std::unique_lock lock(mutex);
    return singletons.emplace(rawTypeName, instance).second;
}

void* AppDomain::FindSingleton(const char* rawTypeName) const
{
    const std::shared_lock lock(mutex);
    const auto found = singletons.find(rawTypeName);
    return found == singletons.end() ? nullptr : found->second;
}

void* AppDomain::RemoveSingleton(const char* rawTypeName)
{
    const std::unique_lock lock(mutex);
    const auto found = singletons.find(rawTypeName);
    if (found == singletons.end())
    {
        return nullptr;
    }
    void* instance = found->second;
    singletons.erase(found);
    return instance;
}

std::vector<String> AppDomain::GetSingletonsTypeName() const
{
    const std::shared_lock lock(mutex);
    std::vector<String> names;
    names.reserve(singletons.size());
    for (const auto& [rawTypeName, instance] : singletons)
    {
        names.push_back(DemangleTypeName(rawTypeName.c_str()));
    }
    return names;
}

} // namespace Vela
