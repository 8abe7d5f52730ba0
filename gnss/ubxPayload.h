// The payload of one UBX frame, or a record of it, read little-endian by offset.
//
// A read that does not lie wholly inside gives 0, so no length in a message can lead a reader astray; what a
// message needs at least is still asked of size() by whoever decodes it. Refers to bytes of somebody else.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string_view>

class ubxPayload
{
public:
    constexpr ubxPayload(const uint8_t* bytes, size_t size) : Bytes(bytes), Count(size) {}

    constexpr size_t size() const { return Count; }
    constexpr const uint8_t* data() const { return Bytes; }

    constexpr uint8_t u1(size_t offset) const { return Holds(offset, 1) ? Bytes[offset] : uint8_t{0}; }
    constexpr uint16_t u2(size_t offset) const { return static_cast<uint16_t>(Read(offset, 2)); }
    constexpr uint32_t u4(size_t offset) const { return static_cast<uint32_t>(Read(offset, 4)); }
    constexpr uint64_t u8(size_t offset) const { return Read(offset, 8); }
    constexpr int8_t i1(size_t offset) const { return static_cast<int8_t>(u1(offset)); }
    constexpr int16_t i2(size_t offset) const { return static_cast<int16_t>(u2(offset)); }
    constexpr int32_t i4(size_t offset) const { return static_cast<int32_t>(u4(offset)); }

    // The `width` bytes from `offset` on, or as many of them as there are.
    constexpr ubxPayload Part(size_t offset, size_t width) const
    {
        const size_t start = std::min(offset, Count);
        return {Bytes + start, std::min(width, Count - start)};
    }

    // A text in a field of `width` bytes, up to its NUL or the end of what is there.
    std::string_view Text(size_t offset, size_t width) const
    {
        const ubxPayload field = Part(offset, width);
        const uint8_t* const end = std::find(field.Bytes, field.Bytes + field.Count, uint8_t{0});
        return {reinterpret_cast<const char*>(field.Bytes), static_cast<size_t>(end - field.Bytes)};
    }

private:
    constexpr bool Holds(size_t offset, size_t width) const
    {
        return width <= Count && offset <= Count - width;
    }

    constexpr uint64_t Read(size_t offset, size_t width) const
    {
        if (!Holds(offset, width))
            return 0;
        uint64_t value = 0;
        for (size_t place = 0; place < width; place++)
            value |= uint64_t{Bytes[offset + place]} << (8 * place);
        return value;
    }

    const uint8_t* Bytes;
    size_t Count;
};
