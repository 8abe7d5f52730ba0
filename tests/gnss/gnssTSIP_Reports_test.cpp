#include "gnss/gnssTSIP.h"
#include "tests/gnss/tsipPacket.h"

#include <gmock/gmock.h>

#include <limits>
#include <string>

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr double DegreesPerRadian = 57.29577951308232;

TEST_F(gnssTSIPTest, ReadsAPositionOfSingleFloats)
{
    Know(3);
    Feed(tsip(0x4A).r4(0.5F).r4(-0.25F).r4(545.5F).r4(0).r4(90000.5F));
    EXPECT_EQ(Receiver.Latitude, 0.5 * DegreesPerRadian);
    EXPECT_EQ(Receiver.Longitude, -0.25 * DegreesPerRadian);
    EXPECT_EQ(Receiver.Altitude, 545.5);
    EXPECT_EQ(Receiver.WeekTime, 90000.5F);
    EXPECT_EQ(Receiver.TimeOfDay, 3600.5);
    EXPECT_EQ(Receiver.Valid, gnss::ValidTime | gnss::ValidPosition);
    EXPECT_EQ(Listener.NewData, 1U);
}

TEST_F(gnssTSIPTest, ReadsTheAltitudeReferenceFromTheShortFormOfThePosition)
{
    Know(3);
    Feed(tsip(0x4A).r4(32.5F).zeros(5));
    EXPECT_EQ(Receiver.SeaLevel, -32.5F);
    EXPECT_EQ(Receiver.Valid, 0);
    EXPECT_EQ(Listener.NewData, 1U);
    Feed(tsip(0x4A).r4(0.5F).zeros(16).zeros(100));
    EXPECT_EQ(Receiver.SeaLevel, -32.5F);
    EXPECT_GT(Receiver.Latitude, 28) << "any other length is a position";
}

TEST_F(gnssTSIPTest, ReadsAPositionOfDoubles)
{
    Know(3);
    Feed(tsip(0x84).r8(0.5).r8(-0.25).r8(545.25).r8(0).r4(90001));
    EXPECT_EQ(Receiver.Latitude, 0.5 * DegreesPerRadian);
    EXPECT_EQ(Receiver.Longitude, -0.25 * DegreesPerRadian);
    EXPECT_EQ(Receiver.Altitude, 545.25);
    EXPECT_EQ(Receiver.WeekTime, 90001);
    EXPECT_EQ(Receiver.TimeOfDay, 3601);
    EXPECT_EQ(Receiver.Valid, gnss::ValidTime | gnss::ValidPosition);
    EXPECT_EQ(Listener.NewData, 1U);
}

TEST_F(gnssTSIPTest, ReadsAVelocityAndKeepsTheSignOfItsCourse)
{
    struct row {
        float East;
        float North;
        float Speed;
        float Track;
    };
    constexpr row rows[] = {{0, 10, 36, 0},       {10, 0, 36, 90},          {-10, 0, 36, -90},
                            {3, 4, 18, 36.8699F}, {-3, -4, 18, -143.1301F}, {0, 0, 0, 0}};
    Know(3);
    for (const row& each : rows) {
        Feed(tsip(0x56).r4(each.East).r4(each.North).zeros(12));
        EXPECT_FLOAT_EQ(Receiver.Speed, each.Speed);
        EXPECT_FLOAT_EQ(Receiver.Track, each.Track);
    }
    EXPECT_EQ(Listener.NewData, std::size(rows));
}

TEST_F(gnssTSIPTest, ListsSignalLevelsInOrderAndAtOnce)
{
    Know(3);
    Feed(levels({{30, 40}, {5, 41}, {12, -1}}));
    ASSERT_EQ(Receiver.Sats.size(), 3U);
    EXPECT_EQ(Receiver.Sats[0].SvId, 5);
    EXPECT_EQ(Receiver.Sats[0].SNR, 41);
    EXPECT_EQ(Receiver.Sats[0].Source, gnss::Source::GPS);
    EXPECT_THAT(Receiver.Sats[0].Signals, ElementsAre(31, 0, 0));
    EXPECT_EQ(Receiver.Sats[1].SvId, 12);
    EXPECT_EQ(Receiver.Sats[1].SNR, -1) << "not tracked, but listed";
    EXPECT_EQ(Receiver.Sats[2].SvId, 30);
    EXPECT_EQ(Listener.NewData, 0U);
    Feed(levels({}));
    EXPECT_THAT(Receiver.Sats, IsEmpty());
}

TEST_F(gnssTSIPTest, KeepsTheOrderOfEqualSatellites)
{
    Know(3);
    Feed(levels({{7, 1}, {5, 2}, {7, 3}, {5, 4}, {7, 5}}));
    ASSERT_EQ(Receiver.Sats.size(), 5U);
    constexpr float wanted[] = {2, 4, 1, 3, 5};
    for (size_t i = 0; i < 5; ++i)
        EXPECT_EQ(Receiver.Sats[i].SNR, wanted[i]);
}

TEST_F(gnssTSIPTest, ForgetsElevationsButNotWhoIsUsedWithNewLevels)
{
    Know(3);
    Feed(levels({{5, 40}, {6, 41}}) + allInView({6}) + tsip(0x5C).u1(6).zeros(11).r4(0.5F).r4(1.5F));
    EXPECT_NEAR(Receiver.Sats[1].Elevation, 0.5 * DegreesPerRadian, 1e-5);
    EXPECT_NEAR(Receiver.Sats[1].Azimuth, 1.5 * DegreesPerRadian, 1e-5);
    Feed(levels({{5, 40}, {6, 41}}));
    EXPECT_EQ(Receiver.Sats[1].Elevation, 0);
    EXPECT_EQ(Receiver.Sats[1].Azimuth, 0);
    EXPECT_TRUE(Receiver.Sats[1].IsUsed());
    EXPECT_FALSE(Receiver.Sats[0].IsUsed());
    EXPECT_EQ(Listener.NewData, 0U);
}

