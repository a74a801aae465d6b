#include <Vela/Singleton.hpp>
#include <Vela/String.hpp>

#include <map>
#include <mutex>

namespace Vela
{

SingletonSlot& GetSingletonSlot(const char* rawTypeName)
{
    // Never destroyed: objects with static storage look their singletons up to the very end.
    static auto& mutex = *new std::mutex;
    static auto& slots = *new std::map<String, SingletonSlot>;
    const std::lock_guard lock(mutex);
    return slots[rawTypeName];
}

} // namespace Vela
