#include "gnss/gnssUBX.h"

#include "tests/fakes/fakes.h"
#include "tests/gnss/ubxScript.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <span>

using testing::ElementsAre;
using testing::IsEmpty;
using enum ubxSignal;

namespace {

class gnssUBXSelect : public testing::Test
{
protected:
    void SetUp() override { fakeReset(); }
};

template <class... Signals>
ubxSignalSet On(Signals... signals)
{
    return ubxSignalSet::Of(signals...);
}

void Select(gnssUBX& receiver, ubxSignalSet wish)
{
    const auto on = [wish](unsigned flag) { return (wish.Bits() >> flag & 1) != 0; };
    receiver.GNSSSelect(on(0), on(1), on(2), on(3), on(4), on(5), on(6), on(7), on(8), on(9), on(10), on(11),
                        on(12), on(13), on(14), on(15), on(16), on(17), on(18));
}

// All subsets of some signals.
std::vector<ubxSignalSet> Subsets(std::span<const ubxSignal> signals)
{
    std::vector<ubxSignalSet> all;
    for (unsigned bits = 0; bits < 1u << signals.size(); bits++) {
        ubxSignalSet set;
        for (size_t at = 0; at < signals.size(); at++)
            set.Set(signals[at], (bits >> at & 1) != 0);
        all.push_back(set);
    }
    return all;
}

// Calls a check for every selection that stands and every request over some signals.
template <class Check>
void ForEachChange(uint8_t model, std::initializer_list<ubxSignal> signals, Check check)
{
    const std::vector<ubxSignalSet> all = Subsets({signals.begin(), signals.size()});
    for (const ubxSignalSet present : all) {
        for (const ubxSignalSet wish : all) {
            check(present, wish, ubxSignalRules(model, present, wish));
            if (testing::Test::HasFailure()) {
                ADD_FAILURE() << "present " << present.Bits() << " wish " << wish.Bits();
                return;
            }
        }
    }
}

struct ruleCase {
    const char* About;
    ubxSignalSet Present, Wish, Result;
};

void ExpectRules(uint8_t model, const std::vector<ruleCase>& cases)
{
    for (const ruleCase& row : cases)
        EXPECT_EQ(ubxSignalRules(model, row.Present, row.Wish).Bits(), row.Result.Bits()) << row.About;
}

// The keys and values of the CFG-VALSET that carries a selection to a receiver of this model.
std::vector<std::pair<uint32_t, unsigned>> Written(unsigned model, ubxSignalSet selected)
{
    ubxLink link;
    identify(link, model, VersionKeys);
    link.Receiver.Select.Store(selected);
    link.Receiver.PendingGNSS = 1;
    const auto sent = link.Take(anyFrame());
    EXPECT_EQ(sent.size(), 1u);
    EXPECT_EQ(sent.at(0).Id, 0x8Au);
    const ubxPayload payload(sent.at(0).Payload.data(), sent.at(0).Payload.size());
    EXPECT_EQ(payload.u4(0), 0x100u);
    std::vector<std::pair<uint32_t, unsigned>> rows;
    for (size_t at = 4; at < payload.size(); at += 5)
        rows.emplace_back(payload.u4(at), payload.u1(at + 4));
    return rows;
}

std::vector<uint32_t> WrittenKeys(unsigned model)
{
    std::vector<uint32_t> keys;
    for (const auto& [key, value] : Written(model, {}))
        keys.push_back(key);
    return keys;
}

}  // namespace

// --- The rules

TEST_F(gnssUBXSelect, Model7NeverHasWhatItCannotReceive)
{
    for (unsigned flag = 0; flag < ubxSignalCount; flag++) {
        const ubxSignalSet wish(1u << flag);
        const bool kept =
            wish.HasAny(On(BeiDouB1C, BeiDouB2I, GLONASSL1, GLONASSL2, GPSL1CA, QZSSL1CA, QZSSL2C, SBAS));
        EXPECT_EQ(ubxSignalRules(7, {}, wish), kept ? wish : ubxSignalSet()) << flag;
        EXPECT_EQ(ubxSignalRules(7, wish, wish), kept ? wish : ubxSignalSet()) << flag;
    }
}

