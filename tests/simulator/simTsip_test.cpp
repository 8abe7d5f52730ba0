#include "tests/simulator/host.h"
#include "tools/simulator/simTsipFrame.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <numbers>

namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

constexpr double Degree = std::numbers::pi / 180;

TEST(simTsipFrame, DoublesEveryDleOfTheData)
{
    EXPECT_THAT(simTsipFrame(0x47, hostBytes{0x10, 0x03, 0x10, 0x10}),
                ElementsAre(0x10, 0x47, 0x10, 0x10, 0x03, 0x10, 0x10, 0x10, 0x10, 0x10, 0x03));
    EXPECT_THAT(simTsipFrame(0x1F, {}), ElementsAre(0x10, 0x1F, 0x10, 0x03));
}

TEST(simTsipFrame, IsUndoneByTheParserInAnyCuts)
{
    hostBytes data;
    for (unsigned byte = 0; byte < 256; ++byte)
        data.insert(data.end(), {static_cast<uint8_t>(byte), 0x10, 0x03, 0x10});
    data.resize(400);
    const hostBytes stream =
        hostBytes{0x00, 0x03} + simTsipFrame(0x8E, data) + hostBytes{0x55} + simTsipFrame(0x1F, {});
    for (size_t step = 1; step < stream.size(); step += 3) {
        simTsipParser parser;
        std::vector<hostBytes> found;
        for (size_t at = 0; at < stream.size(); at += step) {
            const std::span<const uint8_t> rest = std::span(stream).subspan(at);
            for (const hostBytes& packet : parser.Take(rest.first(std::min(step, rest.size()))))
                found.push_back(packet);
        }
        EXPECT_THAT(found, ElementsAre(hostBytes{0x8E} + data, hostBytes{0x1F})) << step;
    }
}

