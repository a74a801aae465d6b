#include <Host/ProcessorBinding.hpp>
#include <Vela/System/Commons/SystemError.hpp>

#include <cerrno>

namespace Vela::System::Kiro::Internal
{
namespace
{

/// Sets the calling thread's affinity for the time of a scope.
class AffinityScope
{
public:
    AffinityScope(const cpu_set_t& inside, const cpu_set_t& afterwards)
        : after(afterwards)
    {
        if (sched_setaffinity(0, sizeof inside, &inside) != 0)
        {
            Commons::ThrowSystemError("Cannot restore the processor affinity");
        }
    }

    AffinityScope(const AffinityScope&) = delete;
    AffinityScope& operator=(const AffinityScope&) = delete;

    ~AffinityScope()
    {
        sched_setaffinity(0, sizeof after, &after);
    }

private:
    const cpu_set_t& after;
};

} // namespace

void ProcessorBinding::Bind(std::int32_t processor)
{
    // Both calls fail as well on machines with more processors than the set can hold.
    CPU_ZERO(&bound);
    errno = EINVAL;
    const bool isKnown = processor >= 0 && processor < CPU_SETSIZE;
    if (isKnown)
    {
        CPU_SET(static_cast<unsigned>(processor), &bound);
    }
    if (!isKnown || sched_getaffinity(0, sizeof original, &original) != 0 ||
        sched_setaffinity(0, sizeof bound, &bound) != 0)
    {
        log.Warning("Cannot bind the process to processor {0}: {1}. It runs on the processors it was given.", processor,
                    Commons::GetErrorText(errno));
        return;
    }
    isBound = true;
}

void ProcessorBinding::RunUnbound(const std::function<void()>& function) const
{
    if (!isBound)
    {
        function();
        return;
    }
    const AffinityScope scope(original, bound);
    function();
}

} // namespace Vela::System::Kiro::Internal
