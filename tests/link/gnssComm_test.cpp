#include "link/gnssComm.h"
#include "tests/gnss/nmeaSentence.h"
#include "tests/gnss/tsipPacket.h"
#include "tests/gnss/ubxFrame.h"
#include "tests/link/runningClock.h"

#include <gmock/gmock.h>
#include <mutex>

using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

namespace {

constexpr int64_t NsPerSecond = 1'000'000'000;

std::string textOf(const ubxBytes& bytes)
{
    return {bytes.begin(), bytes.end()};
}

const std::string monVer =
    textOf(ubxFrame(0x0A, 0x04).text("EXT CORE 3.01", 30).text("00080000", 10).text("PROTVER=18.00", 30));
const std::string navDop = textOf(ubxFrame(0x01, 0x04).zeros(18));
const std::string versionPoll("\xB5\x62\x0A\x04\x00\x00\x0E\x34", 8);
const std::string hardwareRequest("\x10\x1C\x03\x10\x03", 5);
const std::string hardwareReply = tsip(0x1C, 0x83).zeros(9).u2(3001);

// A receiver at the end of a line: whatever the test makes it do, ten times a second, it does only while the
// line has its settings.
class lineEnd
{
public:
    lineEnd(uint32_t baudRate, uint8_t parity, std::function<void(const std::string& request)> talk)
    {
        Talker = std::jthread([=](const std::stop_token& stop) {
            size_t read = 0;
            while (!stop.stop_requested()) {
                // In this order, so that no request is taken for one at the setting before.
                const std::string sent = fakePortSent("COM5");
                const commControl line = fakePortSettings("COM5");
                const std::string request = sent.substr(std::min(read, sent.size()));
                read = sent.size();
                if (fakePortHandles() > 0 && line.BaudRate == baudRate && line.Parity == parity)
                    talk(request);
                const int64_t next = clockSteadyNs() + NsPerSecond / 10;
                while (!stop.stop_requested() && clockSteadyNs() < next)
                    std::this_thread::sleep_for(std::chrono::microseconds(200));
            }
        });
    }

private:
    std::jthread Talker;
};

class gnssCommTest : public linkTest
{
protected:
    gnssCommTest()
    {
        fakePort("COM5");
        Link.PortSet("COM5");
        Link.OnDetectedGNSS = [this] { ++DetectedCount; };
        Link.OnNewData = [this] { ++NewDataCount; };
        Link.OnProbing = [this](const std::string& text) {
            const std::lock_guard lock(Mutex);
            Probed.push_back(text);
            ProbedAt.push_back(clockSteadyNs());
            WaitsBefore.push_back(fakeCallCount("threadSleep 100"));
        };
    }

    ~gnssCommTest() override { Link.Stop(); }

    void Receive(const std::string& bytes) { fakePortReceive("COM5", bytes); }
    void Feed(const std::string& bytes)
    {
        Link.Feed(reinterpret_cast<const uint8_t*>(bytes.data()), bytes.size());
    }

    bool AwaitEnd()
    {
        return await([this] { return Alive() == 1U; });
    }

    unsigned Alive()
    {
        const thrSpinHold hold(Link.Lock);
        return (Link.NMEA ? 1U : 0U) + (Link.TSIP ? 1U : 0U) + (Link.UBX ? 1U : 0U);
    }

    unsigned Model()
    {
        const thrSpinHold hold(Link.Lock);
        const gnss* const decoder = Link.Decoder();
        return decoder == nullptr ? 0U : decoder->Model;
    }

    std::vector<std::string> TakeProbed()
    {
        const std::lock_guard lock(Mutex);
        return Probed;
    }

    // Starts without a port; what is sent is kept. Returns once the receiver has been asked who it is, for
    // that makes the decoders forget what they know.
    void StartOnNetwork()
    {
        Link.Network = true;
        Link.NetSend = [this](const uint8_t* bytes, size_t count) {
            const std::lock_guard lock(Mutex);
            Sent.append(bytes, bytes + count);
        };
        ASSERT_TRUE(Link.Start());
        ASSERT_TRUE(AwaitNetSent(versionPoll));
    }

    bool AwaitNetSent(const std::string& request)
    {
        return await([&] { return NetSent().find(request) != std::string::npos; });
    }

