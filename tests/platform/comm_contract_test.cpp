#include "platform/comm.h"
#include "platform/thread.h"

#include "tests/platform/commTest.h"

#include <atomic>
#include <thread>

namespace {

// What needs no port.
using commNames = contractTest;

using commContract = commTest;

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

// What is sent may take a while to the port, so that it comes after the opening: then more time is left.
TEST_F(commContract, DropsWhatCameWhileItWasClosed)
{
    std::string read;
    for (uint32_t pause = 50; pause < 2000 && read != "new"; pause *= 2) {
        commClose(Port);
        contractLineSend("old");
        threadSleep(pause);
        Port = commOpen(contractPort());
        ASSERT_NE(Port, commNone);
        contractLineSend("new");
        ASSERT_TRUE(AwaitReceived(3));
        read = Read(100);
    }
    EXPECT_EQ(read, "new");
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
