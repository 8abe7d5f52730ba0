#include "tools/simulator/simUblox.h"

#include "tools/simulator/simNmeaText.h"
#include "tools/simulator/simTime.h"

#include <algorithm>

using namespace simUbxKey;

namespace {

constexpr uint8_t ClassAck = 0x05;
constexpr uint8_t ClassConfig = 0x06;
constexpr uint8_t ClassTime = 0x0D;
constexpr uint8_t ClassMonitor = 0x0A;
constexpr uint8_t AckNak = 0x00;
constexpr uint8_t AckAck = 0x01;
constexpr uint8_t IdValSet = 0x8A;
constexpr uint8_t IdValGet = 0x8B;

// The last satellite of BeiDou that was planned when the M8 was made.
constexpr uint8_t LastBeiDouOfM8 = 37;

}  // namespace

simUblox::simUblox(const simUbxModel& model, const simOptions& options)
    : simCore(options), Model(model), Keys(model, options)
{}

simTruth simUblox::Truth() const
{
    simTruth truth = simCore::Truth();
    truth.Keys = Keys.InForce();
    return truth;
}

simLine simUblox::Line() const
{
    constexpr char Parities[] = {'N', 'O', 'E'};
    simLine line;
    line.Baud = static_cast<uint32_t>(Keys[UartBaud]);
    line.Parity = Parities[std::min<uint64_t>(Keys[UartParity], 2)];
    line.StopBits = Keys[UartStopBits] == 3 ? 2 : 1;
    return line;
}

void simUblox::PowerUp()
{
    Keys.Reload();
    Parser = {};
    Solutions = 0;
    TakenMessages = 0;
    Apply();
}

// A receiver that speaks NMEA introduces itself.
void simUblox::OnReady()
{
    if (!SendsNmea())
        return;
    const auto tell = [&](const std::string& text) {
        Send(simBytesOf(simNmeaSentence(Style().Mixed ? "GN" : "GP", "TXT")
                            .Text("01")
                            .Text("01")
                            .Text("02")
                            .Text(text)
                            .Finished()),
             kind::Periodic);
    };
    tell("u-blox AG - www.u-blox.com");
    tell(std::string("HW UBX ") + Model.Hardware);
    for (const char* const extension : Model.Extensions)
        tell(extension);
}

void simUblox::OnBytes(std::span<const uint8_t> fromHost)
{
    for (const simUbxMessage& message : Parser.Take(fromHost)) {
        // What came behind a reset was for a receiver that was no longer listening.
        if (IsBooting())
            return;
        if (Keys[InUbx + PortKeys()] != 0)
            OnMessage(message);
    }
}

void simUblox::OnMessage(const simUbxMessage& message)
{
    ++TakenMessages;
    if (message.Class == ClassConfig)
        OnConfig(message);
    else if (message.Payload.empty())
        OnPoll(message);
}

void simUblox::OnConfig(const simUbxMessage& message)
{
    const simReader payload(message.Payload, std::endian::little);
    outcome result = outcome::Refused;
    if (!Faults.Nak) {
        if (message.Id == IdValSet)
            result = SetValues(payload);
        else if (message.Id == IdValGet)
            result = GetValues(payload);
        else
            result = Classic(message.Id, payload);
    }
    if (result != outcome::Unanswered)
        Answer(ClassAck, result == outcome::Done ? AckAck : AckNak, {ClassConfig, message.Id});
}

void simUblox::OnPoll(const simUbxMessage& message)
{
    const std::optional<simBytes> payload = PayloadOf(message.Class, message.Id);
    if (payload)
        Answer(message.Class, message.Id, *payload);
}

void simUblox::Answer(uint8_t messageClass, uint8_t id, const simBytes& payload)
{
    if (!SendsUbx())
        return;
    Send(simUbxFrame(messageClass, id, payload), kind::Answer);
}

void simUblox::OnEpoch(const simEpoch& epoch)
{
    for (const simUbxMessageRow& row : simUbxMessages()) {
        const uint64_t rate = Keys[row.Key + PortIndex()];
        const bool due = rate != 0 && Solutions % rate == 0;
        // The pulse comes once a second, however often there is a solution.
        const bool pulse = row.Class != ClassTime || epoch.IsWholeSecond();
        if (!due || !pulse || !simUbxHas(Model, row))
            continue;
        if (row.Class == simUbxNmeaClass) {
            if (SendsNmea())
                Send(simBytesOf(NmeaText(row.Id)), kind::Periodic);
        } else if (SendsUbx()) {
            const std::optional<simBytes> payload = PayloadOf(row.Class, row.Id);
            if (payload) {
                Send(simUbxFrame(row.Class, row.Id, *payload), kind::Periodic);
            }
        }
    }
    ++Solutions;
}