    std::string NetSent()
    {
        const std::lock_guard lock(Mutex);
        return Sent;
    }

    void ForgetNetSent()
    {
        const std::lock_guard lock(Mutex);
        Sent.clear();
    }

    std::mutex Mutex;
    std::string Sent;
    std::vector<std::string> Probed;
    std::vector<int64_t> ProbedAt;
    std::vector<size_t> WaitsBefore;
    std::atomic<unsigned> DetectedCount{0};
    std::atomic<unsigned> NewDataCount{0};
    gnssComm Link;
};

TEST_F(gnssCommTest, DoesNotStartWithoutAPort)
{
    Link.PortSet("");
    EXPECT_FALSE(Link.Start());
    Link.PortSet("COM99");
    EXPECT_FALSE(Link.Start());
    EXPECT_EQ(Alive(), 0U);
}

TEST_F(gnssCommTest, FeedsAllDecodersUntilOneWins)
{
    Clock.Hold();
    ASSERT_TRUE(Link.Start());
    EXPECT_EQ(Alive(), 3U);
    Clock.Release();
    const lineEnd receiver(9600, 1, [this](const std::string&) { Receive(rmc()); });
    ASSERT_TRUE(AwaitEnd());
    EXPECT_EQ(Link.Protocol, gnssComm::ProtocolNMEA);
    EXPECT_TRUE(Link.NMEA);
    EXPECT_EQ(DetectedCount, 1U);
    EXPECT_GE(NewDataCount, 1U);
    EXPECT_TRUE(Link.IsOpen());
}

TEST_F(gnssCommTest, IsStartedOnceOnly)
{
    const lineEnd receiver(4800, 0, [this](const std::string&) { Receive(rmc()); });
    ASSERT_TRUE(Link.Start());
    ASSERT_TRUE(AwaitEnd());
    const gnssNMEA* const before = Link.NMEA.get();
    EXPECT_TRUE(Link.Start());
    EXPECT_EQ(Link.NMEA.get(), before);
}

TEST_F(gnssCommTest, WalksTheLineSettingsInTheirOrderTwoSecondsEach)
{
    const lineEnd receiver(115200, 0, [this](const std::string&) { Receive(rmc()); });
    ASSERT_TRUE(Link.Start());
    ASSERT_TRUE(AwaitEnd());
    EXPECT_THAT(TakeProbed(), ElementsAre("4800N1 8 bits", "9600O1 8 bits", "9600N1 8 bits", "19200N1 8 bits",
                                          "38400N1 8 bits", "115200N1 8 bits"));
    for (size_t row = 1; row < ProbedAt.size(); ++row) {
        EXPECT_GE(ProbedAt[row] - ProbedAt[row - 1], 2 * NsPerSecond) << row;
        EXPECT_EQ(WaitsBefore[row] - WaitsBefore[row - 1], 20U) << row;
    }
    EXPECT_EQ(Link.BaudRate(), 115200U);
}

TEST_F(gnssCommTest, StaysAtTheSettingAtWhichItHeardTheReceiverAtTheLastMoment)
{
    // The port is first opened as it stands, and then again at each setting in turn.
    Link.SetBaudRate(57600);
    fakeOnCall("commClose", 1, [this] { Feed(rmc()); });
    ASSERT_TRUE(Link.Start());
    ASSERT_TRUE(AwaitEnd());
    EXPECT_TRUE(Link.IsOpen());
    EXPECT_EQ(Link.BaudRate(), 57600U);
    EXPECT_TRUE(await([] { return fakePortSent("COM5").find(versionPoll) != std::string::npos; }))
        << "it is asked who it is all the same";
}

TEST_F(gnssCommTest, BeginsASecondRoundWhenNobodyAnswers)
{
    ASSERT_TRUE(Link.Start());
    ASSERT_TRUE(await([this] { return TakeProbed().size() >= 8; }));
    EXPECT_EQ(TakeProbed()[6], "4800N1 8 bits");
}

TEST_F(gnssCommTest, FindsASilentTSIPReceiverByItsModel)
{
    const lineEnd receiver(9600, 1, [this](const std::string& request) {
        if (request.find(hardwareRequest) != std::string::npos)
            Receive(hardwareReply);
    });
    ASSERT_TRUE(Link.Start());
    ASSERT_TRUE(AwaitEnd());
    EXPECT_EQ(Link.Protocol, gnssComm::ProtocolTSIP);
    EXPECT_EQ(Model(), 3U);
    EXPECT_EQ(DetectedCount, 1U);
    EXPECT_GE(NewDataCount, 1U);
    EXPECT_THAT(TakeProbed(), ElementsAre("4800N1 8 bits", "9600O1 8 bits"));
    EXPECT_TRUE(await([] {
        return fakePortSent("COM5").find(std::string("\x10\x8E\x4A\x01", 4)) != std::string::npos;
    })) << "the pulse is set up";
}

TEST_F(gnssCommTest, FindsATSIPReceiverThatTalks)
{
    const lineEnd receiver(4800, 0, [this](const std::string&) { Receive(tsip(0x56).zeros(20)); });
    ASSERT_TRUE(Link.Start());
    ASSERT_TRUE(AwaitEnd());
    EXPECT_EQ(Link.Protocol, gnssComm::ProtocolTSIP);
    EXPECT_EQ(DetectedCount, 1U);
}

TEST_F(gnssCommTest, BelievesUBXOnlyOnceTheModelIsTold)
{
    StartOnNetwork();
    Feed(navDop);
    EXPECT_EQ(Link.Protocol, gnssComm::ProtocolNone);
    EXPECT_EQ(NewDataCount, 0U);
    Feed(monVer);
    EXPECT_EQ(Link.Protocol, gnssComm::ProtocolUBX);
    EXPECT_EQ(NewDataCount, 1U);
    ASSERT_TRUE(AwaitEnd());
    EXPECT_EQ(Model(), 8U);
}

TEST_F(gnssCommTest, FindsAUBXReceiverByTheAnswerToItsPoll)
{
    const lineEnd receiver(38400, 0, [this](const std::string& request) {
        if (request.find(versionPoll) != std::string::npos)
            Receive(monVer);
    });
    ASSERT_TRUE(Link.Start());
    ASSERT_TRUE(AwaitEnd());
    EXPECT_EQ(Link.Protocol, gnssComm::ProtocolUBX);
    EXPECT_THAT(TakeProbed(), SizeIs(5));
}

TEST_F(gnssCommTest, CatchesAUBXReceiverThatTalksNMEAAndFindsItWithTheUBXDecoderAlone)
{
    // Its answer is late: NMEA has won by then. The setting is none that a driver starts with.
    std::atomic<bool> alone{false};
    bool asked = false;
    const lineEnd receiver(19200, 0, [&](const std::string& request) {
        Receive(rmc());
        asked = asked || request.find(versionPoll) != std::string::npos;
        if (!asked || (Link.Protocol != gnssComm::ProtocolNMEA && !alone))
            return;
        asked = false;
        Receive(monVer);
    });
    ASSERT_TRUE(Link.Start());
    ASSERT_TRUE(await([this] { return Link.Protocol == gnssComm::ProtocolNMEA && Model() == 6; }));
    Link.Stop();
    Link.UBXOnly = true;
    alone = true;
    ASSERT_TRUE(Link.Start());
    EXPECT_EQ(Alive(), 1U);
    ASSERT_TRUE(await([this] { return Link.Protocol == gnssComm::ProtocolUBX; }));
    EXPECT_EQ(Model(), 8U);
    EXPECT_EQ(DetectedCount, 2U);
}

TEST_F(gnssCommTest, TellsADetectionOnceInARun)
{
    StartOnNetwork();
    Feed(rmc() + std::string(tsip(0x56).zeros(20)) + rmc() + monVer);
    EXPECT_EQ(Link.Protocol, gnssComm::ProtocolNMEA);
    EXPECT_EQ(DetectedCount, 1U);
    EXPECT_EQ(NewDataCount, 4U);
}

TEST_F(gnssCommTest, StopsInTheMiddleOfAWaitAndTakesTheDecodersAlong)
{
    ASSERT_TRUE(Link.Start());
    ASSERT_TRUE(await([this] { return TakeProbed().size() == 2; }));
    const size_t before = fakeCallCount("threadSleep 100");
    Link.Stop();
    EXPECT_LE(fakeCallCount("threadSleep 100") - before, 1U);
    EXPECT_EQ(Alive(), 0U);
    EXPECT_EQ(Link.Protocol, gnssComm::ProtocolNone);
    EXPECT_EQ(fakePortHandles(), 0U);
    EXPECT_EQ(fakeClockWaiters(), 0U);
}

TEST_F(gnssCommTest, DecidesNothingMoreOnceItIsStopped)
{
    std::atomic<bool> isMidway{false};
    std::jthread stopper;
    Link.OnNewData = [&] {
        if (!isMidway.exchange(false))
            return;
        // In the middle of a chunk, whose decoder is not taken away before its end.
        stopper = std::jthread([this] { Link.Stop(); });
        const auto limit = std::chrono::steady_clock::now() + std::chrono::milliseconds(100);
        while (Link.Protocol != gnssComm::ProtocolNone && std::chrono::steady_clock::now() < limit)
            std::this_thread::yield();
    };
    StartOnNetwork();
    Feed(rmc());
    ASSERT_TRUE(AwaitEnd());
    isMidway = true;
    Feed(rmc() + rmc());
    stopper.join();
    EXPECT_EQ(Link.Protocol, gnssComm::ProtocolNone);
    EXPECT_EQ(DetectedCount, 1U);
    ASSERT_TRUE(Link.Start());
    EXPECT_EQ(Alive(), 3U) << "the next receiver may speak anything";
}

TEST_F(gnssCommTest, StopsAtAnyMoment)
{
    for (int round = 0; round < 40; ++round) {
        ASSERT_TRUE(Link.Start());
        if (round % 3 == 0)
            Receive(rmc());
        for (int turn = 0; turn < round * 3; ++turn)
            std::this_thread::yield();
        Link.Stop();
        ASSERT_EQ(Alive(), 0U);
        ASSERT_EQ(fakePortHandles(), 0U);
    }
}

TEST_F(gnssCommTest, CyclesThroughAPortThatCannotBeOpenedUntilItCan)
{
    ASSERT_TRUE(Link.Start());
    ASSERT_TRUE(await([this] { return TakeProbed().size() == 1; }));
    fakePortGone("COM5");
    ASSERT_TRUE(await([] { return fakeCallCount("commOpen") > 30; }));
    fakePort("COM5");
    const size_t probed = TakeProbed().size();
    EXPECT_TRUE(await([&] { return TakeProbed().size() > probed; }));
    // A record of everything that a thread did which never rests takes long to search.
    fakeClearCalls();
    fakePortGone("COM5");
    ASSERT_TRUE(await([&] { return fakeCallCount("commOpen") > 30; }));
    Link.Stop();
    EXPECT_EQ(Alive(), 0U);
}

TEST_F(gnssCommTest, MovesToAnotherPortInTheMiddleOfARun)
{
    fakePort("COM6");
    {
        const lineEnd receiver(4800, 0, [this](const std::string&) { Receive(rmc()); });
        ASSERT_TRUE(Link.Start());
        ASSERT_TRUE(AwaitEnd());
    }
    Link.PortSet("COM6");
    EXPECT_EQ(Link.PortName(), "COM6");
    EXPECT_EQ(Alive(), 3U);
    ASSERT_TRUE(await([this] {
        fakePortReceive("COM6", rmc());
        return DetectedCount == 2;
    }));
    EXPECT_TRUE(AwaitEnd());
    EXPECT_EQ(DetectedCount, 2U);
}

TEST_F(gnssCommTest, PassesOnEveryBlockBeforeItIsDecoded)
{
    std::string raw;
    unsigned newDataBefore = 0;
    Link.OnRawData = [&](const std::vector<uint8_t>& block) {
        raw.append(block.begin(), block.end());
        newDataBefore = NewDataCount;
    };
    ASSERT_TRUE(Link.Start());
    ASSERT_TRUE(await([this] { return TakeProbed().size() == 1; }));
    Receive("noise" + rmc());
    ASSERT_TRUE(await([this] { return NewDataCount == 1; }));
    Link.Stop();
    EXPECT_EQ(raw, "noise" + rmc());
    EXPECT_EQ(newDataBefore, 0U);
}

TEST_F(gnssCommTest, SendsThroughTheNetworkWhenItHasNoPort)
{
    StartOnNetwork();
    EXPECT_TRUE(AwaitNetSent(hardwareRequest));
    EXPECT_EQ(fakeCallCount("commOpen"), 0U);
    EXPECT_THAT(TakeProbed(), IsEmpty());
    Feed(monVer);
    EXPECT_TRUE(AwaitEnd());
}

TEST_F(gnssCommTest, GoesOnWithoutAWayToSend)
{
    Link.Network = true;
    ASSERT_TRUE(Link.Start());
    Feed(rmc());
    EXPECT_TRUE(AwaitEnd());
}

TEST_F(gnssCommTest, AsksAgainInEveryRoundOnANetwork)
{
    std::atomic<unsigned> polls{0};
    Link.Network = true;
    Link.NetSend = [&](const uint8_t* bytes, size_t count) {
        if (std::string(bytes, bytes + count) == versionPoll)
            ++polls;
    };
    ASSERT_TRUE(Link.Start());
    EXPECT_TRUE(await([&] { return polls >= 4; }));
    Link.Stop();
}

TEST_F(gnssCommTest, StartsAnewOnANetworkWithoutLosingTheDecoders)
{
    Link.Network = true;
    for (int round = 0; round < 20; ++round) {
        ASSERT_TRUE(Link.Start());
        ASSERT_EQ(Alive(), 3U);
    }
    Feed(rmc());
    EXPECT_TRUE(AwaitEnd());
}

TEST_F(gnssCommTest, ResetsTheReceiverBetweenTwoMessages)
{
    StartOnNetwork();
    Feed(rmc());
    ASSERT_TRUE(AwaitEnd());
    ForgetNetSent();
    Link.ResetPending = 1;
    Feed("$GPGGA,12");
    EXPECT_EQ(NetSent(), "") << "a sentence is under way";
    EXPECT_EQ(Link.ResetPending, 1);
    Feed("3519\r\n");
    EXPECT_THAT(NetSent(), testing::StartsWith("$PSRF104,0,0,0,96000,237759,1946,12,4*"));
    EXPECT_EQ(Link.ResetPending, 0);
    ForgetNetSent();
    Feed(rmc());
    EXPECT_EQ(NetSent(), "");
}

TEST_F(gnssCommTest, SendsNoResetToAnNMEAReceiverThatSaidNothing)
{
    StartOnNetwork();
    Feed(rmc());
    ASSERT_TRUE(AwaitEnd());
    {
        const thrSpinHold hold(Link.Lock);
        Link.NMEA->Model = 0;
    }
    ForgetNetSent();
    Link.ResetPending = 1;
    Feed("\r\n");
    EXPECT_EQ(NetSent(), "");
    EXPECT_EQ(Link.ResetPending, 0);
}

TEST_F(gnssCommTest, ResetsAUBXReceiverOnlyWhenItsParserIsIdle)
{
    Link.UBXOnly = true;
    StartOnNetwork();
    Feed(monVer);
    ASSERT_TRUE(AwaitEnd());
    ForgetNetSent();
    Link.ResetPending = 1;
    Feed(navDop.substr(0, 7));
    EXPECT_EQ(Link.ResetPending, 1);
    Feed(navDop.substr(7));
    EXPECT_EQ(Link.ResetPending, 0);
    EXPECT_THAT(NetSent(),
                testing::StartsWith(std::string("\xB5\x62\x06\x04\x04\x00\xFF\xFF\x00\x00\x0C\x5D", 12)));
}

TEST_F(gnssCommTest, LetsAPageReadSelectAndResetWhileItIsFedAndRestarted)
{
    Link.Network = true;
    ASSERT_TRUE(Link.Start());
    const std::jthread feeder([&](const std::stop_token& stop) {
        while (!stop.stop_requested()) {
            Feed(monVer + navDop + navDop);
            std::this_thread::sleep_for(std::chrono::microseconds(100));
        }
    });
    for (int round = 0; round < 50; ++round) {
        await([this] { return Model() == 8; });
        {
            const thrSpinHold hold(Link.Lock);
            if (Link.UBX)
                Link.UBX->PendingSpectrum = 1;
        }
        Link.ResetPending = 1;
        if (round % 5 == 4) {
            Link.Stop();
            ASSERT_TRUE(Link.Start());
        }
    }
}

}  // namespace
