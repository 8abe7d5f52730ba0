// The model of one receiver as seen through one protocol: always its latest state, field by field.
//
// A decoder derives from this class, overwrites the fields in place as its messages arrive, and raises one
// event to say that something changed. A field that a message does not carry keeps its value, however old.
// Feed of a decoder, and with it every event, runs on the thread that delivers the data, under the link's
// lock; pages read the fields under the same lock. Only `Sats` may be read outside it, under `SatsLock`.
#pragma once

#include "foundations/thread/thrSpin.h"

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <string_view>
#include <vector>

class gnss
{
public:
    // The pages that show a decoder.
    class UI;

    enum class Source : uint8_t {
        Unknown,
        BeiDou,
        Galileo,
        GLONASS,
        GPS,
        IMES,
        NavIC,
        QZSS,
        SBAS,
        Mixed,  // a sentence of several constellations whose numbers do not tell which
    };

    // Bits of Valid.
    static constexpr uint8_t ValidTime = 1;      // TimeOfDay and the date are meaningful
    static constexpr uint8_t ValidPosition = 2;  // Latitude, Longitude and Altitude are

    // One satellite, whatever the number of its signals.
    struct SatInfo {
        float Elevation = 0;  // degrees above the horizon
        float Azimuth = 0;    // degrees
        float SNR = 0;        // signal level as the protocol reports it; -1 means not tracked
        uint8_t SvId = 0;     // number within Source; 0 and 255 mean unknown
        gnss::Source Source = gnss::Source::Unknown;
        uint8_t Signals[3] = {};  // indices of SignalName, filled from the first slot on; 0 is an empty slot
        uint8_t Used = 0;         // not 0 if used in the position solution; see IsUsed

        // The decoder changes `Used` of listed satellites without the lock, so both sides go through these.
        bool IsUsed() const;
        void SetUsed(bool used);
    };

    // The largest `Model` that has a name.
    static constexpr uint8_t ModelLast = 14;

    gnss() = default;
    virtual ~gnss() = default;
    gnss(const gnss&) = delete;
    gnss& operator=(const gnss&) = delete;

    // Forgets what was decoded and begins to identify the receiver anew. Position, time and date keep their
    // values. At any moment at which Feed is not running.
    virtual void Restart();

    // Sets the platform dynamics of the receiver: 0 stationary, 1 land, 2 sea, 3 air. Receivers that cannot
    // ignore it.
    virtual void ReceiverModeSet(uint8_t dynamics);

    // The text for `Model`, UTF-8.
    std::string_view ModelName() const;

    double Altitude = 0;   // height above mean sea level, metres
    double Latitude = 0;   // decimal degrees, north positive
    double Longitude = 0;  // decimal degrees, east positive
    double TimeOfDay = 0;  // seconds since midnight

    std::function<void()> OnNewData;  // a group of fields changed; may be empty
    std::function<void(const uint8_t* bytes, size_t)>
        OnSend;  // takes bytes to the receiver; empty: none can be sent

    std::vector<SatInfo> Sats;  // the live list; replaced as a whole under SatsLock

    uint16_t Year = 0;  // full
    uint8_t Month = 0;  // 1 to 12
    uint8_t Day = 0;    // 1 to 31
    float HDOP = 0;
    float PDOP = 0;
    float SeaLevel = 0;  // metres: geoid separation (NMEA, UBX), negated reference altitude (TSIP)
    float Speed = 0;     // over ground: km/h from NMEA and TSIP, m/s from UBX
    float Track = 0;     // course over ground, degrees
    float VDOP = 0;

    thrSpin SatsLock;

    uint8_t Model = 0;  // see ModelName; 0 until the receiver is recognised
    uint8_t Valid = 0;

protected:
    // Puts a new list in the place of the live one under SatsLock; the old one is in `sats` afterwards.
    void SwapSats(std::vector<SatInfo>& sats);

    void RaiseNewData() const;
    void Transmit(const uint8_t* bytes, size_t count) const;
};

using SatInfo = gnss::SatInfo;

// The text of a value in SatInfo::Signals; empty for 0 and for values from 44 on.
std::string_view SignalName(uint8_t signal);

// The letter that stands before a satellite's number: 'G' for GPS; '*' when the constellation is not known.
char SourceLetter(gnss::Source source);

// The text of an NMEA fix quality, 0 to 8; empty for others.
std::string_view FixQualityName(uint8_t quality);
