// Loaded before all others, it lets the wall clock jump from one year to another each time that somebody looks.

#include <sys/syscall.h>
#include <unistd.h>

#include <atomic>
#include <ctime>

extern "C" __attribute__((visibility("default"))) int clock_gettime(clockid_t clock, timespec* time) noexcept
{
#ifdef SYS_clock_gettime64
    const long result = syscall(SYS_clock_gettime64, clock, time);
#else
    const long result = syscall(SYS_clock_gettime, clock, time);
#endif
    static std::atomic<unsigned> looks{0};
    if (clock == CLOCK_REALTIME && result == 0)
    {
        constexpr time_t year = time_t{366} * 86400;
        time->tv_sec += looks++ % 2 == 0 ? year : -year;
    }
    return static_cast<int>(result);
}
