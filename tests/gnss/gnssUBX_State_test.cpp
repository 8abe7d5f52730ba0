#include "gnss/gnssUBX.h"

#include "tests/fakes/fakes.h"
#include "tests/gnss/ubxScript.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using testing::ElementsAre;
using testing::IsEmpty;
using State = gnssUBX::State;

namespace {

class gnssUBXState : public testing::Test
{
protected:
    void SetUp() override { fakeReset(); }
};

const ubxSent PollVersion = {0x0A, 0x04, {}};
const ubxSent PollComms = {0x0A, 0x36, {}};
const ubxSent PollGnss = {0x06, 0x3E, {}};
const ubxSent PollPulse = {0x06, 0x31, {}};
const ubxSent PollSpectrum = {0x0A, 0x31, {}};

ubxSent Polled(const std::vector<uint32_t>& keys)
{
    ubxFrame frame(0x06, 0x8B);
    frame.u4(0);
    for (const uint32_t key : keys)
        frame.u4(key);
    return {0x06, 0x8B, frame.payload()};
}

const ubxSent PollSignalKeys = {0x06, 0x8B, {0, 0, 0, 0, 0xFF, 0xFF, 0x31, 0x00}};

ubxSent PollPulseKeys()
{
    return Polled({0x20050023, 0x20050030, 0x40050002, 0x40050024, 0x40050004, 0x5005002A});
}

ubxSent Message(uint8_t messageClass, uint8_t id)
{
    return {0x06, 0x01, {messageClass, id, 1}};
}

ubxSent MessageKeys(unsigned port)
{
    ubxFrame frame(0x06, 0x8A);
    frame.u4(0x100);
    for (const uint32_t key :
         {0x20910038u, 0x20910029u, 0x20910015u, 0x20910345u, 0x2091005Bu, 0x20910042u, 0x2091017Du})
        frame.u4(key + port).u1(1);
    return {0x06, 0x8A, frame.payload()};
}

// A decoder in some state of the configuration of some receiver.
struct situation {
    situation(State state, uint8_t model, uint16_t protVer)
    {
        Link.Receiver.Model = model;
        Link.Receiver.ProtVer = protVer;
        Link.Receiver.PortId = 2;
        Link.Receiver.ConfigState = state;
    }

    ubxLink Link;
};

struct transition {
    unsigned Message;
    State Before;
    std::vector<ubxSent> Sent;
    State After;
};

// All that acknowledgements do to a receiver that is configured by keys, or not.
std::vector<transition> Transitions(bool keys, bool signals)
{
    const ubxSent poll = keys ? PollSignalKeys : PollGnss;
    return {
        {0x00, State::PortPoll, {{0x06, 0x00, ubxBytes(20)}}, State::PortSet},
        {0x00, State::PortSet, {poll}, State::SignalsRead},
        {0x01, State::MsgDOP, {Message(1, 0x02)}, State::MsgPOSLLH},
        {0x01, State::MsgPOSLLH, {Message(1, 0x35)}, State::MsgSat},
        {0x01,
         State::MsgSat,
         {Message(1, signals ? 0x43 : 0x21)},
         signals ? State::MsgSIG : State::MsgTIMEUTC},
        {0x01, State::MsgSIG, {Message(1, 0x21)}, State::MsgTIMEUTC},
        {0x01, State::MsgTIMEUTC, {Message(1, 0x12)}, State::MsgVELNED},
        {0x01, State::MsgVELNED, {Message(0x0D, 0x01)}, State::MsgTP},
        {0x01, State::MsgTP, {PollPulse}, State::PulseRead},
        {0x01, State::PulseRead, {}, State::Idle},
        {0x31, State::PulseRead, {}, State::Idle},
        {0x31, State::PulseSet, {}, State::Idle},
        {0x3E, State::SignalsRead, {Message(1, 0x04)}, State::MsgDOP},
        {0x3E, State::SelectRead, {{0x06, 0x3E, {0, 0, 0, 0}}}, State::SelectSet},
        {0x3E, State::SelectSet, {poll}, State::SelectVerify},
        {0x3E, State::SelectVerify, {}, State::Idle},
        {0x8A, State::PortSet, {poll}, State::SignalsRead},
        {0x8A, State::MsgTP, {PollPulseKeys()}, State::PulseRead},
        {0x8A, State::PulseSet, {}, State::Idle},
        {0x8A, State::SelectSet, {poll}, State::SelectVerify},
        {0x8B, State::SignalsRead, {MessageKeys(2)}, State::MsgTP},
        {0x8B, State::PulseRead, {}, State::Idle},
        {0x8B, State::SelectVerify, {}, State::Idle},
    };
}

transition Expected(const std::vector<transition>& table, unsigned message, State state)
{
    if (state == State::Identify)
        return {message, state, {PollVersion}, State::Identify};
    for (const transition& row : table)
        if (row.Message == message && row.Before == state)
            return row;
    return {message, state, {}, state};
}

ubxFrame comms(const std::vector<std::pair<unsigned, uint32_t>>& ports)
{
    ubxFrame frame(0x0A, 0x36);
    frame.u1(0).u1(ports.size()).zeros(6);
    for (const auto& [id, rxBytes] : ports)
        frame.u2(id).zeros(10).u4(rxBytes).zeros(24);
    return frame;
}

}  // namespace

