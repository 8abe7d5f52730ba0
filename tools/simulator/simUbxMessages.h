// The messages that a u-blox receiver can be told to send by itself.
#pragma once

#include "tools/simulator/simUbxModel.h"

#include <cstdint>
#include <span>

struct simUbxMessageRow {
    uint8_t Class;
    uint8_t Id;
    uint32_t Key;    // of its rate on I2C; see simUbxKey
    bool OnAtFirst;  // rate 1 from the factory
};

// The class that stands for NMEA sentences where messages are named.
constexpr uint8_t simUbxNmeaClass = 0xF0;

// All that exist.
std::span<const simUbxMessageRow> simUbxMessages();

// The row of a message that this receiver has; null when it has none such.
const simUbxMessageRow* simUbxMessageOf(const simUbxModel& model, uint8_t messageClass, uint8_t id);
bool simUbxHas(const simUbxModel& model, const simUbxMessageRow& row);
