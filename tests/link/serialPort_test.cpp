#include "foundations/heap/mem.h"
#include "foundations/heap/memReportSink.h"
#include "link/serialPort.h"
#include "tests/link/runningClock.h"

#include <gmock/gmock.h>
#include <mutex>

using testing::AllOf;
using testing::ElementsAre;
using testing::Ge;
using testing::HasSubstr;
using testing::Le;

namespace {

std::vector<uint8_t> bytesOf(const std::string& text)
{
    return {text.begin(), text.end()};
}

class heapText final : public memReportSink
{
public:
    std::string Text;

private:
    bool Write(const char* bytes, size_t count) override
    {
        Text.append(bytes, count);
        return true;
    }
};

bool heapIsEmpty()
{
    heapText text;
    memReport(text);
    return text.Text.find("No memory in use") != std::string::npos;
}

class serialPortTest : public linkTest
{
protected:
    serialPortTest()
    {
        fakePort("COM5");
        Port.SetPortName("COM5");
        Port.SetHandshake(serialPort::HandshakeNone);
        Port.onData = [this](std::vector<uint8_t>& block) {
            const std::lock_guard lock(Mutex);
            Received.append(block.begin(), block.end());
            ++Blocks;
        };
    }

    void Write(const std::string& text)
    {
        const std::vector<uint8_t> bytes = bytesOf(text);
        Port.Write(bytes.data(), bytes.size());
    }

    std::string TakeReceived()
    {
        const std::lock_guard lock(Mutex);
        return Received;
    }

    bool AwaitSent(const std::string& text)
    {
        return await([&] { return fakePortSent("COM5") == text; });
    }

