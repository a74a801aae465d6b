#include <Vela/System/Commons/Chrono/DateTime.hpp>

#include <fmt/compile.h>

#include <chrono>

namespace Vela::System::Commons::Chrono
{

DateTime DateTime::GetUtcNow() noexcept
{
    const auto now = std::chrono::system_clock::now().time_since_epoch();
    return DateTime(std::chrono::duration_cast<std::chrono::microseconds>(now).count());
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
