#include "gnss/gnssTSIP.h"
#include "tests/gnss/tsipPacket.h"

namespace {

TEST_F(gnssTSIPTest, NamesEveryReceiverMode)
{
    constexpr std::string_view names[] = {"Automatic (2D/3D)",
                                          "Single satellite",
                                          "Unknown",
                                          "Horizontal (2D)",
                                          "Full position (3D)",
                                          "GPS reference",
                                          "Clock hold (2D)",
                                          "Over-determine clock",
                                          "Unknown",
                                          "Unknown"};
    EXPECT_EQ(Receiver.RXModeName(), "Unknown") << "before the first report";
    for (size_t i = 0; i < std::size(names); ++i) {
        Receiver.RXMode = static_cast<uint8_t>(i);
        EXPECT_EQ(Receiver.RXModeName(), names[i]);
    }
}

TEST_F(gnssTSIPTest, NamesEveryDecodeStatus)
{
    struct row {
        uint8_t Code;
        const char* Name;
    };
    constexpr row rows[] = {
        {0x00, "Doing Fixes"},
        {0x01, "No GPS time"},
        {0x02, "Need initialization"},
        {0x03, "PDOP too high"},
        {0x08, "No usable sats"},
        {0x09, "Only 1 usable sat"},
        {0x0A, "Only 2 usable sats"},
        {0x0B, "Only 3 usable sats"},
        {0x0C, "Chosen sat unusable"},
        {0x10, "T-RAIM rejected fix"},
        {0xFF, "Unknown"},
        {0x04, "Unknown"},
        {0x07, "Unknown"},
        {0x0D, "Unknown"},
        {0x11, "Unknown"},
    };
    EXPECT_EQ(Receiver.DecodeStatusName(), "Unknown");
    for (const row& each : rows) {
        Receiver.DecodeStatus = each.Code;
        EXPECT_EQ(Receiver.DecodeStatusName(), each.Name) << int{each.Code};
    }
}

TEST_F(gnssTSIPTest, HasALineForEachTimeFlag)
{
    struct row {
        uint8_t Bit;
        const char* Set;
        const char* Clear;
    };
    constexpr row rows[] = {
        {1, "UTC aligned PPS", "GPS aligned PPS"},
        {2, "Time set from GPS", "Time not yet set from GPS"},
        {3, "No UTC offset information", "UTC offset information received"},
        {4, "Time from test mode generator", "Time from GPS"},
    };
    ASSERT_EQ(gnssTSIP::TimeFlagLines().size(), std::size(rows));
    for (size_t i = 0; i < std::size(rows); ++i) {
        const gnssTSIP::FlagLine& line = gnssTSIP::TimeFlagLines()[i];
        EXPECT_EQ(line.Text(static_cast<uint16_t>(1 << rows[i].Bit)), rows[i].Set);
        EXPECT_EQ(line.Text(static_cast<uint16_t>(~(1 << rows[i].Bit))), rows[i].Clear);
    }
    EXPECT_EQ(Receiver.DateLabel(), "Date GPS");
    EXPECT_EQ(Receiver.TimeLabel(), "Time GPS");
    Receiver.TimeFlags = 1;
    EXPECT_EQ(Receiver.DateLabel(), "Date UTC");
    EXPECT_EQ(Receiver.TimeLabel(), "Time UTC");
}

TEST_F(gnssTSIPTest, HasALineForEachAlarm)
{
    struct row {
        unsigned Bit;
        const char* Text;
    };
    constexpr row rows[] = {
        {1, "Antenna open"},      {2, "Antenna short"},         {3, "Satellite tracking"},
        {5, "Self-survey - 42%"}, {6, "Stored position"},       {7, "Leap second pending"},
        {8, "Test mode"},         {9, "Position questionable"}, {10, "EEPROM is corrupted"},
        {11, "Almanac"},          {12, "PPS generated"},
    };
    Receiver.SurveyProgress = 42;
    ASSERT_EQ(gnssTSIP::StatusLines().size(), std::size(rows));
    for (size_t i = 0; i < std::size(rows); ++i) {
        const gnssTSIP::FlagLine& line = gnssTSIP::StatusLines()[i];
        Receiver.Status = static_cast<uint16_t>(1U << rows[i].Bit);
        EXPECT_TRUE(line.IsSet(Receiver.Status));
        EXPECT_EQ(Receiver.StatusText(line), rows[i].Text);
        Receiver.Status = static_cast<uint16_t>(~Receiver.Status);
        EXPECT_FALSE(line.IsSet(Receiver.Status));
        EXPECT_EQ(Receiver.StatusText(line), rows[i].Bit == 5 ? "Self-survey inactive" : rows[i].Text);
    }
}

}  // namespace
