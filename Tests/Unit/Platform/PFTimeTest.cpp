#include "PFTime.h"

#include <gtest/gtest.h>

#include <cstdlib>

namespace
{

_FILETIME FileTime(unsigned long long units)
{
    return {static_cast<std::uint32_t>(units), static_cast<std::uint32_t>(units >> 32)};
}

unsigned long long UnitsOf(const CPFTime& time)
{
    _FILETIME fileTime = {};
    time.GetFileTime(fileTime);
    return (static_cast<unsigned long long>(fileTime.dwHighDateTime) << 32) | fileTime.dwLowDateTime;
}

// A time zone three hours and a half west of UTC, without daylight saving.
class PFTimeInZone : public testing::Test
{
protected:
    void SetUp() override
    {
        setenv("TZ", "XXX3:30", 1);
        tzset();
    }
    void TearDown() override
    {
        unsetenv("TZ");
        tzset();
    }
};

} // namespace

TEST(PFTime, FileTimeOf1970IsSecondZero)
{
    const CPFTime time(FileTime(116444736000000000));
    EXPECT_EQ(0, time.GetTime());
    EXPECT_EQ(0u, time.Get100ns());
}

TEST(PFTime, FileTimeKeepsThePartOfASecond)
{
    const CPFTime time(FileTime(116444736000000000 + 15 * 10000000ULL + 1234567));
    EXPECT_EQ(15, time.GetTime());
    EXPECT_EQ(1234567u, time.Get100ns());
    EXPECT_EQ(116444736000000000 + 15 * 10000000ULL + 1234567, UnitsOf(time));
}

TEST(PFTime, NowIsBetweenTwoLooksAtTheClock)
{
    const time_t before = std::time(nullptr);
    const CPFTime now;
    const time_t after = std::time(nullptr);
    EXPECT_GE(now.GetTime(), before);
    EXPECT_LE(now.GetTime(), after);
    EXPECT_LT(now.Get100ns(), 10000000u);
    EXPECT_EQ(0u, now.Get100ns() % 10); // it comes in microseconds
}

TEST_F(PFTimeInZone, FieldsOfSecondsAreLocalAndTheirTwinsUtc)
{
    const CPFTime time(static_cast<time_t>(951782400)); // 2000-02-29 00:00:00 UTC, a Tuesday
    EXPECT_EQ(2000, time.GetUTCYear());
    EXPECT_EQ(2, time.GetUTCMonth());
    EXPECT_EQ(29, time.GetUTCDay());
    EXPECT_EQ(0, time.GetUTCHour());
    EXPECT_EQ(0, time.GetUTCMinute());
    EXPECT_EQ(0, time.GetUTCSecond());
    EXPECT_EQ(2, time.GetUTCDayOfWeek());
    EXPECT_EQ(2000, time.GetYear());
    EXPECT_EQ(2, time.GetMonth());
    EXPECT_EQ(28, time.GetDay());
    EXPECT_EQ(20, time.GetHour());
    EXPECT_EQ(30, time.GetMinute());
    EXPECT_EQ(0, time.GetSecond());
    EXPECT_EQ(1, time.GetDayOfWeek());
    EXPECT_EQ(0u, time.Get100ns());
}

TEST_F(PFTimeInZone, IsMadeFromFieldsOfEitherClock)
{
    EXPECT_EQ(951782400, CPFTime(2000, 2, 29, 0, 0, 0, true).GetTime());
    EXPECT_EQ(951782400, CPFTime(2000, 2, 28, 20, 30, 0, false).GetTime());
}

// The zone's seconds west of UTC are added, so this lies beyond UTC and not at the local time.
// 2147483647 seconds end on 2038-01-19.
TEST_F(PFTimeInZone, GoesOnAfter2038)
{
    const CPFTime time(2040, 2, 29, 12, 30, 15, true);
    EXPECT_EQ(2214131415, time.GetTime());
    EXPECT_EQ(2040, time.GetUTCYear());
    EXPECT_EQ(2, time.GetUTCMonth());
    EXPECT_EQ(29, time.GetUTCDay());
    EXPECT_EQ(9, time.GetHour());
    EXPECT_EQ(2214131415, CPFTime(2040, 2, 29, 9, 0, 15, false).GetTime());
    EXPECT_EQ(116444736000000000 + 2214131415 * 10000000ULL, UnitsOf(time));
    EXPECT_EQ(2214131415, CPFTime(FileTime(116444736000000000 + 2214131415 * 10000000ULL)).GetTime());
}

TEST_F(PFTimeInZone, LocalTimeOf100nsIsOnTheOtherSide)
{
    unsigned long long units = 0;
    CPFTime(static_cast<time_t>(0)).GetLocalTime_100ns(units);
    EXPECT_EQ(116444736000000000 + 12600 * 10000000ULL, units);
}
