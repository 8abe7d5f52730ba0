// Reads the big-endian fields of a message. A field that does not fit in at its offset reads as 0, so that no
// message, however short, is read beyond its end.
#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>
#include <span>

class bytesBig
{
public:
    constexpr bytesBig() = default;
    explicit constexpr bytesBig(std::span<const uint8_t> bytes) : Bytes(bytes) {}

    constexpr size_t Size() const { return Bytes.size(); }
    constexpr uint8_t u1(size_t offset) const { return Field<uint8_t>(offset); }
    constexpr uint16_t u2(size_t offset) const { return Field<uint16_t>(offset); }
    constexpr uint32_t u4(size_t offset) const { return Field<uint32_t>(offset); }
    constexpr float r4(size_t offset) const { return std::bit_cast<float>(u4(offset)); }
    constexpr double r8(size_t offset) const { return std::bit_cast<double>(Field<uint64_t>(offset)); }

    // What follows the first `count` bytes; empty when there are fewer.
    constexpr bytesBig Behind(size_t count) const
    {
        return bytesBig(count < Bytes.size() ? Bytes.subspan(count) : std::span<const uint8_t>{});
    }

private:
    template <class T>
    constexpr T Field(size_t offset) const
    {
        if (offset > Bytes.size() || Bytes.size() - offset < sizeof(T))
            return 0;
        uint64_t value = 0;
        for (const uint8_t each : Bytes.subspan(offset, sizeof(T)))
            value = value << 8 | each;
        return static_cast<T>(value);
    }

    std::span<const uint8_t> Bytes;
};
