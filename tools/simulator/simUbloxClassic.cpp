// How a u-blox receiver is configured by a message for each matter: ports, messages, rate, systems.
#include "tools/simulator/simUblox.h"

#include <algorithm>

using namespace simUbxKey;

namespace {

constexpr uint8_t ClassConfig = 0x06;
constexpr uint8_t IdPort = 0x00;
constexpr uint8_t IdMessage = 0x01;
constexpr uint8_t IdReset = 0x04;
constexpr uint8_t IdRate = 0x08;
constexpr uint8_t IdSaved = 0x09;
constexpr uint8_t IdPulse = 0x31;
constexpr uint8_t IdSystems = 0x3E;

constexpr size_t PortSize = 20;
constexpr size_t RateSize = 6;

constexpr uint8_t UartPort = 1;
constexpr uint32_t Bauds[] = {4800, 9600, 19200, 38400, 57600, 115200, 230400, 460800, 921600};

// CFG-PRT mode: eight bits a byte in bits 6 and 7, parity in bits 9 to 11, stop bits in bits 12 and 13.
constexpr uint32_t ModeEightBits = 0xC0;
constexpr uint32_t ModeParity[] = {4 << 9, 1 << 9, 0};  // none, odd, even

}  // namespace

simUblox::outcome simUblox::Classic(uint8_t id, const simReader& payload)
{
    if (id == IdReset)
        return Reset(payload);
    if (id == IdSaved)
        return ConfigSaved(payload);
    if (!Model.Classic)
        return outcome::Refused;
    switch (id) {
    case IdPort:
        return ConfigPort(payload);
    case IdMessage:
        return ConfigMessage(payload);
    case IdRate:
        return ConfigRate(payload);
    case IdPulse:
        return ConfigPulse(payload);
    case IdSystems:
        return ConfigSystems(payload);
    default:
        return outcome::Refused;
    }
}

// A question names the port or, without a payload, means the one on which it comes.
simUblox::outcome simUblox::ConfigPort(const simReader& payload)
{
    const size_t size = payload.Data.size();
    if (size == PortSize)
        return SetPort(payload) ? outcome::Done : outcome::Refused;
    const auto port = static_cast<uint8_t>(size == 0 ? PortIndex() : payload.U1(0));
    if (size > 1 || port >= Ports)
        return outcome::Refused;
    Answer(ClassConfig, IdPort, PortPayload(port));
    return outcome::Done;
}

bool simUblox::SetPort(const simReader& payload)
{
    const uint8_t port = payload.U1(0);
    if (port >= Ports)
        return false;
    if (port == UartPort) {
        const uint32_t mode = payload.U4(4);
        const uint32_t baud = payload.U4(8);
        if (std::ranges::find(Bauds, baud) == std::end(Bauds) || (mode & ModeEightBits) != ModeEightBits)
            return false;
        const uint32_t parity = mode & 7 << 9;
        Keys.Set(UartBaud, baud);
        Keys.Set(UartParity, parity == ModeParity[1] ? 1 : parity == ModeParity[2] ? 2 : 0);
        Keys.Set(UartStopBits, (mode >> 12 & 3) == 2 ? 3 : 1);
    }
    const uint32_t step = port * PortStep;
    Keys.Set(InUbx + step, payload.U2(12) & 1);
    Keys.Set(InNmea + step, payload.U2(12) >> 1 & 1);
    Keys.Set(OutUbx + step, payload.U2(14) & 1);
    Keys.Set(OutNmea + step, payload.U2(14) >> 1 & 1);
    return true;
}

simBytes simUblox::PortPayload(uint8_t port) const
{
    constexpr uint32_t I2cAddress = 0x42 << 1;
    const uint32_t step = port * PortStep;
    uint32_t mode = port == 0 ? I2cAddress : 0;
    uint64_t baud = 0;
    if (port == UartPort) {
        mode = ModeEightBits | ModeParity[std::min<uint64_t>(Keys[UartParity], 2)] |
               (Keys[UartStopBits] == 3 ? 2u << 12 : 0u);
        baud = Keys[UartBaud];
    }
    return simWriter(std::endian::little)
        .U1(port)                                             // portID
        .U1(0)                                                // reserved
        .U2(0)                                                // txReady
        .U4(mode)                                             // mode
        .U4(baud)                                             // baudRate
        .U2(Keys[InUbx + step] | Keys[InNmea + step] << 1)    // inProtoMask
        .U2(Keys[OutUbx + step] | Keys[OutNmea + step] << 1)  // outProtoMask
        .U2(0)                                                // flags
        .U2(0)                                                // reserved
        .Data;
}

