// The solution of a u-blox receiver as UBX messages.
#include "tools/simulator/simUblox.h"

#include "tools/simulator/simSky.h"
#include "tools/simulator/simTime.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace {

constexpr uint32_t NotKnown = 0xFFFFFFFF;  // an accuracy without a solution

int64_t Rounded(double value)
{
    return std::llround(value);
}

uint64_t Hundredths(double value)
{
    return static_cast<uint64_t>(std::clamp<int64_t>(Rounded(value * 100), 0, 9999));
}

double TrackOf(const simEpoch& epoch)
{
    const double track = std::atan2(epoch.EastSpeed, epoch.NorthSpeed) * 180 / std::numbers::pi;
    return track < 0 ? track + 360 : track;
}

// Numbers of the satellites of all systems in one byte.
uint8_t OldSvid(const simSat& sat)
{
    constexpr uint8_t FirstGalileo = 210;
    constexpr uint8_t FirstGlonass = 64;
    constexpr uint8_t FirstQzss = 192;
    switch (sat.System) {
    case simSystem::Galileo:
        return static_cast<uint8_t>(FirstGalileo + sat.Svid);
    case simSystem::BeiDou:
        // From 159 to 163, then from 33 on.
        return static_cast<uint8_t>(sat.Svid <= 5 ? 158 + sat.Svid : 27 + sat.Svid);
    case simSystem::QZSS:
        return static_cast<uint8_t>(FirstQzss + sat.Svid);
    case simSystem::GLONASS:
        return static_cast<uint8_t>(FirstGlonass + sat.Svid);
    default:
        return sat.Svid;
    }
}

uint32_t QualityOf(double snr)
{
    constexpr uint32_t Searching = 1;
    constexpr uint32_t CodeLocked = 4;
    constexpr uint32_t CarrierLocked = 7;
    constexpr double Firm = 33;
    return snr <= 0 ? Searching : snr < Firm ? CodeLocked : CarrierLocked;
}

// How much weaker than the first a signal of the lower band arrives, in dB.
double LossOf(const simSignal& signal)
{
    return signal.Id == 0 ? 0 : 3;
}

}  // namespace

// NAV-POSLLH: position.
simBytes simUblox::NavPOSLLH() const
{
    const simEpoch& epoch = Current();
    const int64_t horizontal = epoch.Fixed ? Rounded(epoch.HorizontalAccuracy * 1000) : NotKnown;
    const int64_t vertical = epoch.Fixed ? Rounded(epoch.VerticalAccuracy * 1000) : NotKnown;
    return simWriter(std::endian::little)
        .U4(Itow())                                                           // iTOW
        .I4(Rounded(epoch.Place.Longitude * 1e7))                             // lon
        .I4(Rounded(epoch.Place.Latitude * 1e7))                              // lat
        .I4(Rounded((epoch.Place.Altitude + epoch.Place.Separation) * 1000))  // height
        .I4(Rounded(epoch.Place.Altitude * 1000))                             // hMSL
        .I4(horizontal)                                                       // hAcc
        .I4(vertical)                                                         // vAcc
        .Data;
}

// NAV-DOP: dilution of precision, hundredths.
simBytes simUblox::NavDOP() const
{
    const simDop& dop = Current().Dop;
    return simWriter(std::endian::little)
        .U4(Itow())             // iTOW
        .U2(Hundredths(dop.G))  // gDOP
        .U2(Hundredths(dop.P))  // pDOP
        .U2(Hundredths(dop.T))  // tDOP
        .U2(Hundredths(dop.V))  // vDOP
        .U2(Hundredths(dop.H))  // hDOP
        .U2(Hundredths(dop.N))  // nDOP
        .U2(Hundredths(dop.E))  // eDOP
        .Data;
}

// NAV-VELNED: velocity.
simBytes simUblox::NavVELNED() const
{
    const simEpoch& epoch = Current();
    const int64_t speed = Rounded(std::hypot(epoch.NorthSpeed, epoch.EastSpeed) * 100);
    return simWriter(std::endian::little)
        .U4(Itow())                                // iTOW
        .I4(Rounded(epoch.NorthSpeed * 100))       // velN
        .I4(Rounded(epoch.EastSpeed * 100))        // velE
        .I4(0)                                     // velD
        .I4(speed)                                 // speed
        .I4(speed)                                 // gSpeed
        .I4(Rounded(TrackOf(epoch) * 1e5))         // heading
        .U4(epoch.Fixed ? 5 : NotKnown)            // sAcc
        .U4(epoch.Fixed ? 2'000'000 : 18'000'000)  // cAcc
        .Data;
}

// NAV-TIMEUTC: date and time. The time of day may be in the middle of a second.
simBytes simUblox::NavTIMEUTC() const
{
    constexpr uint8_t ValidWeekAndTow = 3;
    constexpr uint8_t ValidUtc = 4;
    const simDate date = simDateOf(Current().UtcNs);
    return simWriter(std::endian::little)
        .U4(Itow())                                                          // iTOW
        .U4(Current().Fixed ? 21 : NotKnown)                                 // tAcc
        .I4(date.Nanosecond)                                                 // nano
        .I2(date.Year)                                                       // year
        .I1(date.Month)                                                      // month
        .I1(date.Day)                                                        // day
        .I1(date.Hour)                                                       // hour
        .I1(date.Minute)                                                     // min
        .I1(date.Second)                                                     // sec
        .U1(Current().Fixed ? ValidWeekAndTow | ValidUtc : ValidWeekAndTow)  // valid
        .Data;
}

