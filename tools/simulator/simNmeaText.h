// NMEA 0183 as text: sentences built field by field, and found in what a host sends.
#pragma once

#include "tools/simulator/simBytes.h"

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

// Builds one sentence. Each call adds a field; the checksum and the line's end come last.
class simNmeaSentence
{
public:
    simNmeaSentence(std::string_view talker, std::string_view type) : Body(talker) { Body += type; }

    simNmeaSentence& Text(std::string_view text);
    simNmeaSentence& Empty(unsigned count = 1);
    simNmeaSentence& Whole(int64_t value, unsigned digits = 1);  // with zeros in front
    simNmeaSentence& Real(double value, int decimals, unsigned digits = 1);

    std::string Finished() const;

private:
    std::string Body;
};

// "$BODY*hh" with the end of the line.
std::string simNmeaFinish(std::string_view body);

// A number with so many decimals, and zeros in front up to so many digits before the point.
std::string simNmeaReal(double value, int decimals, unsigned digits);

// Finds sentences in a stream: what lies between "$" and the end of the line. A line with a wrong checksum is
// passed over; one without any is taken.
class simNmeaParser
{
public:
    // The bodies of all sentences that these bytes complete.
    std::vector<std::string> Take(std::span<const uint8_t> bytes);

private:
    void EndLine(std::vector<std::string>& found);

    std::string Body;
    bool Inside = false;
};

// The fields of a body, the address first.
std::vector<std::string_view> simNmeaFields(std::string_view body);

simBytes simBytesOf(std::string_view text);
