// Messages put together and taken apart field by field, in either order of bytes.
#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>
#include <vector>

using simBytes = std::vector<uint8_t>;

// Appends fields. Values that do not fit lose their upper bits.
class simWriter
{
public:
    explicit simWriter(std::endian order) : Order(order) {}

    simWriter& U1(uint64_t value) { return Append(value, 1); }
    simWriter& U2(uint64_t value) { return Append(value, 2); }
    simWriter& U4(uint64_t value) { return Append(value, 4); }
    simWriter& U8(uint64_t value) { return Append(value, 8); }
    simWriter& I1(int64_t value) { return Append(static_cast<uint64_t>(value), 1); }
    simWriter& I2(int64_t value) { return Append(static_cast<uint64_t>(value), 2); }
    simWriter& I4(int64_t value) { return Append(static_cast<uint64_t>(value), 4); }
    simWriter& F4(double value) { return U4(std::bit_cast<uint32_t>(static_cast<float>(value))); }
    simWriter& F8(double value) { return U8(std::bit_cast<uint64_t>(value)); }

    // A text in a field of `width` bytes, filled up with NUL.
    simWriter& Text(std::string_view text, size_t width);
    simWriter& Zeros(size_t count);
    simWriter& Bytes(std::span<const uint8_t> bytes);
    simWriter& Append(uint64_t value, unsigned width);

    size_t Size() const { return Data.size(); }

    simBytes Data;

private:
    std::endian Order;
};

// Reads fields by offset. What does not lie wholly inside reads as 0.
class simReader
{
public:
    simReader(std::span<const uint8_t> bytes, std::endian order) : Data(bytes), Order(order) {}

    uint8_t U1(size_t offset) const { return static_cast<uint8_t>(Read(offset, 1)); }
    uint16_t U2(size_t offset) const { return static_cast<uint16_t>(Read(offset, 2)); }
    uint32_t U4(size_t offset) const { return static_cast<uint32_t>(Read(offset, 4)); }
    int16_t I2(size_t offset) const { return static_cast<int16_t>(U2(offset)); }
    int32_t I4(size_t offset) const { return static_cast<int32_t>(U4(offset)); }
    uint64_t Read(size_t offset, unsigned width) const;

    const std::span<const uint8_t> Data;

private:
    std::endian Order;
};
