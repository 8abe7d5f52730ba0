#include "gnss/gnssUBX.h"

#include "tests/fakes/fakes.h"
#include "tests/gnss/ubxLink.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using testing::ElementsAre;
using testing::IsEmpty;

namespace {

class gnssUBXMonitor : public testing::Test
{
protected:
    void SetUp() override { fakeReset(); }
};

unsigned ModelOf(const ubxFrame& version)
{
    gnssUBX receiver;
    feed(receiver, version);
    return receiver.Model;
}

unsigned VersionOf(std::string_view extension)
{
    gnssUBX receiver;
    feed(receiver, monVer("00190000", {extension}));
    return receiver.Model == 0 ? 0xBAD : receiver.ProtVer;
}

struct spectrumSeen {
    unsigned Block;
    std::vector<float> Levels;
    double LowFrequency, HighFrequency;
    float LowLevel, HighLevel;
};

// A decoder of some model that keeps the spectra it is told.
struct spectrumLink {
    explicit spectrumLink(unsigned model)
    {
        identify(Link, model, VersionKeys);
        Link.Receiver.OnRFSpectrum = [this](const gnssUBX::Spectrum& told) {
            Seen.push_back({told.Block,
                            {told.Levels, told.Levels + told.Count},
                            told.LowFrequency,
                            told.HighFrequency,
                            told.LowLevel,
                            told.HighLevel});
        };
    }

