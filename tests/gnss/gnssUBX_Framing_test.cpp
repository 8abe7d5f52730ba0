#include "gnss/gnssUBX.h"

#include "gnss/ubxChecksum.h"
#include "tests/fakes/fakes.h"
#include "tests/gnss/ubxLink.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstring>

using testing::ElementsAre;
using testing::IsEmpty;

namespace {

class gnssUBXFraming : public testing::Test
{
protected:
    void SetUp() override { fakeReset(); }

    ubxLink Link{false};
    gnssUBX& Receiver = Link.Receiver;
};

ubxFrame navDop(unsigned pDOP)
{
    return ubxFrame(0x01, 0x04).zeros(6).u2(pDOP).zeros(10);
}

// One byte after the other, as the protocol's description has it.
ubxChecksum PlainChecksum(const ubxBytes& bytes)
{
    ubxChecksum sum;
    for (const uint8_t byte : bytes) {
        sum.A = static_cast<uint8_t>(sum.A + byte);
        sum.B = static_cast<uint8_t>(sum.B + sum.A);
    }
    return sum;
}

}  // namespace

TEST_F(gnssUBXFraming, BlockedChecksumEqualsThePlainOneForEveryLengthAndContent)
{
    ubxBytes bytes;
    uint32_t random = 12345;
    for (size_t length = 0; length < 600; length++) {
        EXPECT_EQ(ubxChecksumOf(bytes.data(), bytes.size()), PlainChecksum(bytes)) << length;
        random = random * 1664525 + 1013904223;
        bytes.push_back(length % 7 == 0 ? uint8_t{0xFF} : static_cast<uint8_t>(random >> 24));
    }
    const ubxBytes ones(65'600, 0xFF);
    EXPECT_EQ(ubxChecksumOf(ones.data(), ones.size()), PlainChecksum(ones));
}

TEST_F(gnssUBXFraming, RepeatedFirstSyncBytesStartAFrame)
{
    feed(Receiver, ubxBytes{0xB5, 0xB5, 0xB5} + navDop(150));
    EXPECT_FLOAT_EQ(Receiver.PDOP, 1.5f);
}

TEST_F(gnssUBXFraming, AByteBetweenTheSyncBytesMakesNoiseOfThem)
{
    const ubxBytes frame = navDop(150);
    ubxBytes torn = frame;
    torn.insert(torn.begin() + 1, 0x00);
    feed(Receiver, torn);
    EXPECT_EQ(Receiver.PDOP, 0);
    EXPECT_TRUE(Receiver.IsIdle());
    feed(Receiver, frame);
    EXPECT_FLOAT_EQ(Receiver.PDOP, 1.5f);
}

TEST_F(gnssUBXFraming, DecodesAFrameCutAnywhereIntoThree)
{
    const ubxBytes frame = navDop(321);
    for (size_t first = 0; first <= frame.size(); first++) {
        for (size_t second = first; second <= frame.size(); second++) {
            gnssUBX receiver;
            receiver.Feed(frame.data(), first);
            EXPECT_EQ(receiver.IsIdle(), first == 0 || first == frame.size());
            receiver.Feed(frame.data() + first, second - first);
            receiver.Feed(frame.data() + second, frame.size() - second);
            EXPECT_FLOAT_EQ(receiver.PDOP, 3.21f) << first << " " << second;
            EXPECT_TRUE(receiver.IsIdle());
        }
    }
}

TEST_F(gnssUBXFraming, TellsHowFarTheFrameHasCome)
{
    const ubxBytes frame = navDop(100);
    EXPECT_EQ(Receiver.ParseState, gnssUBX::Parse::Idle);
    Receiver.Feed(frame.data(), 1);
    EXPECT_EQ(Receiver.ParseState, gnssUBX::Parse::SyncSeen);
    Receiver.Feed(frame.data() + 1, 1);
    EXPECT_EQ(Receiver.ParseState, gnssUBX::Parse::Collecting);
    EXPECT_FALSE(Receiver.IsIdle());
    Receiver.Feed(frame.data() + 2, frame.size() - 2);
    EXPECT_EQ(Receiver.ParseState, gnssUBX::Parse::Idle);
}

TEST_F(gnssUBXFraming, AFrameWithoutPayloadIsAGoodFrame)
{
    ubxLink link;
    link.Receiver.ConfigState = gnssUBX::State::Identify;
    EXPECT_THAT(link.Take(ubxFrame(0x01, 0x04)), ElementsAre(ubxSent{0x0A, 0x04, {}}));
    EXPECT_TRUE(link.Receiver.IsIdle());
}

TEST_F(gnssUBXFraming, ABadChecksumDropsTheFrameAndTheNextOneDecodes)
{
    ubxLink link;
    link.Receiver.ConfigState = gnssUBX::State::Identify;
    for (const size_t fromEnd : {size_t{1}, size_t{2}, size_t{9}}) {
        ubxBytes bad = navDop(500);
        bad[bad.size() - fromEnd] ^= 0x10;
        EXPECT_THAT(link.Take(bad), IsEmpty()) << "not even a step of the configuration";
        EXPECT_EQ(link.Receiver.PDOP, 0);
        EXPECT_TRUE(link.Receiver.IsIdle());
    }
    ubxBytes bad = navDop(500);
    bad.back() ^= 1;
    feed(link.Receiver, bad + navDop(200));
    EXPECT_FLOAT_EQ(link.Receiver.PDOP, 2.0f);
    EXPECT_EQ(link.NewData, 1u);
}

TEST_F(gnssUBXFraming, ACorruptedLengthSwallowsWhatFollowsUpToItsEnd)
{
    ubxBytes stream = {0xB5, 0x62, 0x01, 0x04, 0xFF, 0xFF};
    while (stream.size() < 0xFFFF + 8 - 30)
        stream = stream + navDop(500);
    stream.resize(0xFFFF + 8);
    feed(Receiver, stream);
    EXPECT_EQ(Receiver.PDOP, 0) << "the frames inside are not looked for";
    EXPECT_TRUE(Receiver.IsIdle());
    feed(Receiver, navDop(200));
    EXPECT_FLOAT_EQ(Receiver.PDOP, 2.0f);
}

TEST_F(gnssUBXFraming, AFailedStartCostsNoFrameBehindIt)
{
    feed(Receiver, ubxBytes{0xB5, 0x00} + navDop(150));
    EXPECT_FLOAT_EQ(Receiver.PDOP, 1.5f);
    feed(Receiver, ubxBytes{0xB5, 0xB5, 0x00, 0x62} + navDop(250));
    EXPECT_FLOAT_EQ(Receiver.PDOP, 2.5f);
}

TEST_F(gnssUBXFraming, FramesStandAmongOtherProtocols)
{
    const std::string_view text = "$GPGGA,,,,,,0,,,,,,,,*66\r\n";
    const ubxBytes nmea(text.begin(), text.end());
    feed(Receiver, nmea + navDop(150) + nmea + navDop(250) + nmea);
    EXPECT_FLOAT_EQ(Receiver.PDOP, 2.5f);
    EXPECT_EQ(Link.NewData, 2u);
}

TEST_F(gnssUBXFraming, ClassesWithoutAHandlerOnlyStepTheConfiguration)
{
    for (unsigned messageClass = 0; messageClass < 256; messageClass++) {
        ubxLink link;
        link.Receiver.ConfigState = gnssUBX::State::Identify;
        const auto sent = link.Take(ubxFrame(messageClass, 0xEE).zeros(40));
        EXPECT_THAT(sent, ElementsAre(ubxSent{0x0A, 0x04, {}})) << messageClass;
        EXPECT_EQ(link.NewData, 0u);
    }
}

TEST_F(gnssUBXFraming, TakesNothingFromAnEmptyChunk)
{
    Receiver.Feed(nullptr, 0);
    EXPECT_TRUE(Receiver.IsIdle());
}

// --- TIM-TP

TEST_F(gnssUBXFraming, ReadsTheTimeAndTheErrorOfTheNextPulse)
{
    const ubxFrame timTp = ubxFrame(0x0D, 0x01).u4(345'600'123).u4(0x80000000).i4(-1234).u2(2300).zeros(2);
    feed(Receiver, timTp);
    EXPECT_DOUBLE_EQ(Receiver.PPSTime, 345'600.1235);
    EXPECT_DOUBLE_EQ(Receiver.PPSError, -1234e-12);
    EXPECT_EQ(Receiver.PPSWeek, 2300);
    EXPECT_EQ(Link.NewData, 1u);
    EXPECT_EQ(Link.Pulses, 1u);
}

TEST_F(gnssUBXFraming, TellsNewDataBeforeThePulse)
{
    std::string order;
    Receiver.OnNewData = [&] { order += "data "; };
    Receiver.OnPPS = [&] { order += "pulse "; };
    feed(Receiver, ubxFrame(0x0D, 0x01).zeros(16));
    EXPECT_EQ(order, "data pulse ");
}

TEST_F(gnssUBXFraming, AShortPulseMessageOrAnotherOfItsClassIsIgnored)
{
    feed(Receiver, ubxFrame(0x0D, 0x01).u4(1).zeros(11));
    feed(Receiver, ubxFrame(0x0D, 0x04).u4(1).zeros(24));
    EXPECT_EQ(Receiver.PPSTime, 0);
    EXPECT_EQ(Link.NewData + Link.Pulses, 0u);
}

TEST_F(gnssUBXFraming, NeedsNoListeners)
{
    gnssUBX receiver;
    feed(receiver, ubxFrame(0x0D, 0x01).u4(1000).zeros(12) + navDop(150));
    EXPECT_DOUBLE_EQ(receiver.PPSTime, 1.0);
    EXPECT_FLOAT_EQ(receiver.PDOP, 1.5f);
}

// --- Construction, Restart, ResetReceiver, Send

TEST_F(gnssUBXFraming, BeginsWithZeroesAndOnePulseASecond)
{
    const gnssUBX receiver;
    EXPECT_EQ(receiver.Model, 0);
    EXPECT_EQ(receiver.ProtVer, 0);
    EXPECT_EQ(receiver.PortId, 0);
    EXPECT_EQ(receiver.PPSDuty, 0.0f);
    EXPECT_EQ(receiver.PPSRate, 1.0f);
    EXPECT_EQ(receiver.Select.Load(), ubxSignalSet());
    EXPECT_EQ(receiver.ConfigState, gnssUBX::State::Idle);
    EXPECT_EQ(receiver.PendingGNSS + receiver.PendingPPS + receiver.PendingSpectrum, 0);
    EXPECT_TRUE(receiver.IsIdle());
}

TEST_F(gnssUBXFraming, RestartAsksForTheVersion)
{
    ubxLink link;
    ubxBytes sent;
    link.Receiver.OnSend = [&](const uint8_t* bytes, size_t count) { sent.assign(bytes, bytes + count); };
    link.Receiver.Restart();
    EXPECT_THAT(sent, ElementsAre(0xB5, 0x62, 0x0A, 0x04, 0x00, 0x00, 0x0E, 0x34));
    EXPECT_EQ(link.Receiver.ConfigState, gnssUBX::State::Identify);
}

TEST_F(gnssUBXFraming, RestartForgetsWhatWasDecodedButNotTheVersion)
{
    ubxLink link;
    identify(link, 9, VersionClassic);
    gnssUBX& receiver = link.Receiver;
    feed(receiver, ubxFrame(0x01, 0x35).zeros(4).u1(1).u1(1).zeros(2).zeros(12) +
                       ubxFrame(0x01, 0x02).zeros(4).i4(85'000'000).i4(470'000'000).zeros(16));
    receiver.Select.Store(ubxSignalSet(~0u));
    receiver.PendingGNSS = 1;
    receiver.PendingPPS = 1;
    feed(receiver, {0xB5, 0x62, 0x01});
    receiver.Restart();
    EXPECT_EQ(receiver.Model, 0);
    EXPECT_EQ(receiver.ModelName(), "Unknown");
    EXPECT_THAT(receiver.Sats, IsEmpty());
    EXPECT_EQ(receiver.Valid, 0);
    EXPECT_DOUBLE_EQ(receiver.Latitude, 47.0) << "position keeps its value";
    EXPECT_EQ(receiver.Select.Load(), ubxSignalSet());
    EXPECT_EQ(receiver.PendingGNSS, 0);
    EXPECT_EQ(receiver.PendingPPS, 1) << "is a request that no restart takes back";
    EXPECT_EQ(receiver.PortId, gnssUBX::PortUnknown);
    EXPECT_EQ(receiver.ProtVer, 0x1200);
    EXPECT_TRUE(receiver.IsIdle());
}

TEST_F(gnssUBXFraming, ASecondRestartChangesNothing)
{
    ubxLink link;
    link.Receiver.Restart();
    link.Receiver.Restart();
    EXPECT_EQ(link.Receiver.ConfigState, gnssUBX::State::Identify);
    EXPECT_EQ(link.Receiver.Model, 0);
    EXPECT_THAT(link.Taken(), ElementsAre(ubxSent{0x0A, 0x04, {}}, ubxSent{0x0A, 0x04, {}}));
}

TEST_F(gnssUBXFraming, RestartWithoutAWayToTalkKeepsTheStateOfTheConfiguration)
{
    Receiver.ConfigState = gnssUBX::State::MsgTP;
    Receiver.Restart();
    EXPECT_EQ(Receiver.ConfigState, gnssUBX::State::MsgTP);
    EXPECT_EQ(Receiver.PortId, gnssUBX::PortUnknown);
}

TEST_F(gnssUBXFraming, ResetSendsAColdStartAndAsksForTheVersion)
{
    ubxLink link;
    ubxBytes sent;
    link.Receiver.OnSend = [&](const uint8_t* bytes, size_t count) {
        sent.insert(sent.end(), bytes, bytes + count);
    };
    link.Receiver.ResetReceiver();
    EXPECT_THAT(sent, ElementsAre(0xB5, 0x62, 0x06, 0x04, 0x04, 0x00, 0xFF, 0xFF, 0x00, 0x00, 0x0C, 0x5D,  //
                                  0xB5, 0x62, 0x0A, 0x04, 0x00, 0x00, 0x0E, 0x34));
    EXPECT_EQ(link.Receiver.ConfigState, gnssUBX::State::Identify);
}

TEST_F(gnssUBXFraming, ResetWithoutAWayToTalkDoesNothing)
{
    Receiver.Model = 9;
    Receiver.ResetReceiver();
    EXPECT_EQ(Receiver.Model, 9);
    EXPECT_EQ(Receiver.PortId, 0);
}

TEST_F(gnssUBXFraming, SendsFramesOfAnyLengthUpToTheLimit)
{
    ubxLink link;
    for (const size_t size : {size_t{0}, size_t{1}, size_t{255}, size_t{256}, size_t{0xFFFF}}) {
        const ubxBytes payload(size, 0xA7);
        link.Receiver.Send(0x13, 0x40, payload.data(), payload.size());
        EXPECT_TRUE(link.Taken() == std::vector({ubxSent{0x13, 0x40, payload}})) << size;
    }
}

TEST_F(gnssUBXFraming, SendingMoreThanALengthCanSayIsAFaultOfTheProgram)
{
    ubxLink link;
    const ubxBytes payload(0x10000);
    EXPECT_THROW(link.Receiver.Send(0x13, 0x40, payload.data(), payload.size()), fakeBreak);
    fakeBreakReturns(true);
    link.Receiver.Send(0x13, 0x40, payload.data(), payload.size());
    EXPECT_THAT(link.Taken(), IsEmpty()) << "never a truncation";
    EXPECT_NE(fakeDebugText(), "");
}

TEST_F(gnssUBXFraming, SendingWithoutAWayToTalkDoesNothing)
{
    Receiver.Send(0x13, 0x40, nullptr, 0x10000);
    EXPECT_EQ(fakeDebugText(), "");
}
