#include "tests/simulator/host.h"
#include "tools/simulator/simUbxFrame.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Not;

constexpr simModel UbloxModels[] = {simModel::UBlox7, simModel::M8,  simModel::M9,      simModel::NeoM9N,
                                    simModel::ZedF9R, simModel::M10, simModel::MaxM10S, simModel::NeoF10N};

const hostBytes PollVersion = {0xB5, 0x62, 0x0A, 0x04, 0x00, 0x00, 0x0E, 0x34};

std::string TextAt(const hostBytes& bytes, size_t offset, size_t width)
{
    const std::string field(bytes.begin() + static_cast<ptrdiff_t>(offset),
                            bytes.begin() + static_cast<ptrdiff_t>(offset + width));
    return field.c_str();
}

TEST(simUbxParser, FindsFramesInAnyCuts)
{
    const hostBytes stream = hostBytes{'$', 'x', 0xB5} + ubxSay(0x0604, {1, 2, 3, 4}) +
                             hostBytes{0xB5, 0xB5} + ubxSay(0x0A04) + hostBytes{0x62};
    for (size_t step = 1; step <= stream.size(); ++step) {
        simUbxParser parser;
        std::vector<simUbxMessage> found;
        for (size_t at = 0; at < stream.size(); at += step) {
            const std::span<const uint8_t> rest = std::span(stream).subspan(at);
            for (simUbxMessage& message : parser.Take(rest.first(std::min(step, rest.size()))))
                found.push_back(std::move(message));
        }
        ASSERT_EQ(found.size(), 2u) << step;
        EXPECT_EQ(found[0].Class, 0x06);
        EXPECT_EQ(found[0].Id, 0x04);
        EXPECT_THAT(found[0].Payload, ElementsAre(1, 2, 3, 4));
        EXPECT_EQ(found[1].Class, 0x0A);
        EXPECT_THAT(found[1].Payload, IsEmpty());
    }
}

TEST(simUbxParser, PassesOverABrokenFrameAndFindsTheNext)
{
    hostBytes broken = ubxSay(0x0600, {1});
    broken.back() ^= 1;
    simUbxParser parser;
    EXPECT_EQ(parser.Take(broken + ubxSay(0x0A04)).size(), 1u);
    hostBytes endless = {0xB5, 0x62, 0x06, 0x00, 0xFF, 0xFF};
    EXPECT_EQ(parser.Take(endless + ubxSay(0x0A04)).size(), 1u);
}

TEST(simUblox, TellsItsVersion)
{
    struct row {
        simModel Model;
        const char* Hardware;
        std::vector<std::string> Extensions;
    };
    const row Rows[] = {
        {simModel::UBlox7, "00070000", {"PROTVER 14.00"}},
        {simModel::M8, "00080000", {"PROTVER=18.00", "MOD=NEO-M8T-0"}},
        {simModel::M9, "00190000", {"PROTVER=32.01", "MOD=ZED-F9P"}},
        {simModel::NeoM9N, "00190000", {"MOD=NEO-M9N"}},
        {simModel::ZedF9R, "00190000", {"PROTVER=33.30", "MOD=ZED-F9R"}},
        {simModel::M10, "000A0000", {"PROTVER=34.10"}},
        {simModel::MaxM10S, "000A0000", {"MOD=MAX-M10S"}},
        {simModel::NeoF10N, "000A0000", {"PROTVER=40.00", "MOD=NEO-F10N"}},
    };
    for (const row& expected : Rows) {
        host host(expected.Model);
        const hostBytes payload = ubxFind(host.Ask(PollVersion), 0x0A04);
        ASSERT_EQ((payload.size() - 40) % 30, 0u);
        EXPECT_EQ(TextAt(payload, 30, 10), expected.Hardware);
        std::vector<std::string> extensions;
        for (size_t at = 40; at < payload.size(); at += 30)
            extensions.push_back(TextAt(payload, at, 30));
        for (const std::string& extension : expected.Extensions)
            EXPECT_THAT(extensions, Contains(extension));
    }
}

TEST(simUblox, SaysNothingUntilItIsAsked)
{
    for (const simModel model : UbloxModels) {
        host host(model);
        EXPECT_THAT(host.Wait(3), IsEmpty());
    }
}

TEST(simUblox, SpeaksNmeaFromTheFactoryAndStillAnswersUbx)
{
    simOptions options;
    options.NMEA = true;
    host host(options);
    EXPECT_THAT(nmeaHear(host.Wait(1)), Not(IsEmpty()));
    EXPECT_THAT(ubxNames(host.Ask(PollVersion)), ElementsAre(0x0A04));
}

TEST(simUblox, IgnoresPollsOfWhatItDoesNotHave)
{
    host old(simModel::M8);
    EXPECT_THAT(old.Ask(ubxSay(0x0A36)), IsEmpty());
    EXPECT_THAT(old.Ask(ubxSay(0x0A31)), IsEmpty());
    EXPECT_THAT(old.Ask(ubxSay(0x0143)), IsEmpty());
    EXPECT_THAT(old.Ask(ubxSay(0x1B01)), IsEmpty());
    host oldest(simModel::UBlox7);
    EXPECT_THAT(oldest.Ask(ubxSay(0x0135)), IsEmpty());
}