// --- Acknowledgements

TEST_F(gnssUBXState, EveryAcknowledgementInEveryStateDoesWhatItsRowSaysAndNothingElse)
{
    struct {
        uint8_t Model;
        uint16_t ProtVer;
        bool Keys, Signals;
    } constexpr Receivers[] = {{8, 0x1200, false, false}, {9, 0x1701, false, true}, {14, 0x1702, true, true}};
    for (const auto& receiver : Receivers) {
        const auto table = Transitions(receiver.Keys, receiver.Signals);
        for (unsigned state = 0; state <= 18; state++) {
            for (unsigned message = 0; message < 256; message++) {
                situation now(State(state), receiver.Model, receiver.ProtVer);
                const transition row = Expected(table, message, State(state));
                EXPECT_EQ(now.Link.Take(ack(message)), row.Sent) << state << " " << message;
                EXPECT_EQ(now.Link.Receiver.ConfigState, row.After) << state << " " << message;
            }
        }
    }
}

TEST_F(gnssUBXState, OnlyARefusedSelectionByKeysIsTakenLikeAnAcknowledgement)
{
    for (unsigned state = 0; state <= 18; state++) {
        if (State(state) == State::Identify)
            continue;
        for (unsigned message = 0; message < 256; message++) {
            situation now(State(state), 14, 0x2200);
            const bool counts = State(state) == State::SelectSet && message == 0x8A;
            const auto sent = now.Link.Take(nak(message));
            EXPECT_EQ(sent, counts ? std::vector{PollSignalKeys} : std::vector<ubxSent>{}) << state;
            EXPECT_EQ(now.Link.Receiver.ConfigState, counts ? State::SelectVerify : State(state)) << state;
        }
    }
}

TEST_F(gnssUBXState, AcknowledgementsOfAnotherClassOrKindDoNothing)
{
    for (unsigned messageClass = 0; messageClass < 256; messageClass++) {
        situation now(State::SelectSet, 14, 0x2200);
        now.Link.Take(ack(0x8A, messageClass));
        EXPECT_EQ(now.Link.Receiver.ConfigState, messageClass == 6 ? State::SelectVerify : State::SelectSet);
    }
    for (unsigned id = 2; id < 256; id++) {
        situation now(State::SelectSet, 14, 0x2200);
        now.Link.Take(ubxFrame(0x05, id).u1(6).u1(0x8A));
        EXPECT_EQ(now.Link.Receiver.ConfigState, State::SelectSet);
    }
}

TEST_F(gnssUBXState, AnAcknowledgementMayBeLongerButNotShorterThanTwoBytes)
{
    for (const auto& frame : {ubxFrame(0x05, 0x01), ubxFrame(0x05, 0x01).u1(6)}) {
        situation now(State::PortPoll, 8, 0x1200);
        EXPECT_THAT(now.Link.Take(frame), IsEmpty());
    }
    situation now(State::PulseSet, 8, 0x1200);
    now.Link.Take(ack(0x31).zeros(9));
    EXPECT_EQ(now.Link.Receiver.ConfigState, State::Idle);
}

// --- What MON-VER begins

