// What tells one u-blox receiver from another.
#pragma once

#include "tools/simulator/simReceiver.h"

#include <cstdint>
#include <span>

// A system of satellites that a receiver hears, one block of CFG-GNSS.
struct simUbxSystem {
    simSystem System;
    uint8_t Reserved;  // channels kept for it
    uint8_t Most;      // channels
    bool Enabled;      // from the factory
};

struct simUbxModel {
    simModel Model;
    const char* Software;
    const char* Hardware;
    std::span<const char* const> Extensions;
    bool Classic;     // is configured by CFG-PRT, CFG-MSG, CFG-GNSS, CFG-TP5, CFG-RATE
    bool Keys;        // is configured by CFG-VALSET and asked by CFG-VALGET
    bool SatInfo;     // has NAV-SAT; the oldest have NAV-SVINFO alone
    bool OldSatInfo;  // has NAV-SVINFO
    bool Signals;     // has NAV-SIG, names signals in its NMEA
    uint8_t Spans;    // bands of MON-SPAN
    uint8_t Channels;
    uint8_t PulseVersion;  // of CFG-TP5
    std::span<const simUbxSystem> Systems;
    std::span<const uint32_t> SignalKeys;  // those of CFG-SIGNAL that it knows, without the systems' own
};

// The row of a u-blox receiver; null for any other.
const simUbxModel* simUbxModelOf(simModel model);
