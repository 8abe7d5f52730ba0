#include "tests/simulator/host.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

// Asks one thing that is answered and acknowledged; the answer.
hostBytes Answered(host& host, unsigned name, const hostBytes& question)
{
    const std::vector<ubxSaid> said = ubxHear(host.Ask(ubxSay(name, question)));
    EXPECT_EQ(said.size(), 2u);
    if (said.size() != 2)
        return hostBytes(64);
    EXPECT_EQ(said[0].Name, name);
    EXPECT_EQ(said[1], ubxAck(static_cast<uint8_t>(name)));
    return said[0].Payload;
}

void ExpectAck(host& host, unsigned name, const hostBytes& payload)
{
    EXPECT_THAT(ubxHear(host.Ask(ubxSay(name, payload))), ElementsAre(ubxAck(static_cast<uint8_t>(name))));
}

void ExpectNak(host& host, unsigned name, const hostBytes& payload)
{
    EXPECT_THAT(ubxHear(host.Ask(ubxSay(name, payload))), ElementsAre(ubxNak(static_cast<uint8_t>(name))));
}

hostBytes Block(uint8_t system, uint32_t flags)
{
    return hostBytes{system, 0, 16, 0} + little(flags, 4);
}

TEST(simUbloxClassic, TellsItsPortAndTakesItBack)
{
    simOptions options;
    options.Model = simModel::M8;
    options.NMEA = true;
    host host(options);
    hostBytes port = Answered(host, 0x0600, {1});
    ASSERT_EQ(port.size(), 20u);
    EXPECT_EQ(port[0], 1u);
    EXPECT_EQ(littleAt(port, 4, 4), 0x8C0u);  // eight bits, no parity, one stop bit
    EXPECT_EQ(littleAt(port, 8, 4), 9600u);
    EXPECT_EQ(littleAt(port, 12, 2), 3u);
    EXPECT_EQ(littleAt(port, 14, 2), 3u);
    port[14] = 1;
    ExpectAck(host, 0x0600, port);
    EXPECT_EQ(Answered(host, 0x0600, {}), port);
    EXPECT_THAT(host.Wait(2), IsEmpty()) << "NMEA is off";
}

TEST(simUbloxClassic, PutsItsLineAsThePortIsSet)
{
    struct row {
        uint32_t Mode;
        simLine Line;
    };
    constexpr row Rows[] = {{0x8C0, {19200, 'N', 1}},
                            {0x2C0, {19200, 'O', 1}},
                            {0x0C0, {19200, 'E', 1}},
                            {0x28C0, {19200, 'N', 2}}};
    for (const row& wanted : Rows) {
        host host(simModel::M8);
        hostBytes port = Answered(host, 0x0600, {1});
        std::ranges::copy(little(wanted.Mode, 4), port.begin() + 4);
        std::ranges::copy(little(19200, 4), port.begin() + 8);
        ExpectAck(host, 0x0600, port);
        EXPECT_EQ(host.Receiver->Line(), wanted.Line);
        EXPECT_EQ(Answered(host, 0x0600, {1}), port);
    }
}

TEST(simUbloxClassic, RefusesPortsThatCannotBe)
{
    host host(simModel::M8);
    hostBytes port = Answered(host, 0x0600, {1});
    ExpectNak(host, 0x0600, {9});
    ExpectNak(host, 0x0600, {1, 2, 3});
    std::ranges::copy(little(12345, 4), port.begin() + 8);
    ExpectNak(host, 0x0600, port);
}

TEST(simUbloxClassic, SendsTheMessagesThatWereSwitchedOn)
{
    host host(simModel::M8);
    ExpectAck(host, 0x0601, {0x01, 0x04, 1});
    EXPECT_THAT(ubxNames(host.Wait(1)), ElementsAre(0x0104));
    ExpectAck(host, 0x0601, {0x0D, 0x01, 1});
    EXPECT_THAT(ubxNames(host.Wait(1)), ElementsAre(0x0104, 0x0D01));
    ExpectAck(host, 0x0601, {0x01, 0x04, 2});
    EXPECT_EQ(ubxNames(host.Wait(4)).size(), 2u + 4u);
    EXPECT_THAT(Answered(host, 0x0601, {0x01, 0x04}), ElementsAre(0x01, 0x04, 0, 2, 0, 0, 0, 0));
    ExpectAck(host, 0x0601, {0x01, 0x04, 0, 0, 0, 0, 0, 0});
    ExpectAck(host, 0x0601, {0x0D, 0x01, 0});
    EXPECT_THAT(host.Wait(2), IsEmpty());
}

TEST(simUbloxClassic, RefusesMessagesItDoesNotHave)
{
    host oldest(simModel::UBlox7);
    ExpectAck(oldest, 0x0601, {0x01, 0x30, 1});
    ExpectNak(oldest, 0x0601, {0x01, 0x35, 1});
    ExpectNak(oldest, 0x0601, {0x01, 0x43, 1});
    host old(simModel::M8);
    ExpectAck(old, 0x0601, {0x01, 0x35, 1});
    ExpectNak(old, 0x0601, {0x01, 0x43, 1});
    ExpectNak(old, 0x0601, {0x01, 0xEE, 1});
    ExpectNak(old, 0x0601, {0x01});
    host newer(simModel::M9);
    ExpectAck(newer, 0x0601, {0x01, 0x43, 1});
    ExpectNak(newer, 0x0601, {0x01, 0x30, 1});
}

