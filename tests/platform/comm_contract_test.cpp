#include "platform/comm.h"

#include "tests/platform/contractLinks.h"

#include <atomic>
#include <chrono>
#include <thread>

namespace {

using std::chrono::milliseconds;
using std::chrono::steady_clock;

// What needs no port.
using commNames = contractTest;

class commContract : public contractTest
{
protected:
    void SetUp() override
    {
        contractTest::SetUp();
        if (!contractPlug())
            GTEST_SKIP() << "tests have no serial port here";
        Port = commOpen(contractPort());
        ASSERT_NE(Port, commNone);
    }

    void TearDown() override
    {
        commClose(Port);
        contractUnplug();
    }

    uint32_t Received() const
    {
        commLevel level;
        EXPECT_TRUE(commPending(Port, level));
        return level.Received;
    }

    bool AwaitReceived(uint32_t count) const
    {
        return contractAwait([&] { return Received() >= count; });
    }

    bool Write(const std::string& bytes) const
    {
        uint32_t done = 0;
        const uint32_t count = static_cast<uint32_t>(bytes.size());
        return commWrite(Port, bytes.data(), count, done) && done == count;
    }

    // What is there, at most `count` bytes of it.
    std::string Read(uint32_t count) const
    {
        std::string bytes(std::min(count, Received()), '\0');
        uint32_t done = 0;
        EXPECT_TRUE(commRead(Port, bytes.data(), static_cast<uint32_t>(bytes.size()), done));
        bytes.resize(done);
        return bytes;
    }

