// A whole link on a real serial port, with a simulated receiver at the far end of the line.
#include "link/gnssComm.h"
#include "platform/clock.h"
#include "platform/thread.h"
#include "tests/await.h"
#include "tests/link/native/machine.h"
#include "tests/platform/contractLinks.h"
#include "tools/simulator/simReceiver.h"

#include <gtest/gtest.h>
#include <thread>

namespace {

constexpr int64_t StopMs = 300;

// A single one, on a machine that is busy with others; what is not waited for would take seconds, or for
// ever.
constexpr int64_t StopOnceMs = 1000;

// Plays a receiver at the far end. The line carries every setting, so the first one that is tried is right.
class farEnd
{
public:
    explicit farEnd(simModel model)
    {
        simOptions options;
        options.Model = model;
        Receiver = simMake(options);
        Player = std::jthread([this](const std::stop_token& stop) {
            while (!stop.stop_requested()) {
                Step();
                threadSleep(5);
            }
        });
    }

private:
    void Step()
    {
        const std::string all = contractLineReceived();
        const std::string fresh = all.substr(std::min(Heard, all.size()));
        Heard = all.size();
        Receiver->Take({reinterpret_cast<const uint8_t*>(fresh.data()), fresh.size()});
        const std::vector<uint8_t> due = Receiver->Advance(clockSteadyNs());
        Left.append(due.begin(), due.end());
        Left.erase(0, contractLineSend(Left));
    }

    std::unique_ptr<simReceiver> Receiver;
    size_t Heard = 0;
    std::string Left;
    std::jthread Player;
};

class serialTest : public testing::Test
{
protected:
    void SetUp() override
    {
        if (!contractPlug())
            GTEST_SKIP() << "there is no serial port to test with";
    }

    void TearDown() override { contractUnplug(); }

    static bool AwaitModel(gnssComm& link, unsigned model)
    {
        return await([&] {
            const thrSpinHold hold(link.Lock);
            return link.Decoder() != nullptr && link.Decoder()->Model == model;
        });
    }
};

struct modelCase {
    simModel Simulated;
    unsigned Model;
};

TEST_F(serialTest, RecognisesReceiversOfEachProtocol)
{
    for (const modelCase& each : {modelCase{simModel::M8, 8}, modelCase{simModel::MaxM10S, 13},
                                  modelCase{simModel::Acutime, 3}, modelCase{simModel::NMEA, 1}}) {
        const farEnd receiver(each.Simulated);
        gnssComm link;
        link.PortSet(contractPort());
        ASSERT_TRUE(link.Start());
        EXPECT_TRUE(AwaitModel(link, each.Model)) << each.Model;
        EXPECT_TRUE(await([&] {
            const thrSpinHold hold(link.Lock);
            return link.Decoder() != nullptr && (link.Decoder()->Valid & gnss::ValidPosition) != 0;
        }));
        link.Stop();
    }
}

// It spoke into a port that nobody had open, and one message of it would decide.
TEST_F(serialTest, HearsNothingOfTheReceiverThatWasThereBefore)
{
    gnssComm link;
    link.PortSet(contractPort());
    {
        const farEnd before(simModel::Acutime);
        ASSERT_TRUE(link.Start());
        EXPECT_TRUE(AwaitModel(link, 3));
        link.Stop();
        threadSleep(1200);
    }
    const farEnd receiver(simModel::NMEA);
    ASSERT_TRUE(link.Start());
    EXPECT_TRUE(AwaitModel(link, 1));
}

TEST_F(serialTest, StopsWithin300MsAtAnyMomentAndLeavesNothing)
{
    const farEnd receiver(simModel::M9);
    size_t descriptors = 0;
    size_t threads = 0;
    for (int round = 0; round < 20; round++) {
        const int64_t stopped = leastOf(StopMs, [&] {
            gnssComm link;
            link.PortSet(contractPort());
            EXPECT_TRUE(link.Start());
            std::this_thread::sleep_for(std::chrono::milliseconds(round * 13));
            return msOf([&] { link.Stop(); });
        });
        EXPECT_LE(stopped, StopMs) << round;
        if (round == 0) {
            descriptors = openDescriptors();
            threads = livingThreads();
        }
    }
    EXPECT_EQ(openDescriptors(), descriptors);
    EXPECT_EQ(livingThreads(), threads);
}

TEST_F(serialTest, StopsOnALineThatTakesNothing)
{
    contractLineDies();
    serialPort port;
    port.SetPortName(contractPort());
    port.SetHandshake(serialPort::HandshakeNone);
    ASSERT_TRUE(port.Open());
    const std::vector<uint8_t> much(1024 * 1024, 'x');
    port.Write(much.data(), much.size());
    EXPECT_FALSE(port.WaitSent(false));
    std::this_thread::sleep_for(std::chrono::milliseconds(50));
    EXPECT_LE(msOf([&] { port.Close(); }), StopOnceMs);
}

TEST_F(serialTest, TakesAnUnpluggedReceiverForSilence)
{
    gnssComm link;
    {
        const farEnd receiver(simModel::NMEA);
        link.PortSet(contractPort());
        ASSERT_TRUE(link.Start());
        ASSERT_TRUE(AwaitModel(link, 1));
        // The walk is over once the other decoders have gone.
        ASSERT_TRUE(await([&] {
            const thrSpinHold hold(link.Lock);
            return !link.UBX;
        }));
    }
    contractUnplug();
    std::this_thread::sleep_for(std::chrono::milliseconds(50));
    EXPECT_TRUE(link.IsOpen());
    EXPECT_EQ(link.Protocol, gnssComm::ProtocolNMEA);
    EXPECT_LE(msOf([&] { link.Stop(); }), StopOnceMs);
}

}  // namespace
