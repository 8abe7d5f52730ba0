#include "tools/simulator/simUbxMessages.h"

namespace {

// In the order in which a solution is told.
constexpr simUbxMessageRow Messages[] = {
    {0xF0, 0x04, 0x209100AB, true},   // NMEA RMC
    {0xF0, 0x05, 0x209100B0, true},   // NMEA VTG
    {0xF0, 0x00, 0x209100BA, true},   // NMEA GGA
    {0xF0, 0x02, 0x209100BF, true},   // NMEA GSA
    {0xF0, 0x03, 0x209100C4, true},   // NMEA GSV
    {0xF0, 0x01, 0x209100C9, true},   // NMEA GLL
    {0xF0, 0x08, 0x209100D8, false},  // NMEA ZDA
    {0x01, 0x02, 0x20910029, false},  // NAV-POSLLH
    {0x01, 0x04, 0x20910038, false},  // NAV-DOP
    {0x01, 0x12, 0x20910042, false},  // NAV-VELNED
    {0x01, 0x21, 0x2091005B, false},  // NAV-TIMEUTC
    {0x01, 0x30, 0x20910F00, false},  // NAV-SVINFO
    {0x01, 0x35, 0x20910015, false},  // NAV-SAT
    {0x01, 0x43, 0x20910345, false},  // NAV-SIG
    {0x0A, 0x31, 0x2091038B, false},  // MON-SPAN
    {0x0A, 0x36, 0x2091034F, false},  // MON-COMMS
    {0x0D, 0x01, 0x2091017D, false},  // TIM-TP
};

}  // namespace

std::span<const simUbxMessageRow> simUbxMessages()
{
    return Messages;
}

const simUbxMessageRow* simUbxMessageOf(const simUbxModel& model, uint8_t messageClass, uint8_t id)
{
    for (const simUbxMessageRow& row : Messages) {
        if (row.Class == messageClass && row.Id == id)
            return simUbxHas(model, row) ? &row : nullptr;
    }
    return nullptr;
}

bool simUbxHas(const simUbxModel& model, const simUbxMessageRow& row)
{
    switch (row.Class << 8 | row.Id) {
    case 0x0130:
        return model.OldSatInfo;
    case 0x0135:
        return model.SatInfo;
    case 0x0143:
        return model.Signals;
    case 0x0A31:
        return model.Spans > 0;
    case 0x0A36:
        return model.Keys;
    default:
        return true;
    }
}