    commHandle Port = commNone;
};

// Every value of a byte, in an order that does not repeat soon.
std::string Pattern(size_t count)
{
    std::string bytes;
    for (size_t at = 0; at < count; ++at)
        bytes += static_cast<char>(at + at / 255);
    return bytes;
}

constexpr size_t Much = 64u << 10;

// Calls every function on a handle that is not open.
void ExpectHarmless(commHandle handle)
{
    SCOPED_TRACE(handle);
    commControl control;
    commQueue queue;
    commLevel level{17, 18};
    uint32_t done = 1;
    uint32_t status = 19;
    char byte = 'x';
    EXPECT_FALSE(commDefault(handle, control));
    EXPECT_FALSE(commGetControl(handle, control));
    EXPECT_FALSE(commSetControl(handle, {}));
    EXPECT_FALSE(commQueueLimits(handle, queue));
    commSetQueues(handle, {1, 1});
    commSetEvents(handle, 1);
    EXPECT_FALSE(commPending(handle, level));
    EXPECT_FALSE(commRead(handle, &byte, 1, done));
    EXPECT_EQ(done, 0u);
    EXPECT_FALSE(commWrite(handle, &byte, 1, done));
    EXPECT_FALSE(commModemStatus(handle, status));
    EXPECT_EQ(status, 19u);
    commClose(handle);
}

TEST_F(commNames, OpensNoPortThatIsMissing)
{
    EXPECT_EQ(commOpen("COM251"), commNone);
    EXPECT_EQ(commOpen("ttySKYmissing"), commNone);
}

TEST_F(commNames, OpensNothingByWhatIsNoName)
{
    for (const std::string_view name : {"", "/", "\\", ".", "..", "../tty", "pts/0", "/dev/null",
                                        "\\\\.\\COM1", "COM1\\", "COM1/", "a/b", "a\\b"})
        EXPECT_EQ(commOpen(name), commNone) << name;
    EXPECT_EQ(commOpen(std::string_view("\0COM1", 5)), commNone);
    EXPECT_EQ(commOpen(std::string(40'000, 'a')), commNone);
}

TEST_F(commNames, OpensNothingThatIsNoPort)
{
    for (const std::string_view name : {"null", "zero", "NUL", "PhysicalDrive0", "C:"})
        EXPECT_EQ(commOpen(name), commNone) << name;
}

TEST_F(commNames, KnowsHowThePortsAreCalled)
{
    EXPECT_EQ(commNamePrefix().size(), 3u);
}

TEST_F(commNames, ListsNoDevicesOfAClassThatIsNone)
{
    EXPECT_TRUE(commDevices(commClasses).empty());
    EXPECT_TRUE(commDevices(0xFFFFFFFF).empty());
}

TEST_F(commNames, HasTextsForDevicesWhereItSaysSo)
{
    for (unsigned deviceClass = 0; deviceClass < commClasses; ++deviceClass) {
        for (const commDevice& device : commDevices(deviceClass)) {
            for (const commText& text : {device.Port, device.Description, device.FriendlyName}) {
                EXPECT_TRUE(text.Found || !text.IsText);
                EXPECT_TRUE(text.IsText || text.Text.empty());
            }
        }
    }
}

TEST_F(commNames, IsHarmlessWithHandlesThatNeverWere)
{
    for (const commHandle handle : {commNone, commHandle{0}, commHandle{3}, commHandle{123'456}})
        ExpectHarmless(handle);
}

TEST_F(commContract, FindsNoOtherPortByALongerName)
{
    EXPECT_EQ(commOpen(contractPort() + "x"), commNone);
    EXPECT_EQ(commOpen("./" + contractPort()), commNone);
    EXPECT_EQ(commOpen(std::string_view("COM5\0", 5)), commNone);
}

TEST_F(commContract, KeepsASecondOpenerOut)
{
    if (!contractPortIsExclusive())
        GTEST_SKIP() << "the system shares this port";
    EXPECT_EQ(commOpen(contractPort()), commNone);
    // Being refused takes nothing from the first.
    EXPECT_EQ(commOpen(contractPort()), commNone);
    EXPECT_TRUE(Write("still here"));
}

TEST_F(commContract, LetsTheNextOpenerInAsSoonAsItIsClosed)
{
    for (int turn = 0; turn < 20; ++turn) {
        commClose(Port);
        Port = commOpen(contractPort());
        ASSERT_NE(Port, commNone) << turn;
    }
}

TEST_F(commContract, CarriesEveryByteToTheFarEnd)
{
    const std::string sent = Pattern(Much);
    std::atomic<bool> whole{false};
    {
        const std::jthread writer([&] { whole = Write(sent); });
        EXPECT_TRUE(contractAwait([&] { return contractLineReceived().size() >= sent.size(); }));
    }
    EXPECT_TRUE(whole);
    EXPECT_EQ(contractLineReceived(), sent);
}

TEST_F(commContract, CarriesEveryByteFromTheFarEnd)
{
    const std::string sent = Pattern(Much);
    std::string got;
    size_t taken = 0;
    EXPECT_TRUE(contractAwait([&] {
        taken += contractLineSend(std::string_view(sent).substr(taken));
        got += Read(Much);
        return got.size() >= sent.size();
    }));
    EXPECT_EQ(got, sent);
}

TEST_F(commContract, CountsWhatWasReceivedAndNotRead)
{
    EXPECT_EQ(Received(), 0u);
    contractLineSend("0123456789");
    EXPECT_TRUE(AwaitReceived(10));
    EXPECT_EQ(Received(), 10u);
    EXPECT_EQ(Read(4), "0123");
    EXPECT_EQ(Received(), 6u);
    EXPECT_EQ(Read(100), "456789");
    EXPECT_EQ(Received(), 0u);
}

TEST_F(commContract, WritesNothingWithoutAWord)
{
    uint32_t done = 5;
    EXPECT_TRUE(commWrite(Port, "", 0, done));
    EXPECT_EQ(done, 0u);
}

TEST_F(commContract, StartsWithSettingsThatTheDriverTakes)
{
    commControl control;
    ASSERT_TRUE(commDefault(Port, control));
    EXPECT_GT(control.BaudRate, 0u);
    EXPECT_TRUE(commSetControl(Port, control));
}

TEST_F(commContract, ReadsSettingsBack)
{
    const uint32_t flow = commFlag::OutX | commFlag::InX;
    const commControl rows[] = {
        {4800, 0, 8, 0, 0},
        {9600, commFlag::DTREnable | commFlag::RTSEnable, 8, 0, 0},
        {19200, flow | commFlag::DTREnable, 8, 0, 2},
        {38400, flow, 8, 0, 0},
        {115200, commFlag::OutCTS | commFlag::RTSHandshake, 8, 0, 2},
        {460800, 0, 8, 0, 0},
    };
    // Ports without modem lines have no memory for those.
    constexpr uint32_t OfTest = commFlag::OutCTS | commFlag::OutX | commFlag::InX;
    for (const commControl& row : rows) {
        SCOPED_TRACE(row.BaudRate);
        commControl control;
        ASSERT_TRUE(commGetControl(Port, control));
        control.BaudRate = row.BaudRate;
        control.Flags = (control.Flags & ~commFlag::FlowControl) | row.Flags;
        control.StopBits = row.StopBits;
        EXPECT_TRUE(commSetControl(Port, control));
        ASSERT_TRUE(commGetControl(Port, control));
        EXPECT_EQ(control.BaudRate, row.BaudRate);
        EXPECT_EQ(control.Flags & OfTest, row.Flags & OfTest);
        EXPECT_EQ(control.DataBits, row.DataBits);
        EXPECT_EQ(control.StopBits, row.StopBits);
    }
}

TEST_F(commContract, TakesRatesThatAreInNoTable)
{
    if (!contractPortTakesAnyRate())
        GTEST_SKIP() << "the system has a table";
    for (const uint32_t rate : {14400u, 31250u, 128000u, 250000u, 921600u, 1'000'000u}) {
        SCOPED_TRACE(rate);
        EXPECT_TRUE(commSetControl(Port, {rate}));
        commControl control;
        ASSERT_TRUE(commGetControl(Port, control));
        EXPECT_EQ(control.BaudRate, rate);
    }
}

TEST_F(commContract, TellsWhenARateWasNotTaken)
{
    for (const uint32_t rate : {14400u, 31250u, 128000u, 250000u, 921600u, 1'000'000u}) {
        commControl control;
        const bool taken = commSetControl(Port, {rate});
        ASSERT_TRUE(commGetControl(Port, control));
        EXPECT_EQ(taken, control.BaudRate == rate) << rate;
    }
}

TEST_F(commContract, RefusesSettingsThatAreNone)
{
    const commControl rows[] = {
        {0, 0, 8, 0, 0},      {9600, 0, 4, 0, 0},   {9600, 0, 9, 0, 0},
        {9600, 0, 8, 5, 0},   {9600, 0, 8, 0, 3},   {9600, 0, 0, 0, 0},
        {9600, 0, 255, 0, 0}, {9600, 0, 8, 255, 0}, {9600, 0, 8, 0, 255},
    };
    EXPECT_TRUE(commSetControl(Port, {4800}));
    for (const commControl& row : rows)
        EXPECT_FALSE(commSetControl(Port, row));
    commControl control;
    ASSERT_TRUE(commGetControl(Port, control));
    EXPECT_EQ(control.BaudRate, 4800u);
}

TEST_F(commContract, TakesParityThoughAVirtualPortMayIgnoreIt)
{
    for (uint8_t parity = 0; parity <= 4; ++parity)
        EXPECT_TRUE(commSetControl(Port, {9600, parity > 0 ? commFlag::Parity : 0, 8, parity, 0}));
}

TEST_F(commContract, PassesEveryByteAfterSettingsWithoutFlowControl)
{
    ASSERT_TRUE(commSetControl(Port, {9600, commFlag::DTREnable | commFlag::RTSEnable, 8, 0, 0}));
    const std::string all = Pattern(256);
    contractLineSend(all);
    EXPECT_TRUE(AwaitReceived(256));
    EXPECT_EQ(Read(256), all);
    EXPECT_TRUE(Write(all));
    EXPECT_TRUE(contractAwait([&] { return contractLineReceived().size() >= all.size(); }));
    EXPECT_EQ(contractLineReceived(), all);
}

TEST_F(commContract, TakesWishesForQueuesAndEvents)
{
    commQueue limits;
    EXPECT_TRUE(commQueueLimits(Port, limits));
    commSetQueues(Port, {4096, 4096});
    commSetEvents(Port, 0x1FB);
    EXPECT_TRUE(Write("and goes on"));
}

TEST_F(commContract, HasNoClearToSendOnALineWithoutOne)
{
    uint32_t status = 0xFFFF;
    EXPECT_TRUE(commModemStatus(Port, status));
    EXPECT_EQ(status & commCTS, 0u);
}

TEST_F(commContract, DropsWhatWasNotReadWhenItIsClosed)
{
    contractLineSend("old");
    ASSERT_TRUE(AwaitReceived(3));
    commClose(Port);
    Port = commOpen(contractPort());
    ASSERT_NE(Port, commNone);
    contractLineSend("new");
    ASSERT_TRUE(AwaitReceived(3));
    EXPECT_EQ(Read(100), "new");
}

// Writes until that fails, counting.
class endlessWriter
{
public:
    explicit endlessWriter(commHandle port) : Port(port), Thread([this] { Run(); }) {}

    // Waits until no write comes to its end any more.
    bool AwaitBlocked() const
    {
        constexpr auto Long = milliseconds(50);
        unsigned last = Writes;
        auto since = steady_clock::now();
        return contractAwait([&] {
            if (last != Writes) {
                last = Writes;
                since = steady_clock::now();
            }
            return Started && steady_clock::now() - since > Long;
        });
    }

    bool HasEnded() const { return Ended; }

    void Join()
    {
        EXPECT_TRUE(contractAwait([&] { return HasEnded(); })) << "the write does not end";
        Thread.join();
    }

private:
    void Run()
    {
        const std::string bytes(Much, 'x');
        uint32_t done = 0;
        Started = true;
        while (commWrite(Port, bytes.data(), static_cast<uint32_t>(bytes.size()), done))
            ++Writes;
        Ended = true;
    }

    const commHandle Port;
    std::atomic<bool> Started{false};
    std::atomic<bool> Ended{false};
    std::atomic<unsigned> Writes{0};
    std::jthread Thread;
};

TEST_F(commContract, EndsAWriteOnADeadLineWhenItIsClosed)
{
    contractLineDies();
    endlessWriter writer(Port);
    ASSERT_TRUE(writer.AwaitBlocked());
    EXPECT_FALSE(writer.HasEnded());
    const auto start = steady_clock::now();
    commClose(Port);
    EXPECT_LT(steady_clock::now() - start, milliseconds(300));
    writer.Join();
    EXPECT_LT(steady_clock::now() - start, milliseconds(300));
}

TEST_F(commContract, EndsAWriteWhenThePortIsUnplugged)
{
    contractLineDies();
    endlessWriter writer(Port);
    ASSERT_TRUE(writer.AwaitBlocked());
    contractUnplug();
    EXPECT_TRUE(contractAwait([&] { return writer.HasEnded(); }));
}

TEST_F(commContract, GoesOnReadingWhileAWriteWaits)
{
    contractLineDies();
    endlessWriter writer(Port);
    ASSERT_TRUE(writer.AwaitBlocked());
    contractLineSend("news");
    EXPECT_TRUE(AwaitReceived(4));
    EXPECT_EQ(Read(4), "news");
    commClose(Port);
    writer.Join();
}

TEST_F(commContract, IsHarmlessOnceClosed)
{
    commClose(Port);
    ExpectHarmless(Port);
}

TEST_F(commContract, KeepsAnOldHandleOffANewPort)
{
    const commHandle old = Port;
    commClose(old);
    Port = commOpen(contractPort());
    ASSERT_NE(Port, commNone);
    EXPECT_NE(Port, old);
    contractLineSend("mine");
    ASSERT_TRUE(AwaitReceived(4));
    ExpectHarmless(old);
    EXPECT_EQ(Read(100), "mine");
    EXPECT_TRUE(Write("ours"));
    EXPECT_TRUE(contractAwait([&] { return contractLineReceived().size() >= 4; }));
    EXPECT_EQ(contractLineReceived(), "ours");
}

TEST_F(commContract, TellsWhenThePortHasGone)
{
    commLevel level;
    EXPECT_TRUE(commPending(Port, level));
    contractUnplug();
    EXPECT_TRUE(contractAwait([&] { return !commPending(Port, level); }));
    uint32_t done = 0;
    EXPECT_FALSE(commWrite(Port, "x", 1, done));
    EXPECT_EQ(done, 0u);
    commClose(Port);
    EXPECT_EQ(commOpen(contractPort()), commNone);
}

TEST_F(commContract, BearsCallsOnAllSidesOfAClose)
{
    constexpr int Rounds = 30;
    std::atomic<commHandle> current{Port};
    std::atomic<bool> stop{false};
    const auto use = [&] {
        while (!stop) {
            const commHandle port = current;
            commLevel level;
            uint32_t number = 0;
            char bytes[64] = {};
            if (commPending(port, level))
                commRead(port, bytes, std::min<uint32_t>(level.Received, sizeof(bytes)), number);
            commWrite(port, bytes, 1, number);
            commModemStatus(port, number);
        }
    };
    {
        const std::jthread one(use);
        const std::jthread two(use);
        for (int round = 0; round < Rounds; ++round) {
            contractLineSend("abc");
            contractLineReceived();
            commClose(current);
            // A call that is still under way may keep the port for a moment.
            EXPECT_TRUE(contractAwait([&] { return (current = commOpen(contractPort())) != commNone; }));
        }
        stop = true;
        contractLineReceived();
        commClose(current);
    }
}

}  // namespace
