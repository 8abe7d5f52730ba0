#include "tests/simulator/host.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

// The pairs of a CFG-VALGET answer.
std::map<uint32_t, uint64_t> PairsOf(const hostBytes& payload)
{
    std::map<uint32_t, uint64_t> pairs;
    constexpr unsigned Widths[] = {0, 1, 1, 2, 4, 8, 0, 0};
    size_t at = 4;
    while (at < payload.size()) {
        const auto key = static_cast<uint32_t>(littleAt(payload, at, 4));
        const unsigned width = Widths[key >> 28 & 7];
        pairs[key] = littleAt(payload, at + 4, width);
        at += 4 + width;
    }
    return pairs;
}

std::map<uint32_t, uint64_t> Get(host& host, std::initializer_list<uint32_t> keys, uint8_t layer = 0)
{
    const std::vector<ubxSaid> said = ubxHear(host.Ask(ubxValGet(keys, layer)));
    EXPECT_EQ(said.size(), 2u);
    if (said.size() != 2)
        return {};
    EXPECT_EQ(said[0].Name, 0x068Bu);
    EXPECT_EQ(said[0].Payload[0], 1u) << "the version of an answer";
    EXPECT_EQ(said[0].Payload[1], layer);
    EXPECT_EQ(said[1], ubxAck(0x8B));
    return PairsOf(said[0].Payload);
}

void ExpectSet(host& host, const hostBytes& pairs)
{
    EXPECT_THAT(ubxHear(host.Ask(ubxValSet(pairs))), ElementsAre(ubxAck(0x8A)));
}

void ExpectRefused(host& host, const hostBytes& message, uint8_t id)
{
    EXPECT_THAT(ubxHear(host.Ask(message)), ElementsAre(ubxNak(id)));
}

TEST(simUbloxValues, KeepsWhatWasSet)
{
    host host(simModel::M9);
    ExpectSet(host,
              ubxPair(0x10740002, 0) + ubxPair(0x40050024, 5) + ubxPair(0x5005002A, 0x4049000000000000));
    EXPECT_EQ(
        Get(host, {0x40050024, 0x5005002A, 0x10740002}),
        (std::map<uint32_t, uint64_t>{{0x10740002, 0}, {0x40050024, 5}, {0x5005002A, 0x4049000000000000}}));
    EXPECT_EQ(host.Receiver->Truth().Keys.at(0x40050024), 5u);
    EXPECT_EQ(Get(host, {0x40050024}, 7), (std::map<uint32_t, uint64_t>{{0x40050024, 1}}))
        << "the default stays";
}

TEST(simUbloxValues, TellsAGroupByItsWildcard)
{
    struct row {
        simModel Model;
        std::vector<uint32_t> Items;
    };
    const row Rows[] = {
        {simModel::NeoM9N, {0x01, 0x05, 0x07, 0x0D, 0x12, 0x14, 0x18, 0x1F, 0x20, 0x21, 0x22, 0x24, 0x25}},
        {simModel::ZedF9R,
         {0x01, 0x03, 0x05, 0x07, 0x0A, 0x0D, 0x0E, 0x12, 0x14, 0x15, 0x18, 0x1A, 0x1F, 0x20, 0x21, 0x22,
          0x24, 0x25}},
        {simModel::MaxM10S,
         {0x01, 0x05, 0x07, 0x0D, 0x0F, 0x12, 0x14, 0x18, 0x1F, 0x20, 0x21, 0x22, 0x24, 0x25}},
        {simModel::NeoF10N,
         {0x01, 0x04, 0x05, 0x07, 0x09, 0x0F, 0x12, 0x14, 0x17, 0x1D, 0x1F, 0x20, 0x21, 0x22, 0x24, 0x26,
          0x28}},
    };
    for (const row& expected : Rows) {
        host host(expected.Model);
        std::vector<uint32_t> items;
        for (const auto& [key, value] : Get(host, {0x0031FFFF})) {
            EXPECT_EQ(key & 0xFFFFFF00, 0x10310000u);
            EXPECT_LE(value, 1u);
            items.push_back(key & 0xFF);
        }
        EXPECT_EQ(items, expected.Items);
    }
}

TEST(simUbloxValues, TellsTheRestOfAGroupFromAPosition)
{
    host host(simModel::M9);
    const size_t all = Get(host, {0x0031FFFF}).size();
    const std::vector<ubxSaid> said =
        ubxHear(host.Ask(ubxSay(0x068B, hostBytes{0, 0, 10, 0} + little(0x0031FFFF, 4))));
    ASSERT_EQ(said.size(), 2u);
    EXPECT_EQ(littleAt(said[0].Payload, 2, 2), 10u);
    EXPECT_EQ(PairsOf(said[0].Payload).size(), all - 10);
    EXPECT_EQ(Get(host, {0x0091FFFF}).size(), 64u) << "not more at once";
}

TEST(simUbloxValues, RefusesKeysItDoesNotHave)
{
    host host(simModel::NeoM9N);
    const simTruth before = host.Receiver->Truth();
    ExpectRefused(host, ubxValSet(ubxPair(0x20910039, 1) + ubxPair(0x10310004, 1)), 0x8A);
    EXPECT_EQ(host.Receiver->Truth().Keys, before.Keys) << "all or nothing";
    ExpectRefused(host, ubxValGet({0x10310004}), 0x8B);
    ExpectRefused(host, ubxValGet({0x10310001, 0x10310004}), 0x8B);
    ExpectRefused(host, ubxValGet({0x00EEFFFF}), 0x8B);
}

