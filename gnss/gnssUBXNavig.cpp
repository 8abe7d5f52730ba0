#include "gnss/gnssUBX.h"

#include "gnss/ubxMessage.h"

void gnssUBX::Decode_Navig(const uint8_t* bytes, size_t count)
{
    const ubxPayload payload(bytes + 3, count - 3);
    switch (bytes[0]) {
    case ubx::NavPOSLLH:
        return Decode_NavPOSLLH(payload);
    case ubx::NavDOP:
        return Decode_NavDOP(payload);
    case ubx::NavVELNED:
        return Decode_NavVELNED(payload);
    case ubx::NavTIMEUTC:
        return Decode_NavTIMEUTC(payload);
    case ubx::NavSVINFO:
        return Decode_NavSVINFO(payload);
    case ubx::NavSAT:
        return Decode_NavSAT(payload);
    case ubx::NavSIG:
        return Decode_NavSIG(payload);
    default:
        return;
    }
}

// NAV-POSLLH: degrees by 1e-7, millimetres.
void gnssUBX::Decode_NavPOSLLH(ubxPayload payload)
{
    if (payload.size() < 28)
        return;
    constexpr uint32_t AccuracyLimit = 100'000;
    Longitude = payload.i4(4) * 1e-7;                                    // lon
    Latitude = payload.i4(8) * 1e-7;                                     // lat
    const float altitude = static_cast<float>(payload.i4(16)) * 0.001f;  // hMSL
    const float height = static_cast<float>(payload.i4(12)) * 0.001f;    // height
    Altitude = altitude;
    SeaLevel = height - altitude;
    const uint32_t horizontal = payload.u4(20);  // hAcc
    const uint32_t vertical = payload.u4(24);    // vAcc
    SetValid(ValidPosition, horizontal < AccuracyLimit && vertical < AccuracyLimit);
    RaiseNewData();
}

// NAV-DOP: dilution of precision, hundredths.
void gnssUBX::Decode_NavDOP(ubxPayload payload)
{
    if (payload.size() < 18)
        return;
    PDOP = payload.u2(6) * 0.01f;   // pDOP
    TDOP = payload.u2(8) * 0.01f;   // tDOP
    VDOP = payload.u2(10) * 0.01f;  // vDOP
    HDOP = payload.u2(12) * 0.01f;  // hDOP
    RaiseNewData();
}

// NAV-VELNED: centimetres per second, degrees by 1e-5.
void gnssUBX::Decode_NavVELNED(ubxPayload payload)
{
    if (payload.size() < 36)
        return;
    Speed = static_cast<float>(payload.u4(20)) * 0.01f;  // gSpeed
    Track = static_cast<float>(payload.i4(24)) * 1e-5f;  // heading
    RaiseNewData();
}

// NAV-TIMEUTC: date and time of the solution.
void gnssUBX::Decode_NavTIMEUTC(ubxPayload payload)
{
    if (payload.size() < 20)
        return;
    constexpr uint8_t AllValid = 7;  // time of week, week number and UTC
    const int32_t nano = payload.i4(8);
    Year = payload.u2(12);
    Month = payload.u1(14);
    Day = payload.u1(15);
    const int seconds = (payload.u1(16) * 60 + payload.u1(17)) * 60 + payload.u1(18);  // hour, min, sec
    TimeOfDay = seconds + nano * 1e-9;
    SetValid(ValidTime, (payload.u1(19) & AllValid) == AllValid);  // valid
    RaiseNewData();
}

void gnssUBX::SetValid(uint8_t bit, bool valid)
{
    Valid = static_cast<uint8_t>(valid ? Valid | bit : Valid & ~bit);
}
