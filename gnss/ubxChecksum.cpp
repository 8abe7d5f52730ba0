#include "gnss/ubxChecksum.h"

namespace {

constexpr unsigned Block = 32;

}  // namespace

// CK_B holds each byte as often as sums were taken from it on. Over a block that is a weight known
// beforehand, so a block is two sums without a chain between its bytes, which the processor takes many at a
// time. All of it is arithmetic modulo 256, of which 16 bits keep more than enough.
ubxChecksum ubxChecksumOf(const uint8_t* bytes, size_t count)
{
    uint16_t sumA = 0;
    uint16_t sumB = 0;
    for (; count >= Block; bytes += Block, count -= Block) {
        uint16_t plain = 0;
        uint16_t weighted = 0;
        for (unsigned at = 0; at < Block; at++) {
            plain = static_cast<uint16_t>(plain + bytes[at]);
            weighted = static_cast<uint16_t>(weighted + bytes[at] * (Block - at));
        }
        sumB = static_cast<uint16_t>(sumB + Block * sumA + weighted);
        sumA = static_cast<uint16_t>(sumA + plain);
    }
    for (; count > 0; bytes++, count--) {
        sumA = static_cast<uint16_t>(sumA + *bytes);
        sumB = static_cast<uint16_t>(sumB + sumA);
    }
    return {static_cast<uint8_t>(sumA), static_cast<uint8_t>(sumB)};
}
