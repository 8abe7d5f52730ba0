#include "tests/simulator/host.h"

#include <gtest/gtest.h>

#include <bit>
#include <cstdio>

hostBytes operator+(hostBytes first, const hostBytes& second)
{
    first.insert(first.end(), second.begin(), second.end());
    return first;
}

hostBytes little(uint64_t value, unsigned width)
{
    hostBytes bytes;
    for (unsigned place = 0; place < width; ++place)
        bytes.push_back(static_cast<uint8_t>(value >> 8 * place));
    return bytes;
}

hostBytes big(uint64_t value, unsigned width)
{
    const hostBytes reversed = little(value, width);
    return {reversed.rbegin(), reversed.rend()};
}

uint64_t littleAt(const hostBytes& bytes, size_t offset, unsigned width)
{
    uint64_t value = 0;
    for (unsigned place = 0; place < width; ++place)
        value |= uint64_t{bytes.at(offset + place)} << 8 * place;
    return value;
}

uint64_t bigAt(const hostBytes& bytes, size_t offset, unsigned width)
{
    uint64_t value = 0;
    for (unsigned place = 0; place < width; ++place)
        value = value << 8 | bytes.at(offset + place);
    return value;
}

double doubleAt(const hostBytes& bytes, size_t offset)
{
    return std::bit_cast<double>(bigAt(bytes, offset, 8));
}

double floatAt(const hostBytes& bytes, size_t offset)
{
    return std::bit_cast<float>(static_cast<uint32_t>(bigAt(bytes, offset, 4)));
}

hostBytes ubxSay(unsigned name, const hostBytes& payload)
{
    const hostBytes body = big(name, 2) + little(payload.size(), 2) + payload;
    unsigned a = 0;
    unsigned b = 0;
    for (const uint8_t byte : body) {
        a = (a + byte) % 256;
        b = (b + a) % 256;
    }
    return hostBytes{0xB5, 0x62} + body + hostBytes{static_cast<uint8_t>(a), static_cast<uint8_t>(b)};
}

std::vector<ubxSaid> ubxHear(const hostBytes& stream)
{
    std::vector<ubxSaid> said;
    size_t at = 0;
    while (at < stream.size()) {
        if (stream.size() - at < 8) {
            ADD_FAILURE() << "a frame is cut at " << at;
            break;
        }
        const size_t length = littleAt(stream, at + 4, 2);
        if (stream.size() - at < 8 + length) {
            ADD_FAILURE() << "a payload is cut at " << at;
            break;
        }
        const auto payload = stream.begin() + static_cast<ptrdiff_t>(at + 6);
        ubxSaid message{static_cast<unsigned>(bigAt(stream, at + 2, 2)),
                        hostBytes(payload, payload + static_cast<ptrdiff_t>(length))};
        const hostBytes frame(stream.begin() + static_cast<ptrdiff_t>(at),
                              payload + static_cast<ptrdiff_t>(length + 2));
        EXPECT_EQ(frame, ubxSay(message.Name, message.Payload)) << "a wrong frame at " << at;
        said.push_back(std::move(message));
        at += 8 + length;
    }
    return said;
}

std::vector<unsigned> ubxNames(const hostBytes& stream)
{
    std::vector<unsigned> names;
    for (const ubxSaid& message : ubxHear(stream))
        names.push_back(message.Name);
    return names;
}

hostBytes ubxFind(const hostBytes& stream, unsigned name)
{
    for (const ubxSaid& message : ubxHear(stream)) {
        if (message.Name == name)
            return message.Payload;
    }
    ADD_FAILURE() << "no message " << name;
    return hostBytes(1024);
}

hostBytes ubxPair(uint32_t key, uint64_t value)
{
    constexpr unsigned Widths[] = {0, 1, 1, 2, 4, 8};
    return little(key, 4) + little(value, Widths[key >> 28]);
}

hostBytes ubxValSet(const hostBytes& pairs)
{
    return ubxSay(0x068A, hostBytes{0, 1, 0, 0} + pairs);
}

