// Keys of the configuration interface, under their published names, and the time pulse's bits.
#pragma once

#include <cstdint>

namespace ubxKey {

// Which layer of the configuration a message speaks of.
constexpr uint8_t ReadRAM = 0;
constexpr uint8_t WriteRAM = 1;

constexpr uint32_t SignalGroup = 0x0031FFFF;  // every key of CFG-SIGNAL

constexpr uint32_t PulseDef = 0x20050023;        // CFG-TP-PULSE_DEF: 1 is frequency
constexpr uint32_t PulseLengthDef = 0x20050030;  // CFG-TP-PULSE_LENGTH_DEF: 1 is length
constexpr uint32_t PulsePeriod = 0x40050002;     // CFG-TP-PERIOD_TP1, microseconds
constexpr uint32_t PulseLength = 0x40050004;     // CFG-TP-LEN_TP1, microseconds
constexpr uint32_t PulseFrequency = 0x40050024;  // CFG-TP-FREQ_TP1, Hz
constexpr uint32_t PulseDuty = 0x5005002A;       // CFG-TP-DUTY_TP1, percent

constexpr uint8_t PulseDefFrequency = 1;
constexpr uint8_t PulseLengthDefRatio = 0;

}  // namespace ubxKey
