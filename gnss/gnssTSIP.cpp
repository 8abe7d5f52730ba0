#include "gnss/gnssTSIP.h"

#include "platform/clock.h"

#include <algorithm>

namespace {

constexpr uint8_t DLE = 0x10;
constexpr uint8_t ETX = 0x03;

}  // namespace

// An id, how many bytes of data are read behind it at least, and what reads them.
struct gnssTSIP::report {
    uint8_t Id;
    uint8_t Least;
    void (gnssTSIP::*Decode)(bytesBig data);
};

constexpr gnssTSIP::report gnssTSIP::Reports[] = {
    {0x13, 1, &gnssTSIP::DecodeRejection},       {0x1C, 12, &gnssTSIP::DecodeHardwareVersion},
    {0x41, 10, &gnssTSIP::DecodeTime},           {0x45, 0, &gnssTSIP::DecodeSoftwareVersion},
    {0x46, 1, &gnssTSIP::DecodeHealth},          {0x47, 1, &gnssTSIP::DecodeSignalLevels},
    {0x4A, 4, &gnssTSIP::DecodePosition},        {0x4B, 2, &gnssTSIP::DecodeMachine},
    {0x55, 4, &gnssTSIP::DecodeOptions},         {0x56, 8, &gnssTSIP::DecodeVelocity},
    {0x5C, 20, &gnssTSIP::DecodeTracking},       {0x6D, 17, &gnssTSIP::DecodeAllInView},
    {0x84, 36, &gnssTSIP::DecodeDoublePosition}, {0x8F, 1, &gnssTSIP::DecodeSuper},
};

// The reports of 0x8F by the subcode that follows.
constexpr gnssTSIP::report gnssTSIP::SuperReports[] = {
    {0x0B, 65, &gnssTSIP::DecodeComprehensiveTime},
    {0xAB, 16, &gnssTSIP::DecodePrimaryTiming},
    {0xAC, 63, &gnssTSIP::DecodeSupplementalTiming},
    {0xAD, 17, &gnssTSIP::DecodePrimaryUTC},
};

gnssTSIP::gnssTSIP() : RequestTime(clockSteadyNs())
{
    Packet.reserve(PacketLimit);
}

void gnssTSIP::Restart()
{
    gnss::Restart();
    Packet.clear();
    ParseState = Framing::Outside;
    Ident = Identification::Asked;
    DecodeStatus = 0xFF;
    Send({DLE, 0x1C, 0x03, DLE, ETX});  // hardware version
}

void gnssTSIP::ResetReceiver()
{
    Send({DLE, 0x1E, 0x46, DLE, ETX});  // factory reset
    Restart();
}

void gnssTSIP::Feed(const uint8_t* bytes, size_t count)
{
    std::span<const uint8_t> left(bytes, count);
    while (!left.empty()) {
        size_t taken = 1;
        switch (ParseState) {
        case Framing::Outside:
            taken = TakeOutside(left);
            break;
        case Framing::Opened:
            TakeOpened(left.front());
            break;
        case Framing::InPacket:
            taken = TakeInside(left);
            break;
        case Framing::AfterDLE:
            TakeAfterDLE(left.front());
            break;
        }
        left = left.subspan(taken);
    }
}

size_t gnssTSIP::TakeOutside(std::span<const uint8_t> bytes)
{
    const auto opening = std::find(bytes.begin(), bytes.end(), DLE);
    if (opening == bytes.end())
        return bytes.size();
    Packet.clear();
    ParseState = Framing::Opened;
    return static_cast<size_t>(opening - bytes.begin()) + 1;
}

void gnssTSIP::TakeOpened(uint8_t byte)
{
    if (byte == DLE || byte == ETX) {
        ParseState = Framing::Outside;
        return;
    }
    Store({&byte, 1});
    ParseState = Framing::InPacket;
}

size_t gnssTSIP::TakeInside(std::span<const uint8_t> bytes)
{
    const auto mark = std::find(bytes.begin(), bytes.end(), DLE);
    const auto length = static_cast<size_t>(mark - bytes.begin());
    Store(bytes.first(length));
    if (mark == bytes.end())
        return length;
    ParseState = Framing::AfterDLE;
    return length + 1;
}

void gnssTSIP::TakeAfterDLE(uint8_t byte)
{
    if (byte == DLE) {
        Store({&byte, 1});
        ParseState = Framing::InPacket;
        return;
    }
    ParseState = Framing::Outside;
    if (byte == ETX)
        Decode();
}

void gnssTSIP::Store(std::span<const uint8_t> bytes)
{
    const size_t stored = std::min(bytes.size(), PacketLimit - Packet.size());
    Packet.insert(Packet.end(), bytes.begin(), bytes.begin() + static_cast<ptrdiff_t>(stored));
}

void gnssTSIP::Decode()
{
    if (Packet.empty())
        return;
    Dispatch(Reports, bytesBig(Packet));
    StepIdentification();
}

void gnssTSIP::Dispatch(std::span<const report> reports, bytesBig message)
{
    const bytesBig data = message.Behind(1);
    for (const report& row : reports) {
        if (row.Id == message.u1(0) && data.Size() >= row.Least)
            return (this->*row.Decode)(data);
    }
}

// Without a reply the version request goes out on every second packet.
void gnssTSIP::StepIdentification()
{
    switch (Ident) {
    case Identification::Asked:
        Ident = Identification::Waiting;
        break;
    case Identification::Waiting:
        Restart();
        break;
    case Identification::Rejected:
        Send({DLE, 0x1F, DLE, ETX});  // software version
        break;
    case Identification::Known:
        break;
    }
}

void gnssTSIP::Identified(uint8_t model)
{
    Ident = Identification::Known;
    Model = model;
}

void gnssTSIP::DecodeSuper(bytesBig data)
{
    Dispatch(SuperReports, data);
}

void gnssTSIP::Send(std::initializer_list<uint8_t> frame) const
{
    Transmit(frame.begin(), frame.size());
}
