#include "gnss/gnssUBX.h"

#include "tests/fakes/fakes.h"
#include "tests/gnss/ubxScript.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <limits>

using testing::ElementsAre;

namespace {

class gnssUBXPulse : public testing::Test
{
protected:
    void SetUp() override { fakeReset(); }
};

constexpr float Infinity = std::numeric_limits<float>::infinity();

// What a change of the pulse sends.
ubxSent Sent(std::string_view version, float rate, float duty)
{
    ubxLink link;
    identify(link, 9, version);
    link.Receiver.PPSRate = rate;
    link.Receiver.PPSDuty = duty;
    link.Receiver.PendingPPS = 1;
    const auto sent = link.Take(anyFrame());
    EXPECT_EQ(sent.size(), 1u);
    EXPECT_EQ(link.Receiver.ConfigState, gnssUBX::State::PulseSet);
    EXPECT_EQ(link.Receiver.PendingPPS, 0);
    return sent.at(0);
}

ubxFrame Classic(unsigned version, uint32_t freqPeriod, uint32_t ratio, unsigned flags)
{
    return ubxFrame(0x06, 0x31)
        .u1(0)
        .u1(version)
        .zeros(6)
        .u4(freqPeriod)
        .u4(freqPeriod)
        .u4(ratio)
        .u4(ratio)
        .u4(0)
        .u4(flags);
}

struct rateCase {
    float Rate;
    uint32_t FreqPeriod;
    unsigned Flags;
};

constexpr uint32_t Most = 0xFFFFFFFF;

}  // namespace

TEST_F(gnssUBXPulse, TheClassicRoadSendsAWholeFrequencyOrAPeriod)
{
    constexpr rateCase Cases[] = {
        {1, 1, 0x6F},
        {10, 10, 0x6F},
        {1e6f, 1'000'000, 0x6F},
        {0.25f, 4'000'000, 0x67},
        {0.1f, 10'000'000, 0x67},
        {0.5f, 2'000'000, 0x67},
        {0.51f, 1, 0x6F},
        {0.75f, 1, 0x6F},
        {1.5f, 2, 0x6F},
        {1.25f, 1, 0x6F},
        {2.5f, 3, 0x6F},
        {99.4f, 99, 0x6F},
        {0, 0, 0x6F},
    };
    for (const rateCase& row : Cases)
        EXPECT_EQ(Sent(VersionClassic, row.Rate, 0.25f).Payload,
                  Classic(1, row.FreqPeriod, 0x40000000, row.Flags).payload())
            << row.Rate;
}

