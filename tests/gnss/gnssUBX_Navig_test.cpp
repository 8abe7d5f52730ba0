#include "gnss/gnssUBX.h"

#include "tests/fakes/fakes.h"
#include "tests/gnss/ubxLink.h"

#include <gtest/gtest.h>

namespace {

class gnssUBXNavig : public testing::Test
{
protected:
    void SetUp() override { fakeReset(); }

    ubxLink Link{false};
    gnssUBX& Receiver = Link.Receiver;
};

ubxFrame posllh(uint32_t hAcc, uint32_t vAcc)
{
    return ubxFrame(0x01, 0x02)
        .u4(1000)            // iTOW
        .i4(-1'213'140'776)  // lon
        .i4(440'688'194)     // lat
        .i4(1'105'969)       // height
        .i4(1'127'319)       // hMSL
        .u4(hAcc)
        .u4(vAcc);
}

ubxFrame timeUtc(unsigned valid, int32_t nano = -250'000'000)
{
    return ubxFrame(0x01, 0x21)
        .u4(1000)
        .u4(20)
        .i4(nano)
        .u2(2026)
        .u1(11)
        .u1(20)
        .u1(23)
        .u1(59)
        .u1(60)
        .u1(valid);
}

}  // namespace

TEST_F(gnssUBXNavig, ReadsThePosition)
{
    feed(Receiver, posllh(1200, 2300));
    EXPECT_DOUBLE_EQ(Receiver.Longitude, -1'213'140'776 * 1e-7);
    EXPECT_DOUBLE_EQ(Receiver.Latitude, 44.0688194);
    EXPECT_FLOAT_EQ(static_cast<float>(Receiver.Altitude), 1127.319f);
    EXPECT_NEAR(Receiver.SeaLevel, -21.35, 1e-3);
    EXPECT_EQ(Receiver.Valid, gnss::ValidPosition);
    EXPECT_EQ(Link.NewData, 1u);
}

TEST_F(gnssUBXNavig, TheAltitudePassesThroughAShortFloat)
{
    feed(Receiver, posllh(0, 0));
    EXPECT_EQ(Receiver.Altitude, double{1'127'319.0f * 0.001f});
}

TEST_F(gnssUBXNavig, ThePositionIsValidWhileBothAccuraciesAreBelowAHundredMetres)
{
    struct {
        uint32_t Horizontal, Vertical;
        bool Valid;
    } constexpr Cases[] = {
        {99'999, 99'999, true},    {100'000, 99'999, false}, {99'999, 100'000, false}, {0, 0, true},
        {100'000, 100'000, false}, {0xFFFFFFFF, 0, false},   {0, 0xFFFFFFFF, false},
    };
    for (const auto& row : Cases) {
        for (const uint8_t before : {gnss::ValidTime, uint8_t{gnss::ValidTime | gnss::ValidPosition}}) {
            Receiver.Valid = before;
            feed(Receiver, posllh(row.Horizontal, row.Vertical));
            EXPECT_EQ(Receiver.Valid, gnss::ValidTime | (row.Valid ? gnss::ValidPosition : 0))
                << row.Horizontal << " " << row.Vertical;
        }
    }
}

TEST_F(gnssUBXNavig, ReadsTheDilutions)
{
    feed(Receiver, ubxFrame(0x01, 0x04).u4(0).u2(111).u2(222).u2(333).u2(444).u2(555).u2(666).u2(777));
    EXPECT_FLOAT_EQ(Receiver.PDOP, 2.22f);
    EXPECT_FLOAT_EQ(Receiver.TDOP, 3.33f);
    EXPECT_FLOAT_EQ(Receiver.VDOP, 4.44f);
    EXPECT_FLOAT_EQ(Receiver.HDOP, 5.55f);
    EXPECT_EQ(Link.NewData, 1u);
}

TEST_F(gnssUBXNavig, KeepsTheSpeedInMetresPerSecond)
{
    feed(Receiver, ubxFrame(0x01, 0x12).zeros(20).u4(1250).i4(27'123'456).zeros(8));
    EXPECT_FLOAT_EQ(Receiver.Speed, 12.5f);
    EXPECT_FLOAT_EQ(Receiver.Track, 271.23456f);
    EXPECT_EQ(Link.NewData, 1u);
}

TEST_F(gnssUBXNavig, ReadsDateAndTimeOfDay)
{
    feed(Receiver, timeUtc(7));
    EXPECT_EQ(Receiver.Year, 2026);
    EXPECT_EQ(Receiver.Month, 11);
    EXPECT_EQ(Receiver.Day, 20);
    EXPECT_DOUBLE_EQ(Receiver.TimeOfDay, 86399.75);
    EXPECT_EQ(Receiver.Valid, gnss::ValidTime);
    EXPECT_EQ(Link.NewData, 1u);
}

TEST_F(gnssUBXNavig, TheTimeIsValidOnlyWithAllThreeOfItsBits)
{
    for (unsigned valid = 0; valid < 256; valid++) {
        Receiver.Valid = gnss::ValidPosition | (valid % 2 == 0 ? gnss::ValidTime : 0);
        feed(Receiver, timeUtc(valid));
        EXPECT_EQ(Receiver.Valid, gnss::ValidPosition | ((valid & 7) == 7 ? gnss::ValidTime : 0)) << valid;
    }
}

TEST_F(gnssUBXNavig, MessagesThatAreTooShortChangeNothingAndLongerOnesAreRead)
{
    struct {
        ubxFrame Frame;
        size_t Least;
    } const Cases[] = {
        {posllh(1, 1), 28},
        {ubxFrame(0x01, 0x04).u8(~0ull).u8(~0ull).u2(~0u), 18},
        {ubxFrame(0x01, 0x12).zeros(20).u8(~0ull).zeros(8), 36},
        {timeUtc(7), 20},
        {ubxFrame(0x01, 0x30).zeros(8), 8},
        {ubxFrame(0x01, 0x35).u4(0).u1(1).zeros(3), 8},
        {ubxFrame(0x01, 0x43).zeros(8), 8},
    };
    for (const auto& row : Cases) {
        for (size_t size = 0; size < row.Least; size++) {
            ubxLink link(false);
            feed(link.Receiver, ubxFrame(row.Frame).resized(size));
            EXPECT_EQ(link.NewData, 0u) << size;
            EXPECT_EQ(link.Receiver.Longitude + link.Receiver.Year + link.Receiver.Valid, 0);
            EXPECT_EQ(link.Receiver.PDOP + link.Receiver.Speed + link.Receiver.Track, 0);
        }
        ubxLink link(false);
        feed(link.Receiver, row.Frame);
        EXPECT_EQ(link.NewData, 1u);
        ubxFrame longer = row.Frame;
        feed(link.Receiver, longer.zeros(1));
        const bool exact = row.Least == 8;
        EXPECT_EQ(link.NewData, exact ? 1u : 2u);
    }
}

TEST_F(gnssUBXNavig, OtherMessagesOfTheClassAreIgnored)
{
    for (unsigned id = 0; id < 256; id++) {
        const bool known = id == 0x02 || id == 0x04 || id == 0x12 || id == 0x21;
        if (known)
            continue;
        feed(Receiver, ubxFrame(0x01, id).zeros(3).u1(0xAA).u1(0xAA).zeros(87));
        EXPECT_EQ(Link.NewData, 0u) << id;
    }
}