hostBytes ubxValGet(std::initializer_list<uint32_t> keys, uint8_t layer)
{
    hostBytes payload = {0, layer, 0, 0};
    for (const uint32_t key : keys)
        payload = payload + little(key, 4);
    return ubxSay(0x068B, payload);
}

ubxSaid ubxAck(uint8_t id)
{
    return {0x0501, {0x06, id}};
}

ubxSaid ubxNak(uint8_t id)
{
    return {0x0500, {0x06, id}};
}

hostBytes tsipSay(uint8_t id, const hostBytes& data)
{
    hostBytes frame = {0x10, id};
    for (const uint8_t byte : data)
        frame.insert(frame.end(), byte == 0x10 ? 2 : 1, byte);
    return frame + hostBytes{0x10, 0x03};
}

std::vector<hostBytes> tsipHear(const hostBytes& stream)
{
    std::vector<hostBytes> packets;
    size_t at = 0;
    while (at < stream.size()) {
        if (stream.at(at) != 0x10 || stream.size() - at < 4) {
            ADD_FAILURE() << "no packet begins at " << at;
            break;
        }
        hostBytes packet;
        ++at;
        // Up to a DLE that is followed by ETX; one that is followed by a DLE is a byte.
        while (at + 1 < stream.size() && (stream[at] != 0x10 || stream[at + 1] != 0x03)) {
            if (stream[at] == 0x10) {
                EXPECT_EQ(stream[at + 1], 0x10) << "a DLE stands alone at " << at;
                ++at;
            }
            packet.push_back(stream[at++]);
        }
        EXPECT_LT(at + 1, stream.size()) << "a packet has no end";
        at += 2;
        packets.push_back(std::move(packet));
    }
    return packets;
}

hostBytes tsipFind(const hostBytes& stream, const hostBytes& beginning)
{
    for (const hostBytes& packet : tsipHear(stream)) {
        if (packet.size() >= beginning.size() &&
            std::equal(beginning.begin(), beginning.end(), packet.begin()))
            return packet;
    }
    ADD_FAILURE() << "no packet " << static_cast<unsigned>(beginning.at(0));
    return hostBytes(1024);
}

std::vector<std::string> nmeaHear(const hostBytes& stream)
{
    std::vector<std::string> bodies;
    const std::string text(stream.begin(), stream.end());
    size_t at = 0;
    while (at < text.size()) {
        const size_t end = text.find("\r\n", at);
        const size_t star = end == std::string::npos ? end : end - 3;
        if (text[at] != '$' || end == std::string::npos || text[star] != '*') {
            ADD_FAILURE() << "no sentence at " << text.substr(at, 20);
            break;
        }
        const std::string body = text.substr(at + 1, star - at - 1);
        const hostBytes right = nmeaSay(body);
        EXPECT_EQ(text.substr(at, end + 2 - at), std::string(right.begin(), right.end()));
        bodies.push_back(body);
        at = end + 2;
    }
    return bodies;
}

hostBytes nmeaSay(const std::string& body)
{
    unsigned sum = 0;
    for (const char letter : body)
        sum ^= static_cast<uint8_t>(letter);
    char end[8];
    std::snprintf(end, sizeof end, "*%02X\r\n", sum);
    const std::string text = "$" + body + end;
    return {text.begin(), text.end()};
}

std::vector<std::string> nmeaFields(const std::string& body)
{
    std::vector<std::string> fields(1);
    for (const char letter : body) {
        if (letter == ',')
            fields.emplace_back();
        else
            fields.back() += letter;
    }
    return fields;
}

std::vector<std::string> nmeaFind(const hostBytes& stream, const std::string& address)
{
    for (const std::string& body : nmeaHear(stream)) {
        if (body.starts_with(address))
            return nmeaFields(body);
    }
    ADD_FAILURE() << "no sentence " << address;
    return std::vector<std::string>(64);
}