TEST_F(gnssUBXSelect, Models9And10NeverHaveWhatTheyCannotReceive)
{
    for (const uint8_t model : {uint8_t{9}, uint8_t{10}}) {
        for (unsigned flag = 0; flag < ubxSignalCount; flag++) {
            const ubxSignalSet wish(1u << flag);
            const bool kept =
                !wish.HasAny(On(BeiDouB2a, GalileoE5a, GPSL2C, GPSL5, IMES, NavICL5, QZSSL1S, QZSSL5));
            EXPECT_EQ(ubxSignalRules(model, {}, wish), kept ? wish : ubxSignalSet()) << flag;
        }
    }
}

TEST_F(gnssUBXSelect, ModelsWithoutRulesGetWhatIsAsked)
{
    for (const unsigned model : {0u, 1u, 6u, 15u, 255u})
        for (const uint32_t wish : {0u, 0x7FFFFu, 0x2A5A5u})
            EXPECT_EQ(
                ubxSignalRules(static_cast<uint8_t>(model), ubxSignalSet(~wish), ubxSignalSet(wish)).Bits(),
                wish);
}

TEST_F(gnssUBXSelect, OnModel8TheNewlyWantedOfBeiDouAndGlonassWins)
{
    ExpectRules(
        8, {
               {"BeiDou new", On(GLONASSL1), On(GLONASSL1, BeiDouB1I), On(BeiDouB1I)},
               {"GLONASS new", On(BeiDouB1I), On(GLONASSL1, BeiDouB1I), On(GLONASSL1)},
               {"both new", {}, On(GLONASSL1, BeiDouB1I), On(BeiDouB1I)},
               {"both there", On(GLONASSL1, BeiDouB1I), On(GLONASSL1, BeiDouB1I), On(GLONASSL1, BeiDouB1I)},
               {"one goes", On(GLONASSL1), {}, {}},
               {"QZSS follows GPS", {}, On(GPSL1CA), On(GPSL1CA, QZSSL1CA)},
               {"QZSS alone", On(QZSSL1CA), On(QZSSL1CA), {}},
               {"others stay", {}, On(GalileoE1, SBAS, IMES), On(GalileoE1, SBAS, IMES)},
           });
    ForEachChange(8, {BeiDouB1I, GLONASSL1, GPSL1CA, QZSSL1CA, GalileoE1},
                  [](ubxSignalSet present, ubxSignalSet wish, ubxSignalSet result) {
                      EXPECT_EQ(result.Has(QZSSL1CA), wish.Has(GPSL1CA));
                      EXPECT_EQ(result.Has(GalileoE1), wish.Has(GalileoE1));
                      const bool both = result.Has(BeiDouB1I) && result.Has(GLONASSL1);
                      EXPECT_TRUE(!both || (present.Has(BeiDouB1I) && present.Has(GLONASSL1)));
                      EXPECT_EQ(result.HasAny(On(BeiDouB1I, GLONASSL1)),
                                wish.HasAny(On(BeiDouB1I, GLONASSL1)));
                  });
}

TEST_F(gnssUBXSelect, OnModel11TheFirstSecondBandFlagThatWasTouchedSpeaksForAll)
{
    const ubxSignalSet first = On(GalileoE1, GPSL1CA, QZSSL1CA, GLONASSL1, BeiDouB1I, SBAS);
    const ubxSignalSet all = On(GalileoE1, GPSL1CA, QZSSL1CA, GLONASSL1, BeiDouB1I, SBAS, GalileoE5b, GPSL2C,
                                QZSSL2C, GLONASSL2, BeiDouB2I);
    const auto with = [](ubxSignalSet set, ubxSignal signal, bool on) {
        set.Set(signal, on);
        return set;
    };
    ExpectRules(11, {
                        {"E5b on", first, with(first, GalileoE5b, true), all},
                        {"GLONASS L2 on", first, with(first, GLONASSL2, true), all},
                        {"B2I on", first, with(first, BeiDouB2I, true), all},
                        {"L2C on", first, with(first, GPSL2C, true), all},
                        {"E5b off", all, with(all, GalileoE5b, false), first},
                        {"GLONASS L2 off", all, with(all, GLONASSL2, false), first},
                        {"B2I off", all, with(all, BeiDouB2I, false), first},
                        {"L2C off", all, with(all, GPSL2C, false), first},
                        {"QZSS L2C says nothing", all, with(all, QZSSL2C, false), all},
                        {"E5b before L2C", first, with(with(all, GalileoE5b, true), GPSL2C, false), all},
                        {"Galileo off", all, with(all, GalileoE1, false),
                         with(with(all, GalileoE1, false), GalileoE5b, false)},
                        {"SBAS needs GPS or Galileo", {}, On(SBAS, GLONASSL1), On(GLONASSL1)},
                        {"SBAS with Galileo", {}, On(SBAS, GalileoE1), On(SBAS, GalileoE1)},
                    });
}

