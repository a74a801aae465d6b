#include <Vela/System/Commons/Chrono/DateTime.hpp>

#include <fmt/compile.h>

#include <chrono>
#include <cstdint>
#include <ctime>

namespace Vela::System::Commons::Chrono
{

DateTime DateTime::GetUtcNow() noexcept
{
    // The standard library's system clock asks for seconds of 32 bits where long has no more, and fails in 2038.
    timespec now{};
    static_cast<void>(::clock_gettime(CLOCK_REALTIME, &now));
    return DateTime(std::int64_t{now.tv_sec} * 1'000'000 + now.tv_nsec / 1'000);
}

String DateTime::ToString() const
{
    using namespace std::chrono;
    using Microseconds = duration<std::int64_t, std::micro>;
    const Microseconds time(microseconds);
    const auto day = floor<days>(time);
    const year_month_day date{sys_days(day)};
    const hh_mm_ss clock{time - day};
    return fmt::format(FMT_COMPILE("{:04}-{:02}-{:02}T{:02}:{:02}:{:02}.{:06}Z"), static_cast<int>(date.year()),
                       static_cast<unsigned>(date.month()), static_cast<unsigned>(date.day()), clock.hours().count(),
                       clock.minutes().count(), clock.seconds().count(), clock.subseconds().count());
}

} // namespace Vela::System::Commons::Chrono