TEST_F(gnssUBXState, TheProtocolVersionChoosesTheRoad)
{
    struct {
        std::string_view Extension;
        ubxSent Sent;
        State After;
    } const Cases[] = {
        {"PROTVER=23.01", {0x06, 0x00, {1}}, State::PortPoll},
        {"PROTVER=23.02", PollComms, State::CommsFirst},
        {"FWVER=none", {0x06, 0x00, {1}}, State::PortPoll},
        {"PROTVER=34.10", PollComms, State::CommsFirst},
    };
    for (const auto& row : Cases) {
        ubxLink link;
        link.Receiver.Restart();
        link.Sent.clear();
        EXPECT_THAT(link.Take(monVer("00190000", {row.Extension})), ElementsAre(row.Sent)) << row.Extension;
        EXPECT_EQ(link.Receiver.ConfigState, row.After);
    }
}

TEST_F(gnssUBXState, WithoutAWayToTalkNothingIsConfigured)
{
    for (unsigned state = 0; state <= 18; state++) {
        ubxLink link(false);
        link.Receiver.ConfigState = State(state);
        feed(link.Receiver, monVerOf(9, VersionKeys));
        EXPECT_EQ(link.Receiver.Model, 9) << state;
        EXPECT_EQ(link.Receiver.ConfigState, State::Idle) << state;
    }
}

TEST_F(gnssUBXState, APortThatIsKnownIsKeptOnTheClassicRoad)
{
    ubxLink link;
    link.Receiver.PortId = 3;
    EXPECT_THAT(link.Take(monVerOf(8, VersionClassic)), ElementsAre(ubxSent{0x06, 0x00, {3}}));
}

TEST_F(gnssUBXState, EveryGoodFrameAsksForTheVersionUntilItIsKnown)
{
    ubxLink link;
    link.Receiver.Restart();
    link.Sent.clear();
    feed(link.Receiver, ubxFrame(0x01, 0x35).u4(0).u1(1).u1(1).zeros(14));
    EXPECT_THAT(link.Receiver.Sats, IsEmpty()) << "goes with the restart";
    EXPECT_THAT(link.Taken(), ElementsAre(PollVersion));
    EXPECT_THAT(link.Take(anyFrame()), ElementsAre(PollVersion));
    EXPECT_THAT(link.Take(ubxBytes(1000, 0x55)), IsEmpty()) << "noise is no frame";
}

TEST_F(gnssUBXState, AsksAgainThroughTheVirtualRestart)
{
    class counting : public gnssUBX
    {
    public:
        void Restart() override { Count++; }
        unsigned Count = 0;
    };
    counting receiver;
    receiver.ConfigState = State::Identify;
    feed(receiver, anyFrame());
    EXPECT_EQ(receiver.Count, 1u);
}

// --- The port search

TEST_F(gnssUBXState, ThePortWhoseCounterMovedIsTheOneOfTheLink)
{
    struct {
        unsigned Id, PortId;
        uint32_t KeyUBX, KeyNMEA;
    } constexpr Cases[] = {
        {0x0000, 0, 0x10720001, 0x10720002},
        {0x0100, 1, 0x10740001, 0x10740002},
        {0x0201, 2, 0x10760001, 0x10760002},
        {0x0300, 3, 0x10780001, 0x10780002},
    };
    for (const auto& row : Cases) {
        situation now(State::CommsFirst, 9, 0x1B1F);
        EXPECT_THAT(now.Link.Take(comms({{0x0400, 7}, {row.Id, 100}, {0x0000, 5}})), ElementsAre(PollComms));
        EXPECT_EQ(now.Link.Receiver.ConfigState, State::CommsSecond);
        const auto sent = now.Link.Take(comms({{0x0400, 7}, {row.Id, 108}, {0x0000, 6}}));
        const ubxFrame set = ubxFrame(0x06, 0x8A).u4(0x100).u4(row.KeyUBX).u1(1).u4(row.KeyNMEA).u1(0);
        EXPECT_THAT(sent, ElementsAre(ubxSent{0x06, 0x8A, set.payload()}));
        EXPECT_EQ(now.Link.Receiver.PortId, row.PortId);
        EXPECT_EQ(now.Link.Receiver.ConfigState, State::PortSet);
    }
}

