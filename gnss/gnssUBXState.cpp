#include "gnss/gnssUBX.h"

#include "foundations/fatal/crashFatal.h"
#include "gnss/ubxKeys.h"
#include "gnss/ubxMessage.h"

namespace {

constexpr uint8_t PollSpectrum[] = {0xB5, 0x62, 0x0A, 0x31, 0x00, 0x00, 0x3B, 0xBB};  // MON-SPAN

struct messageRow {
    std::string_view Name;
    gnssUBX::State State;  // in which CFG-MSG asks for the message
    uint8_t Class;
    uint8_t Id;
    uint32_t Key;  // CFG-MSGOUT-..._I2C; those of the other ports follow it in the order of their ids
};

// The messages that the decoder lives on, in the order in which they are switched on.
constexpr messageRow Messages[] = {
    {"NAV-DOP", gnssUBX::State::MsgDOP, ubx::NAV, ubx::NavDOP, 0x20910038},
    {"NAV-POSLLH", gnssUBX::State::MsgPOSLLH, ubx::NAV, ubx::NavPOSLLH, 0x20910029},
    {"NAV-SAT", gnssUBX::State::MsgSat, ubx::NAV, ubx::NavSAT, 0x20910015},
    {"NAV-SIG", gnssUBX::State::MsgSIG, ubx::NAV, ubx::NavSIG, 0x20910345},
    {"NAV-TIMEUTC", gnssUBX::State::MsgTIMEUTC, ubx::NAV, ubx::NavTIMEUTC, 0x2091005B},
    {"NAV-VELNED", gnssUBX::State::MsgVELNED, ubx::NAV, ubx::NavVELNED, 0x20910042},
    {"TIM-TP", gnssUBX::State::MsgTP, ubx::TIM, ubx::TimTP, 0x2091017D},
};

constexpr uint8_t OncePerEpoch = 1;

constexpr uint32_t PulseKeys[] = {
    ubxKey::PulseDef,       ubxKey::PulseLengthDef, ubxKey::PulsePeriod,
    ubxKey::PulseFrequency, ubxKey::PulseLength,    ubxKey::PulseDuty,
};

}  // namespace

bool gnssUBX::HasKeys() const
{
    return ProtVer >= ubx::ProtVerKeys;
}

void gnssUBX::TellIdentity()
{
    Identity = static_cast<uint32_t>(Model) << 16 | ProtVer;
}

// Begins once the receiver has told its version.
void gnssUBX::ConfigStart()
{
    if (!OnSend) {
        ConfigState = State::Idle;
        return;
    }
    if (HasKeys()) {
        Send(ubx::MON, ubx::MonCOMMS, nullptr, 0);
        ConfigState = State::CommsFirst;
        return;
    }
    // Older receivers have no way to tell the port; most are wired by their first serial one.
    constexpr uint8_t UART1 = 1;
    if (PortId == PortUnknown)
        PortId = UART1;
    Send(ubx::CFG, ubx::CfgPRT, &PortId, sizeof PortId);
    ConfigState = State::PortPoll;
}

// ACK-ACK and ACK-NAK: clsID, msgID. An acknowledgement that nobody waits for means nothing.
void gnssUBX::Decode_Ack(const uint8_t* bytes, size_t count)
{
    struct transition {
        uint8_t Message;
        State Waiting;
        void (gnssUBX::*Action)();  // runs in the next state; null for none
        State Next;
    };
    static constexpr transition Transitions[] = {
        {ubx::CfgPRT, State::PortPoll, &gnssUBX::PortSendBack, State::PortSet},
        {ubx::CfgPRT, State::PortSet, &gnssUBX::SignalsPoll, State::SignalsRead},
        {ubx::CfgMSG, State::MsgDOP, &gnssUBX::ConfigMessage, State::MsgPOSLLH},
        {ubx::CfgMSG, State::MsgPOSLLH, &gnssUBX::ConfigMessage, State::MsgSat},
        {ubx::CfgMSG, State::MsgSat, &gnssUBX::ConfigSignalMessage, State::MsgSIG},
        {ubx::CfgMSG, State::MsgSIG, &gnssUBX::ConfigMessage, State::MsgTIMEUTC},
        {ubx::CfgMSG, State::MsgTIMEUTC, &gnssUBX::ConfigMessage, State::MsgVELNED},
        {ubx::CfgMSG, State::MsgVELNED, &gnssUBX::ConfigMessage, State::MsgTP},
        {ubx::CfgMSG, State::MsgTP, &gnssUBX::PulsePoll, State::PulseRead},
        {ubx::CfgMSG, State::PulseRead, nullptr, State::Idle},
        {ubx::CfgTP5, State::PulseRead, nullptr, State::Idle},
        {ubx::CfgTP5, State::PulseSet, nullptr, State::Idle},
        {ubx::CfgGNSS, State::SignalsRead, &gnssUBX::ConfigMessage, State::MsgDOP},
        {ubx::CfgGNSS, State::SelectRead, &gnssUBX::SelectSendBack, State::SelectSet},
        {ubx::CfgGNSS, State::SelectSet, &gnssUBX::SignalsPoll, State::SelectVerify},
        {ubx::CfgGNSS, State::SelectVerify, nullptr, State::Idle},
        {ubx::CfgVALSET, State::PortSet, &gnssUBX::SignalsPoll, State::SignalsRead},
        {ubx::CfgVALSET, State::MsgTP, &gnssUBX::PulsePollByKey, State::PulseRead},
        {ubx::CfgVALSET, State::PulseSet, nullptr, State::Idle},
        {ubx::CfgVALSET, State::SelectSet, &gnssUBX::SignalsPoll, State::SelectVerify},
        {ubx::CfgVALGET, State::SignalsRead, &gnssUBX::ConfigMessagesByKey, State::MsgTP},
        {ubx::CfgVALGET, State::PulseRead, nullptr, State::Idle},
        {ubx::CfgVALGET, State::SelectVerify, nullptr, State::Idle},
    };
    const ubxPayload payload(bytes + 3, count - 3);
    if (payload.size() < 2 || payload.u1(0) != ubx::CFG)
        return;
    const uint8_t message = payload.u1(1);
    // A refused selection is read back like one that was taken, so that the user sees what stands.
    const bool refusedSelection = message == ubx::CfgVALSET && ConfigState == State::SelectSet;
    if (bytes[0] != ubx::AckACK && !(bytes[0] == ubx::AckNAK && refusedSelection))
        return;
    for (const transition& row : Transitions) {
        if (row.Message != message || row.Waiting != ConfigState)
            continue;
        ConfigState = row.Next;
        if (row.Action != nullptr)
            (this->*row.Action)();
        return;
    }
}

