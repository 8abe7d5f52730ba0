// A GNSS receiver made of arithmetic: bytes from its host go in, the bytes it would send come out.
//
// A receiver knows no port and no clock. Its owner hands it what arrived and tells it what time it is, so it
// can stand behind a line, a connection or a test that moves time by hand. All calls come from one thread.
#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <memory>
#include <span>
#include <string_view>
#include <vector>

enum class simModel : uint8_t {
    UBlox7,      // u-blox 7, classic messages, NAV-SVINFO
    M8,          // u-blox M8, classic messages
    M9,          // ZED-F9P: keys, two bands
    NeoM9N,      // NEO-M9N: keys
    ZedF9R,      // ZED-F9R: keys, two bands
    M10,         // u-blox M10 of no name that is treated apart
    MaxM10S,     // MAX-M10S
    NeoF10N,     // NEO-F10N: L1 and L5
    Acutime,     // Trimble Acutime Gold
    Lassen,      // Trimble Lassen SK8
    Resolution,  // Trimble Resolution T
    NMEA,        // a receiver that speaks NMEA 0183 and nothing else
    NVS,         // NVS, in its NMEA mode
};

// The port of the receiver at which the host is. Only u-blox receivers make a difference.
enum class simPort : uint8_t {
    I2C,
    UART1,
    UART2,
    USB,
};

// The receiver's side of a serial line, or the host's.
struct simLine {
    uint32_t Baud = 9600;
    char Parity = 'N';  // N, O or E
    uint8_t StopBits = 1;

    bool operator==(const simLine&) const = default;
};

struct simPlace {
    double Latitude = 47.3769;  // degrees, north positive
    double Longitude = 8.5417;  // degrees, east positive
    double Altitude = 408.0;    // metres above mean sea level
    double Separation = 47.3;   // metres from the ellipsoid up to mean sea level
};

struct simOptions {
    simModel Model = simModel::M9;
    bool NMEA = false;  // u-blox: the port starts with NMEA output, as from the factory
    unsigned Rate = 1;  // solutions a second, 1 to 25; other values are brought into that range
    simPlace Place;     // where the antenna stands
    // UTC at the first Advance, nanoseconds since 1970; by itself 2026-11-21.
    int64_t StartUtcNs = 1'795'219'200'000'000'000;
    simPort Port = simPort::UART1;
    simLine Line;       // where the receiver's UART stands after power-up
    uint64_t Seed = 1;  // of everything that looks random
};

// What goes wrong. May be changed at any time between two calls.
struct simFaults {
    bool Silent = false;       // hears and obeys, but nothing leaves
    bool Nak = false;          // refuses every change and every question it can refuse
    unsigned LoseAnswers = 0;  // so many of the next answers are lost, counted down
    double ByteErrors = 0;     // the probability that a byte leaves with one bit wrong
    double Cut = 0;            // the probability that a message breaks off somewhere
    bool Unplugged = false;    // nothing goes in or out; plugged in again it starts as after power-up
};

// Numbered as the UBX protocol's gnssId.
enum class simSystem : uint8_t {
    GPS,
    SBAS,
    Galileo,
    BeiDou,
    IMES,
    QZSS,
    GLONASS,
    NavIC,
};

struct simSignal {
    uint8_t Id;             // the UBX protocol's sigId
    std::string_view Name;  // "L1C/A"
};

// A satellite as the receiver sees it.
struct simSat {
    simSystem System = simSystem::GPS;
    uint8_t Svid = 0;      // the UBX protocol's svId: from 1 within the system, SBAS from 120
    double Elevation = 0;  // degrees above the horizon
    double Azimuth = 0;    // degrees from north to east, 0 to 360
    double SNR = 0;        // dB-Hz; 0 when it is searched for and not heard
    bool Used = false;     // in the solution
    std::vector<simSignal> Signals;
};

// What a test may compare with, as of the last solution.
struct simTruth {
    int64_t UtcNs = 0;  // nanoseconds since 1970
    bool Fixed = false;
    simPlace Place;  // as reported, with its noise
    double GDOP = 0, PDOP = 0, HDOP = 0, VDOP = 0, TDOP = 0, NDOP = 0, EDOP = 0;
    std::vector<simSat> Sats;           // in the receiver's order; all that it lists
    std::map<uint32_t, uint64_t> Keys;  // u-blox: the configuration by its keys, as raw bits; else empty
};

class simReceiver
{
public:
    simReceiver() = default;
    virtual ~simReceiver() = default;
    simReceiver(const simReceiver&) = delete;
    simReceiver& operator=(const simReceiver&) = delete;

    // Bytes from the host, in any cuts. They are answered by the next Advance.
    virtual void Take(std::span<const uint8_t> fromHost) = 0;

    // All bytes that are due up to now: answers, then what is sent by itself. `nowNs` is any clock that does
    // not go back; its first value is the moment of power-up.
    virtual std::vector<uint8_t> Advance(int64_t nowNs) = 0;

    virtual simTruth Truth() const = 0;

    // Where the receiver's UART stands now: the host may have asked for another setting.
    virtual simLine Line() const = 0;

    simFaults Faults;

    // How many bytes a line still has to carry, and how many may be too many, both set by its owner. While
    // there are more, the receiver leaves out what it sends by itself; it still answers. Without a line there
    // is no limit.
    size_t Backlog = 0;
    size_t BacklogLimit = SIZE_MAX;
};

// Never null.
std::unique_ptr<simReceiver> simMake(const simOptions& options);
