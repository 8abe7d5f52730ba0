// What tests may do to the serial ports of the fake platform, and see of them.
#include "tests/await.h"
#include "tests/fakes/fakeLinks.h"
#include "tests/fakes/fakes.h"

#include <gmock/gmock.h>

#include <atomic>
#include <thread>

namespace {

using testing::ElementsAre;

class fakePorts : public testing::Test
{
protected:
    void SetUp() override
    {
        fakeReset();
        fakePort("COM5");
    }

    static bool Write(commHandle port, const std::string& bytes)
    {
        uint32_t done = 0;
        return commWrite(port, bytes.data(), static_cast<uint32_t>(bytes.size()), done);
    }
};

TEST_F(fakePorts, RecordWhatIsAskedOfThem)
{
    char bytes[4] = {};
    uint32_t number = 0;
    commLevel level;
    commControl control;
    const commHandle port = commOpen("COM5");
    commDefault(port, control);
    commGetControl(port, control);
    commSetControl(port, {9600, 0x1010, 8, 0, 2});
    commSetQueues(port, {4096, 512});
    commSetEvents(port, 507);
    commPending(port, level);
    commModemStatus(port, number);
    commRead(port, bytes, 4, number);
    commWrite(port, bytes, 3, number);
    commNamePrefix();
    commDevices(2);
    commClose(port);
    commClose(port);
    EXPECT_THAT(fakeCalls(),
                ElementsAre("commOpen COM5", "commDefault COM5", "commGetControl COM5",
                            "commSetControl COM5 9600 8 0 2 0x1010", "commSetQueues COM5 4096 512",
                            "commSetEvents COM5 507", "commRead COM5 4", "commWrite COM5 3", "commDevices 2",
                            "commClose COM5", "commClose closed"));
}

TEST_F(fakePorts, FailAsTheScriptSays)
{
    fakeFail("commOpen");
    EXPECT_EQ(commOpen("COM5"), commNone);
    const commHandle port = commOpen("COM5");
    ASSERT_NE(port, commNone);
    for (const char* const function : {"commDefault", "commGetControl", "commSetControl", "commQueueLimits",
                                       "commPending", "commRead", "commWrite", "commModemStatus"})
        fakeFail(function);
    commControl control;
    commQueue queue;
    commLevel level;
    uint32_t number = 0;
    EXPECT_FALSE(commDefault(port, control));
    EXPECT_FALSE(commGetControl(port, control));
    EXPECT_FALSE(commSetControl(port, control));
    EXPECT_FALSE(commQueueLimits(port, queue));
    EXPECT_FALSE(commPending(port, level));
    EXPECT_FALSE(commRead(port, &number, 1, number));
    EXPECT_FALSE(commWrite(port, &number, 1, number));
    EXPECT_FALSE(commModemStatus(port, number));
    EXPECT_TRUE(commPending(port, level));
    EXPECT_EQ(fakePortSent("COM5"), "");
}

TEST_F(fakePorts, KeepWhatTheDriverHas)
{
    fakePortControl("COM5", {19200, 0x11, 7, 2, 0});
    fakePortQueues("COM5", {100, 200});
    fakePortModem("COM5", commCTS);
    fakePortUnsent("COM5", 17);
    const commHandle port = commOpen("COM5");
    fakePortReceive("COM5", "abc");
    commControl control;
    commQueue queue;
    commLevel level;
    uint32_t status = 0;
    EXPECT_TRUE(commDefault(port, control));
    EXPECT_EQ(control.BaudRate, 19200u);
    EXPECT_TRUE(commSetControl(port, {4800}));
    EXPECT_EQ(fakePortSettings("COM5").BaudRate, 4800u);
    EXPECT_TRUE(commDefault(port, control));
    EXPECT_EQ(control.BaudRate, 19200u);
    EXPECT_TRUE(commQueueLimits(port, queue) && queue.Receive == 100 && queue.Transmit == 200);
    EXPECT_TRUE(commModemStatus(port, status) && status == commCTS);
    EXPECT_TRUE(commPending(port, level) && level.Received == 3 && level.Unsent == 17);
    EXPECT_EQ(fakePortHandles(), 1u);
    commClose(port);
    EXPECT_EQ(fakePortHandles(), 0u);
}

TEST_F(fakePorts, KeepWhatWasWrittenOverAClose)
{
    commHandle port = commOpen("COM5");
    EXPECT_TRUE(Write(port, "one "));
    commClose(port);
    port = commOpen("COM5");
    EXPECT_TRUE(Write(port, "two"));
    EXPECT_EQ(fakePortSent("COM5"), "one two");
}

TEST_F(fakePorts, GoOnWithAWriteWhenTheyAreUnblocked)
{
    const commHandle port = commOpen("COM5");
    fakePortBlockWrites("COM5", true);
    std::atomic<bool> written{false};
    const std::jthread writer([&] { written = Write(port, "late"); });
    EXPECT_TRUE(await([] { return fakeCallCount("commWrite") == 1; }));
    letOthersRun();
    EXPECT_FALSE(written);
    fakePortBlockWrites("COM5", false);
    EXPECT_TRUE(await([&] { return written.load(); }));
    EXPECT_EQ(fakePortSent("COM5"), "late");
}

TEST_F(fakePorts, AreNewWhenPluggedInAgain)
{
    const commHandle before = commOpen("COM5");
    fakePortGone("COM5");
    fakePort("COM5");
    commLevel level;
    EXPECT_FALSE(commPending(before, level));
    const commHandle after = commOpen("COM5");
    EXPECT_NE(after, commNone);
    commClose(before);
    EXPECT_TRUE(commPending(after, level));
    EXPECT_EQ(commOpen("COM5"), commNone);
}

TEST_F(fakePorts, AreForgottenByAReset)
{
    const commHandle port = commOpen("COM5");
    fakePortBlockWrites("COM5", true);
    std::atomic<bool> ended{false};
    const std::jthread writer([&] {
        Write(port, "never");
        ended = true;
    });
    EXPECT_TRUE(await([] { return fakeCallCount("commWrite") == 1; }));
    fakeNamePrefix("tty");
    fakeDevices(1, {{}, {}});
    EXPECT_EQ(commNamePrefix(), "tty");
    EXPECT_EQ(commDevices(1).size(), 2u);
    fakeReset();
    EXPECT_TRUE(await([&] { return ended.load(); }));
    EXPECT_EQ(commOpen("COM5"), commNone);
    EXPECT_EQ(fakePortHandles(), 0u);
    EXPECT_EQ(commNamePrefix(), "COM");
    EXPECT_TRUE(commDevices(1).empty());
    commClose(port);
}

}  // namespace