bool simUblox::Hears(simSystem system, const simSignal& signal) const
{
    if (Keys[simUbxSystemKey(system)] == 0)
        return false;
    // Receivers without keys for them hear the first band alone.
    if (Model.SignalKeys.empty())
        return signal.Id == 0;
    const std::optional<uint32_t> key = simUbxSignalKey(system, signal.Id);
    return key && Keys[*key] != 0;
}

bool simUblox::Knows(simSystem system, uint8_t svid) const
{
    return Model.Signals || system != simSystem::BeiDou || svid <= LastBeiDouOfM8;
}

simNmeaStyle simUblox::Style() const
{
    simNmeaStyle style;
    style.Signals = Model.Signals;
    // SBAS and QZSS go with GPS; any other system beside it makes a mixed talker.
    style.Mixed = Keys[GlonassOn] != 0 || Keys[GalileoOn] != 0 || Keys[BeiDouOn] != 0;
    return style;
}

uint32_t simUblox::Itow() const
{
    return static_cast<uint32_t>(simGpsOf(Current().UtcNs).TowNs / simMillisecond);
}

bool simUblox::SignalsFit(const simUbxKeys& keys) const
{
    switch (Model.Model) {
    case simModel::UBlox7:
        return keys[GpsOn] == 0 || keys[GlonassOn] == 0;
    case simModel::M8:
        // One radio for two frequencies: of GLONASS and BeiDou only one beside GPS.
        return keys[BeiDouOn] == 0 || keys[GlonassOn] == 0;
    case simModel::M10:
    case simModel::MaxM10S: {
        const bool oldBeiDou = keys[BeiDouOn] != 0 && keys[BdsB1I] != 0;
        const bool newBeiDou = keys[BeiDouOn] != 0 && keys[BdsB1C] != 0;
        const bool glonass = keys[GlonassOn] != 0 && keys[GloL1] != 0;
        return !oldBeiDou || !(newBeiDou || glonass);
    }
    case simModel::NeoF10N:
        // The lower band is heard only with the upper one.
        return keys[GpsL5] <= keys[GpsL1CA] && keys[GalE5a] <= keys[GalE1] && keys[BdsB2a] <= keys[BdsB1C];
    default:
        return true;
    }
}

void simUblox::Apply()
{
    const uint64_t milliseconds = std::clamp<uint64_t>(Keys[RateMeas], 40, 1000);
    Rate = static_cast<unsigned>((1000 + milliseconds / 2) / milliseconds);
}

std::optional<simBytes> simUblox::PayloadOf(uint8_t messageClass, uint8_t id) const
{
    struct row {
        uint8_t Class;
        uint8_t Id;
        simBytes (simUblox::*Make)() const;
    };
    static constexpr row Rows[] = {
        {0x01, 0x02, &simUblox::NavPOSLLH},       {0x01, 0x04, &simUblox::NavDOP},
        {0x01, 0x12, &simUblox::NavVELNED},       {0x01, 0x21, &simUblox::NavTIMEUTC},
        {0x01, 0x30, &simUblox::NavSVINFO},       {0x01, 0x35, &simUblox::NavSAT},
        {0x01, 0x43, &simUblox::NavSIG},          {ClassMonitor, 0x04, &simUblox::MonVER},
        {ClassMonitor, 0x31, &simUblox::MonSPAN}, {ClassMonitor, 0x36, &simUblox::MonCOMMS},
        {ClassTime, 0x01, &simUblox::TimTP},
    };
    constexpr uint8_t IdVersion = 0x04;
    const bool version = messageClass == ClassMonitor && id == IdVersion;
    if (!version && simUbxMessageOf(Model, messageClass, id) == nullptr)
        return std::nullopt;
    for (const row& candidate : Rows) {
        if (candidate.Class == messageClass && candidate.Id == id)
            return (this->*candidate.Make)();
    }
    return std::nullopt;
}

std::string simUblox::NmeaText(uint8_t id) const
{
    using maker = std::string (*)(const simEpoch&, const simNmeaStyle&);
    constexpr std::pair<uint8_t, maker> Makers[] = {
        {uint8_t{0}, simNmeaGGA}, {uint8_t{1}, simNmeaGLL}, {uint8_t{2}, simNmeaGSA},
        {uint8_t{3}, simNmeaGSV}, {uint8_t{4}, simNmeaRMC}, {uint8_t{5}, simNmeaVTG},
        {uint8_t{8}, simNmeaZDA},
    };
    for (const auto& [number, make] : Makers) {
        if (number == id)
            return make(Current(), Style());
    }
    return {};
}
