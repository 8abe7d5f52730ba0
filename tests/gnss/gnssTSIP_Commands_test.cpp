#include "gnss/gnssTSIP.h"
#include "tests/gnss/tsipPacket.h"

#include <gmock/gmock.h>

#include <string>

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr int64_t JustNot = 900'000'000;

TEST_F(gnssTSIPTest, AsksForUTCAtEachReportInGPSTimeUntilTheReceiverObeys)
{
    struct row {
        uint8_t Model;
        std::string Command;
    };
    const row rows[] = {{3, command({0x10, 0x35, 0x10, 0x03})},
                        {5, command({0x10, 0x8E, 0xA2, 0x03, 0x10, 0x03})}};
    for (const row& each : rows) {
        Know(each.Model);
        Feed(primaryTiming({.Flags = 0}) + primaryTiming({.Flags = 0xFE}));
        EXPECT_THAT(TakeSent(), ElementsAre(each.Command, each.Command));
        Feed(primaryTiming({.Flags = 1}));
        EXPECT_THAT(TakeSent(), IsEmpty());
    }
    for (const uint8_t model : {uint8_t{0}, uint8_t{4}}) {
        Know(model);
        Feed(primaryTiming({.Flags = 0}));
        EXPECT_THAT(TakeSent(), IsEmpty());
    }
}

TEST_F(gnssTSIPTest, EndsTheDialogueOfOptionsOnceAllAreSet)
{
    Know(3);
    Feed(tsip(0x55).u1(0x1C).u1(0x02).u1(0x01).u1(0x00));
    Feed(tsip(0x55).u1(0xFF).u1(0xFF).u1(0xFF).u1(0xFF));
    EXPECT_THAT(TakeSent(), IsEmpty());
    EXPECT_EQ(Listener.NewData, 0U);
}

TEST_F(gnssTSIPTest, SetsTheOptionsThatAreMissing)
{
    struct row {
        unsigned d0, d1, d2, d3;
        uint8_t s0, s1, s2, s3;
    };
    constexpr row rows[] = {
        {0x00, 0x00, 0x00, 0x00, 0x1C, 0x02, 0x01, 0x00}, {0x18, 0x02, 0x01, 0x55, 0x1C, 0x02, 0x01, 0x55},
        {0x14, 0x02, 0x01, 0xAA, 0x1C, 0x02, 0x01, 0xAA}, {0x0C, 0x02, 0x01, 0x00, 0x1C, 0x02, 0x01, 0x00},
        {0x1C, 0x01, 0x01, 0x00, 0x1C, 0x03, 0x01, 0x00}, {0x1C, 0x02, 0x20, 0x00, 0x1C, 0x02, 0x21, 0x00},
        {0x20, 0x10, 0x10, 0x10, 0x3C, 0x12, 0x11, 0x10},
    };
    Know(3);
    for (const row& each : rows) {
        Feed(tsip(0x55).u1(each.d0).u1(each.d1).u1(each.d2).u1(each.d3));
        EXPECT_THAT(TakeSent(),
                    ElementsAre(command({0x10, 0x35, each.s0, each.s1, each.s2, each.s3, 0x10, 0x03})))
            << "sent as it stands, without stuffing";
    }
}

TEST_F(gnssTSIPTest, PollsOncePerNineTenthsOfASecond)
{
    Know(3);
    const auto round =
        ElementsAre(command({0x10, 0x2A, 0x10, 0x03}), command({0x10, 0x24, 0x10, 0x03}),
                    command({0x10, 0x27, 0x10, 0x03}), command({0x10, 0x3C, 0x00, 0x10, 0x03}));
    const std::string reports[] = {tsip(0x4A).zeros(20), tsip(0x84).zeros(36), primaryTiming({})};
    for (const std::string& report : reports) {
        fakeClockMove(JustNot);
        Feed(report);
        EXPECT_THAT(TakeSent(), IsEmpty());
        fakeClockMove(1);
        Feed(report);
        EXPECT_THAT(TakeSent(), round);
        Feed(report);
        EXPECT_THAT(TakeSent(), IsEmpty());
    }
}

TEST_F(gnssTSIPTest, PollsBeforeItTellsOfNewData)
{
    Know(3);
    fakeClockMove(2 * JustNot);
    Feed(primaryTiming({.Flags = 0}));
    ASSERT_EQ(Listener.Log.size(), 6U);
    EXPECT_EQ(Listener.Log.front(), "sent " + command({0x10, 0x35, 0x10, 0x03}));
    EXPECT_EQ(Listener.Log.back(), "new data");
}

TEST_F(gnssTSIPTest, PollsAtNoOtherReport)
{
    Know(3);
    fakeClockMove(2 * JustNot);
    Feed(tsip(0x4A).zeros(9) + tsip(0x56).zeros(8) + tsip(0x8F, 0xAC).zeros(63) + tsip(0x8F, 0x0B).zeros(65) +
         tsip(0x8F, 0xAD).zeros(17));
    EXPECT_THAT(TakeSent(), IsEmpty());
}

TEST_F(gnssTSIPTest, KeepsThePulseSettingAndSendsIt)
{
    Receiver.PPSSetup(2);
    EXPECT_EQ(Receiver.PPSBase, 2);
    const std::vector<std::string> sent = TakeSent();
    EXPECT_THAT(sent, ElementsAre(command({0x10, 0x8E, 0x4A, 0x02, 0x01, 0,    0, 0, 0,    0,
                                           0,    0,    0,    0,    0x43, 0x96, 0, 0, 0x10, 0x03})));
    EXPECT_EQ(sent[0].size(), 20U);
    Receiver.PPSSetup(0x10);
    EXPECT_EQ(TakeSent().at(0)[3], 0x10);
}

TEST_F(gnssTSIPTest, SetsTheDynamicsOfTheAcutime)
{
    struct row {
        uint8_t Dynamics;
        uint8_t Survey;
        char Code;
    };
    constexpr row rows[] = {{0, 1, 4}, {1, 0, 1}, {2, 0, 2}, {3, 0, 3}, {4, 0, 0}, {255, 0, 0}};
    const std::string first = command({0x10, 0x8E, 0xA6, 0x00, 0x10, 0x03});
    for (const row& each : rows) {
        Know(3);
        Receiver.ReceiverModeSet(each.Dynamics);
        const std::string last = command({0x10, 0xBB, 0x00, 0xFF, 0xFF}) + each.Code +
                                 std::string(39, '\xFF') + command({0x10, 0x03});
        ASSERT_EQ(last.size(), 47U);
        EXPECT_THAT(TakeSent(), ElementsAre(first,
                                            command({0x10, 0x8E, 0xA9, each.Survey, 0, 0, 0, 0x07, 0xD0, 0, 0,
                                                     0, 0, 0x10, 0x03}),
                                            first, last));
    }
    for (const uint8_t model : {uint8_t{0}, uint8_t{4}, uint8_t{5}}) {
        Know(model);
        Receiver.ReceiverModeSet(3);
        EXPECT_THAT(TakeSent(), IsEmpty());
    }
}

}  // namespace
