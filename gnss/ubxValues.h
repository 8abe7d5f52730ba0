// What the keys and values of a CFG-VALGET answer tell: of the signals or of the time pulse, whichever was
// asked for.
#pragma once

#include "gnss/ubxPayload.h"
#include "gnss/ubxSignals.h"

#include <cstdint>

struct ubxValues {
    bool SignalSeen = false;  // any key of the signals was there

    bool IsFrequency = false;  // the pulse is told by Frequency, else by Period
    bool IsLength = false;     // the pulse is told by Length, else by Duty
    double Period = 0;         // seconds
    double Length = 0;         // seconds
    float Frequency = 0;       // Hz
    double Duty = 0;           // a fraction

    // The signals that are on, which one is only if its constellation is.
    ubxSignalSet Selection() const;

    void Take(uint32_t key, ubxPayload value);

private:
    bool TakeSignal(uint32_t key, bool on);
    void TakePulse(uint32_t key, ubxPayload value);

    ubxSignalSet Signals;
    uint32_t Enabled = 0;  // a bit for each ubxConstellation
};

// Reads up to the first key of an unknown size, or the first value that is cut.
ubxValues ubxReadValues(ubxPayload payload);
