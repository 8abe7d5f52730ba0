// Writes bits, the highest of each byte first, and numbers by the published table of prefixes. It shares no
// code with what reads them.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

class bitWriter
{
public:
    // As text, so that a test shows what a stream is made of; blanks are left out.
    bitWriter& Bits(const std::string& bits)
    {
        for (const char bit : bits)
            if (bit != ' ')
                Text += bit;
        return *this;
    }

    bitWriter& Value(unsigned width, uint64_t value)
    {
        for (unsigned i = width; i > 0; --i)
            Text += (value >> (i - 1) & 1) != 0 ? '1' : '0';
        return *this;
    }

    // The shortest form of a number.
    bitWriter& Number(uint64_t number)
    {
        if (number == 0)
            return Bits("11111");
        if (number <= 1U << 7)
            return Bits("0").Value(7, number - 1);
        if (number <= 1U << 14)
            return Bits("10").Value(14, number - 1);
        if (number <= 1U << 21)
            return Bits("110").Value(21, number - 1);
        if (number <= 1U << 28)
            return Bits("1110").Value(28, number - 1);
        return Bits("11110").Value(32, number - 1);
    }

    bitWriter& Run(uint64_t count, uint8_t value) { return Bits("01").Number(count).Value(8, value); }
    bitWriter& Copy(uint64_t length, uint64_t distance) { return Bits("10").Number(length).Number(distance); }
    bitWriter& Literals(const std::vector<uint8_t>& bytes)
    {
        Bits("11").Number(bytes.size());
        for (const uint8_t byte : bytes)
            Value(8, byte);
        return *this;
    }
    bitWriter& End() { return Bits("00"); }

    // The stream with its first two bytes; the last byte is filled up with `filler`.
    std::vector<uint8_t> Stream(char filler = '0') const
    {
        std::vector<uint8_t> stream = {1, 1};
        for (size_t i = 0; i < Text.size(); i += 8) {
            unsigned byte = 0;
            for (size_t j = i; j < i + 8; ++j)
                byte = byte << 1 | ((j < Text.size() ? Text[j] : filler) == '1' ? 1U : 0U);
            stream.push_back(static_cast<uint8_t>(byte));
        }
        return stream;
    }

private:
    std::string Text;
};
