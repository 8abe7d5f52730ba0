#include "gnss/gnssTSIP.h"
#include "gnss/julianDay.h"
#include "tests/gnss/tsipPacket.h"

#include <gmock/gmock.h>

#include <string>

namespace {

constexpr float DaySeconds = 86400;

class gnssTSIPTimeTest : public gnssTSIPTest
{
protected:
    std::string Date() const
    {
        return std::to_string(Receiver.Year) + "-" + std::to_string(Receiver.Month) + "-" +
               std::to_string(Receiver.Day);
    }
};

TEST_F(gnssTSIPTimeTest, CountsJulianDays)
{
    EXPECT_EQ(julianDay({1980, 1, 6}), 2444245U);
    EXPECT_EQ(julianDay({2000, 1, 1}), 2451545U);
    EXPECT_EQ(julianDay({2026, 11, 20}), 2461365U);
    EXPECT_EQ(julianDay({2025, 13, 1}), julianDay({2026, 1, 1})) << "a month beyond the calendar counts on";
    for (uint32_t day = julianDay({0, 1, 1}); day <= julianDay({9999, 12, 31}); day += 13) {
        const julianDate date = julianToDate(day);
        ASSERT_EQ(julianDay(date), day);
        ASSERT_TRUE(date.Month >= 1 && date.Month <= 12 && date.Day >= 1 && date.Day <= 31);
    }
    const julianDate leap = julianToDate(julianDay({2024, 2, 28}) + 1);
    EXPECT_EQ(leap.Month, 2);
    EXPECT_EQ(leap.Day, 29);
}

TEST_F(gnssTSIPTimeTest, ReadsPrimaryTiming)
{
    Know(3);
    Receiver.DecodeStatus = 0;
    Feed(primaryTiming({.TimeOfWeek = 432017,
                        .Week = 2445,
                        .Offset = 17,
                        .Flags = 3,
                        .Hours = 12,
                        .Minutes = 34,
                        .Seconds = 56,
                        .Day = 19,
                        .Month = 11,
                        .Year = 2026}));
    EXPECT_EQ(Receiver.WeekTime, 432000);
    EXPECT_EQ(Receiver.UTCOffset, 17);
    EXPECT_EQ(Receiver.Week, 2445);
    EXPECT_EQ(Receiver.TimeFlags, 3);
    EXPECT_EQ(Receiver.TimeOfDay, 12 * 3600 + 34 * 60 + 56);
    EXPECT_EQ(Date(), "2026-11-19");
    EXPECT_EQ(Receiver.Valid, gnss::ValidTime);
    EXPECT_EQ(Listener.NewData, 1U);
}

TEST_F(gnssTSIPTimeTest, MovesADateForwardByWholeRollovers)
{
    struct row {
        unsigned Day, Month, Year;
        const char* Date;
    };
    constexpr row rows[] = {
        {1, 6, 2006, "2026-1-15"},  {20, 11, 2026, "2026-11-20"}, {5, 4, 2007, "2026-11-19"},
        {6, 4, 2007, "2026-11-20"}, {7, 4, 2007, "2007-4-7"},     {6, 1, 1980, "2019-4-7"},
        {1, 1, 2020, "2020-1-1"},
    };
    Know(3);
    for (const row& each : rows) {
        Feed(primaryTiming({.Day = each.Day, .Month = each.Month, .Year = each.Year}));
        EXPECT_EQ(Date(), each.Date);
        Feed(tsip(0x8F, 0xAD).zeros(13).u1(each.Day).u1(each.Month).u2(each.Year));
        EXPECT_EQ(Date(), each.Date);
        Feed(tsip(0x8F, 0x0B).zeros(10).u1(each.Day).u1(each.Month).u2(each.Year).zeros(51));
        EXPECT_EQ(Date(), each.Date);
    }
}

TEST_F(gnssTSIPTimeTest, LetsADateAfterTodayJumpWithoutSense)
{
    Know(3);
    // One day ahead: the difference of 32 bits is 2^32 - 1, and whole rollovers of it are added.
    Feed(primaryTiming({.Day = 21, .Month = 11, .Year = 2026}));
    const julianDate wanted = julianToDate(2461365 - 4294967295U % 7168);
    EXPECT_EQ(Receiver.Year, wanted.Year);
    EXPECT_EQ(Receiver.Month, wanted.Month);
    EXPECT_EQ(Receiver.Day, wanted.Day);
}

TEST_F(gnssTSIPTimeTest, FollowsTheComputersDate)
{
    Know(3);
    fakeClockToday({2050, 1, 1});
    Feed(primaryTiming({.Day = 1, .Month = 6, .Year = 2006}));
    EXPECT_EQ(Date(), "2045-8-31");
}

TEST_F(gnssTSIPTimeTest, FollowsTheDateThatItIsToldInPlaceOfTheComputers)
{
    Know(3);
    Receiver.Today = [] { return clockDate{2050, 1, 1}; };
    // It is the Saturday of week 3651.
    Feed(primaryTiming({.Week = 3651 % 1024, .Day = 1, .Month = 6, .Year = 2006}));
    EXPECT_EQ(Date(), "2045-8-31");
    EXPECT_EQ(Receiver.Week, 3651);
}

TEST_F(gnssTSIPTimeTest, PlacesATenBitWeekInThePresent)
{
    // 2026-11-20 is a Friday of week 2445.
    struct row {
        unsigned Week;
        uint16_t Full;
    };
    constexpr row rows[] = {{397, 2445}, {398, 1422}, {0, 2048}, {1023, 2047}, {2445, 2445}, {1849, 1849}};
    Know(3);
    for (const row& each : rows) {
        Receiver.WeekTime = 0;
        Feed(primaryTiming({.Week = each.Week}));
        EXPECT_EQ(Receiver.Week, each.Full) << each.Week;
    }
}

TEST_F(gnssTSIPTimeTest, PlacesAWeekByTheDayThatWasToldBefore)
{
    Know(3);
    // Week 397 begins on Sunday the 15th; with Saturday as the last known day it seems to lie ahead.
    Receiver.WeekTime = 5 * DaySeconds;
    Feed(primaryTiming({.Week = 397}));
    EXPECT_EQ(Receiver.Week, 2445);
    Receiver.WeekTime = 6 * DaySeconds;
    Feed(primaryTiming({.Week = 397}));
    EXPECT_EQ(Receiver.Week, 1421);
}

TEST_F(gnssTSIPTimeTest, TakesAWeekAheadOfTodayAsItComes)
{
    Know(3);
    Receiver.WeekTime = 0;
    Feed(primaryTiming({.Week = 2446}));
    // The difference is negative: (2^32 - 2) / 7168 rollovers of 1024 weeks, cut to 16 bits.
    const uint32_t begin = 2446U * 7 + 2444245;
    const uint32_t rollovers = (2461365U - begin) / 7168;
    EXPECT_EQ(Receiver.Week, static_cast<uint16_t>(rollovers % 65536 * 1024 + 2446));
}

TEST_F(gnssTSIPTimeTest, LendsADayWhenTheOffsetReachesOverTheWeeksBeginning)
{
    Know(3);
    Feed(primaryTiming({.TimeOfWeek = 10, .Week = 2445, .Offset = 18}));
    EXPECT_EQ(Receiver.WeekTime, 86392);
    EXPECT_EQ(Receiver.Week, 2444);
    Receiver.WeekTime = 0;
    Feed(primaryTiming({.TimeOfWeek = 18, .Week = 2445, .Offset = 18}));
    EXPECT_EQ(Receiver.WeekTime, 0);
    EXPECT_EQ(Receiver.Week, 2445);
}

TEST_F(gnssTSIPTimeTest, KeepsTimeInvalidWhileTheReceiverHasNone)
{
    struct row {
        uint8_t Status;
        uint8_t Valid;
    };
    constexpr row rows[] = {{0xFF, 0}, {0x01, 0}, {0x00, 1}, {0x08, 1}};
    Know(3);
    const std::string reports[] = {primaryTiming({}), tsip(0x8F, 0xAD).zeros(17)};
    for (const std::string& report : reports) {
        for (const row& each : rows) {
            Receiver.Valid = 0;
            Receiver.DecodeStatus = each.Status;
            Feed(report);
            EXPECT_EQ(Receiver.Valid, each.Valid) << int{each.Status};
        }
    }
    Receiver.DecodeStatus = 1;
    Feed(reports[0]);
    EXPECT_EQ(Receiver.Valid, gnss::ValidTime) << "what was valid stays so";
}

TEST_F(gnssTSIPTimeTest, ReadsGPSTimeOfEveryModel)
{
    Know(3);
    Feed(tsip(0x41).r4(3 * DaySeconds + 17).u2(397).r4(17));
    EXPECT_EQ(Receiver.WeekTime, 3 * DaySeconds);
    EXPECT_EQ(Receiver.UTCOffset, 17);
    EXPECT_EQ(Receiver.Week, 2445);
    EXPECT_EQ(Receiver.Valid, 0);
    EXPECT_EQ(Receiver.Year, 0);
    EXPECT_EQ(Listener.NewData, 0U);
}

TEST_F(gnssTSIPTimeTest, BuildsTheDateOfALassenFromItsWeek)
{
    Know(4);
    Feed(tsip(0x41).r4(3 * DaySeconds + 17).u2(397).r4(17));
    EXPECT_EQ(Date(), "2026-11-18");
    EXPECT_EQ(Receiver.Valid, gnss::ValidTime);
    EXPECT_EQ(Listener.NewData, 1U);
}

TEST_F(gnssTSIPTimeTest, ReadsComprehensiveTime)
{
    Know(3);
    Feed(tsip(0x8F, 0x0B)
             .zeros(2)
             .r8(345600.5)
             .u1(19)
             .u1(11)
             .u2(2026)
             .zeros(1)
             .u2(18)
             .zeros(24)
             .r8(0.5)
             .r8(-0.25)
             .r8(99));
    EXPECT_EQ(Receiver.WeekTime, 345600.5F);
    EXPECT_EQ(Date(), "2026-11-19");
    EXPECT_EQ(Receiver.UTCOffset, 18);
    EXPECT_NEAR(Receiver.Latitude, 28.6478897565, 1e-9);
    EXPECT_NEAR(Receiver.Longitude, -14.3239448783, 1e-9);
    EXPECT_EQ(Receiver.Altitude, 99);
    EXPECT_EQ(Receiver.Valid, gnss::ValidPosition);
    EXPECT_EQ(Receiver.TimeOfDay, 0);
    EXPECT_EQ(Listener.NewData, 1U);
}

TEST_F(gnssTSIPTimeTest, ReadsPrimaryUTCAndKnowsTheAcutimeByIt)
{
    Feed(tsip(0x8F, 0xAD).zeros(2).r8(0.25).u1(12).u1(34).u1(56).u1(19).u1(11).u2(2026));
    EXPECT_EQ(Receiver.TimeOfDay, 12 * 3600 + 34 * 60 + 56.25);
    EXPECT_EQ(Date(), "2026-11-19");
    EXPECT_EQ(Receiver.Model, 3);
    EXPECT_EQ(Receiver.Ident, gnssTSIP::Identification::Known);
    EXPECT_EQ(Receiver.Valid, 0) << "the decoding status is not known yet";
    EXPECT_EQ(Listener.NewData, 1U);
}

}  // namespace
