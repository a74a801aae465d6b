#pragma once

#include <Vela/String.hpp>
#include <Vela/System/Commons/Api.hpp>

#include <map>
#include <shared_mutex>
#include <vector>

namespace Vela
{

/// The registry of a process's services: one instance per type, found by the type's name as text, since the type's
/// own identity may live in a library that has been unloaded. There is one application domain per process, the plain
/// singleton Singleton<AppDomain>; it reaches component libraries as an argument of their entry function.
///
/// Thread-safe.
class VELA_COMMONS_API AppDomain
{
public:
    AppDomain() = default;
    AppDomain(const AppDomain&) = delete;
    AppDomain& operator=(const AppDomain&) = delete;
    /// When more than one singleton is left, writes a warning for each of them to standard output.
    ~AppDomain();

    /// Makes the process's application domain, or answers the one that is there. It lives to the end of the process.
    static AppDomain& CreateInstance();

    /// The name of this process, as the host was told on its command line.
    void SetApplicationName(const String& name);
    [[nodiscard]] String GetApplicationName() const;

    /// Registers an instance under a raw type name; false when there is one already. The domain does not own it.
    bool AddSingleton(const char* rawTypeName, void* instance);
    /// The registered instance, or null.
    [[nodiscard]] void* FindSingleton(const char* rawTypeName) const;
    /// Forgets the instance and answers it; null when there was none.
    void* RemoveSingleton(const char* rawTypeName);

    /// The readable type names of all registered singletons, in the order of their raw names.
    [[nodiscard]] std::vector<String> GetSingletonsTypeName() const;

private:
    mutable std::shared_mutex mutex;
    std::map<String, void*, std::less<>> singletons;
    String applicationName;
};

} // namespace Vela
