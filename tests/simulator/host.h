// What a host needs to talk with a simulated receiver: time that moves by hand, and frames of its own making.
#pragma once

#include "tools/simulator/simReceiver.h"

#include <cstdint>
#include <initializer_list>
#include <memory>
#include <optional>
#include <string>
#include <vector>

using hostBytes = std::vector<uint8_t>;

// A receiver and the clock that its owner reads.
class host
{
public:
    explicit host(const simOptions& options) : Receiver(simMake(options)) { Receiver->Advance(Now); }
    explicit host(simModel model) : host(OptionsOf(model)) {}

    static simOptions OptionsOf(simModel model)
    {
        simOptions options;
        options.Model = model;
        return options;
    }

    // Sends bytes and gives what comes back at once.
    hostBytes Ask(const hostBytes& bytes)
    {
        Receiver->Take(bytes);
        return Receiver->Advance(Now);
    }

    // Lets time pass and gives what the receiver sends meanwhile.
    hostBytes Wait(double seconds)
    {
        Now += static_cast<int64_t>(seconds * 1e9);
        return Receiver->Advance(Now);
    }

    simFaults& Faults() { return Receiver->Faults; }

    int64_t Now = 1'000'000'000;
    const std::unique_ptr<simReceiver> Receiver;
};

hostBytes operator+(hostBytes first, const hostBytes& second);

// Numbers in the order of bytes that the protocol wants.
hostBytes little(uint64_t value, unsigned width);
hostBytes big(uint64_t value, unsigned width);
uint64_t littleAt(const hostBytes& bytes, size_t offset, unsigned width);
uint64_t bigAt(const hostBytes& bytes, size_t offset, unsigned width);
double doubleAt(const hostBytes& bytes, size_t offset);  // big-endian, eight bytes
double floatAt(const hostBytes& bytes, size_t offset);   // big-endian, four bytes

// --- UBX

struct ubxSaid {
    unsigned Name = 0;  // class and id: 0x0135
    hostBytes Payload;

    bool operator==(const ubxSaid&) const = default;
};

hostBytes ubxSay(unsigned name, const hostBytes& payload = {});

// The messages of a stream that holds nothing else; fails the test where it holds anything else.
std::vector<ubxSaid> ubxHear(const hostBytes& stream);

// The names of these messages in their order.
std::vector<unsigned> ubxNames(const hostBytes& stream);

// The payload of the first message of that name; fails the test when there is none.
hostBytes ubxFind(const hostBytes& stream, unsigned name);

// A key and its value, as CFG-VALSET takes them.
hostBytes ubxPair(uint32_t key, uint64_t value);
hostBytes ubxValSet(const hostBytes& pairs);
hostBytes ubxValGet(std::initializer_list<uint32_t> keys, uint8_t layer = 0);

// ACK-ACK and ACK-NAK of a configuration message.
ubxSaid ubxAck(uint8_t id);
ubxSaid ubxNak(uint8_t id);

// --- TSIP

// A command as a host sends it, with its data's DLEs doubled.
hostBytes tsipSay(uint8_t id, const hostBytes& data = {});

// The packets of a stream that holds nothing else: the id and the data of each.
std::vector<hostBytes> tsipHear(const hostBytes& stream);

// The first packet that begins so; fails the test when there is none.
hostBytes tsipFind(const hostBytes& stream, const hostBytes& beginning);

// --- NMEA

// The bodies of the sentences of a stream that holds nothing else, checksums seen to.
std::vector<std::string> nmeaHear(const hostBytes& stream);
hostBytes nmeaSay(const std::string& body);

// The fields of a body.
std::vector<std::string> nmeaFields(const std::string& body);

// The first sentence of that address; fails the test when there is none.
std::vector<std::string> nmeaFind(const hostBytes& stream, const std::string& address);