TEST_F(gnssUBXSelect, OnModel11NoSecondBandIsOnWithoutItsFirst)
{
    ForEachChange(11, {GalileoE5b, GLONASSL1, GLONASSL2, BeiDouB1I, BeiDouB2I, GPSL2C},
                  [](ubxSignalSet, ubxSignalSet wish, ubxSignalSet result) {
                      EXPECT_TRUE(wish.Has(GLONASSL1) || !result.Has(GLONASSL2));
                      EXPECT_TRUE(wish.Has(BeiDouB1I) || !result.Has(BeiDouB2I));
                      EXPECT_FALSE(result.HasAny(On(GPSL2C, QZSSL2C, GalileoE5b)))
                          << "their first band is off";
                      EXPECT_EQ(result.Has(GLONASSL1), wish.Has(GLONASSL1));
                  });
    ForEachChange(11, {GalileoE1, GalileoE5b, GPSL1CA, GPSL2C, SBAS, QZSSL2C},
                  [](ubxSignalSet present, ubxSignalSet wish, ubxSignalSet result) {
                      const bool touched = wish.Has(GalileoE5b) != present.Has(GalileoE5b);
                      const bool second = wish.Has(touched ? GalileoE5b : GPSL2C);
                      EXPECT_EQ(result.Has(GalileoE5b), wish.Has(GalileoE1) && second);
                      EXPECT_EQ(result.Has(GPSL2C), wish.Has(GPSL1CA) && second);
                      EXPECT_EQ(result.Has(QZSSL2C), result.Has(GPSL2C));
                      EXPECT_EQ(result.Has(QZSSL1CA), wish.Has(GPSL1CA));
                      EXPECT_EQ(result.Has(SBAS), wish.Has(SBAS) && wish.HasAny(On(GPSL1CA, GalileoE1)));
                  });
}

TEST_F(gnssUBXSelect, OnModels12And13BeiDouB1IYieldsToWhatIsNewAndNewItselfTakesAll)
{
    for (const uint8_t model : {uint8_t{12}, uint8_t{13}}) {
        ExpectRules(model, {
                               {"B1C new", On(BeiDouB1I), On(BeiDouB1I, BeiDouB1C), On(BeiDouB1C)},
                               {"GLONASS new", On(BeiDouB1I), On(BeiDouB1I, GLONASSL1), On(GLONASSL1)},
                               {"B1I new", On(BeiDouB1C, GLONASSL1), On(BeiDouB1C, GLONASSL1, BeiDouB1I),
                                On(BeiDouB1I)},
                               {"all new", {}, On(BeiDouB1C, GLONASSL1, BeiDouB1I), On(BeiDouB1C, GLONASSL1)},
                               {"none new", On(BeiDouB1C, GLONASSL1, BeiDouB1I),
                                On(BeiDouB1C, GLONASSL1, BeiDouB1I), On(BeiDouB1C, GLONASSL1, BeiDouB1I)},
                           });
        ForEachChange(model, {BeiDouB1C, BeiDouB1I, GLONASSL1, GPSL1CA},
                      [](ubxSignalSet present, ubxSignalSet wish, ubxSignalSet result) {
                          EXPECT_EQ(result.Has(GPSL1CA), wish.Has(GPSL1CA));
                          const bool clash = result.Has(BeiDouB1I) && result.HasAny(On(BeiDouB1C, GLONASSL1));
                          EXPECT_TRUE(!clash || present.Has(BeiDouB1I)) << "only what clashed before does";
                      });
    }
}