TEST_F(gnssUBXPulse, RatesThatNoReceiverHasAreBoundedOnTheClassicRoad)
{
    const rateCase cases[] = {
        {1e-4f, Most, 0x67}, {1e-30f, Most, 0x67},   {1e-38f, 0, 0x6F},    {4e9f, 4'000'000'000, 0x6F},
        {1e20f, Most, 0x6F}, {Infinity, Most, 0x6F}, {-Infinity, 0, 0x6F}, {-3, 0, 0x6F},
        {-0.3f, 0, 0x67},    {NAN, 0, 0x6F},
    };
    for (const rateCase& row : cases) {
        const ubxSent sent = Sent(VersionClassic, row.Rate, 0.25f);
        const ubxPayload payload(sent.Payload.data(), sent.Payload.size());
        EXPECT_EQ(payload.u4(8), row.FreqPeriod) << row.Rate;
        EXPECT_EQ(payload.u4(12), row.FreqPeriod) << row.Rate;
        EXPECT_EQ(payload.u4(28), row.Flags) << row.Rate;
    }
}

TEST_F(gnssUBXPulse, TheVersionOfTheMessageFollowsTheProtocol)
{
    for (const auto& [text, version] :
         {std::pair{"PROTVER=15.99", 0}, {"PROTVER=16.00", 1}, {"PROTVER=23.01", 1}, {"none", 0}})
        EXPECT_EQ(Sent(text, 1, 0).Payload.at(1), version) << text;
}

TEST_F(gnssUBXPulse, NothingOfAnEarlierMessageIsLeftInTheClassicChange)
{
    ubxLink link;
    identify(link, 8, VersionClassic);
    feed(link.Receiver, ubxFrame(0x06, 0x00).u1(1).bytes(ubxBytes(19, 0xFF)));
    link.Receiver.PendingPPS = 1;
    EXPECT_THAT(link.Take(anyFrame()), ElementsAre(ubxSent{0x06, 0x31, Classic(1, 1, 0, 0x6F).payload()}));
}

TEST_F(gnssUBXPulse, TheDutyIsAFractionOfThirtyTwoBitsThatWrapsAtOne)
{
    const struct {
        float Duty;
        uint32_t Ratio;
    } cases[] = {
        {0, 0},           {0.5f, 0x80000000}, {0.25f, 0x40000000},
        {1, 0},           {1.5f, 0x80000000}, {-0.5f, 0x80000000},
        {1e-12f, 0},      {NAN, 0},           {1e30f, Most},
        {Infinity, Most}, {-Infinity, 0},
    };
    for (const auto& row : cases) {
        const ubxSent sent = Sent(VersionClassic, 1, row.Duty);
        const ubxPayload payload(sent.Payload.data(), sent.Payload.size());
        EXPECT_EQ(payload.u4(16), row.Ratio) << row.Duty;
        EXPECT_EQ(payload.u4(20), row.Ratio) << row.Duty;
    }
}

TEST_F(gnssUBXPulse, TheRoadByKeysSendsAWholeFrequencyAndTheDutyAsAFraction)
{
    const struct {
        float Rate;
        uint32_t Frequency;
    } cases[] = {
        {1, 1},      {10, 10},      {0.25f, 0},       {0.5f, 0}, {1.5f, 1}, {1e6f, 1'000'000},
        {1e-30f, 0}, {1e20f, Most}, {Infinity, Most}, {NAN, 0},  {-2, 0},
    };
    for (const auto& row : cases) {
        const ubxFrame expected = ubxFrame(0x06, 0x8A)
                                      .u4(0x100)
                                      .u4(0x20050023)
                                      .u1(1)
                                      .u4(0x20050030)
                                      .u1(0)
                                      .u4(0x40050024)
                                      .u4(row.Frequency)
                                      .u4(0x5005002A)
                                      .f8(double{0.3f});
        EXPECT_EQ(Sent(VersionKeys, row.Rate, 0.3f), (ubxSent{0x06, 0x8A, expected.payload()})) << row.Rate;
    }
}

TEST_F(gnssUBXPulse, TheDutyByKeyIsWrittenAsAFractionAndReadAsPerCent)
{
    ubxLink link;
    ubxScript script(monVerOf(9, VersionKeys));
    link.Receiver.Restart();
    converse(link, script);
    link.Receiver.PPSDuty = 0.5f;
    link.Receiver.PendingPPS = 1;
    feed(link.Receiver, anyFrame());
    converse(link, script);
    EXPECT_EQ(link.Receiver.PPSDuty, 0.5f) << "is not read back after the change";
    link.Receiver.Restart();
    converse(link, script);
    EXPECT_FLOAT_EQ(link.Receiver.PPSDuty, 0.005f);
}

TEST_F(gnssUBXPulse, BothRoadsEndIdleWithoutReadingBack)
{
    for (const std::string_view version : {VersionClassic, VersionKeys}) {
        ubxLink link;
        identify(link, 9, version);
        ubxScript script(monVerOf(9, version));
        link.Receiver.PPSRate = 3.0f;
        link.Receiver.PendingPPS = 1;
        feed(link.Receiver, anyFrame());
        EXPECT_EQ(converse(link, script).size(), 1u);
        EXPECT_EQ(link.Receiver.ConfigState, gnssUBX::State::Idle);
        EXPECT_EQ(link.Receiver.PPSRate, 3.0f);
    }
}
