#include "tests/simulator/host.h"
#include "tools/simulator/simNmeaEpoch.h"
#include "tools/simulator/simNmeaText.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <set>

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr int64_t Noon = 1'795'262'400'000'000'000;  // 2026-11-21 12:00:00

hostBytes BytesOf(const std::string& text)
{
    return {text.begin(), text.end()};
}

simEpoch EpochAt(double latitude, double longitude)
{
    simEpoch epoch;
    epoch.UtcNs = Noon;
    epoch.Fixed = true;
    epoch.Place = {latitude, longitude, 408, 47.3};
    return epoch;
}

simSat SatOf(simSystem system, uint8_t svid, std::vector<simSignal> signals = {{0, "L1"}})
{
    simSat sat;
    sat.System = system;
    sat.Svid = svid;
    sat.Elevation = 40.2;
    sat.Azimuth = 359.7;
    sat.SNR = 44.4;
    sat.Used = true;
    sat.Signals = std::move(signals);
    return sat;
}

TEST(simNmeaText, FindsSentencesInAnyCuts)
{
    const hostBytes stream =
        BytesOf("noise\r\n") + nmeaSay("PORZB,GSA,2") + BytesOf("$POVER\n$PORST,F*00\r\n$PO$POVER\r");
    for (size_t step = 1; step < stream.size(); ++step) {
        simNmeaParser parser;
        std::vector<std::string> found;
        for (size_t at = 0; at < stream.size(); at += step) {
            const std::span<const uint8_t> rest = std::span(stream).subspan(at);
            for (const std::string& body : parser.Take(rest.first(std::min(step, rest.size()))))
                found.push_back(body);
        }
        EXPECT_THAT(found, ElementsAre("PORZB,GSA,2", "POVER", "POVER")) << step;
    }
}