TEST_F(gnssUBXSelect, OnModel14OnlyGpsL5SwitchedOnSwitchesL1OnWithIt)
{
    const ubxSignalSet result =
        ubxSignalRules(14, On(GalileoE1, GalileoE5a), On(GalileoE1, GalileoE5a, GPSL5));
    EXPECT_EQ(result, On(GalileoE1, GalileoE5a, GPSL5, GPSL1CA));
}

TEST_F(gnssUBXSelect, OnModel14ThePairsMoveTogetherByTheFlagThatWasTouched)
{
    struct {
        ubxSignal Second, First;
    } constexpr Pairs[] = {{GPSL5, GPSL1CA}, {GalileoE5a, GalileoE1}, {BeiDouB2a, BeiDouB1C}};
    ForEachChange(14, {GPSL1CA, GPSL5, GalileoE1, GalileoE5a, BeiDouB1C, BeiDouB2a},
                  [&](ubxSignalSet present, ubxSignalSet wish, ubxSignalSet result) {
                      for (const auto& pair : Pairs) {
                          const bool touched = wish.Has(pair.Second) != present.Has(pair.Second);
                          EXPECT_EQ(result.Has(pair.First), wish.Has(touched ? pair.Second : pair.First));
                          EXPECT_EQ(result.Has(pair.Second), result.Has(pair.First));
                      }
                  });
}

TEST_F(gnssUBXSelect, OnModel14QzssMovesAsOneAndNeedsGps)
{
    ForEachChange(14, {GPSL1CA, GPSL5, QZSSL1CA, QZSSL1S, QZSSL5},
                  [](ubxSignalSet present, ubxSignalSet wish, ubxSignalSet result) {
                      const bool gps = result.Has(GPSL1CA);
                      bool expected = gps && wish.Has(QZSSL1CA);
                      if ((gps && wish.Has(QZSSL1S)) != present.Has(QZSSL1S))
                          expected = gps && wish.Has(QZSSL1S);
                      else if ((gps && wish.Has(QZSSL5)) != present.Has(QZSSL5))
                          expected = gps && wish.Has(QZSSL5);
                      for (const ubxSignal signal : {QZSSL1CA, QZSSL1S, QZSSL5})
                          EXPECT_EQ(result.Has(signal), expected);
                  });
}

TEST_F(gnssUBXSelect, OnModel14NavicNeedsAnotherConstellation)
{
    ForEachChange(14, {NavICL5, GPSL5, GalileoE5a, BeiDouB2a, SBAS},
                  [](ubxSignalSet, ubxSignalSet wish, ubxSignalSet result) {
                      const bool any = result.HasAny(On(GPSL1CA, GalileoE1, BeiDouB1C));
                      EXPECT_EQ(result.Has(NavICL5), wish.Has(NavICL5) && any);
                      EXPECT_EQ(result.Has(SBAS), wish.Has(SBAS));
                  });
}

TEST_F(gnssUBXSelect, SignalsOutsideTheRulesStayAsAskedOnEveryModel)
{
    struct {
        uint8_t Model;
        ubxSignalSet Ruled;
    } const Cases[] = {
        {8, On(BeiDouB1I, GLONASSL1, QZSSL1CA)},
        {11, On(GalileoE5b, GPSL2C, QZSSL2C, GLONASSL2, BeiDouB2I, SBAS, QZSSL1CA)},
        {12, On(BeiDouB1C, BeiDouB1I, GLONASSL1)},
        {14,
         On(GPSL1CA, GPSL5, GalileoE1, GalileoE5a, BeiDouB1C, BeiDouB2a, NavICL5, QZSSL1CA, QZSSL1S, QZSSL5)},
    };
    uint32_t random = 1;
    for (const auto& row : Cases) {
        for (unsigned round = 0; round < 2000; round++) {
            random = random * 1664525 + 1013904223;
            const ubxSignalSet present(random >> 8);
            random = random * 1664525 + 1013904223;
            const ubxSignalSet wish(random >> 8);
            const uint32_t changed = ubxSignalRules(row.Model, present, wish).Bits() ^ wish.Bits();
            EXPECT_EQ(changed & ~row.Ruled.Bits(), 0u) << +row.Model;
        }
    }
}