    ubxLink Link;
    std::vector<spectrumSeen> Seen;
};

ubxFrame& spanBlock(ubxFrame& frame, uint32_t span, uint32_t center, unsigned pga)
{
    for (unsigned bin = 0; bin < 256; bin++)
        frame.u1(bin);
    return frame.u4(span).u4(span / 256).u4(center).u1(pga).zeros(3);
}

ubxFrame monSpan(unsigned blocks)
{
    ubxFrame frame(0x0A, 0x31);
    frame.u1(0).u1(blocks).zeros(2);
    for (unsigned block = 0; block < blocks; block++)
        spanBlock(frame, 128'000'000 + block, 1'583'400'000 - block, 54 - block);
    return frame;
}

}  // namespace

// --- MON-VER

TEST_F(gnssUBXMonitor, RecognisesTheHardware)
{
    EXPECT_EQ(ModelOf(monVer("00070000")), 7u);
    EXPECT_EQ(ModelOf(monVer("00080000")), 8u);
    EXPECT_EQ(ModelOf(monVer("00190000")), 9u);
    EXPECT_EQ(ModelOf(monVer("000A0000")), 12u);
    for (const std::string_view other : {"", "00040001", "000a0000", "0019000", "001900000", "00190000 "})
        EXPECT_EQ(ModelOf(monVer(other)), 6u) << other;
}

TEST_F(gnssUBXMonitor, TheModuleNameKnowsBetterThanTheHardware)
{
    struct {
        std::string_view Extension;
        unsigned Model;
    } constexpr Cases[] = {
        {"MOD=MAX-M10S", 13}, {"MOD MAX-M10S", 13}, {"MOD=NEO-M9N", 10}, {"MOD=NEO-F10N", 14},
        {"MOD=ZED-F9R", 11},  {"MOD=ZED-F9P", 9},   {"MOD=NEO-M9", 9},   {"MOD=NEO-M9N ", 9},
        {"MOD=neo-m9n", 9},   {"MODNEO-M9N", 9},    {"MOD:NEO-M9N", 9},  {"MOD=", 9},
        {"MOD", 9},           {" MOD=NEO-M9N", 9},  {"MOD==NEO-M9N", 9},
    };
    for (const auto& row : Cases)
        EXPECT_EQ(ModelOf(monVer("00190000", {row.Extension})), row.Model) << row.Extension;
    EXPECT_EQ(ModelOf(monVer("00040001", {"FWVER=SPG 4.04", "MOD=NEO-M9N"})), 10u);
    EXPECT_EQ(ModelOf(monVer("00190000", {"MOD=NEO-M9N", "MOD=ZED-F9R"})), 11u) << "the last one counts";
    EXPECT_EQ(ModelOf(monVer("00190000", {"MOD=NEO-M9N", "MOD=other"})), 10u) << "no match changes nothing";
}

TEST_F(gnssUBXMonitor, ReadsTheProtocolVersion)
{
    struct {
        std::string_view Extension;
        unsigned Version;
    } constexpr Cases[] = {
        {"PROTVER=18.00", 0x1200},
        {"PROTVER 27.31", 0x1B1F},
        {"PROTVER=18", 0},
        {"PROTVER=15.1", 0x0F01},
        {"PROTVER=", 0},
        {"PROTVER", 0},
        {"PROTVER:18.00", 0},
        {"protver=18.00", 0},
        {"PROTVER=x18.00", 0},
        {"PROTVER=.7", 7},
        {"PROTVER=18.", 0x1200},
        {"PROTVER=18.00 rc", 0x1200},
        {"PROTVER=18,00", 0},
        {"PROTVER=255.255", 65535},
        {"PROTVER=0.65535", 65535},
        {"PROTVER=18.300", 18 * 256 + 300},
    };
    for (const auto& row : Cases)
        EXPECT_EQ(VersionOf(row.Extension), row.Version) << row.Extension;
}

TEST_F(gnssUBXMonitor, AProtocolVersionThatNoReceiverHasMakesTheMessageUnbelievable)
{
    for (const std::string_view extension :
         {"PROTVER=256.0", "PROTVER=255.256", "PROTVER=0.65536", "PROTVER=4294967296.1",
          "PROTVER=99999999999999999.0", "PROTVER=1.99999999999999999999"})
        EXPECT_EQ(VersionOf(extension), 0xBADu) << extension;
    ubxLink link;
    link.Receiver.Restart();
    const auto sent = link.Take(monVer("00190000", {"PROTVER=300.0"}));
    EXPECT_THAT(sent, ElementsAre(ubxSent{0x0A, 0x04, {}})) << "asked once more";
    EXPECT_EQ(link.NewData, 0u);
}

TEST_F(gnssUBXMonitor, ANewVersionMessageBeginsWithNoProtocolVersion)
{
    ubxLink link(false);
    feed(link.Receiver, monVer("00190000", {"PROTVER=27.31"}));
    link.Receiver.Restart();
    EXPECT_EQ(link.Receiver.ProtVer, 0x1B1F);
    feed(link.Receiver, monVer("00080000"));
    EXPECT_EQ(link.Receiver.ProtVer, 0);
    EXPECT_EQ(link.Receiver.Model, 8);
}

TEST_F(gnssUBXMonitor, ASecondVersionMessageIsIgnored)
{
    ubxLink link;
    identify(link, 8, VersionClassic);
    EXPECT_THAT(link.Take(monVer("00190000", {"MOD=NEO-M9N", "PROTVER=32.01"})), IsEmpty());
    EXPECT_EQ(link.Receiver.Model, 8);
    EXPECT_EQ(link.Receiver.ProtVer, 0x1200);
    EXPECT_EQ(link.NewData, 0u);
}

TEST_F(gnssUBXMonitor, AVersionMessageMayEndAnywhereBehindTheHardware)
{
    const ubxFrame whole = monVer("00190000", {"PROTVER=27.31", "MOD=NEO-M9N"});
    for (size_t size = 0; size <= whole.payload().size(); size++) {
        gnssUBX receiver;
        feed(receiver, ubxFrame(whole).resized(size));
        const unsigned model = size < 40 ? 0 : size < 70 + 11 ? 9 : 10;
        EXPECT_EQ(receiver.Model, model) << size;
    }
    EXPECT_EQ(VersionOf("PROTVER=1"), 0u);
}

TEST_F(gnssUBXMonitor, TellsTheVersionAsNewData)
{
    ubxLink link(false);
    feed(link.Receiver, monVer("00190000"));
    EXPECT_EQ(link.NewData, 1u);
    EXPECT_EQ(link.Receiver.ModelName(), "u-blox 9/M9");
}

// --- MON-SPAN

TEST_F(gnssUBXMonitor, TellsTheSpectrumOfEachBlock)
{
    spectrumLink seen(14);
    feed(seen.Link.Receiver, monSpan(2));
    ASSERT_EQ(seen.Seen.size(), 2u);
    for (unsigned block = 0; block < 2; block++) {
        const spectrumSeen& told = seen.Seen[block];
        const double span = 128'000'000.0 + block;
        const double centre = 1'583'400'000.0 - block;
        const float gain = 54.0f - static_cast<float>(block);
        EXPECT_EQ(told.Block, block);
        ASSERT_EQ(told.Levels.size(), 256u);
        EXPECT_FLOAT_EQ(told.Levels[128], 31.875f - gain);
        EXPECT_FLOAT_EQ(told.Levels[0], -128 * 0.25098425f + 31.875f - gain);
        EXPECT_FLOAT_EQ(told.Levels[255], 127 * 0.25098425f + 31.875f - gain);
        EXPECT_DOUBLE_EQ(told.LowFrequency, centre - span * 0.49609375);
        EXPECT_DOUBLE_EQ(told.HighFrequency, centre + span * 0.5);
        EXPECT_EQ(told.LowLevel, -gain);
        EXPECT_EQ(told.HighLevel, 63.75f - gain);
    }
    EXPECT_EQ(seen.Link.NewData, 0u);
}

TEST_F(gnssUBXMonitor, OnlyModelsThatAreAskedForASpectrumAreBelieved)
{
    for (unsigned model = 0; model < 256; model++) {
        spectrumLink seen(9);
        seen.Link.Receiver.Model = static_cast<uint8_t>(model);
        feed(seen.Link.Receiver, monSpan(1));
        EXPECT_EQ(seen.Seen.size(), model >= 10 && model <= 14 ? 1u : 0u) << model;
    }
    EXPECT_EQ(fakeDebugText(), "") << "what a stranger sends is no fault of the program";
}

TEST_F(gnssUBXMonitor, ASpectrumThatNobodyWantsOrWithoutBlocksIsIgnored)
{
    ubxLink link;
    identify(link, 14, VersionKeys);
    feed(link.Receiver, monSpan(2));
    spectrumLink seen(14);
    feed(seen.Link.Receiver, monSpan(0));
    feed(seen.Link.Receiver, ubxFrame(0x0A, 0x31));
    EXPECT_THAT(seen.Seen, IsEmpty());
}

TEST_F(gnssUBXMonitor, ASpectrumShorterThanItsBlocksIsIgnoredWhole)
{
    spectrumLink seen(14);
    const ubxFrame two = monSpan(2);
    for (const size_t size : {size_t{3}, size_t{4}, size_t{276}, size_t{547}})
        feed(seen.Link.Receiver, ubxFrame(two).resized(size));
    EXPECT_THAT(seen.Seen, IsEmpty());
    feed(seen.Link.Receiver, ubxFrame(two).resized(549));
    EXPECT_EQ(seen.Seen.size(), 2u) << "bytes behind the blocks do no harm";
}

TEST_F(gnssUBXMonitor, TheLargestSpectrumIsTold)
{
    spectrumLink seen(10);
    feed(seen.Link.Receiver, monSpan(240));
    EXPECT_EQ(seen.Seen.size(), 240u);
}

// --- MON-COMMS outside the search, and the rest

TEST_F(gnssUBXMonitor, OtherMessagesOfTheClassAreIgnored)
{
    for (unsigned id = 0; id < 256; id++) {
        if (id == 0x31 || id == 0x04)
            continue;
        ubxLink link;
        identify(link, 14, VersionKeys);
        EXPECT_THAT(link.Take(ubxFrame(0x0A, id).u1(0).u1(1).zeros(300)), IsEmpty()) << id;
        EXPECT_EQ(link.NewData, 0u);
        EXPECT_EQ(link.Receiver.ConfigState, gnssUBX::State::Idle);
    }
}
