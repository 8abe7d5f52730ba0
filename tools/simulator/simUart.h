// What a serial line does to bytes: how long they take, and what becomes of them between two settings that
// differ.
#pragma once

#include "tools/simulator/simBytes.h"
#include "tools/simulator/simReceiver.h"

#include <cstdint>
#include <deque>
#include <span>

// Bits that one byte takes, with its start, parity and stop bits.
unsigned simUartBits(const simLine& line);

// Whether bytes pass from one setting to the other unharmed. Even parity and none count as the same: a
// virtual port does not tell them apart.
bool simUartAgrees(const simLine& sender, const simLine& listener);

// What a UART with one setting makes of bytes that are sent without a pause with another. A byte whose stop
// bit or parity is wrong arrives as 0, as drivers hand it on.
simBytes simUartMisread(std::span<const uint8_t> sent, const simLine& sender, const simLine& listener);

// A queue that gives its bytes at the speed of a line.
class simPace
{
public:
    void Add(std::span<const uint8_t> bytes) { Waiting.insert(Waiting.end(), bytes.begin(), bytes.end()); }

    // The bytes that a line of this speed has carried by now; `nowNs` does not go back.
    simBytes Due(int64_t nowNs, double bytesPerSecond);

    size_t Size() const { return Waiting.size(); }
    void Clear() { Waiting.clear(); }

private:
    std::deque<uint8_t> Waiting;
    int64_t LastNs = 0;
    double Credit = 0;  // bytes that time has earned and that were not given
    bool Started = false;
};
