#include "gnss/gnss.h"

#include "tests/fakes/fakes.h"

#include <gtest/gtest.h>

namespace {

class gnssTest : public testing::Test
{
protected:
    void SetUp() override { fakeReset(); }

    gnss Model;
};

TEST_F(gnssTest, IsAllZeroAfterConstruction)
{
    EXPECT_EQ(Model.Latitude, 0);
    EXPECT_EQ(Model.Longitude, 0);
    EXPECT_EQ(Model.Altitude, 0);
    EXPECT_EQ(Model.TimeOfDay, 0);
    EXPECT_EQ(Model.Year, 0);
    EXPECT_EQ(Model.Valid, 0);
    EXPECT_EQ(Model.Model, 0);
    EXPECT_TRUE(Model.Sats.empty());
    EXPECT_FALSE(Model.OnNewData);
    EXPECT_FALSE(Model.OnSend);
}

TEST_F(gnssTest, ForgetsModelValidityAndSatellitesOnRestartButNoPosition)
{
    Model.Model = 6;
    Model.Valid = gnss::ValidTime | gnss::ValidPosition;
    Model.Latitude = 48.5;
    Model.Year = 2026;
    Model.Sats.resize(3);
    Model.Restart();
    EXPECT_EQ(Model.Model, 0);
    EXPECT_EQ(Model.ModelName(), "Unknown");
    EXPECT_EQ(Model.Valid, 0);
    EXPECT_TRUE(Model.Sats.empty());
    EXPECT_EQ(Model.Latitude, 48.5);
    EXPECT_EQ(Model.Year, 2026);
}

TEST_F(gnssTest, ChangesNothingOnASecondRestart)
{
    Model.Latitude = 48.5;
    Model.Restart();
    Model.Restart();
    EXPECT_EQ(Model.Model, 0);
    EXPECT_TRUE(Model.Sats.empty());
    EXPECT_EQ(Model.Latitude, 48.5);
}

TEST_F(gnssTest, LeavesTheLockFreeAfterRestart)
{
    Model.Restart();
    Model.SatsLock.Lock();
    Model.SatsLock.Unlock();
}

TEST_F(gnssTest, IgnoresTheReceiverModeByItself)
{
    bool sent = false;
    Model.OnSend = [&sent](const uint8_t*, size_t) { sent = true; };
    Model.ReceiverModeSet(3);
    EXPECT_FALSE(sent);
}

TEST_F(gnssTest, NamesEveryModel)
{
    constexpr std::string_view names[] = {
        "Unknown",
        "Generic NMEA",
        "NVS NV08C-CSM v5.1",
        "Trimble® Acutime™ Gold",
        "Trimble® Lassen-SK8™",
        "Trimble® Resolution T®",
        "Generic u-blox",
        "u-blox 7",
        "u-blox 8/M8",
        "u-blox 9/M9",
        "u-blox Neo-M9N",
        "u-blox Zed-F9R",
        "u-blox 10/M10",
        "u-blox Max-M10S",
        "u-blox Neo-F10N",
    };
    ASSERT_EQ(std::size(names), gnss::ModelLast + 1U);
    for (size_t i = 0; i < std::size(names); ++i) {
        Model.Model = static_cast<uint8_t>(i);
        EXPECT_EQ(Model.ModelName(), names[i]);
    }
    Model.Model = gnss::ModelLast + 1;
    EXPECT_EQ(Model.ModelName(), "Unknown");
    Model.Model = 255;
    EXPECT_EQ(Model.ModelName(), "Unknown");
}

TEST_F(gnssTest, NamesEverySignal)
{
    constexpr std::string_view names[] = {
        "",       "B1 C",  "B1 Cd",  "B1 Cp",  "B1I",   "B1I D1", "B1I D2", "B2 a",  "B2 ad",
        "B2 ap",  "B2I",   "B2I D1", "B2I D2", "B3I",   "B3I D1", "B3I D2", "E1",    "E1 B",
        "E1 C",   "E5 a",  "E5 aI",  "E5 aQ",  "E5 b",  "E5 bI",  "E5 bQ",  "E6 A",  "E6 B",
        "E6 B/C", "E6 C",  "L1 OF",  "L2 OF",  "L1C/A", "L2 CL",  "L2 CM",  "L5 I",  "L5 Q",
        "L5 A",   "L1C/A", "L1S",    "L2 CL",  "L2 CM", "L5 I",   "L5 Q",   "L1C/A",
    };
    ASSERT_EQ(std::size(names), 44U);
    for (size_t i = 0; i < std::size(names); ++i)
        EXPECT_EQ(SignalName(static_cast<uint8_t>(i)), names[i]) << i;
    EXPECT_EQ(SignalName(44), "");
    EXPECT_EQ(SignalName(255), "");
}

TEST_F(gnssTest, GivesEveryConstellationItsLetter)
{
    constexpr std::string_view letters = "*BERGINQS*";
    for (size_t i = 0; i < letters.size(); ++i)
        EXPECT_EQ(SourceLetter(static_cast<gnss::Source>(i)), letters[i]) << i;
    EXPECT_EQ(SourceLetter(static_cast<gnss::Source>(10)), '*');
    EXPECT_EQ(SourceLetter(gnss::Source::GPS), 'G');
}

TEST_F(gnssTest, NamesEveryFixQuality)
{
    constexpr std::string_view names[] = {
        "Invalid fix",
        "GPS fix (SPS)",
        "DGPS fix",
        "PPS fix",
        "Real Time Kinematic",
        "Float Real Time Kinematic",
        "Estimated (dead reckoning)",
        "Manual input mode",
        "Simulation mode",
    };
    for (size_t i = 0; i < std::size(names); ++i)
        EXPECT_EQ(FixQualityName(static_cast<uint8_t>(i)), names[i]);
    EXPECT_EQ(FixQualityName(9), "");
    EXPECT_EQ(FixQualityName(255), "");
}

TEST_F(gnssTest, TellsWhetherASatelliteIsUsed)
{
    SatInfo satellite;
    EXPECT_FALSE(satellite.IsUsed());
    satellite.SetUsed(true);
    EXPECT_TRUE(satellite.IsUsed());
    EXPECT_EQ(satellite.Used, 1);
    satellite.SetUsed(false);
    EXPECT_FALSE(satellite.IsUsed());
    satellite.Used = 7;
    EXPECT_TRUE(satellite.IsUsed());
}

}  // namespace