TEST_F(gnssUBXState, AChangedPortThatIsNoneOfOursIsPassedOver)
{
    situation now(State::CommsFirst, 9, 0x1B1F);
    now.Link.Take(comms({{0x0400, 1}, {0x0300, 2}}));
    now.Link.Take(comms({{0x0400, 9}, {0x0300, 9}}));
    EXPECT_EQ(now.Link.Receiver.PortId, 3);
}

TEST_F(gnssUBXState, WithoutAChangedPortTheSearchStaysWhereItIs)
{
    situation now(State::CommsFirst, 9, 0x1B1F);
    now.Link.Take(comms({{0x0100, 1}, {0x0300, 2}}));
    for (const auto& frame : {comms({{0x0100, 1}, {0x0300, 2}}), comms({}), comms({{0x0400, 9}}),
                              comms({{0x0100, 1}, {0x0300, 2}, {0x0000, 3}})}) {
        EXPECT_THAT(now.Link.Take(frame), IsEmpty());
        EXPECT_EQ(now.Link.Receiver.ConfigState, State::CommsSecond);
    }
    now.Link.Take(comms({{0x0100, 2}}));
    EXPECT_EQ(now.Link.Receiver.PortId, 1) << "a later answer may still tell";
}

TEST_F(gnssUBXState, AnAnswerShorterThanItsPortsIsIgnored)
{
    for (const State state : {State::CommsFirst, State::CommsSecond}) {
        situation now(state, 9, 0x1B1F);
        const ubxFrame whole = comms({{0x0100, 1}, {0x0300, 2}});
        for (size_t size = 0; size < whole.payload().size(); size++) {
            EXPECT_THAT(now.Link.Take(ubxFrame(whole).resized(size)), IsEmpty()) << size;
            EXPECT_EQ(now.Link.Receiver.ConfigState, state);
        }
    }
}

TEST_F(gnssUBXState, AFirstAnswerWithoutPortsLeavesNothingToCompare)
{
    situation now(State::CommsFirst, 9, 0x1B1F);
    EXPECT_THAT(now.Link.Take(comms({})), ElementsAre(PollComms));
    EXPECT_THAT(now.Link.Take(comms({{0x0100, 5}})), IsEmpty());
    EXPECT_EQ(now.Link.Receiver.ConfigState, State::CommsSecond);
}

TEST_F(gnssUBXState, PortAnswersInOtherStatesAreIgnored)
{
    for (unsigned state = 0; state <= 18; state++) {
        if (state >= 1 && state <= 3)
            continue;
        situation now(State(state), 9, 0x1B1F);
        EXPECT_THAT(now.Link.Take(comms({{0x0100, 5}})), IsEmpty()) << state;
        EXPECT_EQ(now.Link.Receiver.ConfigState, State(state));
    }
}

// --- CFG-MSG

TEST_F(gnssUBXState, TheSatelliteListIsTheOneThatTheProtocolVersionHas)
{
    for (const auto& [protVer, id] : {std::pair{0x0EFF, 0x30}, {0x0F00, 0x35}, {0, 0x30}, {0x1701, 0x35}}) {
        situation now(State::MsgPOSLLH, 7, static_cast<uint16_t>(protVer));
        EXPECT_THAT(now.Link.Take(ack(0x01)), ElementsAre(Message(1, static_cast<uint8_t>(id))));
    }
}

TEST_F(gnssUBXState, OnlyModelsWithSignalReportsAreAskedForThem)
{
    for (uint8_t model = 0; model <= 16; model++) {
        situation now(State::MsgSat, model, 0x1200);
        const bool signals = model >= 9 && model <= 14;
        EXPECT_THAT(now.Link.Take(ack(0x01)), ElementsAre(Message(1, signals ? 0x43 : 0x21))) << model;
        EXPECT_EQ(now.Link.Receiver.ConfigState, signals ? State::MsgSIG : State::MsgTIMEUTC);
    }
}

// --- Requests

