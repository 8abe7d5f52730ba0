// A whole link over real sockets: a simulated receiver that is served, and a copy of the program that watches
// it.
#include "link/gnssComm.h"
#include "link/gnssCommClient.h"
#include "link/gnssCommServer.h"
#include "platform/clock.h"
#include "platform/thread.h"
#include "tests/await.h"
#include "tests/link/native/machine.h"
#include "tools/simulator/simReceiver.h"

#include <atomic>
#include <gtest/gtest.h>
#include <mutex>
#include <thread>

namespace {

// The copy of the program that has the receiver.
class servedReceiver
{
public:
    explicit servedReceiver(simModel model)
    {
        simOptions options;
        options.Model = model;
        options.Rate = 5;
        Receiver = simMake(options);
        Server.OnCommand = [this](const uint8_t* bytes, size_t count) {
            const std::lock_guard lock(Mutex);
            Receiver->Take({bytes, count});
        };
        Server.Start(0);
        EXPECT_TRUE(await([this] { return Server.ListeningPort() != 0; }));
        Player = std::jthread([this](const std::stop_token& stop) {
            while (!stop.stop_requested()) {
                Step();
                threadSleep(5);
            }
        });
    }

    simTruth Truth()
    {
        const std::lock_guard lock(Mutex);
        return Receiver->Truth();
    }

    std::string Host() const { return "127.0.0.1:" + std::to_string(Server.ListeningPort()); }

private:
    void Step()
    {
        std::vector<uint8_t> due;
        {
            const std::lock_guard lock(Mutex);
            due = Receiver->Advance(clockSteadyNs());
        }
        if (!due.empty())
            Server.Send(due);
    }

    std::mutex Mutex;
    std::unique_ptr<simReceiver> Receiver;
    gnssCommServer Server;
    std::jthread Player;
};

// The copy that watches it.
class watcher
{
public:
    explicit watcher(const std::string& host)
    {
        Link.Network = true;
        Link.NetSend = [this](const uint8_t* bytes, size_t count) { Client.Send(bytes, count); };
        Client.OnStream = [this](const uint8_t* bytes, size_t count) { Link.Feed(bytes, count); };
        Client.Connect(host);
        EXPECT_TRUE(await([this] { return Client.Link.Is(netTCPBase::Connected); }));
        EXPECT_TRUE(Link.Start());
    }

    ~watcher()
    {
        Client.Disconnect(true);
        Link.Stop();
    }
    watcher(const watcher&) = delete;
    watcher& operator=(const watcher&) = delete;

    bool AwaitModel(unsigned model)
    {
        return await([&] {
            const thrSpinHold hold(Link.Lock);
            return Link.Decoder() != nullptr && Link.Decoder()->Model == model;
        });
    }

    // The configuration is over and nothing is asked for any more.
    bool AwaitIdle()
    {
        return await([this] {
            return OfUBX([](const gnssUBX& receiver) {
                return receiver.ConfigState == gnssUBX::State::Idle && receiver.Model != 0 &&
                       receiver.PendingGNSS == 0 && receiver.PendingPPS == 0 && receiver.PendingSpectrum == 0;
            });
        });
    }

    template <class Question>
    bool OfUBX(const Question& question)
    {
        const thrSpinHold hold(Link.Lock);
        return Link.UBX && question(*Link.UBX);
    }

    gnssUBX& UBX() { return *Link.UBX; }