// Runs after every good frame, at most one thing each time, so that the receiver has time to answer.
void gnssUBX::StateStep()
{
    // Asking again is the only retry: as long as something arrives, a receiver that did not answer is asked.
    if (ConfigState == State::Identify)
        return Restart();
    if (ConfigState != State::Idle || StepSelect())
        return;
    // Asked before it is exchanged, since an exchange at every frame costs more than a look.
    if (PendingPPS != 0 && PendingPPS.exchange(0) != 0)
        return PulseChange();
    if (PendingSpectrum != 0 && PendingSpectrum.exchange(0) != 0)
        StepSpectrum();
}

bool gnssUBX::StepSelect()
{
    if (PendingGNSS == 0)
        return false;
    if (HasKeys()) {
        // Cleared before the selection is read: one that comes in between is served once more.
        PendingGNSS = 0;
        SelectSetByKey();
        ConfigState = State::SelectSet;
    } else {
        // The answer to the poll is what is changed and sent back, and clears the request.
        SignalsPoll();
        ConfigState = State::SelectRead;
    }
    return true;
}

void gnssUBX::StepSpectrum()
{
    if (ubxModel::AbilityOf(Model).SpectrumBlocks != 0)
        Transmit(PollSpectrum, sizeof PollSpectrum);
}

// --- Messages

// Asks for the message of a state by CFG-MSG: class, id, rate.
void gnssUBX::ConfigForState(State state)
{
    for (const messageRow& row : Messages) {
        if (row.State != state)
            continue;
        const bool old = row.Id == ubx::NavSAT && ProtVer < ubx::ProtVerNavSAT;
        const uint8_t payload[] = {row.Class, old ? ubx::NavSVINFO : row.Id, OncePerEpoch};
        Send(ubx::CFG, ubx::CfgMSG, payload, sizeof payload);
        ConfigState = state;
        return;
    }
    crashFatal("No UBX message belongs to this state of the configuration.");
}

void gnssUBX::ConfigMessage()
{
    ConfigForState(ConfigState);
}

void gnssUBX::ConfigSignalMessage()
{
    ConfigForState(ubxModel::AbilityOf(Model).Signals ? State::MsgSIG : State::MsgTIMEUTC);
}

void gnssUBX::ConfigMessagesByKey()
{
    ValueBegin(ubxKey::WriteRAM);
    for (const messageRow& row : Messages)
        ValueSet8(row.Key + PortId, OncePerEpoch);
    SendFrame(ubx::CfgVALSET);
}

// --- Polls

void gnssUBX::SignalsPoll()
{
    if (!HasKeys())
        return Send(ubx::CFG, ubx::CfgGNSS, nullptr, 0);
    ValueBegin(ubxKey::ReadRAM);
    ValueKey(ubxKey::SignalGroup);
    SendFrame(ubx::CfgVALGET);
}

void gnssUBX::PulsePoll()
{
    Send(ubx::CFG, ubx::CfgTP5, nullptr, 0);
}

void gnssUBX::PulsePollByKey()
{
    ValueBegin(ubxKey::ReadRAM);
    for (const uint32_t key : PulseKeys)
        ValueKey(key);
    SendFrame(ubx::CfgVALGET);
}
