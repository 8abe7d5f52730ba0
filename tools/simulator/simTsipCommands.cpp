// What a host may ask of a Trimble receiver.
#include "tools/simulator/simTsip.h"

#include <algorithm>

namespace {

constexpr uint8_t CommandTiming = 0x8E;
constexpr uint8_t CommandVersion = 0x1C;

constexpr int ColdFix = 4;  // seconds
constexpr int WarmFix = 2;

}  // namespace

const simTsip::command simTsip::Commands[] = {
    {CommandVersion, simTsipPart::Version, &simTsip::AskVersion},
    {0x1E, simTsipPart::All, &simTsip::ColdReset},
    {0x1F, simTsipPart::All, &simTsip::AskSoftware},
    {0x21, simTsipPart::All, &simTsip::AskTime},
    {0x24, simTsipPart::All, &simTsip::AskUsed},
    {0x25, simTsipPart::All, &simTsip::SoftReset},
    {0x26, simTsipPart::All, &simTsip::AskHealth},
    {0x27, simTsipPart::All, &simTsip::AskLevels},
    {0x2A, simTsipPart::All, &simTsip::AskAltitude},
    {0x35, simTsipPart::All, &simTsip::SetOptions},
    {0x3C, simTsipPart::All, &simTsip::AskTracking},
    {CommandTiming, simTsipPart::Timing, &simTsip::Timing},
    {0xBB, simTsipPart::Timing, &simTsip::SetReceiver},
};

void simTsip::OnPacket(const simBytes& packet)
{
    const std::span<const uint8_t> all = packet;
    const simReader data(all.subspan(1), std::endian::big);
    if (Faults.Nak || !RunFrom(Commands, packet[0], data))
        Reject(packet);
}

bool simTsip::RunFrom(std::span<const command> commands, uint8_t id, const simReader& data)
{
    for (const command& row : commands) {
        if (row.Id == id && Has(row.Part))
            return (this->*row.Run)(data);
    }
    return false;
}

// 0x1C: 1 asks for the firmware, 3 for the hardware.
bool simTsip::AskVersion(const simReader& data)
{
    constexpr uint8_t Firmware = 1;
    constexpr uint8_t Hardware = 3;
    const auto addName = [](simWriter& answer, std::string_view name) {
        answer.U1(name.size()).Text(name, name.size());
    };
    simWriter answer(std::endian::big);
    if (data.U1(0) == Firmware) {
        answer.U1(0x81).U1(0);                         // subcode, reserved
        answer.U1(Model.Major).U1(Model.Minor).U1(0);  // major, minor, build
        answer.U1(6).U1(16).U2(2007);                  // month, day, year
        addName(answer, Model.FirmwareName);
    } else if (data.U1(0) == Hardware) {
        answer.U1(0x83).U4(0x10032511);       // subcode, serial number
        answer.U1(16).U1(3).U2(2008).U1(10);  // day, month, year, hour
        answer.U2(Model.HardwareCode);        // hardware code
        addName(answer, Model.HardwareName);
    } else {
        return false;
    }
    Answer(CommandVersion, answer.Data);
    return true;
}

bool simTsip::AskSoftware(const simReader&)
{
    Answer(0x45, SoftwareData());
    return true;
}

bool simTsip::AskTime(const simReader&)
{
    Answer(0x41, TimeData());
    return true;
}

bool simTsip::AskUsed(const simReader&)
{
    Answer(0x6D, UsedData());
    return true;
}

bool simTsip::AskHealth(const simReader&)
{
    Answer(0x46, HealthData());
    Answer(0x4B, MachineData());
    return true;
}

bool simTsip::AskLevels(const simReader&)
{
    Answer(0x47, LevelsData());
    return true;
}

// 0x2A: the height above the ellipsoid that stands for height 0; as long a report as no other 0x4A.
bool simTsip::AskAltitude(const simReader&)
{
    const simEpoch& epoch = Current();
    Answer(0x4A, simWriter(std::endian::big)
                     .F4(-epoch.Place.Separation)  // reference altitude
                     .F4(0)                        // reserved
                     .U1(0)                        // altitude flag
                     .Data);
    return true;
}

bool simTsip::SoftReset(const simReader&)
{
    Restart(WarmFix);
    return true;
}

// 0x1E: 0x4B forgets the sky, 0x46 everything.
bool simTsip::ColdReset(const simReader& data)
{
    constexpr uint8_t Cold = 0x4B;
    constexpr uint8_t Factory = 0x46;
    if (data.U1(0) != Cold && data.U1(0) != Factory)
        return false;
    Restart(ColdFix);
    return true;
}

// 0x35: position, velocity, timing and auxiliary options; without data they are asked for.
bool simTsip::SetOptions(const simReader& data)
{
    if (!data.Data.empty() && data.Data.size() != std::size(IoOptions))
        return false;
    std::ranges::copy(data.Data, IoOptions);
    Answer(0x55, simBytes(std::begin(IoOptions), std::end(IoOptions)));
    return true;
}

// 0x3C: a report for one satellite, or for each of them.
bool simTsip::AskTracking(const simReader& data)
{
    const uint8_t asked = data.U1(0);
    unsigned channel = 0;
    for (const simSat& sat : Current().Sats) {
        if (asked == 0 || asked == sat.Svid)
            Answer(0x5C, TrackingData(sat, channel));
        ++channel;
    }
    return true;
}

// 0xBB: the receiver's configuration. A byte 0xFF leaves what is there.
bool simTsip::SetReceiver(const simReader& data)
{
    if (data.U1(0) != 0 || data.Data.empty() || data.Data.size() > Receiver.size())
        return false;
    for (size_t at = 1; at < data.Data.size(); ++at) {
        if (data.Data[at] != 0xFF)
            Receiver[at] = data.Data[at];
    }
    Answer(0xBB, Receiver);
    return true;
}
