#include "gnss/gnssUBX.h"

#include "tests/fakes/fakes.h"
#include "tests/gnss/ubxLink.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>

using testing::ElementsAre;
using testing::IsEmpty;
using enum ubxSignal;

namespace {

class gnssUBXConfig : public testing::Test
{
protected:
    void SetUp() override { fakeReset(); }

    ubxLink Link;
    gnssUBX& Receiver = Link.Receiver;
};

ubxFrame cfgPrt(unsigned port)
{
    ubxFrame frame(0x06, 0x00);
    frame.u1(port).u1(0).u2(0).u4(0x8D0).u4(9600).u2(7).u2(0xABCD).u2(0x11).u2(0x22);
    return frame;
}

ubxFrame cfgTp5(unsigned flags, uint32_t freqPeriod, uint32_t pulseLenRatio, unsigned tpIdx = 0,
                unsigned version = 1)
{
    return ubxFrame(0x06, 0x31)
        .u1(tpIdx)
        .u1(version)
        .zeros(6)
        .u4(freqPeriod)
        .u4(77)
        .u4(pulseLenRatio)
        .u4(88)
        .zeros(4)
        .u4(flags);
}

struct gnssBlock {
    unsigned Id;
    uint32_t Flags;
};

ubxFrame cfgGnss(const std::vector<gnssBlock>& blocks, unsigned msgVer = 0)
{
    ubxFrame frame(0x06, 0x3E);
    frame.u1(msgVer).u1(32).u1(32).u1(blocks.size());
    for (const gnssBlock& block : blocks)
        frame.u1(block.Id).u1(8).u1(16).u1(0).u4(block.Flags);
    return frame;
}

ubxFrame valget(unsigned version = 1)
{
    return ubxFrame(0x06, 0x8B).u1(version).u1(0).u2(0);
}

constexpr uint32_t Enables[] = {0x1031001F, 0x10310020, 0x10310021, 0x10310022,
                                0x10310024, 0x10310025, 0x10310026};

// The enable key that a signal stands behind, by the signal's name.
uint32_t EnableOf(std::string_view name)
{
    if (name.starts_with("GPS"))
        return 0x1031001F;
    if (name.starts_with("SBAS"))
        return 0x10310020;
    if (name.starts_with("Galileo"))
        return 0x10310021;
    if (name.starts_with("BeiDou"))
        return 0x10310022;
    if (name.starts_with("QZSS"))
        return 0x10310024;
    return name.starts_with("GLONASS") ? 0x10310025 : 0x10310026;
}

ubxSignalSet Every()
{
    return ubxSignalSet(~0u);
}

}  // namespace

TEST_F(gnssUBXConfig, SignalsStandInTheOrderOfTheirFlagsWithTheirKeys)
{
    struct {
        std::string_view Name;
        uint32_t Key;
        std::vector<unsigned> Models;
    } const Rows[] = {
        {"BeiDou B1C", 0x1031000F, {12, 13, 14}},
        {"BeiDou B1I", 0x1031000D, {9, 10, 11, 12, 13}},
        {"BeiDou B2a", 0x10310028, {14}},
        {"BeiDou B2I", 0x1031000E, {11}},
        {"Galileo E1", 0x10310007, {6, 7, 8, 9, 10, 11, 12, 13, 14}},
        {"Galileo E5a", 0x10310009, {14}},
        {"Galileo E5b", 0x1031000A, {11}},
        {"GLONASS L1", 0x10310018, {9, 10, 11, 12, 13}},
        {"GLONASS L2", 0x1031001A, {11}},
        {"GPS L1C/A", 0x10310001, {6, 7, 8, 9, 10, 11, 12, 13, 14}},
        {"GPS L2C", 0x10310003, {11}},
        {"GPS L5", 0x10310004, {14}},
        {"IMES", 0, {}},
        {"NavIC L5", 0x1031001D, {14}},
        {"QZSS L1C/A", 0x10310012, {6, 7, 8, 9, 10, 11, 12, 13, 14}},
        {"QZSS L1S", 0x10310014, {11, 12, 13, 14}},
        {"QZSS L2C", 0x10310015, {11}},
        {"QZSS L5", 0x10310017, {14}},
        {"SBAS", 0x10310005, {6, 7, 8, 9, 10, 11, 12, 13, 14}},
    };
    ASSERT_EQ(std::size(Rows), ubxSignalTable.size());
    for (size_t at = 0; at < std::size(Rows); at++) {
        const ubxSignalRow& row = ubxSignalTable[at];
        EXPECT_EQ(static_cast<size_t>(row.Signal), at);
        EXPECT_EQ(row.Name, Rows[at].Name);
        EXPECT_EQ(row.Key, Rows[at].Key);
        std::vector<unsigned> models;
        for (uint8_t model = 6; model <= 14; model++)
            if (ubxModel::In(model, row.Models))
                models.push_back(model);
        EXPECT_EQ(models, Rows[at].Models) << row.Name;
    }
}