// --- The request

TEST_F(gnssUBXSelect, EachArgumentIsItsFlag)
{
    for (unsigned flag = 0; flag < ubxSignalCount; flag++) {
        ubxLink link;
        Select(link.Receiver, ubxSignalSet(1u << flag));
        EXPECT_EQ(link.Receiver.Select.Load().Bits(), 1u << flag);
        EXPECT_EQ(link.Receiver.PendingGNSS, 1);
        EXPECT_THAT(link.Sent, IsEmpty()) << "the data thread sends";
    }
}

TEST_F(gnssUBXSelect, TheRulesAreThoseOfTheReceiverThatAnswered)
{
    for (unsigned model = 6; model <= 14; model++) {
        ubxLink link;
        identify(link, model, VersionKeys);
        Select(link.Receiver, ubxSignalSet(~0u));
        EXPECT_EQ(link.Receiver.Select.Load(),
                  ubxSignalRules(static_cast<uint8_t>(model), {}, ubxSignalSet(~0u)))
            << model;
        link.Receiver.Restart();
        Select(link.Receiver, ubxSignalSet(~0u));
        EXPECT_EQ(link.Receiver.Select.Load(), ubxSignalSet(~0u)) << "none is known after a restart";
    }
}

TEST_F(gnssUBXSelect, WhatStandsIsTheSelectionBefore)
{
    ubxLink link;
    identify(link, 8, VersionClassic);
    link.Receiver.Select.Store(On(GLONASSL1));
    Select(link.Receiver, On(GLONASSL1, BeiDouB1I));
    EXPECT_EQ(link.Receiver.Select.Load(), On(BeiDouB1I));
    Select(link.Receiver, On(GLONASSL1, BeiDouB1I));
    EXPECT_EQ(link.Receiver.Select.Load(), On(GLONASSL1));
}

// --- The selection by keys

TEST_F(gnssUBXSelect, EachModelIsToldItsKeysInOrder)
{
    constexpr uint32_t GPS = 0x1031001F, Sbas = 0x10310020, Galileo = 0x10310021, BeiDou = 0x10310022,
                       QZSS = 0x10310024, GLONASS = 0x10310025, NavIC = 0x10310026;
    for (const unsigned model : {6u, 7u, 8u})
        EXPECT_THAT(WrittenKeys(model), ElementsAre(0x10310001, GPS, 0x10310005, Sbas, 0x10310007, Galileo,
                                                    BeiDou, 0x10310012, QZSS))
            << model;
    for (const unsigned model : {9u, 10u})
        EXPECT_THAT(WrittenKeys(model),
                    ElementsAre(0x10310001, GPS, 0x10310005, Sbas, 0x10310007, Galileo, 0x1031000D, BeiDou,
                                0x10310012, QZSS, 0x10310018, GLONASS))
            << model;
    EXPECT_THAT(WrittenKeys(11), ElementsAre(0x10310001, 0x10310003, GPS, 0x10310005, Sbas, 0x10310007,
                                             0x1031000A, Galileo, 0x1031000D, 0x1031000E, BeiDou, 0x10310012,
                                             0x10310014, 0x10310015, QZSS, 0x10310018, 0x1031001A, GLONASS));
    for (const unsigned model : {12u, 13u})
        EXPECT_THAT(WrittenKeys(model),
                    ElementsAre(0x10310001, GPS, 0x10310005, Sbas, 0x10310007, Galileo, 0x1031000F,
                                0x1031000D, BeiDou, 0x10310012, 0x10310014, QZSS, 0x10310018, GLONASS))
            << model;
    EXPECT_THAT(WrittenKeys(14), ElementsAre(0x10310001, 0x10310004, GPS, 0x10310005, Sbas, 0x10310007,
                                             0x10310009, Galileo, 0x1031000F, 0x10310028, BeiDou, 0x10310012,
                                             0x10310014, 0x10310017, QZSS, 0x1031001D, NavIC));
}

