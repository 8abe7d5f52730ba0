// Where a report goes: a few ways to write, on top of one that a subclass gives.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

class memReportSink
{
public:
    // The text as it stands. False when it could not be written.
    bool Text(std::string_view text);

    // Sixteen hexadecimal digits in upper case.
    bool Hex(uint64_t value);

    // Digits in base 2 to 16, upper case, with zeros in front up to `digits` (at most 64).
    bool Number(uint64_t value, unsigned base = 10, unsigned digits = 1);

    // The title, the address rounded down to 8, then `words` eight-byte values, one more if the address was
    // not aligned, four to a row; it ends early where memory cannot be read, and always with a line end.
    bool Dump(std::string_view title, uint64_t address, unsigned words);

protected:
    ~memReportSink() = default;

    // Writes all bytes or gives false. Must not allocate from the checked heap or take its lock.
    virtual bool Write(const char* bytes, size_t count) = 0;
};