// --- CFG-TP5

TEST_F(gnssUBXConfig, ReadsThePulseAsFrequencyOrPeriodAndLengthOrRatio)
{
    struct {
        unsigned Flags;
        uint32_t FreqPeriod, PulseLenRatio;
        float Rate, Duty;
    } constexpr Cases[] = {
        {0x08, 10, 0x80000000, 10, 0.5f},        {0x00, 1'000'000, 0x40000000, 1, 0.25f},
        {0x00, 4'000'000, 0, 0.25f, 0},          {0x18, 2, 100'000, 2, 0.2f},
        {0x10, 2'000'000, 100'000, 0.5f, 0.05f}, {0xFFFFFFF7, 1'000'000, 100'000, 1, 0.1f},
    };
    for (const auto& row : Cases) {
        feed(Receiver, cfgTp5(row.Flags, row.FreqPeriod, row.PulseLenRatio));
        EXPECT_FLOAT_EQ(Receiver.PPSRate, row.Rate) << row.Flags;
        EXPECT_FLOAT_EQ(Receiver.PPSDuty, row.Duty) << row.Flags;
    }
    EXPECT_EQ(Link.NewData, 0u);
}

TEST_F(gnssUBXConfig, OnlyTheFirstPulseInAKnownFormIsRead)
{
    for (const ubxFrame& frame :
         {cfgTp5(8, 5, 0, 1), cfgTp5(8, 5, 0, 0, 2), cfgTp5(8, 5, 0).resized(31), cfgTp5(8, 5, 0).zeros(1)}) {
        feed(Receiver, frame);
        EXPECT_EQ(Receiver.PPSRate, 1.0f);
    }
    feed(Receiver, cfgTp5(8, 5, 0, 0, 0));
    EXPECT_EQ(Receiver.PPSRate, 5.0f) << "version 0 is known as well";
}

TEST_F(gnssUBXConfig, APeriodOfZeroDoesNoHarm)
{
    feed(Receiver, cfgTp5(0, 0, 0));
    EXPECT_TRUE(std::isinf(Receiver.PPSRate.load()));
}

// --- CFG-GNSS as a report

TEST_F(gnssUBXConfig, AReportSetsTheFlagOfEachConstellation)
{
    constexpr ubxSignal Signals[] = {GPSL1CA, SBAS, GalileoE1, BeiDouB1I, IMES, QZSSL1CA, GLONASSL1};
    for (unsigned gnssId = 0; gnssId < 256; gnssId++) {
        Receiver.Select.Store({});
        feed(Receiver, cfgGnss({{gnssId, 0xFFFFFFFF}}));
        const auto expected = gnssId < 7 ? ubxSignalSet::Of(Signals[gnssId]) : ubxSignalSet();
        EXPECT_EQ(Receiver.Select.Load(), expected) << gnssId;
        Receiver.Select.Store(Every());
        feed(Receiver, cfgGnss({{gnssId, 0xFFFFFFFE}}));
        EXPECT_EQ(Receiver.Select.Load().Bits(), Every().Bits() & ~expected.Bits()) << gnssId;
    }
    EXPECT_EQ(Link.NewData, 512u);
}

TEST_F(gnssUBXConfig, AReportOfAnotherVersionOrLengthIsDropped)
{
    const ubxFrame good = cfgGnss({{0, 1}, {6, 1}});
    for (const ubxFrame& frame :
         {cfgGnss({{0, 1}}, 1), ubxFrame(good).resized(19), ubxFrame(good).zeros(1), ubxFrame(good).zeros(8),
          ubxFrame(good).resized(12), ubxFrame(0x06, 0x3E), ubxFrame(0x06, 0x3E).zeros(3)}) {
        feed(Receiver, frame);
        EXPECT_EQ(Receiver.Select.Load(), ubxSignalSet());
    }
    EXPECT_EQ(Link.NewData, 0u);
}

TEST_F(gnssUBXConfig, AReportMayHaveMoreBlocksThanTheWorkAreaHolds)
{
    std::vector<gnssBlock> blocks(255, {200, 1});
    blocks.back() = {0, 1};
    feed(Receiver, cfgGnss(blocks));
    EXPECT_EQ(Receiver.Select.Load(), ubxSignalSet::Of(GPSL1CA));
}

// --- CFG-GNSS as the answer to a change

TEST_F(gnssUBXConfig, AnAnswerIsDroppedWhileAChangeWaitsInAnotherState)
{
    for (unsigned state = 0; state <= 18; state++) {
        ubxLink link;
        link.Receiver.ConfigState = static_cast<gnssUBX::State>(state);
        link.Receiver.PendingGNSS = 1;
        feed(link.Receiver, cfgGnss({{0, 1}}));
        EXPECT_EQ(link.Receiver.Select.Load(), ubxSignalSet()) << state;
        EXPECT_EQ(link.NewData, 0u) << state;
        EXPECT_EQ(link.Receiver.PendingGNSS, state == 16 || state == 1 ? 0 : 1) << state;
    }
}

TEST_F(gnssUBXConfig, TheAnswerGoesBackWithTheSelectionInItsEnableBits)
{
    Receiver.Select.Store(ubxSignalSet::Of(GPSL1CA, BeiDouB1I));
    Receiver.PendingGNSS = 1;
    Receiver.ConfigState = gnssUBX::State::SelectRead;
    const std::vector<gnssBlock> blocks = {{0, 0x01010000}, {1, 0x01010001}, {2, 1},     {3, 0},
                                           {5, 0xFFFFFFFF}, {9, 0x12345679}, {200, 0x10}};
    feed(Receiver, cfgGnss(blocks));
    EXPECT_EQ(Receiver.PendingGNSS, 0);
    EXPECT_EQ(Link.NewData, 0u);
    const auto sent = Link.Take(ack(0x3E));
    const std::vector<gnssBlock> changed = {{0, 0x01010001}, {1, 0x01010000}, {2, 0},     {3, 1},
                                            {5, 0xFFFFFFFE}, {9, 0x12345679}, {200, 0x10}};
    EXPECT_THAT(sent, ElementsAre(ubxSent{0x06, 0x3E, cfgGnss(changed).payload()}));
    EXPECT_EQ(Receiver.ConfigState, gnssUBX::State::SelectSet);
}

TEST_F(gnssUBXConfig, OfAnAnswerWithMoreBlocksThanTheWorkAreaHoldsNothingGoesBack)
{
    Receiver.PendingGNSS = 1;
    Receiver.ConfigState = gnssUBX::State::SelectRead;
    feed(Receiver, cfgGnss(std::vector<gnssBlock>(8, {0, 1})));
    EXPECT_EQ(Receiver.PendingGNSS, 0);
    EXPECT_THAT(Link.Take(ack(0x3E)), ElementsAre(ubxSent{0x06, 0x3E, {0, 0, 0, 0}}));
}

TEST_F(gnssUBXConfig, AnAcknowledgementWithoutTheAnswerNeverSendsMoreThanTheWorkAreaHolds)
{
    Receiver.PortId = 1;
    feed(Receiver, ubxFrame(0x06, 0x00).u1(1).u1(0).u2(0xFF00).zeros(16));
    Receiver.ConfigState = gnssUBX::State::SelectRead;
    EXPECT_THAT(Link.Take(ack(0x3E)), IsEmpty());
    EXPECT_EQ(Receiver.ConfigState, gnssUBX::State::SelectSet);
}

// --- CFG-VALGET

TEST_F(gnssUBXConfig, ASignalIsOnOnlyIfItsKeyAndItsConstellationAre)
{
    for (const ubxSignalRow& row : ubxSignalTable) {
        if (row.Signal == IMES)
            continue;
        for (unsigned on = 0; on < 4; on++) {
            Receiver.Select.Store(Every());
            feed(Receiver, valget().u4(row.Key).u1(on & 1).u4(EnableOf(row.Name)).u1(on >> 1));
            auto expected = ubxSignalSet::Of(IMES);
            expected.Set(row.Signal, on == 3);
            EXPECT_EQ(Receiver.Select.Load(), expected) << row.Name << " " << on;
        }
    }
    EXPECT_EQ(Link.NewData, 0u) << "this answer raises no event";
}

TEST_F(gnssUBXConfig, EachSignalBelongsToOneConstellation)
{
    for (const uint32_t enable : Enables) {
        ubxFrame frame = valget();
        ubxSignalSet expected;
        for (const ubxSignalRow& row : ubxSignalTable) {
            if (row.Signal == IMES)
                continue;
            frame.u4(row.Key).u1(1);
            expected.Set(row.Signal, EnableOf(row.Name) == enable);
        }
        Receiver.Select.Store({});
        feed(Receiver, frame.u4(enable).u1(1));
        EXPECT_EQ(Receiver.Select.Load(), expected) << std::hex << enable;
    }
}

TEST_F(gnssUBXConfig, TheFlagOfImesIsKept)
{
    for (const bool imes : {false, true}) {
        ubxSignalSet before;
        before.Set(IMES, imes);
        Receiver.Select.Store(before);
        feed(Receiver, valget().u4(0x1031001F).u1(1));
        EXPECT_EQ(Receiver.Select.Load(), before);
    }
}

TEST_F(gnssUBXConfig, WithoutASignalKeyTheSelectionStays)
{
    Receiver.Select.Store(Every());
    feed(Receiver, valget().u4(0x20910038).u1(1).u4(0).u1(0));
    EXPECT_EQ(Receiver.Select.Load(), Every());
}

TEST_F(gnssUBXConfig, ValuesOfEverySizeAreWalked)
{
    const ubxFrame frame = valget()
                               .u4(0x1F000001)
                               .u1(9)
                               .u4(0x2F000001)
                               .u1(9)
                               .u4(0x3F000001)
                               .u2(9)
                               .u4(0x4F000001)
                               .u4(9)
                               .u4(0xDF000001)
                               .u8(9)  // bit 31 is none of the size
                               .u4(0x10310001)
                               .u1(1)
                               .u4(0x1031001F)
                               .u1(1);
    feed(Receiver, frame);
    EXPECT_EQ(Receiver.Select.Load(), ubxSignalSet::Of(GPSL1CA));
}

TEST_F(gnssUBXConfig, TheWalkEndsAtAnUnknownSize)
{
    for (const uint32_t key : {0x0F000001u, 0x6F000001u, 0x7F000001u}) {
        Receiver.Select.Store({});
        feed(Receiver, valget().u4(0x1031001F).u1(1).u4(0x10310001).u1(1).u4(key).u1(0).u4(0x10310004).u1(1));
        EXPECT_EQ(Receiver.Select.Load(), ubxSignalSet::Of(GPSL1CA)) << std::hex << key;
    }
}

TEST_F(gnssUBXConfig, TheWalkEndsAtAValueThatIsCut)
{
    const ubxFrame whole = valget().u4(0x1031001F).u1(1).u4(0x10310001).u1(1).u4(0x5005002A).u8(0);
    for (size_t size = 0; size <= whole.payload().size(); size++) {
        Receiver.Select.Store({});
        feed(Receiver, ubxFrame(whole).resized(size));
        EXPECT_EQ(Receiver.Select.Load(), size >= 14 ? ubxSignalSet::Of(GPSL1CA) : ubxSignalSet()) << size;
    }
}

TEST_F(gnssUBXConfig, AnswersOfAnotherVersionAreDropped)
{
    for (unsigned version = 0; version < 256; version++) {
        Receiver.Select.Store(Every());
        feed(Receiver, valget(version).u4(0x10310001).u1(0));
        EXPECT_EQ(Receiver.Select.Load() == Every(), version != 1) << version;
    }
}

TEST_F(gnssUBXConfig, ReadsThePulseKeysWhenTheyWereAskedFor)
{
    struct {
        unsigned Definition, LengthDefinition;
        float Rate, Duty;
    } constexpr Cases[] = {
        {1, 0, 10, 0.3f}, {0, 0, 2, 0.3f}, {1, 1, 10, 1.0f}, {0, 1, 2, 0.2f}, {2, 2, 10, 1.0f},
    };
    for (const auto& row : Cases) {
        const ubxFrame frame = valget()
                                   .u4(0x20050023)
                                   .u1(row.Definition)
                                   .u4(0x20050030)
                                   .u1(row.LengthDefinition)
                                   .u4(0x40050002)
                                   .u4(500'000)
                                   .u4(0x40050024)
                                   .u4(10)
                                   .u4(0x40050004)
                                   .u4(100'000)
                                   .u4(0x5005002A)
                                   .f8(30);
        for (unsigned state = 0; state <= 18; state++) {
            ubxLink link(false);
            link.Receiver.ConfigState = static_cast<gnssUBX::State>(state);
            feed(link.Receiver, frame);
            EXPECT_FLOAT_EQ(link.Receiver.PPSRate, state == 14 ? row.Rate : 1.0f) << state;
            EXPECT_FLOAT_EQ(link.Receiver.PPSDuty, state == 14 ? row.Duty : 0.0f) << state;
            EXPECT_EQ(link.NewData, 0u);
        }
    }
}

TEST_F(gnssUBXConfig, APulsePeriodOfZeroByKeyDoesNoHarm)
{
    Receiver.ConfigState = gnssUBX::State::PulseRead;
    feed(Receiver, valget().u4(0x40050002).u4(0).u4(0x5005002A).f8(NAN));
    EXPECT_TRUE(std::isinf(Receiver.PPSRate.load()));
    EXPECT_TRUE(std::isnan(Receiver.PPSDuty.load()));
}

// --- CFG-PRT

TEST_F(gnssUBXConfig, ThePortGoesBackWithUbxAsItsOnlyOutput)
{
    Receiver.PortId = 1;
    feed(Receiver, cfgPrt(1).zeros(5));
    Receiver.ConfigState = gnssUBX::State::PortPoll;
    const auto sent = Link.Take(ack(0x00));
    ubxFrame expected(0x06, 0x00);
    expected.u1(1).u1(0).u2(0).u4(0x8D0).u4(9600).u2(7).u2(1).u2(0x11).u2(0x22);
    EXPECT_THAT(sent, ElementsAre(ubxSent{0x06, 0x00, expected.payload()}));
}

TEST_F(gnssUBXConfig, ThePortOfAnotherLinkOrACutOneIsIgnored)
{
    Receiver.PortId = 1;
    feed(Receiver, cfgPrt(3));
    feed(Receiver, cfgPrt(1).resized(19));
    Receiver.ConfigState = gnssUBX::State::PortPoll;
    EXPECT_THAT(Link.Take(ack(0x00)), ElementsAre(ubxSent{0x06, 0x00, ubxBytes(20)}));
}

TEST_F(gnssUBXConfig, OtherMessagesOfTheClassAreIgnored)
{
    for (unsigned id = 0; id < 256; id++) {
        if (id == 0x00 || id == 0x31 || id == 0x3E || id == 0x8B)
            continue;
        feed(Receiver, ubxFrame(0x06, id).u1(1).zeros(3).u4(0x1031001F).u1(1).u4(0x10310001).u1(1).zeros(18));
        EXPECT_EQ(Receiver.Select.Load(), ubxSignalSet()) << id;
        EXPECT_EQ(Receiver.PPSRate, 1.0f) << id;
    }
    EXPECT_EQ(Link.NewData, 0u);
}