TEST(simUbloxClassic, TellsItsSystemsInBlocks)
{
    host host(simModel::M8);
    const hostBytes systems = Answered(host, 0x063E, {});
    ASSERT_EQ(systems.size(), 4u + 7 * 8);
    EXPECT_EQ(systems[0], 0u);
    EXPECT_EQ(systems[3], 7u);
    std::map<unsigned, bool> enabled;
    for (size_t block = 4; block < systems.size(); block += 8)
        enabled[systems[block]] = (systems[block + 4] & 1) != 0;
    const std::map<unsigned, bool> factory = {{0, true},  {1, true}, {2, false}, {3, false},
                                              {4, false}, {5, true}, {6, true}};
    EXPECT_EQ(enabled, factory);
}

TEST(simUbloxClassic, HearsTheSystemsThatWereSwitchedOn)
{
    host host(simModel::M8);
    const auto count = [&](simSystem system) {
        const simTruth truth = host.Receiver->Truth();
        return std::ranges::count(truth.Sats, system, &simSat::System);
    };
    host.Wait(1);
    EXPECT_GT(count(simSystem::GLONASS), 0);
    EXPECT_EQ(count(simSystem::BeiDou), 0);
    ExpectAck(host, 0x063E, hostBytes{0, 32, 32, 2} + Block(6, 0) + Block(3, 1));
    host.Wait(1);
    EXPECT_EQ(count(simSystem::GLONASS), 0);
    EXPECT_GT(count(simSystem::BeiDou), 0);
    EXPECT_GT(count(simSystem::GPS), 0) << "what is not named stays";
}

TEST(simUbloxClassic, RefusesSystemsThatCannotGoTogether)
{
    host host(simModel::M8);
    const hostBytes before = Answered(host, 0x063E, {});
    ExpectNak(host, 0x063E, hostBytes{0, 32, 32, 2} + Block(3, 1) + Block(6, 1));
    ExpectNak(host, 0x063E, hostBytes{0, 32, 32, 1} + Block(7, 1));
    ExpectNak(host, 0x063E, hostBytes{0, 32, 32, 2} + Block(3, 0));
    ExpectNak(host, 0x063E, hostBytes{1, 32, 32, 1} + Block(3, 0));
    EXPECT_EQ(Answered(host, 0x063E, {}), before);
    ::host oldest(simModel::UBlox7);
    ExpectNak(oldest, 0x063E, hostBytes{0, 22, 22, 1} + Block(6, 1));
    ExpectAck(oldest, 0x063E, hostBytes{0, 22, 22, 2} + Block(0, 0) + Block(6, 1));
}

TEST(simUbloxClassic, KeepsThePulseThatWasSet)
{
    host host(simModel::M8);
    const hostBytes factory = Answered(host, 0x0631, {});
    ASSERT_EQ(factory.size(), 32u);
    EXPECT_EQ(factory[1], 1u);
    EXPECT_EQ(littleAt(factory, 8, 4), 1'000'000u);
    EXPECT_EQ(littleAt(factory, 20, 4), 100'000u);
    EXPECT_EQ(littleAt(factory, 28, 4), 0xF7u);
    // 10 Hz by frequency, a quarter on: the share is of 2^32.
    const hostBytes wanted = hostBytes{0, 1, 0, 0} + little(50, 2) + little(0, 2) + little(10, 4) +
                             little(10, 4) + little(0x40000000, 4) + little(0x40000000, 4) + little(0, 4) +
                             little(0x6F, 4);
    ExpectAck(host, 0x0631, wanted);
    EXPECT_EQ(Answered(host, 0x0631, {0}), wanted);
    // 0.25 Hz by period, an odd share.
    const hostBytes slow = hostBytes{0, 1, 0, 0} + little(50, 2) + little(0, 2) + little(4'000'000, 4) +
                           little(4'000'000, 4) + little(0x12345679, 4) + little(0xFFFFFFFF, 4) +
                           little(0, 4) + little(0x67, 4);
    ExpectAck(host, 0x0631, slow);
    EXPECT_EQ(Answered(host, 0x0631, {}), slow);
    ExpectNak(host, 0x0631, {1});
    ExpectNak(host, 0x0631, hostBytes(31));
}

TEST(simUbloxClassic, SolvesAsOftenAsItIsTold)
{
    host host(simModel::M8);
    ExpectAck(host, 0x0601, {0x01, 0x04, 1});
    EXPECT_THAT(Answered(host, 0x0608, {}), ElementsAre(0xE8, 0x03, 1, 0, 1, 0));
    ExpectAck(host, 0x0608, {100, 0, 1, 0, 1, 0});
    host.Wait(1);
    EXPECT_EQ(ubxNames(host.Wait(5)).size(), 50u);
    ExpectNak(host, 0x0608, {1, 0, 1, 0, 1, 0});
}

TEST(simUbloxClassic, IsNotTheWayOfTheNewest)
{
    for (const simModel model : {simModel::M10, simModel::MaxM10S, simModel::NeoF10N}) {
        host host(model);
        ExpectNak(host, 0x0600, {1});
        ExpectNak(host, 0x0601, {1, 4, 1});
        ExpectNak(host, 0x063E, {});
    }
}

TEST(simUbloxClassic, RefusesEverythingWhenAFaultSaysSo)
{
    host host(simModel::M8);
    host.Faults().Nak = true;
    ExpectNak(host, 0x0600, {1});
    ExpectNak(host, 0x0601, {1, 4, 1});
    host.Faults().Nak = false;
    ExpectAck(host, 0x0601, {1, 4, 1});
}

}  // namespace