// NAV-SVINFO: the satellites, as older receivers tell them.
simBytes simUblox::NavSVINFO() const
{
    constexpr uint8_t UsedFlag = 1;
    constexpr uint8_t OrbitFlags = 0x0C;
    constexpr uint8_t ChipM8 = 4;
    constexpr uint8_t Chip7 = 3;
    const simEpoch& epoch = Current();
    simWriter message(std::endian::little);
    message
        .U4(Itow())                          // iTOW
        .U1(epoch.Sats.size())               // numCh
        .U1(Model.SatInfo ? ChipM8 : Chip7)  // globalFlags
        .U2(0);                              // reserved
    for (size_t channel = 0; channel < epoch.Sats.size(); ++channel) {
        const simSat& sat = epoch.Sats[channel];
        message
            .U1(channel)                                 // chn
            .U1(OldSvid(sat))                            // svid
            .U1(OrbitFlags | (sat.Used ? UsedFlag : 0))  // flags
            .U1(QualityOf(sat.SNR))                      // quality
            .I1(Rounded(sat.SNR))                        // cno
            .I1(Rounded(sat.Elevation))                  // elev
            .I2(Rounded(sat.Azimuth) % 360)              // azim
            .I4(sat.Used ? -17 : 0);                     // prRes
    }
    return message.Data;
}

// NAV-SAT: the satellites.
simBytes simUblox::NavSAT() const
{
    constexpr uint32_t UsedFlag = 1 << 3;
    constexpr uint32_t Healthy = 1 << 4;
    constexpr uint32_t Ephemeris = 1 << 8 | 1 << 11 | 1 << 12;
    const simEpoch& epoch = Current();
    simWriter message(std::endian::little);
    message.U4(Itow()).U1(1).U1(epoch.Sats.size()).U2(0);  // iTOW, version, numSvs, reserved
    for (const simSat& sat : epoch.Sats) {
        const uint32_t state = sat.SNR > 0 ? Healthy | Ephemeris : 0;
        message
            .U1(static_cast<uint8_t>(sat.System))                          // gnssId
            .U1(sat.Svid)                                                  // svId
            .I1(Rounded(sat.SNR))                                          // cno
            .I1(Rounded(sat.Elevation))                                    // elev
            .I2(Rounded(sat.Azimuth) % 360)                                // azim
            .I2(sat.Used ? -2 : 0)                                         // prRes
            .U4(QualityOf(sat.SNR) | (sat.Used ? UsedFlag : 0u) | state);  // flags
    }
    return message.Data;
}

// NAV-SIG: the signals of each satellite that is heard.
simBytes simUblox::NavSIG() const
{
    constexpr uint16_t Healthy = 1;
    constexpr uint16_t UsedFlags = 1 << 3 | 1 << 5;
    constexpr int ChannelBias = 7;
    simWriter records(std::endian::little);
    unsigned count = 0;
    for (const simSat& sat : Current().Sats) {
        for (const simSignal& signal : sat.Signals) {
            if (sat.SNR <= 0)
                continue;
            const bool glonass = sat.System == simSystem::GLONASS;
            const double level = sat.SNR - LossOf(signal);
            records
                .U1(static_cast<uint8_t>(sat.System))                    // gnssId
                .U1(sat.Svid)                                            // svId
                .U1(signal.Id)                                           // sigId
                .I1(glonass ? simChannelOf(sat.Svid) + ChannelBias : 0)  // freqId
                .I2(sat.Used ? -2 : 0)                                   // prRes
                .I1(Rounded(level))                                      // cno
                .U1(QualityOf(level))                                    // qualityInd
                .U1(0)                                                   // corrSource
                .U1(sat.Used ? 1 : 0)                                    // ionoModel
                .U2(Healthy | (sat.Used ? UsedFlags : 0))                // sigFlags
                .U4(0);                                                  // reserved
            ++count;
        }
    }
    return simWriter(std::endian::little).U4(Itow()).U1(0).U1(count).U2(0).Bytes(records.Data).Data;
}

// TIM-TP: the next pulse, one second ahead.
simBytes simUblox::TimTP() const
{
    constexpr uint8_t UtcAvailable = 2;
    const simGpsTime next = simGpsOf(Current().UtcNs + simSecond);
    // The pulse falls on a tick of a clock of about 48 MHz, whose phase creeps.
    constexpr double Tick = 20'833;  // picoseconds
    const double creep = static_cast<double>(Current().UtcNs / simSecond % 100'000) * 0.137;
    const double error = Tick * (creep - std::floor(creep) - 0.5);
    return simWriter(std::endian::little)
        .I4(next.TowNs / simMillisecond)  // towMS
        .U4(0)                            // towSubMS
        .I4(Rounded(error))               // qErr, picoseconds
        .I2(next.Week)                    // week
        .U1(UtcAvailable)                 // flags
        .U1(0)                            // refInfo
        .Data;
}