    gnssCommClient Client;
    gnssComm Link;
};

struct modelCase {
    simModel Simulated;
    unsigned Model;
    uint8_t Protocol;
};

class receiverTest : public testing::TestWithParam<modelCase>
{
};

TEST_P(receiverTest, IsRecognisedAndShowsWhereItIs)
{
    servedReceiver receiver(GetParam().Simulated);
    watcher watched(receiver.Host());
    ASSERT_TRUE(watched.AwaitModel(GetParam().Model));
    EXPECT_EQ(watched.Link.Protocol, GetParam().Protocol);
    EXPECT_TRUE(await([&] {
        const thrSpinHold hold(watched.Link.Lock);
        const gnss* const decoder = watched.Link.Decoder();
        return decoder != nullptr && (decoder->Valid & gnss::ValidPosition) != 0 && !decoder->Sats.empty() &&
               std::abs(decoder->Latitude - 47.3769) < 1e-3 && std::abs(decoder->Longitude - 8.5417) < 1e-3;
    }));
}

INSTANTIATE_TEST_SUITE_P(EveryModel, receiverTest,
                         testing::Values(modelCase{simModel::UBlox7, 7, gnssComm::ProtocolUBX},
                                         modelCase{simModel::M8, 8, gnssComm::ProtocolUBX},
                                         modelCase{simModel::M9, 9, gnssComm::ProtocolUBX},
                                         modelCase{simModel::NeoM9N, 10, gnssComm::ProtocolUBX},
                                         modelCase{simModel::ZedF9R, 11, gnssComm::ProtocolUBX},
                                         modelCase{simModel::M10, 12, gnssComm::ProtocolUBX},
                                         modelCase{simModel::MaxM10S, 13, gnssComm::ProtocolUBX},
                                         modelCase{simModel::NeoF10N, 14, gnssComm::ProtocolUBX},
                                         modelCase{simModel::Acutime, 3, gnssComm::ProtocolTSIP},
                                         modelCase{simModel::Lassen, 4, gnssComm::ProtocolTSIP},
                                         modelCase{simModel::Resolution, 5, gnssComm::ProtocolTSIP},
                                         modelCase{simModel::NMEA, 1, gnssComm::ProtocolNMEA},
                                         modelCase{simModel::NVS, 2, gnssComm::ProtocolNMEA}));

struct ubxCase {
    simModel Simulated;
    unsigned Model;
    unsigned SpectrumBlocks;
};

class ubxReceiverTest : public testing::TestWithParam<ubxCase>
{
};

TEST_P(ubxReceiverTest, IsConfiguredAndTellsEverythingThatAPageShows)
{
    servedReceiver receiver(GetParam().Simulated);
    watcher watched(receiver.Host());
    ASSERT_TRUE(watched.AwaitModel(GetParam().Model));
    ASSERT_TRUE(watched.AwaitIdle());
    EXPECT_TRUE(await([&] {
        return watched.OfUBX([](const gnssUBX& ubx) {
            return ubx.PDOP > 0 && ubx.TDOP > 0 && ubx.Year == 2026 && ubx.PPSWeek > 0 && ubx.PPSError != 0 &&
                   (ubx.Valid & gnss::ValidTime) != 0 && ubx.Sats.size() > 5;
        });
    }));
    EXPECT_EQ(watched.OfUBX([](const gnssUBX& ubx) { return ubx.PortId == 1; }), true);
    // A second signal of a satellite is told by NAV-SIG alone, and only a receiver of two bands has one.
    const bool hasSecond = GetParam().Model == 14;
    EXPECT_EQ(await([&] {
                  return watched.OfUBX([&](const gnssUBX& ubx) {
                      return hasSecond == std::any_of(ubx.Sats.begin(), ubx.Sats.end(),
                                                      [](const SatInfo& sat) { return sat.Signals[1] != 0; });
                  });
              }),
              true);
}

TEST_P(ubxReceiverTest, TakesAnotherSelectionOfSignalsAndReadsItBack)
{
    servedReceiver receiver(GetParam().Simulated);
    watcher watched(receiver.Host());
    ASSERT_TRUE(watched.AwaitModel(GetParam().Model));
    ASSERT_TRUE(watched.AwaitIdle());
    // GPS alone, with what belongs to it.
    {
        const thrSpinHold hold(watched.Link.Lock);
        watched.UBX().GNSSSelect(false, false, false, false, false, false, false, false, false, true, false,
                                 GetParam().Model == 14, false, false, true, false, false, false, false);
    }
    ASSERT_TRUE(watched.AwaitIdle());
    EXPECT_TRUE(await([&] {
        return watched.OfUBX([](const gnssUBX& ubx) {
            const ubxSignalSet selected = ubx.Select.Load();
            return selected.Has(ubxSignal::GPSL1CA) && !selected.Has(ubxSignal::GalileoE1) &&
                   !selected.Has(ubxSignal::GLONASSL1) && !selected.Has(ubxSignal::BeiDouB1I) &&
                   !selected.Has(ubxSignal::SBAS);
        });
    }));
    EXPECT_TRUE(await([&] {
        const simTruth truth = receiver.Truth();
        return !truth.Sats.empty() &&
               std::all_of(truth.Sats.begin(), truth.Sats.end(), [](const simSat& sat) {
                   return sat.System == simSystem::GPS || sat.System == simSystem::QZSS;
               });
    })) << "the receiver itself hears nothing else any more";
}

TEST_P(ubxReceiverTest, TakesAnotherTimePulse)
{
    servedReceiver receiver(GetParam().Simulated);
    watcher watched(receiver.Host());
    ASSERT_TRUE(watched.AwaitModel(GetParam().Model));
    ASSERT_TRUE(watched.AwaitIdle());
    {
        const thrSpinHold hold(watched.Link.Lock);
        watched.UBX().PPSRate = 10.0F;
        watched.UBX().PPSDuty = 0.25F;
        watched.UBX().PendingPPS = 1;
    }
    ASSERT_TRUE(watched.AwaitIdle());
    constexpr uint32_t frequencyKey = 0x40050024;
    EXPECT_TRUE(await([&] {
        const simTruth truth = receiver.Truth();
        const auto found = truth.Keys.find(frequencyKey);
        return found != truth.Keys.end() && found->second == 10;
    }));
}

TEST_P(ubxReceiverTest, TellsTheSpectrumOfEachOfItsBlocks)
{
    servedReceiver receiver(GetParam().Simulated);
    watcher watched(receiver.Host());
    ASSERT_TRUE(watched.AwaitModel(GetParam().Model));
    ASSERT_TRUE(watched.AwaitIdle());
    std::atomic<unsigned> blocks{0};
    {
        const thrSpinHold hold(watched.Link.Lock);
        watched.UBX().OnRFSpectrum = [&](const gnssUBX::Spectrum& spectrum) {
            EXPECT_EQ(spectrum.Count, 256U);
            EXPECT_LT(spectrum.LowFrequency, spectrum.HighFrequency);
            blocks = std::max(blocks.load(), spectrum.Block + 1);
        };
        watched.UBX().PendingSpectrum = 1;
    }
    ASSERT_TRUE(watched.AwaitIdle());
    EXPECT_TRUE(await([&] { return blocks == GetParam().SpectrumBlocks; })) << blocks;
    const thrSpinHold hold(watched.Link.Lock);
    watched.UBX().OnRFSpectrum = nullptr;
}

INSTANTIATE_TEST_SUITE_P(BothRoads, ubxReceiverTest,
                         testing::Values(ubxCase{simModel::M8, 8, 0}, ubxCase{simModel::NeoM9N, 10, 1},
                                         ubxCase{simModel::MaxM10S, 13, 1},
                                         ubxCase{simModel::NeoF10N, 14, 2}));

TEST(servedReceiverTest, StopsWithin300MsAtAnyMoment)
{
    servedReceiver receiver(simModel::M9);
    for (int round = 0; round < 20; round++) {
        constexpr int64_t StopMs = 300;
        const int64_t longer = leastOf(StopMs, [&] {
            watcher watched(receiver.Host());
            std::this_thread::sleep_for(std::chrono::milliseconds(round * 17));
            const int64_t client = msOf([&] { watched.Client.Disconnect(true); });
            return std::max(client, msOf([&] { watched.Link.Stop(); }));
        });
        EXPECT_LE(longer, StopMs) << round;
    }
}

}  // namespace
