// The decoders that were asked for, fed with one stream as a link that cannot send would do it.
#pragma once

#include "tools/decode/decodeObjects.h"
#include "tools/decode/decodeOptions.h"

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>

class decodeSession
{
public:
    // The date in the options holds for every session of the process.
    explicit decodeSession(const decodeOptions& options);
    decodeSession(const decodeSession&) = delete;
    decodeSession& operator=(const decodeSession&) = delete;

    void Feed(std::span<const uint8_t> bytes);

    // One JSON object, in which each decoder has its own under the name of its protocol.
    std::string Describe() const;

private:
    bool Has(uint8_t protocol) const { return (Protocols & protocol) != 0; }

    uint8_t Protocols;
    gnssNMEA NMEA;
    gnssTSIP TSIP;
    gnssUBX UBX;
    decodeEvents EventsNMEA;
    decodeEvents EventsTSIP;
    decodeEvents EventsUBX;
};
