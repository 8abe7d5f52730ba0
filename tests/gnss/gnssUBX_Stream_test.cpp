#include "gnss/gnssUBX.h"

#include "tests/fakes/fakes.h"
#include "tests/gnss/ubxLink.h"

#include <gtest/gtest.h>

#include <atomic>
#include <random>
#include <thread>
#include <tuple>

namespace {

class gnssUBXStream : public testing::Test
{
protected:
    void SetUp() override { fakeReset(); }
};

// One second of a receiver.
ubxBytes Epoch(unsigned second)
{
    ubxFrame sats(0x01, 0x35);
    sats.u4(second * 1000).u1(1).u1(24).zeros(2);
    ubxFrame signals(0x01, 0x43);
    signals.u4(second * 1000).u1(0).u1(48).zeros(2);
    for (unsigned sat = 0; sat < 24; sat++) {
        sats.u1(sat % 7).u1(sat + second % 3).u1(20 + sat).i1(sat * 3).i2(sat * 15).zeros(2).u4(0x1C);
        for (const unsigned sigId : {0u, 3u})
            signals.u1(sat % 7).u1(sat).u1(sigId).zeros(13);
    }
    return ubxFrame(0x01, 0x02)
               .u4(0)
               .i4(80'000'000 + second)
               .i4(470'000'000)
               .i4(500'000)
               .i4(450'000)
               .u4(900)
               .u4(1 + second * 9'000) +
           ubxFrame(0x01, 0x04).u4(0).u2(100).u2(110 + second).u2(120).u2(130).u2(140).zeros(4) + sats +
           signals +
           ubxFrame(0x01, 0x21)
               .u4(0)
               .u4(0)
               .i4(0)
               .u2(2026)
               .u1(11)
               .u1(20)
               .u1(12)
               .u1(0)
               .u1(second)
               .u1(second % 9) +
           ubxFrame(0x01, 0x12).zeros(20).u4(second).i4(second * 100'000).zeros(8) +
           ubxFrame(0x0D, 0x01).u4(second * 1000).u4(0).i4(second).u2(2345).zeros(2);
}

// A stream with a whole configuration in it, noise, torn frames and bad checksums.
ubxBytes Stream(std::string_view version)
{
    const ubxFrame comms = ubxFrame(0x0A, 0x36).u1(0).u1(1).zeros(6).u2(0x0300).zeros(10).u4(5).zeros(24);
    const ubxFrame moved = ubxFrame(0x0A, 0x36).u1(0).u1(1).zeros(6).u2(0x0300).zeros(10).u4(13).zeros(24);
    const std::string_view text = "$GNTXT,01,01,02,u-blox*00\r\n";
    ubxBytes stream = ubxBytes(text.begin(), text.end()) + monVerOf(14, version) + comms + moved;
    for (const unsigned message : {0x00u, 0x00u, 0x3Eu, 0x8Au, 0x8Bu, 0x8Au, 0x01u, 0x01u, 0x01u, 0x01u,
                                   0x01u, 0x01u, 0x01u, 0x01u, 0x31u, 0x8Bu}) {
        stream = stream + Epoch(message % 60) + ack(message) + ubxBytes{0xB5, 0x00, 0x62, 0xB5, 0xB5};
        ubxBytes bad = Epoch(1);
        bad[bad.size() / 2] ^= 0x40;
        stream = stream + bad;
    }
    return stream + Epoch(59) + ubxBytes{0xB5, 0x62, 0x01};
}

std::tuple<double, double, double, double, float, float, float, float, double, double, unsigned, unsigned>
Numbers(const gnssUBX& receiver)
{
    return {receiver.Latitude, receiver.Longitude, receiver.Altitude, receiver.TimeOfDay,
            receiver.PDOP,     receiver.SeaLevel,  receiver.Speed,    receiver.Track,
            receiver.PPSTime,  receiver.PPSError,  receiver.Valid,    receiver.PortId};
}

void ExpectSame(ubxLink& cut, ubxLink& whole)
{
    EXPECT_EQ(Numbers(cut.Receiver), Numbers(whole.Receiver));
    EXPECT_EQ(cut.Receiver.ConfigState, whole.Receiver.ConfigState);
    EXPECT_EQ(cut.Receiver.ParseState, whole.Receiver.ParseState);
    EXPECT_EQ(cut.Receiver.Model, whole.Receiver.Model);
    EXPECT_EQ(cut.NewData, whole.NewData);
    EXPECT_EQ(cut.Pulses, whole.Pulses);
    EXPECT_EQ(cut.Sent, whole.Sent);
    ASSERT_EQ(cut.Receiver.Sats.size(), whole.Receiver.Sats.size());
    for (size_t at = 0; at < cut.Receiver.Sats.size(); at++) {
        const SatInfo& one = cut.Receiver.Sats[at];
        const SatInfo& other = whole.Receiver.Sats[at];
        EXPECT_EQ(std::tie(one.Elevation, one.Azimuth, one.SNR, one.SvId, one.Source, one.Used),
                  std::tie(other.Elevation, other.Azimuth, other.SNR, other.SvId, other.Source, other.Used));
        EXPECT_TRUE(std::equal(one.Signals, one.Signals + 3, other.Signals));
    }
}

}  // namespace

TEST_F(gnssUBXStream, HowAStreamIsCutMakesNoDifference)
{
    for (const std::string_view version : {VersionKeys, VersionClassic}) {
        const ubxBytes stream = Stream(version);
        ubxLink whole;
        whole.Receiver.Restart();
        feed(whole.Receiver, stream);
        EXPECT_GT(whole.NewData, 80u);
        EXPECT_EQ(whole.Receiver.ConfigState, gnssUBX::State::Idle);

        ubxLink bytewise;
        bytewise.Receiver.Restart();
        for (const uint8_t& byte : stream)
            bytewise.Receiver.Feed(&byte, 1);
        ExpectSame(bytewise, whole);

        std::mt19937 random(7);
        for (const unsigned longest : {3u, 9u, 64u, 700u, 5000u}) {
            ubxLink cut;
            cut.Receiver.Restart();
            for (size_t at = 0; at < stream.size();) {
                const size_t size = std::min<size_t>(1 + random() % longest, stream.size() - at);
                cut.Receiver.Feed(stream.data() + at, size);
                at += size;
            }
            ExpectSame(cut, whole);
        }
    }
}

TEST_F(gnssUBXStream, APageMayReadSatellitesAndChangeWishesWhileDataArrives)
{
    for (const std::string_view version : {VersionKeys, VersionClassic}) {
        ubxLink link;
        gnssUBX& receiver = link.Receiver;
        receiver.OnSend = [](const uint8_t*, size_t) {};
        std::atomic<bool> done{false};
        std::thread page([&] {
            unsigned wrong = 0;
            for (unsigned round = 0; !done; round++) {
                {
                    const thrSpinHold hold(receiver.SatsLock);
                    for (const SatInfo& sat : receiver.Sats)
                        wrong += SignalName(sat.Signals[0]).empty() != (sat.Signals[0] == 0) ||
                                         !sat.IsUsed() || sat.SNR < 20
                                     ? 1u
                                     : 0u;
                }
                const bool on = round % 2 == 0;
                receiver.GNSSSelect(on, !on, on, on, on, on, !on, on, on, on, on, on, on, on, on, on, on, on,
                                    !on);
                receiver.PPSRate = static_cast<float>(round % 11);
                receiver.PPSDuty = 0.5f;
                receiver.PendingPPS = 1;
                receiver.PendingSpectrum = 1;
                wrong +=
                    receiver.Select.Load().Bits() >> ubxSignalCount != 0 || receiver.PPSRate > 10 ? 1u : 0u;
                std::this_thread::yield();
            }
            EXPECT_EQ(wrong, 0u);
        });
        const ubxBytes stream = Stream(version);
        for (unsigned round = 0; round < 20; round++) {
            receiver.Restart();
            for (size_t at = 0; at < stream.size(); at += 500)
                receiver.Feed(stream.data() + at, std::min<size_t>(500, stream.size() - at));
        }
        done = true;
        page.join();
        EXPECT_EQ(receiver.Model, 14);
    }
}