TEST_F(gnssTSIPTest, TracksOnlyTheFirstOfEqualSatellitesAndNobodyUnlisted)
{
    Know(3);
    Feed(levels({{5, 1}, {5, 2}}) + tsip(0x5C).u1(5).zeros(11).r4(0.5F).r4(1.5F) +
         tsip(0x5C).u1(9).zeros(11).r4(0.75F).r4(1.5F) + allInView({5, 9}));
    EXPECT_GT(Receiver.Sats[0].Elevation, 28);
    EXPECT_EQ(Receiver.Sats[1].Elevation, 0);
    EXPECT_TRUE(Receiver.Sats[0].IsUsed());
    EXPECT_FALSE(Receiver.Sats[1].IsUsed());
}

TEST_F(gnssTSIPTest, ReadsDilutionsAndWhoIsUsedWithoutAnEvent)
{
    Know(3);
    Feed(levels({{5, 1}, {6, 1}, {7, 1}}) + allInView({5, 6}));
    EXPECT_EQ(Receiver.PDOP, 2);
    EXPECT_EQ(Receiver.HDOP, 1);
    EXPECT_EQ(Receiver.VDOP, 3);
    EXPECT_EQ(Receiver.TDOP, 4);
    EXPECT_TRUE(Receiver.Sats[0].IsUsed());
    Feed(allInView({7}));
    EXPECT_FALSE(Receiver.Sats[0].IsUsed());
    EXPECT_FALSE(Receiver.Sats[1].IsUsed());
    EXPECT_TRUE(Receiver.Sats[2].IsUsed());
    EXPECT_EQ(Listener.NewData, 0U);
}

TEST_F(gnssTSIPTest, ReadsSupplementalTiming)
{
    const std::string report = tsip(0x8F, 0xAC)
                                   .u1(7)
                                   .zeros(1)
                                   .u1(42)
                                   .zeros(6)
                                   .u2(0x0120)
                                   .u1(0x0A)
                                   .zeros(3)
                                   .r4(12.5F)
                                   .r4(0.25F)
                                   .zeros(8)
                                   .r4(36.5F)
                                   .r8(0.5)
                                   .r8(-0.25)
                                   .r8(545.25)
                                   .r4(8)
                                   .zeros(5);
    Know(5);
    Receiver.Status = 1 << 11;
    Feed(report);
    EXPECT_EQ(Receiver.RXMode, 7);
    EXPECT_EQ(Receiver.SurveyProgress, 42);
    EXPECT_EQ(Receiver.Status, 0x0120) << "bit 11 is overwritten with the rest";
    EXPECT_EQ(Receiver.DecodeStatus, 0x0A);
    EXPECT_EQ(Receiver.ClockBias, 12.5F);
    EXPECT_EQ(Receiver.BiasRate, 0.25F);
    EXPECT_EQ(Receiver.Temperature, 36.5F);
    EXPECT_EQ(Receiver.Latitude, 0.5 * DegreesPerRadian);
    EXPECT_EQ(Receiver.Longitude, -0.25 * DegreesPerRadian);
    EXPECT_EQ(Receiver.Altitude, 545.25);
    EXPECT_EQ(Receiver.PPSError, 8);
    EXPECT_EQ(Receiver.Valid, gnss::ValidPosition);
    EXPECT_EQ(Listener.NewData, 1U);
    Know(3);
    Feed(report);
    EXPECT_FLOAT_EQ(Receiver.PPSError, 8e-9F) << "this model tells nanoseconds";
}

TEST_F(gnssTSIPTest, TakesAnyReceiverModeAboveEightForUnknown)
{
    Know(3);
    Feed(tsip(0x8F, 0xAC).u1(200).zeros(62));
    EXPECT_EQ(Receiver.RXMode, 8);
    EXPECT_EQ(Receiver.RXModeName(), "Unknown");
}

TEST_F(gnssTSIPTest, IgnoresOtherSubcodes)
{
    Know(3);
    Feed(tsip(0x8F, 0x20).zeros(100) + tsip(0x8F, 0xA5).zeros(100) + tsip(0x8F));
    EXPECT_THAT(Listener.Log, IsEmpty());
}

TEST_F(gnssTSIPTest, SurvivesNumbersThatAreNone)
{
    constexpr float values[] = {
        std::numeric_limits<float>::quiet_NaN(), std::numeric_limits<float>::infinity(),
        -std::numeric_limits<float>::infinity(), std::numeric_limits<float>::max(),
        std::numeric_limits<float>::lowest(),    std::numeric_limits<float>::denorm_min()};
    Know(4);
    for (const float each : values) {
        for (const float other : values) {
            Feed(tsip(0x4A).r4(each).r4(other).r4(each).r4(0).r4(other) +
                 tsip(0x41).r4(each).u2(65535).r4(other) + tsip(0x41).r4(other).u2(0).r4(each) +
                 primaryTiming({.TimeOfWeek = 0xFFFFFFFF, .Week = 65535}) + tsip(0x56).r4(each).r4(other) +
                 tsip(0x8F, 0x0B).zeros(2).r8(std::numeric_limits<double>::max()).zeros(55) +
                 tsip(0x8F, 0x0B).zeros(2).r8(double{each}).zeros(55));
        }
    }
    EXPECT_GE(Receiver.Year, 2007);
    EXPECT_LE(Receiver.Year, 2026);
}

}  // namespace
