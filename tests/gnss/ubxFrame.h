// Builds a UBX frame field by field, as a receiver would send it.
//
//     ubxFrame(0x01, 0x04).u4(0).u2(110).u2(100)
#pragma once

#include "gnss/gnssUBX.h"

#include <algorithm>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

using ubxBytes = std::vector<uint8_t>;

class ubxFrame
{
public:
    ubxFrame(unsigned messageClass, unsigned id)
        : Class(static_cast<uint8_t>(messageClass)), Id(static_cast<uint8_t>(id))
    {}

    ubxFrame& u1(uint64_t value) { return Append(value, 1); }
    ubxFrame& u2(uint64_t value) { return Append(value, 2); }
    ubxFrame& u4(uint64_t value) { return Append(value, 4); }
    ubxFrame& u8(uint64_t value) { return Append(value, 8); }
    ubxFrame& i1(int64_t value) { return Append(static_cast<uint64_t>(value), 1); }
    ubxFrame& i2(int64_t value) { return Append(static_cast<uint64_t>(value), 2); }
    ubxFrame& i4(int64_t value) { return Append(static_cast<uint64_t>(value), 4); }
    ubxFrame& f8(double value) { return u8(std::bit_cast<uint64_t>(value)); }

    ubxFrame& zeros(size_t count)
    {
        Payload.resize(Payload.size() + count);
        return *this;
    }

    // A text in a field of `width` bytes, filled up with NUL.
    ubxFrame& text(std::string_view value, size_t width)
    {
        const size_t start = Payload.size();
        zeros(width);
        std::copy_n(value.begin(), std::min(value.size(), width),
                    Payload.begin() + static_cast<ptrdiff_t>(start));
        return *this;
    }

    ubxFrame& bytes(const ubxBytes& more)
    {
        Payload.insert(Payload.end(), more.begin(), more.end());
        return *this;
    }

    // Cuts or fills the payload to this length.
    ubxFrame& resized(size_t size)
    {
        Payload.resize(size);
        return *this;
    }

    const ubxBytes& payload() const { return Payload; }

    // The frame, sync bytes and checksum and all.
    operator ubxBytes() const
    {
        ubxBytes all = {0xB5,
                        0x62,
                        Class,
                        Id,
                        static_cast<uint8_t>(Payload.size()),
                        static_cast<uint8_t>(Payload.size() >> 8)};
        all.insert(all.end(), Payload.begin(), Payload.end());
        uint8_t sumA = 0;
        uint8_t sumB = 0;
        for (size_t at = 2; at < all.size(); at++) {
            sumA = static_cast<uint8_t>(sumA + all[at]);
            sumB = static_cast<uint8_t>(sumB + sumA);
        }
        all.push_back(sumA);
        all.push_back(sumB);
        return all;
    }

private:
    ubxFrame& Append(uint64_t value, unsigned width)
    {
        for (unsigned place = 0; place < width; place++)
            Payload.push_back(static_cast<uint8_t>(value >> (8 * place)));
        return *this;
    }

    uint8_t Class;
    uint8_t Id;
    ubxBytes Payload;
};

inline void feed(gnssUBX& receiver, const ubxBytes& bytes)
{
    receiver.Feed(bytes.data(), bytes.size());
}

inline ubxBytes operator+(ubxBytes first, const ubxBytes& second)
{
    first.insert(first.end(), second.begin(), second.end());
    return first;
}
