#include "gnss/gnssTSIP.h"
#include "tests/gnss/tsipPacket.h"

#include <gmock/gmock.h>

#include <string>
#include <vector>

namespace {

using std::string_literals::operator""s;
using testing::ElementsAre;
using testing::IsEmpty;
using Framing = gnssTSIP::Framing;
using Identification = gnssTSIP::Identification;

const std::string VersionRequest = command({0x10, 0x1C, 0x03, 0x10, 0x03});

TEST_F(gnssTSIPTest, StartsWithTheFieldsOfAReceiverThatIsNotKnown)
{
    EXPECT_EQ(Receiver.Ident, Identification::Asked);
    EXPECT_EQ(Receiver.ParseState, Framing::Outside);
    EXPECT_EQ(Receiver.DecodeStatus, 0xFF);
    EXPECT_EQ(Receiver.PPSBase, 1);
    EXPECT_EQ(Receiver.RXMode, 8);
    EXPECT_EQ(Receiver.Status, 0);
    EXPECT_EQ(Receiver.RequestTime, 1'000'000'000) << "the fake clock's start";
    EXPECT_THAT(Receiver.Packet, IsEmpty());
    EXPECT_THAT(Listener.Sent, IsEmpty());
}

TEST_F(gnssTSIPTest, FollowsTheFramingByteByByte)
{
    struct row {
        Framing Before;
        char Byte;
        Framing After;
    };
    constexpr row rows[] = {
        {Framing::Outside, '\x10', Framing::Opened},    {Framing::Outside, '\x03', Framing::Outside},
        {Framing::Outside, 'x', Framing::Outside},      {Framing::Opened, '\x10', Framing::Outside},
        {Framing::Opened, '\x03', Framing::Outside},    {Framing::Opened, '\x01', Framing::InPacket},
        {Framing::InPacket, '\x10', Framing::AfterDLE}, {Framing::InPacket, '\x03', Framing::InPacket},
        {Framing::InPacket, 'x', Framing::InPacket},    {Framing::AfterDLE, '\x10', Framing::InPacket},
        {Framing::AfterDLE, '\x03', Framing::Outside},  {Framing::AfterDLE, 'x', Framing::Outside},
    };
    for (const row& each : rows) {
        Receiver.ParseState = each.Before;
        Feed(std::string(1, each.Byte));
        EXPECT_EQ(Receiver.ParseState, each.After) << int(each.Before) << ' ' << int{each.Byte};
    }
}

TEST_F(gnssTSIPTest, TakesStuffingOut)
{
    Feed("\x10\x47\x10\x10\x01\x10\x10"s);
    EXPECT_THAT(Receiver.Packet, ElementsAre(0x47, 0x10, 0x01, 0x10));
}

TEST_F(gnssTSIPTest, EmptiesThePacketAtAnOpeningAndKeepsItAtAnEnd)
{
    Feed("\x10\x01\x02\x10\x03"s);
    EXPECT_THAT(Receiver.Packet, ElementsAre(0x01, 0x02));
    Feed("\x10"s);
    EXPECT_THAT(Receiver.Packet, IsEmpty());
}

TEST_F(gnssTSIPTest, TakesAnEndDirectlyAfterAFrameForNoPacket)
{
    Feed("\x10\x01\x10\x03"s);
    EXPECT_EQ(Receiver.Ident, Identification::Waiting);
    Feed("\x10\x03"s);
    EXPECT_EQ(Receiver.Ident, Identification::Waiting);
    EXPECT_EQ(Receiver.ParseState, Framing::Outside);
}

TEST_F(gnssTSIPTest, DropsAPacketWithABadTrailer)
{
    Feed("\x10\x46\x05\x10\x04\x10\x03"s);
    EXPECT_EQ(Receiver.DecodeStatus, 0xFF);
    EXPECT_EQ(Receiver.Ident, Identification::Asked);
    Feed(tsip(0x46).u1(5));
    EXPECT_EQ(Receiver.DecodeStatus, 5);
}

TEST_F(gnssTSIPTest, StoresOnlyTheBeginningOfAPacketWithoutEnd)
{
    Feed("\x10\x46\x07"s);
    for (int i = 0; i < 100; ++i)
        Feed(std::string(10000, 'x') + "\x10\x10");
    EXPECT_EQ(Receiver.Packet.size(), gnssTSIP::PacketLimit);
    Feed("\x10\x03"s);
    EXPECT_EQ(Receiver.DecodeStatus, 7) << "decoded as if it were whole";
}

TEST_F(gnssTSIPTest, HoldsTheLongestReportThere)
{
    tsip longest(0x47);
    longest.u1(255);
    for (unsigned i = 0; i < 255; ++i)
        longest.u1(255 - i).r4(static_cast<float>(i));
    EXPECT_LE(longest.size(), gnssTSIP::PacketLimit);
    Feed(longest);
    ASSERT_EQ(Receiver.Sats.size(), 255U);
    EXPECT_EQ(Receiver.Sats[0].SvId, 1);
    EXPECT_EQ(Receiver.Sats[254].SNR, 0);
}

TEST_F(gnssTSIPTest, DecodesNothingWithoutAPacket)
{
    Receiver.Decode();
    EXPECT_EQ(Receiver.Ident, Identification::Asked);
    Receiver.Feed(nullptr, 0);
    EXPECT_EQ(Receiver.ParseState, Framing::Outside);
}

TEST_F(gnssTSIPTest, AsksForTheVersionAtEverySecondPacket)
{
    for (int i = 0; i < 3; ++i) {
        Feed(anyPacket());
        EXPECT_EQ(Receiver.Ident, Identification::Waiting);
        EXPECT_THAT(TakeSent(), IsEmpty());
        Feed(anyPacket());
        EXPECT_EQ(Receiver.Ident, Identification::Asked);
        EXPECT_THAT(TakeSent(), ElementsAre(VersionRequest));
    }
}

TEST_F(gnssTSIPTest, ForgetsWhatItDecodedWithEachNewVersionRequest)
{
    Feed(tsip(0x46).u1(5) + levels({{5, 40}}));
    EXPECT_EQ(Receiver.DecodeStatus, 0xFF);
    EXPECT_THAT(Receiver.Sats, IsEmpty());
}

TEST_F(gnssTSIPTest, AsksForTheSoftwareVersionOnceTheRequestIsRejected)
{
    const std::string request = command({0x10, 0x1F, 0x10, 0x03});
    Feed(tsip(0x13).u1(0x1C));
    EXPECT_EQ(Receiver.Ident, Identification::Rejected);
    EXPECT_THAT(TakeSent(), ElementsAre(request));
    Feed(anyPacket() + anyPacket());
    EXPECT_THAT(TakeSent(), ElementsAre(request, request)) << "on every packet";
    Feed(tsip(0x45).zeros(10));
    EXPECT_EQ(Receiver.Ident, Identification::Known);
    EXPECT_EQ(Receiver.Model, 5);
    EXPECT_THAT(TakeSent(), ElementsAre(command({0x10, 0x35, 0x10, 0x03})));
}

TEST_F(gnssTSIPTest, IgnoresTheRejectionOfOtherRequests)
{
    Feed(tsip(0x13).u1(0x1D));
    EXPECT_EQ(Receiver.Ident, Identification::Waiting);
}

TEST_F(gnssTSIPTest, TakesASoftwareVersionForAnAnswerOnlyAfterARejection)
{
    Feed(tsip(0x45).zeros(10));
    EXPECT_EQ(Receiver.Model, 0);
    EXPECT_EQ(Receiver.Ident, Identification::Waiting);
    EXPECT_THAT(TakeSent(), IsEmpty());
}

TEST_F(gnssTSIPTest, KnowsTheAcutimeByItsHardwareVersion)
{
    Feed(tsip(0x1C).u1(0x83).zeros(9).u2(3001).zeros(4));
    EXPECT_EQ(Receiver.Model, 3);
    EXPECT_EQ(Receiver.Ident, Identification::Known);
    EXPECT_THAT(TakeSent(), ElementsAre(command({0x10, 0x35, 0x10, 0x03}),
                                        command({0x10, 0x8E, 0xA5, 0x00, 0xE0, 0x00, 0x00, 0x10, 0x03})));
    Feed(anyPacket() + anyPacket() + anyPacket());
    EXPECT_THAT(TakeSent(), IsEmpty());
}

TEST_F(gnssTSIPTest, KnowsNobodyByOtherHardware)
{
    Feed(tsip(0x1C).u1(0x83).zeros(9).u2(3002));
    Feed(tsip(0x1C).u1(0x81).zeros(9).u2(3001));
    EXPECT_EQ(Receiver.Model, 0);
}

TEST_F(gnssTSIPTest, KnowsModelsByTheirMachineCode)
{
    Feed(machine(MachineLassen));
    EXPECT_EQ(Receiver.Model, 4);
    EXPECT_EQ(Receiver.Ident, Identification::Known);
    Feed(machine(MachineAcutime));
    EXPECT_EQ(Receiver.Model, 3) << "models replace each other";
    Feed(machine(0x00));
    EXPECT_EQ(Receiver.Model, 3);
    EXPECT_EQ(Receiver.Status, 0);
    Feed(machine(0x00, 0xF7));
    EXPECT_EQ(Receiver.Status, 0);
    Feed(machine(0x00, 0x08));
    EXPECT_EQ(Receiver.Status, 1 << 11);
    Feed(machine(0x00, 0x00));
    EXPECT_EQ(Receiver.Status, 1 << 11) << "this report only sets the bit";
    EXPECT_EQ(Listener.NewData, 0U);
}

TEST_F(gnssTSIPTest, RestartsWithEverythingBelongingToTheReceiverForgotten)
{
    Know(4);
    Feed(std::string(tsip(0x46).u1(5)) + "\x10\x46\x07");
    Receiver.PPSBase = 3;
    Receiver.Restart();
    EXPECT_EQ(Receiver.Model, 0);
    EXPECT_EQ(Receiver.Ident, Identification::Asked);
    EXPECT_EQ(Receiver.DecodeStatus, 0xFF);
    EXPECT_EQ(Receiver.PPSBase, 3);
    EXPECT_THAT(TakeSent(), ElementsAre(VersionRequest));
    Feed("\x10\x03"s);
    EXPECT_EQ(Receiver.DecodeStatus, 0xFF) << "the packet that was under way is forgotten";
}

TEST_F(gnssTSIPTest, ResetsTheReceiverThenRestarts)
{
    Know(3);
    Receiver.ResetReceiver();
    EXPECT_THAT(TakeSent(), ElementsAre(command({0x10, 0x1E, 0x46, 0x10, 0x03}), VersionRequest));
    EXPECT_EQ(Receiver.Model, 0);
}

TEST_F(gnssTSIPTest, IsSilentWhileNobodyCanSend)
{
    Receiver.OnSend = nullptr;
    Receiver.OnNewData = nullptr;
    fakeClockMove(2'000'000'000);
    Receiver.ResetReceiver();
    Receiver.PPSSetup(2);
    Know(3);
    Receiver.ReceiverModeSet(3);
    Feed(tsip(0x55).zeros(4) + primaryTiming({.Flags = 0}) + tsip(0x4A).zeros(20) + anyPacket());
    EXPECT_EQ(Receiver.PPSBase, 2);
    EXPECT_EQ(Receiver.RequestTime, 1'000'000'000) << "a round that was not sent does not count";
}

TEST_F(gnssTSIPTest, DecodesTheSameHoweverTheStreamIsCut)
{
    std::string stream = "noise\x10\x10\x10\x03" + anyPacket() + machine(MachineLassen) +
                         levels({{16, 40}, {3, 41}, {16, 42}}) + allInView({3, 16});
    stream += tsip(0x5C).u1(16).zeros(11).r4(0.5F).r4(1.5F) + tsip(0x41).r4(345600).u2(400).r4(13);
    stream +=
        tsip(0x84).r8(0.5).r8(-0.25).r8(100).zeros(8).r4(90000) + primaryTiming({.Flags = 0, .Year = 2006});
    stream +=
        tsip(0x55).u1(0x10).u1(0x10).u1(0x10).u1(0x10) + tsip(0x56).r4(1).r4(2) + "\x10\x46\x07\x10\x09";
    stream += tsip(0x8F, 0xAD).zeros(2).r8(0.25).u1(1).u1(2).u1(3).u1(4).u1(5).u2(2006) + tsip(0x46).u1(3);
    stream += tsip(0x8F, 0xAC).zeros(70) + tsip(0x8F, 0x0B).zeros(70) + tsip(0x4A).r4(12).zeros(5);
    expectSameHoweverCut<gnssTSIP>(stream, describeTSIP);
    expectSameHoweverCut<gnssTSIP>(stream + "\x10\x47\x10", describeTSIP);
}

TEST_F(gnssTSIPTest, IgnoresReportsThatAreTooShort)
{
    const tsip reports[] = {
        tsip(0x13).u1(0x1C),
        tsip(0x1C).u1(0x83).zeros(9).u2(3001),
        tsip(0x41).r4(345600).u2(400).r4(13),
        tsip(0x46).u1(5),
        levels({{5, 40}}),
        tsip(0x4A).r4(1).r4(1).r4(5).r4(0).r4(7),
        tsip(0x4B).u1(MachineLassen).u1(8),
        tsip(0x55).zeros(4),
        tsip(0x56).r4(1).r4(2),
        tsip(0x5C).u1(7).zeros(11).r4(0.5F).r4(1.5F),
        allInView({7}),
        tsip(0x84).r8(1).r8(1).r8(5).zeros(8).r4(7),
        tsip(0x8F, 0x0B).zeros(2).r8(5).zeros(47).r8(7),
        primaryTiming({.TimeOfWeek = 5, .Flags = 0}),
        tsip(0x8F, 0xAC).u1(3).zeros(58).r4(7),
        tsip(0x8F, 0xAD).zeros(2).r8(5).zeros(7),
    };
    for (const tsip& report : reports) {
        for (size_t length = 1; length < report.size(); ++length) {
            SCOPED_TRACE(length);
            // 10 bytes of 0x4A are a report of their own.
            tsip part = report;
            const std::string frame = part.cut(length);
            if (frame[1] == 0x4A && length == 10)
                continue;
            decoderListener<gnssTSIP> fresh;
            gnssTSIP& receiver = fresh.Receiver;
            receiver.Model = 3;
            receiver.Ident = Identification::Asked;
            receiver.Sats.push_back({.SNR = 3, .SvId = 7});
            fakeClockMove(1'000'000'000);
            const std::string before = describeTSIP(receiver);
            fresh.Feed(frame);
            EXPECT_EQ(receiver.Ident, Identification::Waiting) << "identification still goes on";
            receiver.Ident = Identification::Asked;
            EXPECT_EQ(describeTSIP(receiver), before);
            EXPECT_THAT(fresh.Log, IsEmpty());
        }
    }
}

}  // namespace
