#include "toolkit/pixmapDecode.h"

#include "toolkit/pixmapBits.h"

#include <algorithm>

namespace {

using bytes = std::span<const uint8_t>;

constexpr size_t MarkerCount = 3;

bool HasMarkers(bytes stream)
{
    return stream.size() >= MarkerCount && stream[0] != stream[1] && stream[0] != stream[2] &&
           stream[1] != stream[2];
}

bool DecodeMarkers(bytes stream, pixmapBytes& out)
{
    const bytes markers = stream.first(MarkerCount);
    bytes left = stream.subspan(MarkerCount);
    while (!left.empty()) {
        const auto marker = std::ranges::find(markers, left[0]);
        if (marker == markers.end()) {
            out.Append(left.first(1));
            left = left.subspan(1);
            continue;
        }
        const size_t countBytes = size_t{1} << (marker - markers.begin());
        if (left.size() < 1 + countBytes + 1)
            return false;
        uint64_t count = 0;
        for (size_t i = countBytes; i > 0; --i)
            count = count << 8 | left[i];
        out.AppendRun(count, left[1 + countBytes]);
        left = left.subspan(1 + countBytes + 1);
    }
    return true;
}

bool DecodeRuns(bytes left, pixmapBytes& out)
{
    while (!left.empty()) {
        const uint8_t control = left[0];
        const bool isLiteral = (control & 0x80) != 0;
        const size_t length = isLiteral ? (control & 0x7FU) + 1U : 1U;
        left = left.subspan(1);
        if (left.size() < length)
            return false;
        if (isLiteral)
            out.Append(left.first(length));
        else
            out.AppendRun(control + 2U, left[0]);
        left = left.subspan(length);
    }
    return true;
}

void DecodeLiterals(pixmapBits& bits, pixmapBytes& out)
{
    uint64_t count = bits.Number();
    for (; count > 0 && !bits.IsEmpty(); --count) {
        const uint8_t value = static_cast<uint8_t>(bits.Take(8));
        out.Append({&value, 1});
    }
    out.AppendRun(count, 0);
}

bool DecodeBits(pixmapBits bits, pixmapBytes& out)
{
    while (!bits.IsEmpty()) {
        switch (bits.Take(2)) {
        case 0:
            return true;
        case 1: {
            const uint64_t count = bits.Number();
            out.AppendRun(count, static_cast<uint8_t>(bits.Take(8)));
            break;
        }
        case 2: {
            const uint64_t length = bits.Number();
            const uint64_t distance = bits.Number();
            if (length > 0 && !out.AppendCopy(length, distance))
                return false;
            break;
        }
        default:
            DecodeLiterals(bits, out);
        }
    }
    return true;
}

bool DecodeAny(bytes stream, pixmapBytes& out)
{
    if (HasMarkers(stream))
        return DecodeMarkers(stream, out);
    if (stream.size() < 2 || stream[0] != stream[1])
        return false;
    if (stream[0] == 0)
        return DecodeRuns(stream.subspan(2), out);
    return stream[0] == 1 && DecodeBits(pixmapBits(stream.subspan(2)), out);
}

}  // namespace

bool pixmapDecode(std::span<const uint8_t> stream, pixmapBytes& out)
{
    if (DecodeAny(stream, out))
        return true;
    out.Clear();
    return false;
}