TEST(simUblox, CountsTheBytesOfTheHostsPort)
{
    constexpr std::pair<simPort, unsigned> Ports[] = {
        {simPort::I2C, 0x0000}, {simPort::UART1, 0x0100}, {simPort::UART2, 0x0201}, {simPort::USB, 0x0300}};
    for (const auto& [port, id] : Ports) {
        simOptions options;
        options.Port = port;
        host host(options);
        const hostBytes first = ubxFind(host.Ask(ubxSay(0x0A36)), 0x0A36);
        const hostBytes second = ubxFind(host.Ask(hostBytes{'n', 'o', 'i'} + ubxSay(0x0A36)), 0x0A36);
        ASSERT_EQ(first.size(), 8u + 4 * 40);
        for (size_t block = 8; block < first.size(); block += 40) {
            const bool ours = littleAt(first, block, 2) == id;
            EXPECT_EQ(littleAt(first, block + 12, 4), ours ? 8u : 0u);
            EXPECT_EQ(littleAt(second, block + 12, 4), ours ? 19u : 0u);
            EXPECT_EQ(littleAt(second, block + 4, 4), ours ? 8u + first.size() : 0u);
        }
    }
}

TEST(simUblox, DrawsTheSpectrumOfEachBand)
{
    constexpr std::pair<simModel, unsigned> Rows[] = {{simModel::NeoM9N, 1},
                                                      {simModel::ZedF9R, 2},
                                                      {simModel::M10, 1},
                                                      {simModel::MaxM10S, 1},
                                                      {simModel::NeoF10N, 2}};
    for (const auto& [model, blocks] : Rows) {
        host host(model);
        const hostBytes payload = ubxFind(host.Ask(ubxSay(0x0A31)), 0x0A31);
        ASSERT_EQ(payload.size(), 4u + 272 * blocks);
        EXPECT_EQ(payload[1], blocks);
        for (size_t block = 4; block < payload.size(); block += 272) {
            EXPECT_EQ(littleAt(payload, block + 256, 4), 128'000'000u);
            EXPECT_GT(littleAt(payload, block + 264, 4), 1'100'000'000u);
            // The band's edge is far below its middle, and the middle is no flat line.
            EXPECT_LT(payload[block + 2] + 20, payload[block + 128]);
            const auto middle = payload.begin() + static_cast<ptrdiff_t>(block);
            EXPECT_GT(*std::max_element(middle + 60, middle + 200) -
                          *std::min_element(middle + 60, middle + 200),
                      10);
        }
    }
}

TEST(simUblox, RestartsWithTheConfigurationFromTheFactory)
{
    const hostBytes reset = {0xB5, 0x62, 0x06, 0x04, 0x04, 0x00, 0xFF, 0xFF, 0x00, 0x00, 0x0C, 0x5D};
    host host(simModel::M9);
    host.Ask(ubxValSet(ubxPair(0x20910039, 1)));
    EXPECT_THAT(ubxNames(host.Wait(1)), ElementsAre(0x0104));
    EXPECT_THAT(host.Ask(reset), IsEmpty());
    EXPECT_THAT(host.Ask(PollVersion), IsEmpty()) << "it is still starting";
    EXPECT_THAT(host.Wait(2), IsEmpty());
    EXPECT_EQ(host.Receiver->Truth().Keys.at(0x20910039), 0u);
    EXPECT_FALSE(host.Receiver->Truth().Fixed);
    EXPECT_THAT(ubxNames(host.Ask(PollVersion)), ElementsAre(0x0A04));
    host.Wait(3);
    EXPECT_TRUE(host.Receiver->Truth().Fixed);
}

TEST(simUblox, KeepsThroughAResetWhatWasSaved)
{
    host host(simModel::M9);
    host.Ask(ubxSay(0x068A, hostBytes{0, 3, 0, 0} + ubxPair(0x20910039, 1)));
    host.Ask(ubxSay(0x0604, {0, 0, 0, 0}));
    host.Wait(1);
    EXPECT_EQ(host.Receiver->Truth().Keys.at(0x20910039), 1u);
}

TEST(simUblox, MovesItsLineWhenItIsTold)
{
    host host(simModel::M9);
    EXPECT_EQ(host.Receiver->Line(), (simLine{9600, 'N', 1}));
    host.Ask(ubxValSet(ubxPair(0x40520001, 115200)));
    EXPECT_EQ(host.Receiver->Line(), (simLine{115200, 'N', 1}));
    host.Ask(ubxSay(0x0604, {0, 0, 0, 0}));
    EXPECT_EQ(host.Receiver->Line(), (simLine{9600, 'N', 1}));
}

TEST(simUblox, LeavesOutWhatItSendsByItselfWhileTheLineIsFull)
{
    host host(simModel::M9);
    host.Ask(ubxValSet(ubxPair(0x20910039, 1)));
    host.Receiver->BacklogLimit = 480;
    host.Receiver->Backlog = 481;
    EXPECT_THAT(host.Wait(2), IsEmpty());
    EXPECT_THAT(ubxNames(host.Ask(PollVersion)), ElementsAre(0x0A04));
    host.Receiver->Backlog = 0;
    EXPECT_THAT(ubxNames(host.Wait(1)), ElementsAre(0x0104));
}

}  // namespace
