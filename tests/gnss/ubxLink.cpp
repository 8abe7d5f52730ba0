#include "tests/gnss/ubxLink.h"

#include <iomanip>
#include <utility>

void PrintTo(const ubxSent& sent, std::ostream* stream)
{
    *stream << std::hex << std::setfill('0') << std::setw(2) << sent.Class << "-" << std::setw(2) << sent.Id
            << ":";
    for (const unsigned byte : sent.Payload)
        *stream << " " << std::setw(2) << byte;
    *stream << std::dec;
}

ubxSent ubxParse(const uint8_t* bytes, size_t count)
{
    constexpr size_t Around = 8;
    if (count < Around)
        return {};
    const ubxSent sent = {bytes[2], bytes[3], {bytes + 6, bytes + count - 2}};
    const ubxBytes again = ubxFrame(sent.Class, sent.Id).bytes(sent.Payload);
    return again == ubxBytes(bytes, bytes + count) ? sent : ubxSent{};
}

ubxLink::ubxLink(bool talks)
{
    Receiver.OnNewData = [this] { NewData++; };
    Receiver.OnPPS = [this] { Pulses++; };
    if (talks)
        Receiver.OnSend = [this](const uint8_t* bytes, size_t count) {
            Sent.push_back(ubxParse(bytes, count));
        };
}

std::vector<ubxSent> ubxLink::Take(const ubxBytes& bytes)
{
    Sent.clear();
    feed(Receiver, bytes);
    return Taken();
}

std::vector<ubxSent> ubxLink::Taken()
{
    return std::exchange(Sent, {});
}

ubxFrame monVer(std::string_view hardware, std::initializer_list<std::string_view> extensions)
{
    ubxFrame frame(0x0A, 0x04);
    frame.text("EXT CORE 1.00", 30).text(hardware, 10);
    for (const std::string_view extension : extensions)
        frame.text(extension, 30);
    return frame;
}

ubxFrame monVerOf(unsigned model, std::string_view version)
{
    switch (model) {
    case 7:
        return monVer("00070000", {version});
    case 8:
        return monVer("00080000", {version});
    case 9:
        return monVer("00190000", {version});
    case 10:
        return monVer("00190000", {version, "MOD=NEO-M9N"});
    case 11:
        return monVer("00190000", {version, "MOD=ZED-F9R"});
    case 12:
        return monVer("000A0000", {version});
    case 13:
        return monVer("000A0000", {version, "MOD=MAX-M10S"});
    case 14:
        return monVer("000A0000", {version, "MOD=NEO-F10N"});
    default:
        return monVer("00040001", {version});
    }
}

ubxFrame ack(unsigned message, unsigned messageClass)
{
    return ubxFrame(0x05, 0x01).u1(messageClass).u1(message);
}

ubxFrame nak(unsigned message, unsigned messageClass)
{
    return ubxFrame(0x05, 0x00).u1(messageClass).u1(message);
}

ubxFrame anyFrame()
{
    return ubxFrame(0x04, 0x02);
}

void identify(ubxLink& link, unsigned model, std::string_view version)
{
    feed(link.Receiver, monVerOf(model, version));
    link.Receiver.ConfigState = gnssUBX::State::Idle;
    link.Sent.clear();
    link.NewData = 0;
}