TEST(simTsipFrame, FindsThePacketBehindOneWithoutAnEnd)
{
    simTsipParser parser;
    EXPECT_THAT(parser.Take(hostBytes{0x10, 0x1E, 0x4B} + tsipSay(0x1F)), ElementsAre(hostBytes{0x1F}));
    EXPECT_THAT(parser.Take(hostBytes{0x10, 0x1E} + hostBytes(10'000) + tsipSay(0x1F)),
                ElementsAre(hostBytes{0x1F}));
}

TEST(simTsip, StuffsWhatItSends)
{
    // A place whose bits hold 0x10: whatever it is, packets come out whole with their lengths.
    host host(simModel::Resolution);
    unsigned stuffed = 0;
    for (int second = 0; second < 300; ++second) {
        const hostBytes said = host.Wait(1);
        const std::vector<hostBytes> packets = tsipHear(said);
        ASSERT_THAT(packets, SizeIs(2));
        EXPECT_THAT(packets[0], SizeIs(1 + 17));
        EXPECT_THAT(packets[1], SizeIs(1 + 68));
        stuffed += said.size() > 2 * 4 + 17 + 68 ? 1u : 0u;
    }
    EXPECT_GT(stuffed, 10u);
}

TEST(simAcutime, TellsItsHardware)
{
    host host(simModel::Acutime);
    const hostBytes packet = tsipFind(host.Ask({0x10, 0x1C, 0x03, 0x10, 0x03}), {0x1C, 0x83});
    EXPECT_EQ(bigAt(packet, 1 + 10, 2), 3001u);
    EXPECT_EQ(packet.size(), 1u + 13 + packet[1 + 12]);
    const hostBytes firmware = tsipFind(host.Ask(tsipSay(0x1C, {1})), {0x1C, 0x81});
    EXPECT_EQ(firmware.size(), 1u + 10 + firmware[1 + 9]);
}

TEST(simAcutime, SendsItsTimingEachSecondAndWhatTheMaskSays)
{
    host host(simModel::Acutime);
    const auto subcodes = [&] {
        std::vector<unsigned> codes;
        for (const hostBytes& packet : tsipHear(host.Wait(1))) {
            EXPECT_EQ(packet[0], 0x8F);
            codes.push_back(packet[1]);
        }
        return codes;
    };
    EXPECT_THAT(subcodes(), ElementsAre(0xAB, 0xAC));
    const hostBytes all = {0x10, 0x8E, 0xA5, 0x00, 0xE0, 0x00, 0x00, 0x10, 0x03};
    EXPECT_THAT(tsipHear(host.Ask(all)), ElementsAre(hostBytes{0x8F, 0xA5, 0x00, 0xE0, 0x00, 0x00}));
    EXPECT_THAT(subcodes(), ElementsAre(0xAB, 0xAC, 0xAD));
    host.Ask(tsipSay(0x8E, {0xA5, 0, 1, 0, 0}));
    EXPECT_THAT(subcodes(), ElementsAre(0xAB));
    host.Ask(tsipSay(0x8E, {0xA5, 0, 0, 0, 0}));
    EXPECT_THAT(subcodes(), IsEmpty());
    EXPECT_THAT(tsipHear(host.Ask(tsipSay(0x8E, {0xA5}))), ElementsAre(hostBytes{0x8F, 0xA5, 0, 0, 0, 0}));
}

TEST(simAcutime, TellsUtcWhenItsOptionsSaySo)
{
    host host(simModel::Acutime);
    const hostBytes options = tsipFind(host.Ask(tsipSay(0x35)), {0x55});
    EXPECT_THAT(options, ElementsAre(0x55, 0x12, 0x02, 0x00, 0x00));
    const hostBytes gps = tsipFind(host.Wait(1), {0x8F, 0xAB});
    EXPECT_EQ(gps[10] & 1, 0);
    EXPECT_EQ(gps[11], 19u) << "one second past the start and 18 leap seconds";
    EXPECT_THAT(tsipHear(host.Ask(tsipSay(0x35, {0x1E, 0x02, 0x01, 0x00}))),
                ElementsAre(hostBytes{0x55, 0x1E, 0x02, 0x01, 0x00}));
    const hostBytes utc = tsipFind(host.Wait(1), {0x8F, 0xAB});
    EXPECT_EQ(utc[10] & 1, 1);
    EXPECT_EQ(utc[11], 2u);
}

TEST(simAcutime, TellsItsDateTwentyYearsAgo)
{
    host host(simModel::Acutime);
    const hostBytes packet = tsipFind(host.Wait(1), {0x8F, 0xAB});
    // 2026-11-21 is 1024 weeks after 2007-04-07.
    EXPECT_EQ(packet[14], 7u);
    EXPECT_EQ(packet[15], 4u);
    EXPECT_EQ(bigAt(packet, 16, 2), 2007u);
    EXPECT_EQ(bigAt(packet, 6, 2), 2445u % 1024);
    EXPECT_EQ(bigAt(packet, 2, 4), 6u * 86'400 + 1 + 18);
    EXPECT_EQ(bigAt(packet, 8, 2), 18u);
    EXPECT_EQ(packet[10] & 4, 0) << "the time is set";
}

TEST(simAcutime, ConfiguresItselfAsItIsTold)
{
    host host(simModel::Acutime);
    EXPECT_THAT(tsipHear(host.Ask(tsipSay(0x8E, {0xA6, 0}))), ElementsAre(hostBytes{0x8F, 0xA6, 0, 0}));
    const hostBytes survey = {0xA9, 1, 0, 0, 0, 7, 0xD0, 0, 0, 0, 0};
    EXPECT_THAT(tsipHear(host.Ask(tsipSay(0x8E, survey))), ElementsAre(hostBytes{0x8F} + survey));
    hostBytes receiver = hostBytes{0x00, 0xFF, 0xFF, 0x04} + hostBytes(39, 0xFF);
    const hostBytes told = tsipFind(host.Ask(tsipSay(0xBB, receiver)), {0xBB, 0x00});
    ASSERT_EQ(told.size(), 1 + receiver.size());
    EXPECT_EQ(told[2], 7u) << "the mode stays";
    EXPECT_EQ(told[4], 4u) << "the dynamics are new";
    host.Wait(1);
    host.Ask(tsipSay(0x8E, {0xA6, 0}));
    const hostBytes during = tsipFind(host.Wait(30), {0x8F, 0xAC});
    EXPECT_EQ(during[2], 4u);
    EXPECT_EQ(bigAt(during, 11, 2) & 0x20, 0x20u);
    host.Wait(60);
    const hostBytes after = tsipFind(host.Wait(1), {0x8F, 0xAC});
    EXPECT_EQ(after[4], 100u);
    EXPECT_EQ(bigAt(after, 11, 2), 0u);
}

TEST(simResolution, DoesNotKnowTheNewerQuestion)
{
    host host(simModel::Resolution);
    EXPECT_THAT(tsipHear(host.Ask(tsipSay(0x1C, {3}))), ElementsAre(hostBytes{0x13, 0x1C, 0x03}));
    const hostBytes version = tsipFind(host.Ask(tsipSay(0x1F)), {0x45});
    EXPECT_THAT(version, SizeIs(11));
}

TEST(simResolution, TellsUtcWhenItIsTold)
{
    host host(simModel::Resolution);
    EXPECT_EQ(tsipFind(host.Wait(1), {0x8F, 0xAB})[10] & 3, 0);
    host.Ask(tsipSay(0x35, {0x1E, 0x02, 0x01, 0x00}));
    EXPECT_EQ(tsipFind(host.Wait(1), {0x8F, 0xAB})[10] & 3, 0) << "these options are not for it";
    EXPECT_THAT(tsipHear(host.Ask({0x10, 0x8E, 0xA2, 0x03, 0x10, 0x03})),
                ElementsAre(hostBytes{0x8F, 0xA2, 0x03}));
    EXPECT_EQ(tsipFind(host.Wait(1), {0x8F, 0xAB})[10] & 3, 3);
}

TEST(simResolution, TakesAPulse)
{
    host host(simModel::Resolution);
    const hostBytes pulse = hostBytes{0x4A, 1, 1, 0} + hostBytes(8) + hostBytes{0x43, 0x96, 0, 0};
    EXPECT_THAT(tsipHear(host.Ask(tsipSay(0x8E, pulse))), ElementsAre(hostBytes{0x8F} + pulse));
    EXPECT_THAT(tsipHear(host.Ask(tsipSay(0x8E, {0x4A}))), ElementsAre(hostBytes{0x8F} + pulse));
    EXPECT_EQ(tsipFind(host.Wait(1), {0x8F, 0xAB})[10] & 2, 2);
    EXPECT_THAT(tsipHear(host.Ask(tsipSay(0x8E, {0x4A, 1}))), ElementsAre(hostBytes{0x13, 0x8E, 0x4A, 1}));
}

TEST(simResolution, TellsThePlaceInItsTimingReport)
{
    host host(simModel::Resolution);
    const hostBytes packet = tsipFind(host.Wait(1), {0x8F, 0xAC});
    const simTruth truth = host.Receiver->Truth();
    EXPECT_EQ(doubleAt(packet, 1 + 36), truth.Place.Latitude * Degree);
    EXPECT_EQ(doubleAt(packet, 1 + 44), truth.Place.Longitude * Degree);
    EXPECT_EQ(doubleAt(packet, 1 + 52), truth.Place.Altitude);
    EXPECT_LT(std::fabs(floatAt(packet, 1 + 60)), 20e-9) << "seconds, here";
    EXPECT_NEAR(floatAt(packet, 1 + 32), 36.5, 3);
    ::host acutime(simModel::Acutime);
    double largest = 0;
    for (int second = 0; second < 40; ++second)
        largest = std::max(largest, std::fabs(floatAt(tsipFind(acutime.Wait(1), {0x8F, 0xAC}), 1 + 60)));
    EXPECT_GT(largest, 1) << "nanoseconds, there";
}

TEST(simLassen, SaysWhatItIsAndWhereItIs)
{
    host host(simModel::Lassen);
    EXPECT_THAT(tsipHear(host.Ask(tsipSay(0x1C, {3}))), ElementsAre(hostBytes{0x13, 0x1C, 0x03}));
    EXPECT_EQ(tsipFind(host.Ask(tsipSay(0x26)), {0x4B})[1], 0x5Au);
    const hostBytes said = host.Wait(1);
    const simTruth truth = host.Receiver->Truth();
    const hostBytes place = tsipFind(said, {0x4A});
    ASSERT_THAT(place, SizeIs(21));
    EXPECT_NEAR(floatAt(place, 1), truth.Place.Latitude * Degree, 1e-7);
    EXPECT_NEAR(floatAt(place, 5), truth.Place.Longitude * Degree, 1e-7);
    EXPECT_NEAR(floatAt(place, 9), truth.Place.Altitude + truth.Place.Separation, 0.01);
    EXPECT_NEAR(floatAt(place, 17), 6 * 86'400 + 1 + 18, 0.1);
    EXPECT_THAT(tsipFind(said, {0x56}), SizeIs(21));
    const hostBytes time = tsipFind(host.Wait(5), {0x41});
    EXPECT_EQ(floatAt(time, 1), 6 * 86'400 + 5 + 18);
    EXPECT_EQ(bigAt(time, 5, 2), 2445u % 1024);
    EXPECT_EQ(floatAt(time, 7), 18);
}

TEST(simLassen, ChangesItsReportsWithItsOptions)
{
    host host(simModel::Lassen);
    host.Ask(tsipSay(0x35, {0x1E, 0x02, 0x01, 0x00}));
    const hostBytes place = tsipFind(host.Wait(1), {0x84});
    const simTruth truth = host.Receiver->Truth();
    ASSERT_THAT(place, SizeIs(37));
    EXPECT_EQ(doubleAt(place, 1), truth.Place.Latitude * Degree);
    EXPECT_EQ(doubleAt(place, 17), truth.Place.Altitude) << "above the sea now";
    EXPECT_EQ(floatAt(place, 33), 6 * 86'400 + 1) << "UTC now";
    host.Ask(tsipSay(0x35, {0x00, 0x00, 0x00, 0x00}));
    for (const hostBytes& packet : tsipHear(host.Wait(5)))
        EXPECT_THAT(packet[0], testing::AnyOf(0x41, 0x46, 0x4B));
}

TEST(simLassen, AnswersARoundOfQuestions)
{
    host host(simModel::Lassen);
    host.Wait(1);
    const simTruth truth = host.Receiver->Truth();
    const hostBytes reference = tsipFind(host.Ask(tsipSay(0x2A)), {0x4A});
    EXPECT_THAT(reference, SizeIs(10)) << "its length tells it from a position";
    EXPECT_NEAR(floatAt(reference, 1), -47.3, 1e-4);
    const hostBytes used = tsipFind(host.Ask(tsipSay(0x24)), {0x6D});
    const unsigned count = used[1] >> 4;
    ASSERT_EQ(used.size(), 18u + count);
    EXPECT_NEAR(floatAt(used, 2), truth.PDOP, 1e-4);
    EXPECT_NEAR(floatAt(used, 6), truth.HDOP, 1e-4);
    EXPECT_NEAR(floatAt(used, 10), truth.VDOP, 1e-4);
    EXPECT_NEAR(floatAt(used, 14), truth.TDOP, 1e-4);
    const hostBytes levels = tsipFind(host.Ask(tsipSay(0x27)), {0x47});
    ASSERT_EQ(levels.size(), 2u + 5 * truth.Sats.size());
    EXPECT_EQ(levels[1], truth.Sats.size());
    const std::vector<hostBytes> tracking = tsipHear(host.Ask(tsipSay(0x3C, {0})));
    ASSERT_EQ(tracking.size(), truth.Sats.size());
    for (size_t number = 0; number < tracking.size(); ++number) {
        ASSERT_THAT(tracking[number], SizeIs(25));
        EXPECT_EQ(tracking[number][1], truth.Sats[number].Svid);
        EXPECT_EQ(levels[2 + 5 * number], truth.Sats[number].Svid);
        EXPECT_NEAR(floatAt(tracking[number], 13), truth.Sats[number].Elevation * Degree, 1e-6);
        EXPECT_NEAR(floatAt(tracking[number], 17), truth.Sats[number].Azimuth * Degree, 1e-6);
    }
}

TEST(simLassen, StartsAnewWhenItIsTold)
{
    host host(simModel::Lassen);
    host.Wait(1);
    EXPECT_THAT(host.Ask({0x10, 0x1E, 0x46, 0x10, 0x03}), IsEmpty());
    const hostBytes said = host.Wait(2);
    EXPECT_THAT(tsipFind(said, {0x46}), ElementsAre(0x46, 1, 0));
    EXPECT_EQ(tsipFind(said, {0x4B})[2], 8u) << "no almanac yet";
    for (const hostBytes& packet : tsipHear(said))
        EXPECT_NE(packet[0], 0x4A) << "no position without a solution";
    EXPECT_THAT(tsipFind(host.Wait(5), {0x4A}), SizeIs(21));
}

TEST(simLassen, HearsGpsAlone)
{
    host host(simModel::Lassen);
    host.Wait(1);
    for (const simSat& sat : host.Receiver->Truth().Sats)
        EXPECT_EQ(sat.System, simSystem::GPS);
}

TEST(simTsip, RejectsWhatItDoesNotKnow)
{
    host lassen(simModel::Lassen);
    EXPECT_THAT(tsipHear(lassen.Ask(tsipSay(0x8E, {0x4A}))), ElementsAre(hostBytes{0x13, 0x8E, 0x4A}));
    EXPECT_THAT(tsipHear(lassen.Ask(tsipSay(0x99, {0x10}))), ElementsAre(hostBytes{0x13, 0x99, 0x10}));
    host acutime(simModel::Acutime);
    EXPECT_THAT(tsipHear(acutime.Ask(tsipSay(0x8E, {0x77}))), ElementsAre(hostBytes{0x13, 0x8E, 0x77}));
    EXPECT_THAT(tsipHear(acutime.Ask(tsipSay(0x8E))), ElementsAre(hostBytes{0x13, 0x8E}));
    acutime.Faults().Nak = true;
    EXPECT_THAT(tsipHear(acutime.Ask(tsipSay(0x35))), ElementsAre(hostBytes{0x13, 0x35}));
}

TEST(simTsip, AnswersWithAllOfTheTimeInOne)
{
    host host(simModel::Resolution);
    host.Wait(1);
    const simTruth truth = host.Receiver->Truth();
    const hostBytes event = tsipFind(host.Ask(tsipSay(0x8E, {0x0B})), {0x8F, 0x0B});
    ASSERT_THAT(event, SizeIs(1 + 74));
    EXPECT_EQ(doubleAt(event, 1 + 3), 6 * 86'400 + 1 + 18);
    EXPECT_EQ(event[1 + 11], 7u);
    EXPECT_EQ(event[1 + 12], 4u);
    EXPECT_EQ(bigAt(event, 1 + 13, 2), 2007u);
    EXPECT_EQ(doubleAt(event, 1 + 42), truth.Place.Latitude * Degree);
    const hostBytes utc = tsipFind(host.Ask(tsipSay(0x8E, {0xAD})), {0x8F, 0xAD});
    ASSERT_THAT(utc, SizeIs(1 + 22));
    EXPECT_THAT(hostBytes(utc.begin() + 12, utc.begin() + 19), ElementsAre(0, 0, 1, 7, 4, 0x07, 0xD7));
}

}  // namespace
