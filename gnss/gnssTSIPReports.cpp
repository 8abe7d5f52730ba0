#include "gnss/gnssTSIP.h"
#include "gnss/tsipModel.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr double DegreesPerRadian = 57.29577951308232;
constexpr float DegreesPerRadianShort = 57.29578F;
constexpr float KmhPerMs = 3.6F;
constexpr uint8_t AlarmAlmanac = 11;
constexpr uint8_t SignalL1CA = 31;

double degreesOf(double radians)
{
    return radians * DegreesPerRadian;
}

}  // namespace

// 0x13, a packet that the receiver did not understand: 0 its id.
void gnssTSIP::DecodeRejection(bytesBig data)
{
    constexpr uint8_t versionRequest = 0x1C;
    if (data.u1(0) == versionRequest)
        Ident = Identification::Rejected;
}

// 0x1C, hardware version: 0 subcode, 10 hardware code (u2).
void gnssTSIP::DecodeHardwareVersion(bytesBig data)
{
    constexpr uint8_t hardwareReply = 0x83;
    constexpr uint16_t hardwareAcutime = 3001;
    if (data.u1(0) != hardwareReply || data.u2(10) != hardwareAcutime)
        return;
    Identified(ModelAcutime);
    Send({0x10, 0x35, 0x10, 0x03});                                // I/O options, answered by 0x55
    Send({0x10, 0x8E, 0xA5, 0x00, 0xE0, 0x00, 0x00, 0x10, 0x03});  // which packets to broadcast
}

// 0x45, software version. Nothing is read of it.
void gnssTSIP::DecodeSoftwareVersion(bytesBig /*data*/)
{
    if (Ident != Identification::Rejected)
        return;
    Identified(ModelResolution);
    Send({0x10, 0x35, 0x10, 0x03});
}

// 0x46, health: 0 decoding status.
void gnssTSIP::DecodeHealth(bytesBig data)
{
    DecodeStatus = data.u1(0);
}

// 0x4B, machine code and status: 0 machine, 1 status.
void gnssTSIP::DecodeMachine(bytesBig data)
{
    constexpr uint8_t machineLassen = 0x5A;
    constexpr uint8_t machineAcutime = 0x61;
    constexpr uint8_t noAlmanac = 1 << 3;
    if (data.u1(0) == machineLassen)
        Identified(ModelLassen);
    else if (data.u1(0) == machineAcutime)
        Identified(ModelAcutime);
    if ((data.u1(1) & noAlmanac) != 0)
        Status = static_cast<uint16_t>(Status | 1U << AlarmAlmanac);
}

// 0x47, signal levels: 0 count; then for each satellite its number (u1) and the level (r4).
void gnssTSIP::DecodeSignalLevels(bytesBig data)
{
    constexpr size_t size = 5;
    const size_t count = data.u1(0);
    if (data.Size() < 1 + count * size)
        return;
    SatsNew.clear();
    for (size_t i = 0; i < count; ++i) {
        const bytesBig entry = data.Behind(1 + i * size);
        SatInfo satellite;
        satellite.SvId = entry.u1(0);
        satellite.Source = gnss::Source::GPS;
        satellite.Signals[0] = SignalL1CA;
        satellite.SNR = entry.r4(1);
        const SatInfo* const old = FindSat(satellite.SvId);
        satellite.Used = old != nullptr && old->IsUsed() ? 1 : 0;
        // Sorted as it grows: behind those that are equal, so that these keep the order of the message.
        const auto place =
            std::upper_bound(SatsNew.begin(), SatsNew.end(), satellite,
                             [](const SatInfo& a, const SatInfo& b) { return a.SvId < b.SvId; });
        SatsNew.insert(place, satellite);
    }
    SwapSats(SatsNew);
}

SatInfo* gnssTSIP::FindSat(uint8_t svId)
{
    const auto found =
        std::find_if(Sats.begin(), Sats.end(), [svId](const SatInfo& each) { return each.SvId == svId; });
    return found == Sats.end() ? nullptr : &*found;
}

