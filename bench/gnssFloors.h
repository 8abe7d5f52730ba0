// The least that any decoder must do: find the messages and compute their checksums. Plain loops, each
// keeping its place from one chunk to the next.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>

// "$", characters whose exclusive or is the checksum, "*", two hexadecimal digits, a line end.
struct nmeaFloor {
    uint64_t Messages = 0;
    uint64_t Good = 0;

    void Feed(const uint8_t* bytes, size_t count)
    {
        for (size_t at = 0; at < count; at++) {
            const uint8_t byte = bytes[at];
            if (byte == '$') {
                Sum = 0;
                Summing = true;
            } else if (byte == '*') {
                Summing = false;
                Told = 0;
            } else if (byte == '\n') {
                Messages++;
                Good += Told == Sum ? 1 : 0;
            } else if (Summing) {
                Sum ^= byte;
            } else if (byte != '\r') {
                Told = Told * 16 + (byte <= '9' ? byte - '0' : byte - 'A' + 10u);
            }
        }
    }

private:
    unsigned Sum = 0;
    unsigned Told = 0;
    bool Summing = false;
};

// Two sync bytes, a header with the length, the payload, two bytes of checksum.
struct ubxFloor {
    uint64_t Messages = 0;
    uint64_t Good = 0;

    void Feed(const uint8_t* bytes, size_t count)
    {
        for (size_t at = 0; at < count;) {
            if (Place >= Header && Place < End) {
                at += Sum(bytes + at, std::min(count - at, End - Place));
                continue;
            }
            Byte(bytes[at++]);
        }
    }

private:
    static constexpr size_t Header = 6;

    size_t Sum(const uint8_t* bytes, size_t count)
    {
        for (size_t at = 0; at < count; at++) {
            SumA = static_cast<uint8_t>(SumA + bytes[at]);
            SumB = static_cast<uint8_t>(SumB + SumA);
        }
        Place += count;
        return count;
    }

    void Byte(uint8_t byte)
    {
        if (Place == 0) {
            Place = byte == 0xB5 ? 1 : 0;
        } else if (Place == 1) {
            Place = byte == 0x62 ? 2 : 0;
            SumA = SumB = 0;
            End = Header;
        } else if (Place < Header) {
            if (Place >= 4)
                End += size_t{byte} << (8 * (Place - 4));
            Sum(&byte, 1);
        } else if (Place == End) {
            Told = byte;
            Place++;
        } else {
            Messages++;
            Good += Told == SumA && byte == SumB ? 1 : 0;
            Place = 0;
        }
    }

    size_t Place = 0;
    size_t End = 0;
    uint8_t SumA = 0;
    uint8_t SumB = 0;
    uint8_t Told = 0;
};

// DLE, the packet with every DLE doubled, DLE ETX. There is no checksum; the bytes are summed all the same.
struct tsipFloor {
    uint64_t Messages = 0;
    uint64_t Sum = 0;

    void Feed(const uint8_t* bytes, size_t count)
    {
        constexpr uint8_t DLE = 0x10;
        constexpr uint8_t ETX = 0x03;
        for (size_t at = 0; at < count; at++) {
            const uint8_t byte = bytes[at];
            if (byte == DLE && !Marked) {
                Marked = true;
            } else {
                if (byte == ETX && Marked)
                    Messages++;
                else
                    Sum += byte;
                Marked = false;
            }
        }
    }

private:
    bool Marked = false;
};
