#include <Vela/System/Commons/Chrono/DateTime.hpp>
#include <Vela/System/Commons/Chrono/Duration.hpp>
#include <Vela/System/Commons/Chrono/TimeoutWatch.hpp>

#include <gtest/gtest.h>

using namespace Vela;
using namespace Vela::System::Commons::Chrono;
using namespace std::chrono_literals;

TEST(DateTime, WritesUtcWithMicroseconds)
{
    EXPECT_EQ(DateTime(1'722'515'696'123'456).ToString(), "2024-08-01T12:34:56.123456Z");
    EXPECT_EQ(DateTime(-1).ToString(), "1969-12-31T23:59:59.999999Z");
    EXPECT_EQ(DateTime(4'102'444'800'000'000).ToString(), "2100-01-01T00:00:00.000000Z") << "beyond 32-bit time";
    EXPECT_GT(DateTime::GetUtcNow(), DateTime(1'700'000'000'000'000));
}

TEST(Duration, ReadsNumbersWithUnits)
{
    const std::pair<const char*, std::chrono::nanoseconds> cases[] = {
        {"0", 0ns},
        {"1500", 1500ms},
        {"7ns", 7ns},
        {"3us", 3us},
        {"20ms", 20ms},
        {"1.5s", 1500ms},
        {"2min", 2min},
        {"0.1h", 6min},
        {"0.5", 500us},
        {"0.001us", 1ns},
        {"0.9ns", 0ns},
        {"007s", 7s},
        {"2562047h", 2562047h},
        {"0.333333333333s", 333333333ns},
    };
    for (const auto& [text, expected] : cases)
    {
        Duration duration;
        EXPECT_TRUE(Duration::TryParse(text, duration)) << text;
        EXPECT_EQ(duration.GetNanoseconds(), expected) << text;
    }
}

TEST(Duration, RefusesWhatIsNotOneDuration)
{
    for (const char* text : {"", "s", "-1s", "+1", "1 s", " 1", "1s ", "1.s", ".5s", "1,5s", "1d", "1S", "1s1s", "1e3",
                             "2562048h", "9223372036854775808ns", "99999999999999999999999999", "9223372036854.775808"})
    {
        Duration duration(7ns);
        EXPECT_FALSE(Duration::TryParse(text, duration)) << text;
        EXPECT_EQ(duration.GetNanoseconds(), 7ns) << text;
    }
}

TEST(TimeoutWatch, EndsAtOnceWithoutTimeAndNotBeforeItsTime)
{
    EXPECT_TRUE(TimeoutWatch(0ns).HasTimeout());
    EXPECT_EQ(TimeoutWatch(0ns).GetRemaining(), 0ms);
    const TimeoutWatch hour(1h);
    EXPECT_FALSE(hour.HasTimeout());
    EXPECT_GT(hour.GetRemaining(), 59min);
    EXPECT_LE(hour.GetRemaining(), 1h);
}