// 0x5C, tracking status: 0 satellite, 12 elevation, 16 azimuth (r4).
void gnssTSIP::DecodeTracking(bytesBig data)
{
    SatInfo* const satellite = FindSat(data.u1(0));
    if (satellite == nullptr)
        return;
    const thrSpinHold hold(SatsLock);
    satellite->Elevation = data.r4(12) * DegreesPerRadianShort;
    satellite->Azimuth = data.r4(16) * DegreesPerRadianShort;
}

// 0x6D, all in view: 0 count in the high nibble, 1 PDOP, 5 HDOP, 9 VDOP, 13 TDOP (r4), 17 the satellites
// used.
void gnssTSIP::DecodeAllInView(bytesBig data)
{
    constexpr size_t list = 17;
    const size_t count = data.u1(0) >> 4;
    if (data.Size() < list + count)
        return;
    PDOP = data.r4(1);
    HDOP = data.r4(5);
    VDOP = data.r4(9);
    TDOP = data.r4(13);
    for (SatInfo& satellite : Sats)
        satellite.SetUsed(false);
    for (size_t i = 0; i < count; ++i) {
        if (SatInfo* const satellite = FindSat(data.u1(list + i)))
            satellite->SetUsed(true);
    }
}

// 0x4A, position: 0 latitude, 4 longitude, 8 altitude, 16 time of fix (r4). The same id with 9 bytes of data
// is the altitude reference: 0 reference (r4).
void gnssTSIP::DecodePosition(bytesBig data)
{
    constexpr size_t sizeOfReference = 9;
    constexpr size_t sizeOfPosition = 20;
    if (data.Size() == sizeOfReference) {
        SeaLevel = -data.r4(0);
        RaiseNewData();
        return;
    }
    if (data.Size() < sizeOfPosition)
        return;
    Latitude = degreesOf(double{data.r4(0)});
    Longitude = degreesOf(double{data.r4(4)});
    Altitude = double{data.r4(8)};
    Valid |= ValidPosition;
    SetFixTime(data.r4(16));
    Poll();
    RaiseNewData();
}

// 0x84, position: 0 latitude, 8 longitude, 16 altitude (r8), 32 time of fix (r4).
void gnssTSIP::DecodeDoublePosition(bytesBig data)
{
    SetPosition(data);
    SetFixTime(data.r4(32));
    Poll();
    RaiseNewData();
}

// 0 latitude, 8 longitude, 16 altitude (r8).
void gnssTSIP::SetPosition(bytesBig latitudeLongitudeAltitude)
{
    Latitude = degreesOf(latitudeLongitudeAltitude.r8(0));
    Longitude = degreesOf(latitudeLongitudeAltitude.r8(8));
    Altitude = latitudeLongitudeAltitude.r8(16);
    Valid |= ValidPosition;
}

// 0x56, velocity: 0 east, 4 north (r4), metres per second.
void gnssTSIP::DecodeVelocity(bytesBig data)
{
    const float east = data.r4(0);
    const float north = data.r4(4);
    Speed = std::sqrt(north * north + east * east) * KmhPerMs;
    Track = std::atan2(east, north) * DegreesPerRadianShort;
    RaiseNewData();
}

// 8F-AC, supplemental timing: 0 receiver mode, 2 survey progress, 9 alarms (u2), 11 decoding status, 15 clock
// bias, 19 bias rate, 31 temperature (r4), 35 latitude, 43 longitude, 51 altitude (r8), 59 PPS error (r4).
void gnssTSIP::DecodeSupplementalTiming(bytesBig data)
{
    constexpr uint8_t lastMode = 8;
    RXMode = std::min(data.u1(0), lastMode);
    SurveyProgress = data.u1(2);
    Status = data.u2(9);
    DecodeStatus = data.u1(11);
    ClockBias = data.r4(15);
    BiasRate = data.r4(19);
    Temperature = data.r4(31);
    SetPosition(data.Behind(35));

    constexpr float secondsPerNs = 1e-9F;
    PPSError = data.r4(59);
    if (Model == ModelAcutime)
        PPSError *= secondsPerNs;
    RaiseNewData();
}