TEST_F(gnssUBXSelect, EachKeyCarriesItsFlagAndEachConstellationAnyOfItsOwn)
{
    for (unsigned model = 6; model <= 14; model++) {
        for (const ubxSignalRow& signal : ubxSignalTable) {
            for (const auto& [key, value] : Written(model, On(signal.Signal))) {
                bool expected = key == signal.Key;
                for (const ubxEnableRow& enable : ubxEnableTable)
                    expected = expected || (enable.Key == key && enable.Constellation == signal.Enable);
                EXPECT_EQ(value, expected ? 1u : 0u) << model << " " << signal.Name << " " << std::hex << key;
            }
        }
    }
}

// --- From the request to the read-back

TEST_F(gnssUBXSelect, ASelectionByKeysIsWrittenAndReadBack)
{
    ubxLink link;
    identify(link, 9, VersionKeys);
    ubxScript script(monVerOf(9, VersionKeys));
    Select(link.Receiver, On(GPSL1CA, GalileoE1, SBAS));
    feed(link.Receiver, anyFrame());
    EXPECT_EQ(converse(link, script).size(), 2u);
    EXPECT_EQ(link.Receiver.Select.Load(), On(GPSL1CA, GalileoE1, SBAS));
    EXPECT_EQ(link.Receiver.ConfigState, gnssUBX::State::Idle);
    EXPECT_EQ(script.Keys.at(0x1031001F), 1u);
    EXPECT_EQ(script.Keys.at(0x10310025), 0u);
}

TEST_F(gnssUBXSelect, ARefusedSelectionIsReadBackToo)
{
    ubxLink link;
    identify(link, 9, VersionKeys);
    ubxScript script(monVerOf(9, VersionKeys));
    script.RefusesSelection = true;
    script.Keys = {{0x1031001F, 1}, {0x10310001, 1}};
    Select(link.Receiver, On(GalileoE1));
    feed(link.Receiver, anyFrame());
    converse(link, script);
    EXPECT_EQ(link.Receiver.Select.Load(), On(GPSL1CA)) << "what the receiver has";
    EXPECT_EQ(link.Receiver.ConfigState, gnssUBX::State::Idle);
}

TEST_F(gnssUBXSelect, AClassicSelectionIsReadChangedWrittenAndReadBack)
{
    ubxLink link;
    identify(link, 8, VersionClassic);
    ubxScript script(monVerOf(8, VersionClassic));
    script.Enabled = {{0, true}, {1, true}, {2, false}, {3, false}, {4, false}, {5, true}, {6, true}};
    link.Receiver.Select.Store(On(GPSL1CA, SBAS, QZSSL1CA, GLONASSL1));
    Select(link.Receiver, On(GPSL1CA, GalileoE1, BeiDouB1I, GLONASSL1));
    feed(link.Receiver, anyFrame());
    EXPECT_EQ(converse(link, script).size(), 3u);
    EXPECT_EQ(link.Receiver.Select.Load(), On(GPSL1CA, GalileoE1, BeiDouB1I, QZSSL1CA));
    EXPECT_TRUE(script.Enabled.at(3));
    EXPECT_FALSE(script.Enabled.at(6));
    EXPECT_EQ(link.Receiver.ConfigState, gnssUBX::State::Idle);
}

TEST_F(gnssUBXSelect, AChangeDuringAChangeIsServedNext)
{
    ubxLink link;
    identify(link, 9, VersionKeys);
    ubxScript script(monVerOf(9, VersionKeys));
    Select(link.Receiver, On(GPSL1CA));
    feed(link.Receiver, anyFrame());
    EXPECT_EQ(link.Receiver.PendingGNSS, 0);
    link.Receiver.PendingGNSS = 1;
    EXPECT_EQ(converse(link, script).size(), 4u) << "written and read back twice";
    EXPECT_EQ(link.Receiver.PendingGNSS, 0);
    EXPECT_EQ(link.Receiver.ConfigState, gnssUBX::State::Idle);
}
