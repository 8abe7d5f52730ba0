#include "tests/gnss/ubxScript.h"

namespace {

uint64_t Read(const ubxBytes& bytes, size_t at, size_t width)
{
    uint64_t value = 0;
    for (size_t place = 0; place < width; place++)
        value |= uint64_t{bytes.at(at + place)} << (8 * place);
    return value;
}

size_t WidthOf(uint32_t key)
{
    constexpr size_t Widths[] = {0, 1, 1, 2, 4, 8, 0, 0};
    return Widths[key >> 28 & 7];
}

}  // namespace

std::vector<ubxBytes> ubxScript::Answers(const ubxSent& sent)
{
    if (sent.Class == 0x0A && sent.Id == 0x04)
        return {Version};
    if (sent.Class == 0x0A && sent.Id == 0x36)
        return {Comms()};
    if (sent.Class != 0x06)
        return {};
    if (sent.Id == 0x8B)
        return {GetKeys(sent.Payload), ack(0x8B)};
    if (sent.Id != 0x8A)
        return Classic(sent);
    const bool selection = Read(sent.Payload, 4, 4) == 0x10310001;
    if (selection && RefusesSelection)
        return {nak(0x8A)};
    SetKeys(sent.Payload);
    return {ack(0x8A)};
}

std::vector<ubxBytes> ubxScript::Classic(const ubxSent& sent)
{
    const ubxBytes& payload = sent.Payload;
    if (sent.Id == 0x00 && payload.size() == 1) {
        ubxFrame port(0x06, 0x00);
        return {port.u1(payload[0]).u1(0).u2(0).u4(0x8D0).u4(9600).u2(7).u2(3).u4(0), ack(0x00)};
    }
    if (sent.Id == 0x00)
        PortSettings = payload;
    if (sent.Id == 0x01)
        MessageRates.push_back(payload);
    if (sent.Id == 0x31 && payload.empty())
        return {ubxFrame(0x06, 0x31).bytes(Pulse), ack(0x31)};
    if (sent.Id == 0x31)
        Pulse = payload;
    if (sent.Id == 0x3E && payload.empty())
        return {Gnss(), ack(0x3E)};
    if (sent.Id == 0x3E)
        for (size_t block = 4; block < payload.size(); block += 8)
            Enabled[payload[block]] = (payload[block + 4] & 1) != 0;
    return {ack(sent.Id)};
}

// Four ports; only the one of the link receives anything.
ubxFrame ubxScript::Comms()
{
    constexpr uint32_t Ids[] = {0x0000, 0x0100, 0x0201, 0x0300};
    Polls++;
    ubxFrame frame(0x0A, 0x36);
    frame.u1(0).u1(4).zeros(6);
    for (unsigned port = 0; port < 4; port++)
        frame.u2(Ids[port]).zeros(10).u4(port == Port ? 1000 + 8 * Polls : port).zeros(24);
    return frame;
}

void ubxScript::SetKeys(const ubxBytes& payload)
{
    for (size_t at = 4; at < payload.size();) {
        const auto key = static_cast<uint32_t>(Read(payload, at, 4));
        Keys[key] = Read(payload, at + 4, WidthOf(key));
        at += 4 + WidthOf(key);
    }
}

ubxFrame ubxScript::GetKeys(const ubxBytes& payload) const
{
    ubxFrame answer(0x06, 0x8B);
    answer.u1(1).u1(0).u2(0);
    for (size_t at = 4; at < payload.size(); at += 4) {
        const auto asked = static_cast<uint32_t>(Read(payload, at, 4));
        const bool group = (asked & 0xFFFF) == 0xFFFF;
        for (const auto& [key, value] : Keys) {
            if (key != asked && !(group && (key >> 16 & 0xFFF) == (asked >> 16 & 0xFFF)))
                continue;
            answer.u4(key).bytes(ubxFrame(0, 0).u8(value).resized(WidthOf(key)).payload());
        }
    }
    return answer;
}

ubxFrame ubxScript::Gnss() const
{
    ubxFrame frame(0x06, 0x3E);
    frame.u1(0).u1(32).u1(32).u1(Enabled.size());
    for (const auto& [gnssId, on] : Enabled)
        frame.u1(gnssId).u1(8).u1(16).u1(0).u4(0x01010000u | (on ? 1 : 0));
    return frame;
}

std::vector<ubxSent> converse(ubxLink& link, ubxScript& script)
{
    std::vector<ubxSent> all;
    for (std::vector<ubxSent> sent = link.Taken(); !sent.empty(); sent = link.Taken()) {
        for (const ubxSent& message : sent) {
            all.push_back(message);
            for (const ubxBytes& answer : script.Answers(message))
                feed(link.Receiver, answer);
        }
    }
    return all;
}
