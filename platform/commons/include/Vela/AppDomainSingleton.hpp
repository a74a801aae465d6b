#pragma once

#include <Vela/AppDomain.hpp>
#include <Vela/Exceptions.hpp>
#include <Vela/Singleton.hpp>
#include <Vela/TypeName.hpp>

#include <memory>
#include <utility>

namespace Vela
{

/// A service of the process that is registered in its application domain.
///
/// Creation and disposal belong to one owner; lookups may come from any thread, and the owner makes sure that nobody
/// uses the instance any more when it disposes it.
template <typename T>
class AppDomainSingleton
{
public:
    /// @throws Exception when there is no instance
    static T& GetInstance()
    {
        if (T* instance = TryGetInstance())
        {
            return *instance;
        }
        throw Exception("AppDomain Singleton instance of type '{0}' was not created yet!", GetTypeName<T>());
    }

    static T* TryGetInstance()
    {
        const AppDomain* domain = Singleton<AppDomain>::TryGetInstance();
        return domain == nullptr ? nullptr : static_cast<T*>(domain->FindSingleton(RawName()));
    }

    /// Makes the instance; it lives until DisposeInstance.
    /// @throws InvalidOperationException when there is one already
    template <typename... Args>
    static T& CreateInstance(Args&&... args)
    {
        auto created = std::make_unique<T>(std::forward<Args>(args)...);
        if (!Singleton<AppDomain>::GetInstance().AddSingleton(RawName(), created.get()))
        {
            throw InvalidOperationException("AppDomain Singleton instance of type '{0}' was created yet!",
                                            GetTypeName<T>());
        }
        return *created.release();
    }

    /// Unregisters and deletes the instance. Without one nothing happens.
    static void DisposeInstance()
    {
        if (AppDomain* domain = Singleton<AppDomain>::TryGetInstance())
        {
            delete static_cast<T*>(domain->RemoveSingleton(RawName()));
        }
    }

private:
    static const char* RawName() noexcept
    {
        return GetRawTypeName(typeid(T));
    }
};

} // namespace Vela
