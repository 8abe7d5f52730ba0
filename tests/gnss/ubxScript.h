// A receiver that answers the configuration dialogue as real ones do, from the interface description alone.
#pragma once

#include "tests/gnss/ubxLink.h"

#include <cstdint>
#include <map>
#include <vector>

class ubxScript
{
public:
    explicit ubxScript(ubxFrame version) : Version(std::move(version)) {}

    // What the receiver says to one message: answers, and the acknowledgement where there is one.
    std::vector<ubxBytes> Answers(const ubxSent& sent);

    unsigned Port = 1;              // where the link arrives, as an index of MON-COMMS
    bool RefusesSelection = false;  // by ACK-NAK

    std::map<uint32_t, uint64_t> Keys;   // the configuration by keys
    std::map<unsigned, bool> Enabled;    // by gnssId, of CFG-GNSS
    std::vector<ubxBytes> MessageRates;  // payloads of CFG-MSG in their order
    ubxBytes PortSettings;               // the CFG-PRT that was set
    ubxBytes Pulse = ubxBytes(32);       // CFG-TP5

private:
    std::vector<ubxBytes> Classic(const ubxSent& sent);
    ubxFrame Comms();
    void SetKeys(const ubxBytes& payload);
    ubxFrame GetKeys(const ubxBytes& payload) const;
    ubxFrame Gnss() const;

    ubxFrame Version;
    unsigned Polls = 0;
};

// Lets the decoder and the receiver talk until neither has anything to say. Answers all that was sent.
std::vector<ubxSent> converse(ubxLink& link, ubxScript& script);