// A question is class and id; a change is these with one rate, for this port, or with six, one for each port.
simUblox::outcome simUblox::ConfigMessage(const simReader& payload)
{
    constexpr size_t Question = 2;
    constexpr size_t OneRate = 3;
    constexpr size_t AllRates = 8;
    const size_t size = payload.Data.size();
    const simUbxMessageRow* const row = simUbxMessageOf(Model, payload.U1(0), payload.U1(1));
    if (row == nullptr || (size != Question && size != OneRate && size != AllRates))
        return outcome::Refused;
    if (size == Question) {
        simWriter answer(std::endian::little);
        answer.U1(row->Class).U1(row->Id);
        for (unsigned port = 0; port < MessagePorts; ++port)
            answer.U1(Keys[row->Key + port]);
        Answer(ClassConfig, IdMessage, answer.U1(0).Data);
    } else if (size == OneRate) {
        Keys.Set(row->Key + PortIndex(), payload.U1(2));
    } else {
        for (unsigned port = 0; port < MessagePorts; ++port)
            Keys.Set(row->Key + port, payload.U1(2 + port));
    }
    return outcome::Done;
}

simUblox::outcome simUblox::ConfigRate(const simReader& payload)
{
    if (payload.Data.empty()) {
        Answer(
            ClassConfig, IdRate,
            simWriter(std::endian::little).U2(Keys[RateMeas]).U2(Keys[RateNav]).U2(Keys[RateTimeRef]).Data);
        return outcome::Done;
    }
    constexpr uint16_t Fastest = 40;  // milliseconds
    if (payload.Data.size() != RateSize || payload.U2(0) < Fastest)
        return outcome::Refused;
    Keys.Set(RateMeas, payload.U2(0));
    Keys.Set(RateNav, payload.U2(2));
    Keys.Set(RateTimeRef, payload.U2(4));
    Apply();
    return outcome::Done;
}

simUblox::outcome simUblox::ConfigSystems(const simReader& payload)
{
    if (!payload.Data.empty())
        return SetSystems(payload) ? outcome::Done : outcome::Refused;
    Answer(ClassConfig, IdSystems, SystemsPayload());
    return outcome::Done;
}

bool simUblox::SetSystems(const simReader& payload)
{
    constexpr size_t Header = 4;
    constexpr size_t Block = 8;
    const size_t blocks = payload.U1(3);
    if (payload.U1(0) != 0 || payload.Data.size() != Header + Block * blocks)
        return false;
    simUbxKeys wanted = Keys;
    for (size_t at = Header; at < payload.Data.size(); at += Block) {
        const auto system = static_cast<simSystem>(payload.U1(at));
        const auto known = std::ranges::find(Model.Systems, system, &simUbxSystem::System);
        if (known == Model.Systems.end())
            return false;
        wanted.Set(simUbxSystemKey(system), payload.U4(at + 4) & 1);
    }
    if (!SignalsFit(wanted))
        return false;
    Keys = wanted;
    return true;
}

simBytes simUblox::SystemsPayload() const
{
    constexpr uint32_t FirstBand = 1 << 16;
    simWriter answer(std::endian::little);
    answer.U1(0).U1(Model.Channels).U1(Model.Channels).U1(Model.Systems.size());
    for (const simUbxSystem& system : Model.Systems) {
        answer.U1(static_cast<uint8_t>(system.System))
            .U1(system.Reserved)
            .U1(system.Most)
            .U1(0)
            .U4(FirstBand | Keys[simUbxSystemKey(system.System)]);
    }
    return answer.Data;
}

// CFG-CFG: which parts of the configuration are forgotten, saved and loaded. Parts are not kept apart here:
// any bit means all of it.
simUblox::outcome simUblox::ConfigSaved(const simReader& payload)
{
    const size_t size = payload.Data.size();
    if (size != 12 && size != 13)
        return outcome::Refused;
    if (payload.U4(0) != 0)
        Keys.Forget();
    if (payload.U4(4) != 0)
        Keys.SaveAll();
    if (payload.U4(8) != 0)
        Keys.Reload();
    Apply();
    return outcome::Done;
}

// CFG-RST: what is forgotten, how the reset is made. It ends the receiver before it could answer.
simUblox::outcome simUblox::Reset(const simReader& payload)
{
    constexpr size_t ResetSize = 4;
    constexpr uint8_t StopNavigation = 8;
    constexpr uint16_t Ephemeris = 1;
    constexpr int Cold = 3;  // seconds
    constexpr int Hot = 1;
    if (payload.Data.size() != ResetSize)
        return outcome::Refused;
    if (payload.U1(2) < StopNavigation)
        Restart((payload.U2(0) & Ephemeris) != 0 ? Cold : Hot);
    return outcome::Unanswered;
}