TEST(simUbloxValues, RefusesWhatMakesNoSense)
{
    host host(simModel::M9);
    const hostBytes pair = ubxPair(0x20910039, 1);
    ExpectRefused(host, ubxSay(0x068A, hostBytes{0, 0, 0, 0} + pair), 0x8A);  // no layer
    ExpectRefused(host, ubxSay(0x068A, hostBytes{2, 1, 0, 0} + pair), 0x8A);  // a version to come
    ExpectRefused(host, ubxSay(0x068A, {0, 1}), 0x8A);                        // cut
    ExpectRefused(host, ubxSay(0x068A, hostBytes{0, 1, 0, 0} + little(0x20910039, 4)), 0x8A);
    ExpectRefused(host, ubxValSet(ubxPair(0x10310001, 2)), 0x8A);  // neither on nor off
    ExpectRefused(host, ubxSay(0x068B, {0, 0, 0, 0}), 0x8B);
    ExpectRefused(host, ubxSay(0x068B, hostBytes{0, 5, 0, 0} + little(0x20910039, 4)), 0x8B);
    ExpectRefused(host, ubxValGet({0x20910039}, 1), 0x8B);  // nothing is saved
    EXPECT_EQ(Get(host, {0x20910039}).at(0x20910039), 0u);
}

TEST(simUbloxValues, RefusesSignalsThatCannotGoTogether)
{
    host small(simModel::MaxM10S);
    ExpectSet(small, ubxPair(0x1031000F, 0) + ubxPair(0x10310018, 0) + ubxPair(0x1031000D, 1));
    ExpectRefused(small, ubxValSet(ubxPair(0x1031000F, 1)), 0x8A);
    ExpectRefused(small, ubxValSet(ubxPair(0x10310018, 1)), 0x8A);
    ExpectSet(small, ubxPair(0x1031000D, 0) + ubxPair(0x1031000F, 1) + ubxPair(0x10310018, 1));
    host two(simModel::NeoF10N);
    ExpectRefused(two, ubxValSet(ubxPair(0x10310001, 0)), 0x8A);
    ExpectSet(two, ubxPair(0x10310001, 0) + ubxPair(0x10310004, 0));
}

TEST(simUbloxValues, HearsTheSignalsThatAreOn)
{
    host host(simModel::ZedF9R);
    const auto names = [&](simSystem system) {
        host.Wait(1);
        std::map<std::string, int> counted;
        for (const simSat& sat : host.Receiver->Truth().Sats) {
            for (const simSignal& signal : sat.Signals)
                counted[std::string(signal.Name)] += sat.System == system ? 1 : 0;
        }
        return counted;
    };
    EXPECT_GT(names(simSystem::GPS)["L2C"], 0);
    EXPECT_EQ(names(simSystem::GPS)["L5"], 0);
    ExpectSet(host, ubxPair(0x10310003, 0));
    EXPECT_EQ(names(simSystem::GPS)["L2C"], 0);
    EXPECT_GT(names(simSystem::GPS)["L1C/A"], 0);
    ExpectSet(host, ubxPair(0x1031001F, 0));
    EXPECT_EQ(names(simSystem::GPS)["L1C/A"], 0);
    EXPECT_GT(names(simSystem::Galileo)["E5b"], 0);
}

TEST(simUbloxValues, SendsTheMessagesOfTheHostsPortAlone)
{
    constexpr std::pair<simPort, uint32_t> Ports[] = {
        {simPort::I2C, 0}, {simPort::UART1, 1}, {simPort::UART2, 2}, {simPort::USB, 3}};
    for (const auto& [port, step] : Ports) {
        simOptions options;
        options.Port = port;
        host host(options);
        for (uint32_t other = 0; other < 4; ++other) {
            if (other != step)
                ExpectSet(host, ubxPair(0x20910038 + other, 1));
        }
        EXPECT_THAT(host.Wait(1), IsEmpty());
        ExpectSet(host, ubxPair(0x20910038 + step, 1));
        EXPECT_THAT(ubxNames(host.Wait(1)), ElementsAre(0x0104));
    }
}

TEST(simUbloxValues, StopsSendingWhatThePortDoesNotCarry)
{
    simOptions options;
    options.NMEA = true;
    host host(options);
    ExpectSet(host, ubxPair(0x10740002, 0) + ubxPair(0x20910039, 1));
    EXPECT_THAT(ubxNames(host.Wait(1)), ElementsAre(0x0104));
    host.Ask(ubxValSet(ubxPair(0x10740001, 0)));
    EXPECT_THAT(host.Wait(1), IsEmpty());
}

TEST(simUbloxValues, AreUnknownToTheOld)
{
    for (const simModel model : {simModel::UBlox7, simModel::M8}) {
        host host(model);
        ExpectRefused(host, ubxValSet(ubxPair(0x20910039, 1)), 0x8A);
        ExpectRefused(host, ubxValGet({0x20910039}), 0x8B);
    }
}

}  // namespace
