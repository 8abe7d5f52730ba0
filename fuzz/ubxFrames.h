// UBX frames out of a fuzzer's bytes: correct around the edges, so that what is inside reaches the decoder.
#pragma once

#include "gnss/ubxChecksum.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <vector>

using fuzzBytes = std::vector<uint8_t>;

// Takes bytes off the front of a fuzzer's input; 0 when there are none left.
class fuzzInput
{
public:
    fuzzInput(const uint8_t* bytes, size_t size) : Bytes(bytes), Left(size) {}

    bool Empty() const { return Left == 0; }

    uint8_t Byte()
    {
        if (Left == 0)
            return 0;
        Left--;
        return *Bytes++;
    }

    // So many bytes, or fewer at the end.
    fuzzBytes Take(size_t count)
    {
        const size_t taken = std::min(count, Left);
        const fuzzBytes part(Bytes, Bytes + taken);
        Bytes += taken;
        Left -= taken;
        return part;
    }

private:
    const uint8_t* Bytes;
    size_t Left;
};

inline fuzzBytes ubxFramed(uint8_t messageClass, uint8_t id, const fuzzBytes& payload)
{
    fuzzBytes frame = {
        0xB5,
        0x62,
        messageClass,
        id,
        static_cast<uint8_t>(payload.size()),
        static_cast<uint8_t>(payload.size() >> 8),
    };
    frame.insert(frame.end(), payload.begin(), payload.end());
    const ubxChecksum sum = ubxChecksumOf(frame.data() + 2, frame.size() - 2);
    frame.push_back(sum.A);
    frame.push_back(sum.B);
    return frame;
}

// The messages that the decoder knows. A row's payload is the least that is worth decoding. In a list records
// of one size follow it, and one of its bytes counts them.
struct fuzzMessage {
    uint8_t Class;
    uint8_t Id;
    size_t Least;
    size_t CountAt = 0;
    size_t Record = 0;  // bytes; 0 for what is no list
};

constexpr fuzzMessage FuzzMessages[] = {
    {0x01, 0x02, 28},       {0x01, 0x04, 18},       {0x01, 0x12, 36},        {0x01, 0x21, 20},
    {0x01, 0x30, 8, 4, 12}, {0x01, 0x35, 8, 5, 12}, {0x01, 0x43, 8, 5, 16},  {0x05, 0x00, 2},
    {0x05, 0x01, 2},        {0x06, 0x00, 20},       {0x06, 0x31, 32},        {0x06, 0x3E, 4, 3, 8},
    {0x06, 0x8B, 9},        {0x0A, 0x04, 40},       {0x0A, 0x31, 4, 1, 272}, {0x0A, 0x36, 8, 1, 40},
    {0x0D, 0x01, 16},
};

// One frame: which message, how much longer than the least, then the payload. Lists get the length that their
// count asks for most of the time: else they would all be dropped for it.
inline fuzzBytes ubxTakeFrame(fuzzInput& input)
{
    constexpr uint8_t torn = 0xF0;  // from here on the count is left to chance
    const fuzzMessage& message = FuzzMessages[input.Byte() % std::size(FuzzMessages)];
    const uint8_t more = input.Byte();
    if (message.Record == 0)
        return ubxFramed(message.Class, message.Id, input.Take(message.Least + more));
    const uint8_t records = more % 16;
    fuzzBytes payload = input.Take(message.Least + records * message.Record);
    if (more < torn && payload.size() == message.Least + records * message.Record)
        payload[message.CountAt] = records;
    return ubxFramed(message.Class, message.Id, payload);
}
