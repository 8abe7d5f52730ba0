#include "tools/simulator/simBytes.h"

#include <algorithm>

simWriter& simWriter::Text(std::string_view text, size_t width)
{
    const std::string_view kept = text.substr(0, width);
    Data.insert(Data.end(), kept.begin(), kept.end());
    return Zeros(width - kept.size());
}

simWriter& simWriter::Zeros(size_t count)
{
    Data.resize(Data.size() + count);
    return *this;
}

simWriter& simWriter::Bytes(std::span<const uint8_t> bytes)
{
    Data.insert(Data.end(), bytes.begin(), bytes.end());
    return *this;
}

simWriter& simWriter::Append(uint64_t value, unsigned width)
{
    for (unsigned place = 0; place < width; ++place) {
        const unsigned rank = Order == std::endian::little ? place : width - 1 - place;
        Data.push_back(static_cast<uint8_t>(value >> (8 * rank)));
    }
    return *this;
}

uint64_t simReader::Read(size_t offset, unsigned width) const
{
    if (width > Data.size() || offset > Data.size() - width)
        return 0;
    uint64_t value = 0;
    for (unsigned place = 0; place < width; ++place) {
        const unsigned rank = Order == std::endian::little ? width - 1 - place : place;
        value = value << 8 | Data[offset + rank];
    }
    return value;
}
