#pragma once

#include <Vela/Exceptions.hpp>
#include <Vela/System/Commons/Api.hpp>
#include <Vela/TypeName.hpp>

#include <atomic>
#include <memory>
#include <utility>

namespace Vela
{

/// The one place in a process where the instance of a plain singleton is kept. Slots live in the commons library,
/// keyed by the type's name as text, because a static member of a template would exist once in every library that is
/// built with hidden visibility.
struct SingletonSlot
{
    std::atomic<void*> instance{nullptr};
    std::atomic<bool> isOwned{false};
};

/// Finds or makes the slot of a type; a slot stays where it is to the end of the process.
VELA_COMMONS_API SingletonSlot& GetSingletonSlot(const char* rawTypeName);

/// The single instance of T in a process, across all its libraries.
///
/// Creation and disposal belong to one owner, which does both on one thread; lookups may come from any thread.
template <typename T>
class Singleton
{
public:
    /// @throws Exception when there is no instance
    static T& GetInstance()
    {
        if (T* instance = TryGetInstance())
        {
            return *instance;
        }
        throw Exception("Singleton instance of type '{0}' was not created yet!", GetTypeName<T>());
    }

    static T* TryGetInstance()
    {
        return static_cast<T*>(Slot().instance.load(std::memory_order_acquire));
    }

    /// Makes the instance; the singleton owns it until DisposeInstance.
    template <typename... Args>
    static T& CreateInstance(Args&&... args)
    {
        auto created = std::make_unique<T>(std::forward<Args>(args)...);
        SetOwned(created.get(), true);
        return *created.release();
    }

    /// Registers an instance that somebody else owns.
    static void SetInstance(T& instance)
    {
        SetOwned(&instance, false);
    }

    /// Unregisters the instance and deletes it when it is owned here. Without an instance nothing happens.
    static void DisposeInstance()
    {
        SingletonSlot& slot = Slot();
        T* instance = static_cast<T*>(slot.instance.exchange(nullptr, std::memory_order_acq_rel));
        if (slot.isOwned.exchange(false))
        {
            delete instance;
        }
    }

private:
    static SingletonSlot& Slot()
    {
        static SingletonSlot& slot = GetSingletonSlot(GetRawTypeName(typeid(T)));
        return slot;
    }

    static void SetOwned(T* instance, bool isOwned)
    {
        if (TryGetInstance() != nullptr)
        {
            throw InvalidOperationException("Singleton instance of type '{0}' was created yet!", GetTypeName<T>());
        }
        Slot().isOwned.store(isOwned);
        Slot().instance.store(instance, std::memory_order_release);
    }
};

} // namespace Vela
