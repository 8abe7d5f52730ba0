// A decoder with a recorder at its events, and the frames that most tests need.
#pragma once

#include "tests/gnss/ubxFrame.h"

#include <initializer_list>
#include <ostream>
#include <string>
#include <string_view>
#include <vector>

// A message that the decoder sent. A frame that was not well formed is kept as message 0.
struct ubxSent {
    unsigned Class = 0;
    unsigned Id = 0;
    ubxBytes Payload;

    bool operator==(const ubxSent&) const = default;
    friend void PrintTo(const ubxSent& sent, std::ostream* stream);
};

ubxSent ubxParse(const uint8_t* bytes, size_t count);

class ubxLink
{
public:
    // Whether the decoder has a way to talk.
    explicit ubxLink(bool talks = true);
    ubxLink(const ubxLink&) = delete;

    // Feeds, and answers what was sent since the last call.
    std::vector<ubxSent> Take(const ubxBytes& bytes);
    std::vector<ubxSent> Taken();

    gnssUBX Receiver;
    std::vector<ubxSent> Sent;
    unsigned NewData = 0;
    unsigned Pulses = 0;
};

// MON-VER with a hardware version and extensions of 30 bytes each.
ubxFrame monVer(std::string_view hardware, std::initializer_list<std::string_view> extensions = {});

// The MON-VER of one of the models 6 to 14.
ubxFrame monVerOf(unsigned model, std::string_view version);

ubxFrame ack(unsigned message, unsigned messageClass = 0x06);
ubxFrame nak(unsigned message, unsigned messageClass = 0x06);

// A message without meaning for the decoder: it only gives the configuration a step.
ubxFrame anyFrame();

// A decoder that knows its receiver and waits for nothing; what it sent on the way is forgotten.
void identify(ubxLink& link, unsigned model, std::string_view version);

constexpr std::string_view VersionKeys = "PROTVER=34.10";
constexpr std::string_view VersionClassic = "PROTVER=18.00";