TEST(simNmeaText, DropsALineWithoutEnd)
{
    simNmeaParser parser;
    EXPECT_THAT(parser.Take(BytesOf("$" + std::string(100'000, 'x'))), IsEmpty());
    EXPECT_THAT(parser.Take(BytesOf("\r\n$POVER\r\n")), ElementsAre("POVER"));
}

TEST(simNmeaText, SplitsFieldsAlsoWhereTheyAreEmpty)
{
    EXPECT_THAT(simNmeaFields("A,,B,"), ElementsAre("A", "", "B", ""));
}

TEST(simNmeaEpoch, TellsThePlaceInDegreesAndMinutes)
{
    struct row {
        double Latitude, Longitude;
        const char *North, *NorthSign, *East, *EastSign;
    };
    const row Rows[] = {
        {47.3769, 8.5417, "4722.61400", "N", "00832.50200", "E"},
        {-33.5, -70.25, "3330.00000", "S", "07015.00000", "W"},
        {0, 0, "0000.00000", "N", "00000.00000", "E"},
        // Minutes that would be rounded to sixty carry.
        {46.99999999999, 179.99999999999, "4700.00000", "N", "18000.00000", "E"},
    };
    for (const row& each : Rows) {
        const auto fields =
            nmeaFind(BytesOf(simNmeaGLL(EpochAt(each.Latitude, each.Longitude), simNmeaStyle())), "GNGLL");
        EXPECT_THAT(fields, ElementsAre("GNGLL", each.North, each.NorthSign, each.East, each.EastSign,
                                        "120000.00", "A", "A"));
    }
}

TEST(simNmeaEpoch, NumbersSatellitesByTheirSystem)
{
    struct row {
        simSystem System;
        uint8_t Svid;
        const char *Talker, *Within, *Apart;
    };
    constexpr row Rows[] = {
        {simSystem::GPS, 7, "GP", "07", "07"},      {simSystem::SBAS, 123, "GP", "36", "36"},
        {simSystem::GLONASS, 3, "GL", "67", "67"},  {simSystem::Galileo, 11, "GA", "11", "311"},
        {simSystem::BeiDou, 30, "GB", "30", "430"}, {simSystem::QZSS, 2, "GQ", "194", "194"},
    };
    for (const row& each : Rows) {
        simEpoch epoch = EpochAt(0, 0);
        epoch.Sats = {SatOf(each.System, each.Svid)};
        for (const bool signals : {true, false}) {
            const simNmeaStyle style = {.Signals = signals};
            const std::string address = std::string(each.Talker) + "GSV";
            const auto fields = nmeaFind(BytesOf(simNmeaGSV(epoch, style)), address);
            ASSERT_EQ(fields.size(), signals ? 9u : 8u);
            EXPECT_EQ(fields[4], signals ? each.Within : each.Apart);
            EXPECT_EQ(fields[5], "40");
            EXPECT_EQ(fields[6], "000") << "a full circle is none";
            EXPECT_EQ(fields[7], "44");
        }
    }
}

TEST(simNmeaEpoch, SendsAGroupForEachSignal)
{
    simEpoch epoch = EpochAt(0, 0);
    epoch.Sats = {SatOf(simSystem::Galileo, 1, {{0, "E1"}, {5, "E5b"}}),
                  SatOf(simSystem::Galileo, 2, {{0, "E1"}}), SatOf(simSystem::Galileo, 3, {{0, "E1"}})};
    epoch.Sats[2].SNR = 0;
    EXPECT_THAT(nmeaHear(BytesOf(simNmeaGSV(epoch, simNmeaStyle()))),
                ElementsAre("GAGSV,1,1,01,01,40,000,44,2", "GAGSV,1,1,02,01,40,000,44,02,40,000,44,7",
                            "GAGSV,1,1,01,03,40,000,,0"));
}

TEST(simNmeaEpoch, FillsSentencesWithFourSatellites)
{
    simEpoch epoch = EpochAt(0, 0);
    for (uint8_t svid = 1; svid <= 9; ++svid)
        epoch.Sats.push_back(SatOf(simSystem::GPS, svid));
    const std::vector<std::string> bodies = nmeaHear(BytesOf(simNmeaGSV(epoch, simNmeaStyle())));
    ASSERT_EQ(bodies.size(), 3u);
    EXPECT_TRUE(bodies[0].starts_with("GPGSV,3,1,09,01,"));
    EXPECT_TRUE(bodies[2].starts_with("GPGSV,3,3,09,09,"));
    EXPECT_EQ(nmeaFields(bodies[0]).size(), 4u + 16 + 1);
    EXPECT_EQ(nmeaFields(bodies[2]).size(), 4u + 4 + 1);
}

TEST(simNmeaEpoch, LeavesFieldsEmptyWithoutASolution)
{
    simEpoch epoch = EpochAt(47, 8);
    epoch.Fixed = false;
    const simNmeaStyle style;
    EXPECT_THAT(nmeaHear(BytesOf(simNmeaRMC(epoch, style))),
                ElementsAre("GNRMC,120000.00,V,,,,,,,211126,,,N,V"));
    EXPECT_THAT(nmeaHear(BytesOf(simNmeaGGA(epoch, style))),
                ElementsAre("GNGGA,120000.00,,,,,0,00,99.99,,,,,,"));
    EXPECT_THAT(nmeaHear(BytesOf(simNmeaGLL(epoch, style))), ElementsAre("GNGLL,,,,,120000.00,V,N"));
    EXPECT_THAT(nmeaHear(BytesOf(simNmeaVTG(epoch, style))), ElementsAre("GNVTG,,T,,M,,N,,K,N"));
    EXPECT_THAT(nmeaHear(BytesOf(simNmeaGSA(epoch, style))),
                ElementsAre("GNGSA,A,1,,,,,,,,,,,,,99.99,99.99,99.99,1"));
}

TEST(simNmeaReceiver, SendsItsSentencesEachSecond)
{
    host host(simModel::NMEA);
    std::set<std::string> addresses;
    for (const std::string& body : nmeaHear(host.Wait(1)))
        addresses.insert(body.substr(0, 5));
    EXPECT_THAT(addresses,
                ElementsAre("GAGSV", "GBGSV", "GLGSV", "GNGGA", "GNGLL", "GNGSA", "GNRMC", "GNZDA", "GPGSV"));
}

TEST(simNmeaReceiver, TellsTheTruth)
{
    host host(simModel::NMEA);
    const hostBytes said = host.Wait(1);
    const simTruth truth = host.Receiver->Truth();
    const auto gga = nmeaFind(said, "GNGGA");
    EXPECT_EQ(gga[6], "1");
    EXPECT_NEAR(std::stod(gga[8]), truth.HDOP, 0.006);
    EXPECT_NEAR(std::stod(gga[9]), truth.Place.Altitude, 0.06);
    EXPECT_EQ(gga[11], "47.3");
    std::set<std::string> listed;
    for (const std::string& body : nmeaHear(said)) {
        const auto fields = nmeaFields(body);
        for (size_t at = 4; body.substr(2, 3) == "GSV" && at + 4 < fields.size(); at += 4)
            listed.insert(fields[0].substr(0, 2) + fields[at]);
    }
    EXPECT_EQ(listed.size(), truth.Sats.size());
}

TEST(simNmeaReceiver, StartsAnewWhenItIsTold)
{
    host host(simModel::NMEA);
    host.Wait(1);
    EXPECT_THAT(host.Ask(nmeaSay("PSRF104,0,0,0,96000,237759,1946,12,4")), IsEmpty());
    EXPECT_EQ(nmeaFind(host.Wait(2), "GNRMC")[2], "V");
    host.Wait(2);
    EXPECT_EQ(nmeaFind(host.Wait(1), "GNRMC")[2], "A");
}

TEST(simNvsReceiver, TellsItsAccuracyAndItsVersion)
{
    host host(simModel::NVS);
    const auto accuracy = nmeaFind(host.Wait(1), "PORZD");
    EXPECT_EQ(accuracy[1], "A");
    EXPECT_LT(std::stod(accuracy[2]), 10);
    const auto version = nmeaFind(host.Ask(nmeaSay("POVER")), "ALVER");
    EXPECT_EQ(version[1], "NVS");
    EXPECT_EQ(version[2], "CSM54");
    EXPECT_GE(version.size(), 4u);
}

// Or nobody on a slow line would learn whom to ask for the version.
TEST(simNvsReceiver, TellsItsAccuracyOnALineThatIsTooSlowForAllSentences)
{
    constexpr size_t halfSecond = 240;  // at 4800 baud
    host host(simModel::NVS);
    host.Receiver->BacklogLimit = halfSecond;
    for (int second = 0; second < 3; ++second) {
        const hostBytes heard = host.Wait(1);
        const std::vector<std::string> sentences = nmeaHear(heard);
        EXPECT_EQ(nmeaFind(heard, "PORZD")[1], "A");
        EXPECT_LT(heard.size(), 2 * halfSecond) << "each sentence is weighed for itself";
        EXPECT_GT(heard.size(), halfSecond);
        EXPECT_EQ(sentences.front().substr(0, 5), "GNRMC");
    }
}

TEST(simNvsReceiver, SendsSentencesAsOftenAsItIsTold)
{
    host host(simModel::NVS);
    host.Ask(nmeaSay("PORZB,GSA,2,GSV,3,GGA,0,NIX,1,RMC,x"));
    std::map<std::string, std::set<int>> seconds;
    for (int second = 0; second < 12; ++second) {
        for (const std::string& body : nmeaHear(host.Wait(1)))
            seconds[body.substr(2, 3)].insert(second);
    }
    EXPECT_EQ(seconds["RMC"].size(), 12u);
    EXPECT_EQ(seconds["GSA"].size(), 6u);
    EXPECT_EQ(seconds["GSV"].size(), 4u);
    EXPECT_EQ(seconds["GGA"].size(), 0u);
    host.Ask(nmeaSay("PORST,F"));
    host.Wait(1);
    EXPECT_EQ(nmeaFind(host.Wait(1), "GNGGA")[0], "GNGGA");
}

TEST(simNvsReceiver, DoesNotObeyABrokenSentence)
{
    host host(simModel::NVS);
    hostBytes broken = nmeaSay("PORZB,RMC,0");
    broken[8] ^= 1;
    host.Ask(broken);
    EXPECT_EQ(nmeaFind(host.Wait(1), "GNRMC")[2], "A");
}

}  // namespace