    std::mutex Mutex;
    std::string Received;
    unsigned Blocks = 0;
    serialPort Port;
};

TEST_F(serialPortTest, RefusesAnEmptyNameAndClosesAnOpenPortByThat)
{
    serialPort nameless;
    EXPECT_FALSE(nameless.Open());

    ASSERT_TRUE(Port.Open());
    Port.SetPortName("");
    EXPECT_FALSE(Port.Open());
    EXPECT_FALSE(Port.IsOpen());
    EXPECT_EQ(fakePortHandles(), 0U);
}

TEST_F(serialPortTest, StaysClosedWhenThereIsNoSuchPort)
{
    Port.SetPortName("COM6");
    EXPECT_FALSE(Port.Open());
    EXPECT_FALSE(Port.IsOpen());
}

TEST_F(serialPortTest, QueuesNothingForNoBytesOrOnAClosedPort)
{
    Write("lost");
    ASSERT_TRUE(Port.Open());
    Port.Write(nullptr, 0);
    Write("kept");
    EXPECT_TRUE(AwaitSent("kept"));
    Port.Close();
    Write("lost");
    EXPECT_TRUE(heapIsEmpty());
}

TEST_F(serialPortTest, PreparesALineFromTheDriversDefault)
{
    fakeClearCalls();
    ASSERT_TRUE(Port.Open());
    const std::vector<std::string> calls = fakeCalls();
    std::vector<std::string> ofPort;
    for (const std::string& call : calls) {
        if (call.rfind("comm", 0) == 0 && ofPort.size() < 8)
            ofPort.push_back(call.substr(0, call.find(' ')));
    }
    EXPECT_THAT(ofPort, ElementsAre("commOpen", "commDefault", "commSetControl", "commQueueLimits",
                                    "commSetQueues", "commGetControl", "commSetControl", "commSetEvents"));
    EXPECT_THAT(calls, testing::Contains("commSetEvents COM5 507"));
}

TEST_F(serialPortTest, AsksForQueuesOf4096WhereTheDriverSetsNoLimit)
{
    ASSERT_TRUE(Port.Open());
    EXPECT_EQ(fakeCallCount("commSetQueues COM5 4096 4096"), 1U);
    fakePortQueues("COM5", {1000, 2000});
    ASSERT_TRUE(Port.Open());
    EXPECT_EQ(fakeCallCount("commSetQueues COM5 1000 2000"), 1U);
}

TEST_F(serialPortTest, TouchesNothingForABaudRateThatItHas)
{
    ASSERT_TRUE(Port.Open());
    const size_t before = fakeCallCount("commSetControl");
    EXPECT_TRUE(Port.SetBaudRate(9600));
    EXPECT_EQ(fakeCallCount("commSetControl"), before);
}

TEST_F(serialPortTest, SetsTheBaudRateOfAnOpenPortAtOnce)
{
    ASSERT_TRUE(Port.Open());
    EXPECT_TRUE(Port.SetBaudRate(115200));
    EXPECT_EQ(fakePortSettings("COM5").BaudRate, 115200U);
}

TEST_F(serialPortTest, KeepsTheOldBaudRateWhenTheNewOneFails)
{
    ASSERT_TRUE(Port.Open());
    fakeFail("commSetControl");
    EXPECT_FALSE(Port.SetBaudRate(115200));
    EXPECT_EQ(Port.BaudRate(), 9600U);
}

TEST_F(serialPortTest, AppliesASettingThatWasMadeWhileItWasClosed)
{
    EXPECT_TRUE(Port.SetBaudRate(38400));
    Port.SetParity(1);
    Port.SetStopBits(1);
    Port.SetDataBits(7);
    ASSERT_TRUE(Port.Open());
    const commControl line = fakePortSettings("COM5");
    EXPECT_EQ(line.BaudRate, 38400U);
    EXPECT_EQ(line.Parity, 1);
    EXPECT_EQ(line.StopBits, 2);
    EXPECT_EQ(line.DataBits, 7);
    EXPECT_TRUE(line.Flags & commFlag::Parity);
}

TEST_F(serialPortTest, AppliesSettingsOfAnOpenPortAndOnlyWhenTheyChange)
{
    ASSERT_TRUE(Port.Open());
    const size_t before = fakeCallCount("commSetControl");
    Port.SetParity(2);
    EXPECT_EQ(fakePortSettings("COM5").Parity, 2);
    Port.SetParity(0);
    EXPECT_FALSE(fakePortSettings("COM5").Flags & commFlag::Parity);
    Port.SetStopBits(1);
    EXPECT_EQ(fakePortSettings("COM5").StopBits, 2);
    Port.SetDataBits(7);
    EXPECT_EQ(fakePortSettings("COM5").DataBits, 7);
    EXPECT_EQ(fakeCallCount("commSetControl"), before + 4);
    Port.SetParity(0);
    Port.SetStopBits(1);
    Port.SetDataBits(7);
    Port.SetHandshake(serialPort::HandshakeNone);
    EXPECT_EQ(fakeCallCount("commSetControl"), before + 4);
}

struct flowCase {
    uint8_t Mode;
    uint8_t RtsOn;
    uint8_t DtrOn;
    uint32_t Flags;
};

TEST_F(serialPortTest, SetsTheFlagsOfEachFlowControl)
{
    constexpr flowCase cases[] = {
        {serialPort::HandshakeNone, 0, 0, 0},
        {serialPort::HandshakeNone, 1, 0, commFlag::RTSEnable},
        {serialPort::HandshakeNone, 1, 1, commFlag::RTSEnable | commFlag::DTREnable},
        {serialPort::HandshakeRTS, 1, 1, commFlag::OutCTS | commFlag::RTSHandshake | commFlag::DTREnable},
        {serialPort::HandshakeDTR, 1, 1, commFlag::OutDSR | commFlag::DTRHandshake | commFlag::RTSEnable},
        {serialPort::HandshakeX, 0, 1, commFlag::OutX | commFlag::InX | commFlag::DTREnable},
    };
    constexpr uint32_t others = 0x8001;  // the driver's own, which are not ours to change
    fakePortControl("COM5", {9600, commFlag::FlowControl | others, 8, 0, 0});
    for (const flowCase& each : cases) {
        Port.Close();
        Port.rtsOn = each.RtsOn;
        Port.dtrOn = each.DtrOn;
        Port.SetHandshake(each.Mode);
        ASSERT_TRUE(Port.Open());
        EXPECT_EQ(fakePortSettings("COM5").Flags, each.Flags | others) << unsigned{each.Mode};
    }
}

TEST_F(serialPortTest, LeavesTheFlowControlOfTheDriverAloneWhenToldToKeepIt)
{
    constexpr uint32_t strange = commFlag::OutX | commFlag::DTRHandshake | commFlag::RTSEnable;
    fakePortControl("COM5", {9600, strange, 8, 0, 0});
    serialPort fresh;
    fresh.SetPortName("COM5");
    fresh.rtsOn = 1;
    ASSERT_TRUE(fresh.Open());
    EXPECT_EQ(fakePortSettings("COM5").Flags, strange);
    fresh.SetHandshake(serialPort::HandshakeX);
    const uint32_t set = fakePortSettings("COM5").Flags;
    fresh.SetHandshake(serialPort::HandshakeKeep);
    EXPECT_EQ(fakePortSettings("COM5").Flags, set);
}

TEST_F(serialPortTest, HeedsTheDSRLineWhenToldTo)
{
    Port.dsrSensitivity = 3;
    ASSERT_TRUE(Port.Open());
    EXPECT_TRUE(fakePortSettings("COM5").Flags & commFlag::DSRSensitivity);
    Port.Close();
    Port.dsrSensitivity = 2;
    ASSERT_TRUE(Port.Open());
    EXPECT_FALSE(fakePortSettings("COM5").Flags & commFlag::DSRSensitivity);
}

TEST_F(serialPortTest, TakesNonsenseSettingsForTheUsualOnes)
{
    Port.SetParity(77);
    Port.SetStopBits(9);
    Port.SetHandshake(200);
    ASSERT_TRUE(Port.Open());
    EXPECT_EQ(fakePortSettings("COM5").Parity, 0);
    EXPECT_EQ(fakePortSettings("COM5").StopBits, 0);
    EXPECT_EQ(fakePortSettings("COM5").Flags & commFlag::FlowControl, 0U);
}

TEST_F(serialPortTest, DeliversWhatTheDriverHeldAsOneBlock)
{
    ASSERT_TRUE(Port.Open());
    std::string all;
    for (int i = 0; i < 20; ++i) {
        const std::string piece(static_cast<size_t>(1 + i * 37), static_cast<char>('a' + i));
        all += piece;
        fakePortReceive("COM5", piece);
        ASSERT_TRUE(await([&] { return TakeReceived() == all; }));
    }
    EXPECT_EQ(Blocks, 20U);
}

TEST_F(serialPortTest, LooksAtAnIdlePortEvery10Ms)
{
    ASSERT_TRUE(Port.Open());
    ASSERT_TRUE(await([] { return fakeCallCount("threadSleep 10") >= 5; }));
    Clock.Hold();
    ASSERT_TRUE(await([] { return fakeClockWaiters() == 1; }));
    fakePortReceive("COM5", "x");
    letOthersRun();
    EXPECT_EQ(TakeReceived(), "");
    fakeClockMove(10'000'000);
    EXPECT_TRUE(await([&] { return TakeReceived() == "x"; }));
    Clock.Release();
}

TEST_F(serialPortTest, DropsWhatNobodyTakes)
{
    Port.onData = nullptr;
    ASSERT_TRUE(Port.Open());
    fakePortReceive("COM5", "gone");
    EXPECT_TRUE(await([] { return fakeCallCount("commRead") == 1; }));
}

TEST_F(serialPortTest, TriesAFailedReadAgain)
{
    fakeFail("commRead", {0, 3});
    ASSERT_TRUE(Port.Open());
    fakePortReceive("COM5", "late");
    EXPECT_TRUE(await([&] { return TakeReceived() == "late"; }));
}

TEST_F(serialPortTest, LetsTheReceiverOfABlockAnswer)
{
    Port.onData = [this](std::vector<uint8_t>& block) { Port.Write(block.data(), block.size()); };
    ASSERT_TRUE(Port.Open());
    fakePortReceive("COM5", "echo");
    EXPECT_TRUE(AwaitSent("echo"));
}

TEST_F(serialPortTest, SendsAtMostTheDriversQueueInOneCall)
{
    fakePortQueues("COM5", {0, 16});
    ASSERT_TRUE(Port.Open());
    const std::string text(100, 'q');
    Write(text);
    ASSERT_TRUE(AwaitSent(text));
    EXPECT_EQ(fakeCallCount("commWrite COM5 16"), 6U);
    EXPECT_EQ(fakeCallCount("commWrite COM5 4"), 1U);
}

TEST_F(serialPortTest, KeepsTheBytesOfEachWriteTogetherAndInOrder)
{
    ASSERT_TRUE(Port.Open());
    constexpr int writers = 4;
    constexpr int rounds = 50;
    {
        std::vector<std::jthread> threads;
        for (int writer = 0; writer < writers; ++writer) {
            threads.emplace_back([this, writer] {
                for (int round = 0; round < rounds; ++round)
                    Write(std::string(1, static_cast<char>('A' + writer)) + std::to_string(1000 + round));
            });
        }
    }
    ASSERT_TRUE(await([] { return fakePortSent("COM5").size() == size_t{writers} * rounds * 5; }));
    const std::string sent = fakePortSent("COM5");
    std::vector<int> next(writers, 1000);
    for (size_t at = 0; at < sent.size(); at += 5) {
        const auto writer = static_cast<size_t>(sent[at] - 'A');
        ASSERT_LT(writer, size_t{writers});
        EXPECT_EQ(std::stoi(sent.substr(at + 1, 4)), next[writer]++);
    }
}

TEST_F(serialPortTest, LosesTheRestOfAWriteThatFailsAndGoesOnWithTheNext)
{
    fakePortQueues("COM5", {0, 4});
    fakePortBlockWrites("COM5", true);
    ASSERT_TRUE(Port.Open());
    Write("firstsecond");
    Write("next");
    fakeFail("commWrite", {1, 1});
    fakePortBlockWrites("COM5", false);
    EXPECT_TRUE(await([] { return fakePortSent("COM5").find("next") != std::string::npos; }));
    EXPECT_THAT(fakePortSent("COM5"), testing::Not(HasSubstr("second")));
}

TEST_F(serialPortTest, FreesUnsentWhatIsQueuedAtClose)
{
    fakePortBlockWrites("COM5", true);
    ASSERT_TRUE(Port.Open());
    for (int i = 0; i < 10; ++i)
        Write("never sent");
    EXPECT_FALSE(Port.WaitSent(false));
    Port.Close();
    EXPECT_EQ(fakePortSent("COM5"), "");
    EXPECT_TRUE(heapIsEmpty());
    fakePortBlockWrites("COM5", false);
    ASSERT_TRUE(Port.Open());
    Write("new");
    EXPECT_TRUE(AwaitSent("new"));
}

TEST_F(serialPortTest, LosesWhatIsMoreThanTheQueueMayHold)
{
    constexpr size_t piece = serialPort::QueueLimit / 4;
    fakePortBlockWrites("COM5", true);
    ASSERT_TRUE(Port.Open());
    Write(std::string(2 * serialPort::QueueLimit, 'a'));
    Write("lost behind what is more than the limit by itself");
    fakePortBlockWrites("COM5", false);
    ASSERT_TRUE(await([&] { return Port.WaitSent(false); }));

    fakePortBlockWrites("COM5", true);
    for (const char letter : {'b', 'c', 'd', 'e', 'f'})
        Write(std::string(piece, letter));
    Write("taken");
    fakePortBlockWrites("COM5", false);
    ASSERT_TRUE(await([&] { return Port.WaitSent(false); }));
    Write("new");
    EXPECT_TRUE(AwaitSent(std::string(2 * serialPort::QueueLimit, 'a') + std::string(piece, 'b') +
                          std::string(piece, 'c') + std::string(piece, 'd') + "takennew"));
}

TEST_F(serialPortTest, HoldsBackWhileCTSIsOffWithRTSHandshake)
{
    Port.SetHandshake(serialPort::HandshakeRTS);
    ASSERT_TRUE(Port.Open());
    Write("wait");
    ASSERT_TRUE(await([] { return fakeCallCount("threadSleep") > 5; }));
    EXPECT_EQ(fakePortSent("COM5"), "");
    fakePortModem("COM5", commCTS);
    EXPECT_TRUE(AwaitSent("wait"));
}

TEST_F(serialPortTest, ClosesWhileItIsHeldBack)
{
    Port.SetHandshake(serialPort::HandshakeRTS);
    ASSERT_TRUE(Port.Open());
    Write("never");
    Port.Close();
    EXPECT_TRUE(heapIsEmpty());
}

TEST_F(serialPortTest, SaysWhetherEverythingWasSent)
{
    EXPECT_TRUE(Port.WaitSent(true));
    ASSERT_TRUE(Port.Open());
    EXPECT_TRUE(Port.WaitSent(true));
    fakePortUnsent("COM5", 3);
    EXPECT_FALSE(Port.WaitSent(false));
    fakePortUnsent("COM5", 0);
    EXPECT_TRUE(Port.WaitSent(false));
    fakePortUnsent("COM5", 3);
    fakePortGone("COM5");
    EXPECT_TRUE(Port.WaitSent(false)) << "what cannot be asked does not count as unsent";
}

// A road out of a call that does not return.
struct enough {
};

TEST_F(serialPortTest, NeverReturnsFromAWaitThatOnceFoundSomethingPending)
{
    fakePortUnsent("COM5", 3);
    ASSERT_TRUE(Port.Open());
    const std::thread::id caller = std::this_thread::get_id();
    unsigned looks = 0;
    std::function<void()> count = [&] {
        if (std::this_thread::get_id() == caller) {
            fakePortUnsent("COM5", 0);
            if (++looks == 20)
                throw enough();
        }
        fakeOnCall("threadSleep", 1, count);
    };
    fakeOnCall("threadSleep", 1, count);
    EXPECT_THROW(Port.WaitSent(true), enough);
    EXPECT_EQ(looks, 20U);
}

TEST_F(serialPortTest, TakesADeviceThatHasGoneForSilence)
{
    ASSERT_TRUE(Port.Open());
    fakePortGone("COM5");
    Write("nobody there");
    const size_t sleeps = fakeCallCount("threadSleep");
    ASSERT_TRUE(await([&] { return fakeCallCount("threadSleep") > sleeps + 5; }));
    EXPECT_TRUE(Port.IsOpen());
    Port.Close();
    EXPECT_TRUE(heapIsEmpty());
}

TEST_F(serialPortTest, OpensAndClosesWithoutLimit)
{
    for (int round = 0; round < 100; ++round) {
        ASSERT_TRUE(Port.SetBaudRate(round % 2 == 0 ? 4800 : 115200));
        ASSERT_TRUE(Port.Open());
        Write("x");
        if (round % 3 == 0)
            Port.Close();
    }
    Port.Close();
    EXPECT_EQ(fakePortHandles(), 0U);
    EXPECT_TRUE(heapIsEmpty());
}

TEST_F(serialPortTest, LetsManyThreadsOpenCloseSetAndWriteAtOnce)
{
    std::vector<std::jthread> threads;
    for (int i = 0; i < 3; ++i) {
        threads.emplace_back([this, i] {
            for (int round = 0; round < 30; ++round) {
                Write("abc");
                Port.SetBaudRate(i % 2 == 0 ? 4800 : 9600);
                Port.WaitSent(false);
                if (i == 0)
                    Port.Open();
                else if (i == 1)
                    Port.Close();
            }
        });
    }
    threads.clear();
    Port.Close();
    EXPECT_EQ(fakePortHandles(), 0U);
    EXPECT_TRUE(heapIsEmpty());
}

}  // namespace