TEST_F(gnssUBXState, RequestsAreTakenOneAFrameInTheirOrder)
{
    situation now(State::Idle, 14, 0x2200);
    gnssUBX& receiver = now.Link.Receiver;
    receiver.PendingGNSS = receiver.PendingPPS = receiver.PendingSpectrum = 1;
    EXPECT_EQ(now.Link.Take(anyFrame()).at(0).Id, 0x8Au);
    EXPECT_EQ(receiver.ConfigState, State::SelectSet);
    EXPECT_EQ(receiver.PendingGNSS, 0);
    EXPECT_THAT(now.Link.Take(anyFrame()), IsEmpty());
    EXPECT_THAT(now.Link.Take(ack(0x8A)), ElementsAre(PollSignalKeys));
    EXPECT_EQ(now.Link.Take(ack(0x8B)).at(0).Id, 0x8Au) << "the frame that ends one change begins the next";
    EXPECT_EQ(receiver.ConfigState, State::PulseSet);
    EXPECT_EQ(receiver.PendingPPS, 0);
    EXPECT_THAT(now.Link.Take(ack(0x8A)), ElementsAre(PollSpectrum));
    EXPECT_EQ(receiver.ConfigState, State::Idle);
    EXPECT_EQ(receiver.PendingSpectrum, 0);
    EXPECT_THAT(now.Link.Take(anyFrame()), IsEmpty());
}

TEST_F(gnssUBXState, RequestsWaitInEveryOtherState)
{
    for (unsigned state = 2; state <= 18; state++) {
        situation now(State(state), 14, 0x2200);
        gnssUBX& receiver = now.Link.Receiver;
        receiver.PendingGNSS = receiver.PendingPPS = receiver.PendingSpectrum = 1;
        EXPECT_THAT(now.Link.Take(anyFrame()), IsEmpty()) << state;
        EXPECT_EQ(receiver.PendingGNSS + receiver.PendingPPS + receiver.PendingSpectrum, 3) << state;
    }
}

TEST_F(gnssUBXState, TheClassicSelectionIsReadBeforeItIsChanged)
{
    situation now(State::Idle, 8, 0x1200);
    now.Link.Receiver.PendingGNSS = 1;
    EXPECT_THAT(now.Link.Take(anyFrame()), ElementsAre(PollGnss));
    EXPECT_EQ(now.Link.Receiver.ConfigState, State::SelectRead);
    EXPECT_EQ(now.Link.Receiver.PendingGNSS, 1) << "until the answer is there";
}

TEST_F(gnssUBXState, TheSpectrumIsAskedOfModelsThatHaveOne)
{
    for (uint8_t model = 0; model <= 16; model++) {
        situation now(State::Idle, model, 0x2200);
        now.Link.Receiver.PendingSpectrum = 1;
        const bool has = model >= 10 && model <= 14;
        EXPECT_EQ(now.Link.Take(anyFrame()), has ? std::vector{PollSpectrum} : std::vector<ubxSent>{});
        EXPECT_EQ(now.Link.Receiver.PendingSpectrum, 0) << "is taken all the same";
        EXPECT_EQ(now.Link.Receiver.ConfigState, State::Idle);
    }
}

TEST_F(gnssUBXState, TheSpectrumPollIsTheFixedEightBytes)
{
    situation now(State::Idle, 10, 0x2200);
    ubxBytes sent;
    now.Link.Receiver.OnSend = [&](const uint8_t* bytes, size_t count) { sent.assign(bytes, bytes + count); };
    now.Link.Receiver.PendingSpectrum = 1;
    feed(now.Link.Receiver, anyFrame());
    EXPECT_THAT(sent, ElementsAre(0xB5, 0x62, 0x0A, 0x31, 0x00, 0x00, 0x3B, 0xBB));
}

TEST_F(gnssUBXState, WhatEachModelCanDoIsOneTable)
{
    constexpr unsigned Blocks[] = {0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 1, 2, 1, 1, 2, 0};
    for (uint8_t model = 0; model < std::size(Blocks); model++) {
        EXPECT_EQ(ubxModel::AbilityOf(model).SpectrumBlocks, Blocks[model]);
        EXPECT_EQ(ubxModel::AbilityOf(model).Signals, model >= 9 && model <= 14);
    }
}

