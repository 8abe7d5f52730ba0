// The configuration of a u-blox receiver, kept by key: what is in force, what is saved, what was at first.
//
// Receivers that are configured by the classic messages keep theirs in the same form; what has no key in the
// newer ones has one of our own there, with an item number from 0xF00 on.
#pragma once

#include "tools/simulator/simUbxModel.h"

#include <cstdint>
#include <map>
#include <optional>
#include <vector>

namespace simUbxKey {

// CFG-SIGNAL: the signals, then the systems.
constexpr uint32_t GpsL1CA = 0x10310001;
constexpr uint32_t GpsL2C = 0x10310003;
constexpr uint32_t GpsL5 = 0x10310004;
constexpr uint32_t SbasL1CA = 0x10310005;
constexpr uint32_t GalE1 = 0x10310007;
constexpr uint32_t GalE5a = 0x10310009;
constexpr uint32_t GalE5b = 0x1031000A;
constexpr uint32_t BdsB1I = 0x1031000D;
constexpr uint32_t BdsB2I = 0x1031000E;
constexpr uint32_t BdsB1C = 0x1031000F;
constexpr uint32_t BdsB2a = 0x10310028;
constexpr uint32_t QzssL1CA = 0x10310012;
constexpr uint32_t QzssL1S = 0x10310014;
constexpr uint32_t QzssL2C = 0x10310015;
constexpr uint32_t QzssL5 = 0x10310017;
constexpr uint32_t GloL1 = 0x10310018;
constexpr uint32_t GloL2 = 0x1031001A;
constexpr uint32_t NavicL5 = 0x1031001D;
constexpr uint32_t GpsOn = 0x1031001F;
constexpr uint32_t SbasOn = 0x10310020;
constexpr uint32_t GalileoOn = 0x10310021;
constexpr uint32_t BeiDouOn = 0x10310022;
constexpr uint32_t QzssOn = 0x10310024;
constexpr uint32_t GlonassOn = 0x10310025;
constexpr uint32_t NavicOn = 0x10310026;
constexpr uint32_t ImesOn = 0x10310F00;

// CFG-UART1
constexpr uint32_t UartBaud = 0x40520001;
constexpr uint32_t UartStopBits = 0x20520002;  // 0 half, 1 one, 2 one and a half, 3 two
constexpr uint32_t UartDataBits = 0x20520003;  // 0 eight, 1 seven
constexpr uint32_t UartParity = 0x20520004;    // 0 none, 1 odd, 2 even

// What a port takes and sends: the base of I2C, for the other ports PortStep more each.
constexpr uint32_t InUbx = 0x10710001;
constexpr uint32_t InNmea = 0x10710002;
constexpr uint32_t OutUbx = 0x10720001;
constexpr uint32_t OutNmea = 0x10720002;
constexpr uint32_t PortStep = 0x00020000;
constexpr unsigned Ports = 4;

// CFG-RATE
constexpr uint32_t RateMeas = 0x30210001;  // milliseconds
constexpr uint32_t RateNav = 0x30210002;
constexpr uint32_t RateTimeRef = 0x20210003;

// CFG-TP
constexpr uint32_t PulseDelay = 0x30050001;
constexpr uint32_t PulsePeriod = 0x40050002;      // microseconds
constexpr uint32_t PulsePeriodLock = 0x40050003;  // the same with a solution
constexpr uint32_t PulseLength = 0x40050004;
constexpr uint32_t PulseLengthLock = 0x40050005;
constexpr uint32_t PulseUserDelay = 0x40050006;
constexpr uint32_t PulseOn = 0x10050007;
constexpr uint32_t PulseSync = 0x10050008;
constexpr uint32_t PulseUseLocked = 0x10050009;
constexpr uint32_t PulseAlign = 0x1005000A;
constexpr uint32_t PulsePolarity = 0x1005000B;
constexpr uint32_t PulseGrid = 0x2005000C;
constexpr uint32_t PulseIsFrequency = 0x20050023;
constexpr uint32_t PulseFrequency = 0x40050024;
constexpr uint32_t PulseFrequencyLock = 0x40050025;
constexpr uint32_t PulseDuty = 0x5005002A;  // percent, a double
constexpr uint32_t PulseDutyLock = 0x5005002B;
constexpr uint32_t PulseIsLength = 0x20050030;

// CFG-MSGOUT: the base of I2C; UART1, UART2, USB and SPI follow by one each.
constexpr unsigned MessagePorts = 5;

}  // namespace simUbxKey

// The bytes of a key's value: 1, 2, 4 or 8; 0 for a key that no value can have.
unsigned simUbxKeySize(uint32_t key);

// The key of the system, and that of a signal; nothing where the newer receivers have none.
uint32_t simUbxSystemKey(simSystem system);
std::optional<uint32_t> simUbxSignalKey(simSystem system, uint8_t signal);

enum class simUbxLayer : uint8_t {
    Ram,
    Battery,
    Flash,
    Default,
};

class simUbxKeys
{
public:
    // The configuration from the factory, which holds `options`.
    simUbxKeys(const simUbxModel& model, const simOptions& options);

    // What is in force; 0 for an unknown key.
    uint64_t operator[](uint32_t key) const;
    bool Known(uint32_t key) const { return Defaults.contains(key); }

    // Of a layer: nothing where it does not hold the key.
    std::optional<uint64_t> Get(simUbxLayer layer, uint32_t key) const;

    // Changes what is in force, and what is saved. Unknown keys are ignored.
    void Set(uint32_t key, uint64_t value);
    void Save(simUbxLayer layer, uint32_t key, uint64_t value);
    void SaveAll();
    void Forget();  // what is saved

    // Begins anew with what is saved over what was at first.
    void Reload();

    // The keys of a group in their order; 0xFF is all groups.
    std::vector<uint32_t> Group(uint32_t group) const;

    const std::map<uint32_t, uint64_t>& InForce() const { return Ram; }

private:
    void AddPorts(const simOptions& options);
    void AddPulse();
    void AddMessages(const simUbxModel& model);
    void AddSignals(const simUbxModel& model);

    std::map<uint32_t, uint64_t> Defaults;
    std::map<uint32_t, uint64_t> Battery;
    std::map<uint32_t, uint64_t> Flash;
    std::map<uint32_t, uint64_t> Ram;
};
