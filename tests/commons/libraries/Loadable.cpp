#include "SharedThing.hpp"

#include <Vela/Singleton.hpp>
#include <Vela/System/Commons/Diagnostics/Loggable.hpp>

extern "C" int DependencyEntry();

namespace
{

/// What keeps careless libraries mapped: statics of inline functions and of templates.
template <typename T>
T& GetCounter()
{
    static T counter{};
    return counter;
}

class Talker : private Vela::System::Commons::Diagnostics::Loggable<Talker>
{
public:
    static void Talk()
    {
        log.Info("Talked {0} times.", ++GetCounter<int>());
    }
};

} // namespace

/// The number of the thing that the executable made; -1 when it is not seen from here.
extern "C" __attribute__((visibility("default"))) int GetSharedNumber()
{
    const auto* thing = Vela::Singleton<Vela::Testing::SharedThing>::TryGetInstance();
    return thing == nullptr ? -1 : thing->number * DependencyEntry();
}

extern "C" __attribute__((visibility("default"))) void Talk()
{
    Talker::Talk();
}