TEST_F(gnssUBXState, ASelectionRequestedDuringTheConfigurationIsServedBehindIt)
{
    situation now(State::MsgDOP, 8, 0x1200);
    now.Link.Receiver.PendingGNSS = 1;
    for (unsigned message = 0; message < 6; message++)
        EXPECT_EQ(now.Link.Take(ack(0x01)).size(), 1u);
    EXPECT_EQ(now.Link.Receiver.ConfigState, State::PulseRead);
    EXPECT_THAT(now.Link.Take(ack(0x31)), ElementsAre(PollGnss));
    EXPECT_EQ(now.Link.Receiver.ConfigState, State::SelectRead);
}

// --- Both roads as a whole

TEST_F(gnssUBXState, TheRoadByKeysLeadsFromTheVersionToIdle)
{
    for (unsigned port = 0; port < 4; port++) {
        ubxLink link;
        ubxScript script(monVerOf(11, VersionKeys));
        script.Port = port;
        script.Keys = {{0x1031001F, 1}, {0x10310001, 1},
                       {0x10310003, 0}, {0x10310021, 0},
                       {0x10310007, 1}, {0x20050023, 1},
                       {0x20050030, 0}, {0x40050002, 1},
                       {0x40050024, 5}, {0x5005002A, 0x4049000000000000},
                       {0x40050004, 0}};
        link.Receiver.Restart();
        const auto sent = converse(link, script);
        const unsigned group = 0x10720000 + port * 0x20000;
        const ubxFrame set = ubxFrame(0x06, 0x8A).u4(0x100).u4(group + 1).u1(1).u4(group + 2).u1(0);
        EXPECT_THAT(sent, ElementsAre(PollVersion, PollComms, PollComms, ubxSent{0x06, 0x8A, set.payload()},
                                      PollSignalKeys, MessageKeys(port), PollPulseKeys()));
        EXPECT_EQ(link.Receiver.ConfigState, State::Idle);
        EXPECT_EQ(link.Receiver.Select.Load(), ubxSignalSet::Of(ubxSignal::GPSL1CA));
        EXPECT_EQ(link.Receiver.PPSRate, 5.0f);
        EXPECT_FLOAT_EQ(link.Receiver.PPSDuty, 0.5f);
    }
}

TEST_F(gnssUBXState, TheClassicRoadLeadsFromTheVersionToIdle)
{
    for (const unsigned model : {7u, 8u, 9u}) {
        ubxLink link;
        ubxScript script(monVerOf(model, VersionClassic));
        script.Enabled = {{0, true}, {1, false}, {5, true}, {6, true}};
        script.Pulse[8] = 4;
        script.Pulse[19] = 0x40;
        script.Pulse[28] = 0x08;
        link.Receiver.Restart();
        const auto sent = converse(link, script);
        std::vector<ubxSent> expected = {
            PollVersion,     {0x06, 0x00, {1}}, {0x06, 0x00, script.PortSettings},
            PollGnss,        Message(1, 0x04),  Message(1, 0x02),
            Message(1, 0x35)};
        if (model == 9)
            expected.push_back(Message(1, 0x43));
        for (const ubxSent& last : {Message(1, 0x21), Message(1, 0x12), Message(0x0D, 0x01), PollPulse})
            expected.push_back(last);
        EXPECT_EQ(sent, expected) << model;
        EXPECT_EQ(script.PortSettings.at(14), 1) << "UBX alone";
        EXPECT_EQ(script.PortSettings.at(12), 7) << "input stays";
        EXPECT_EQ(link.Receiver.ConfigState, State::Idle);
        EXPECT_EQ(link.Receiver.Select.Load(),
                  ubxSignalSet::Of(ubxSignal::GPSL1CA, ubxSignal::QZSSL1CA, ubxSignal::GLONASSL1));
        EXPECT_EQ(link.Receiver.PPSRate, 4.0f);
        EXPECT_EQ(link.Receiver.PPSDuty, 0.25f);
    }
}

TEST_F(gnssUBXState, ASilentReceiverLeavesTheMachineWhereItIsUntilARestart)
{
    situation now(State::MsgTIMEUTC, 8, 0x1200);
    for (unsigned frame = 0; frame < 100; frame++)
        EXPECT_THAT(now.Link.Take(anyFrame()), IsEmpty());
    EXPECT_EQ(now.Link.Receiver.ConfigState, State::MsgTIMEUTC);
    now.Link.Receiver.Restart();
    EXPECT_EQ(now.Link.Receiver.ConfigState, State::Identify);
}
