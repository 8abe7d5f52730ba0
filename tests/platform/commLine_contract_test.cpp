// The settings of a line.
#include "platform/commRate.h"
#include "tests/platform/commTest.h"

namespace {

using commLineContract = commTest;

TEST_F(commLineContract, StartsWithSettingsThatTheDriverTakes)
{
    commControl control;
    ASSERT_TRUE(commDefault(Port, control));
    EXPECT_GT(control.BaudRate, 0u);
    EXPECT_TRUE(commSetControl(Port, control));
}

TEST_F(commLineContract, ReadsSettingsBack)
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

TEST_F(commLineContract, TakesRatesThatAreInNoTable)
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

TEST_F(commLineContract, TellsWhenARateWasNotTaken)
{
    for (const uint32_t rate : {14400u, 31250u, 128000u, 250000u, 921600u, 1'000'000u}) {
        commControl control;
        const bool taken = commSetControl(Port, {rate});
        ASSERT_TRUE(commGetControl(Port, control));
        EXPECT_EQ(taken, control.BaudRate == rate) << rate;
    }
}

TEST_F(commLineContract, RefusesSettingsThatAreNone)
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

TEST_F(commLineContract, TakesParityThoughAVirtualPortMayIgnoreIt)
{
    for (uint8_t parity = 0; parity <= 4; ++parity)
        EXPECT_TRUE(commSetControl(Port, {9600, parity > 0 ? commFlag::Parity : 0, 8, parity, 0}));
}

TEST_F(commLineContract, TakesWishesForQueuesAndEvents)
{
    commQueue limits;
    EXPECT_TRUE(commQueueLimits(Port, limits));
    commSetQueues(Port, {4096, 4096});
    commSetEvents(Port, 0x1FB);
    EXPECT_TRUE(Write("and goes on"));
}

TEST_F(commLineContract, HasNoClearToSendOnALineWithoutOne)
{
    uint32_t status = 0xFFFF;
    EXPECT_TRUE(commModemStatus(Port, status));
    EXPECT_EQ(status & commCTS, 0u);
}

TEST(commRates, AreNearWithinThreePerCent)
{
    struct rateRow {
        uint32_t Asked;
        uint32_t Taken;
        bool IsNear;
    };
    constexpr rateRow Rows[] = {
        {9600, 9600, true},  {9600, 9900, true},
        {9600, 9901, false}, {9600, 9300, true},
        {9600, 9299, false}, {115200, 0, false},
        {0, 9600, false},    {0xFFFFFFFF, 9600, false},
        {3, 3, true},        {0xFFFFFFFF, 0xFFFFFFFF, true},
    };
    for (const rateRow& row : Rows)
        EXPECT_EQ(commRateIsNear(row.Asked, row.Taken), row.IsNear) << row.Asked << ' ' << row.Taken;
}

}  // namespace
