#include "gnss/gnss.h"

#include <iterator>

namespace {

constexpr std::string_view ModelNames[] = {
    "Unknown",
    "Generic NMEA",
    "NVS NV08C-CSM v5.1",
    "Trimble® Acutime™ Gold",
    "Trimble® Lassen-SK8™",
    "Trimble® Resolution T®",
    "Generic u-blox",
    "u-blox 7",
    "u-blox 8/M8",
    "u-blox 9/M9",
    "u-blox Neo-M9N",
    "u-blox Zed-F9R",
    "u-blox 10/M10",
    "u-blox Max-M10S",
    "u-blox Neo-F10N",
};
static_assert(std::size(ModelNames) == gnss::ModelLast + 1);

// Grouped by constellation, which is why a text may stand here twice.
constexpr std::string_view SignalNames[] = {
    "",      "B1 C",   "B1 Cd",  "B1 Cp", "B1I",    "B1I D1", "B1I D2",  // BeiDou, 1 to 15
    "B2 a",  "B2 ad",  "B2 ap",  "B2I",   "B2I D1", "B2I D2",            //
    "B3I",   "B3I D1", "B3I D2",                                         //
    "E1",    "E1 B",   "E1 C",   "E5 a",  "E5 aI",  "E5 aQ",             // Galileo, 16 to 28
    "E5 b",  "E5 bI",  "E5 bQ",  "E6 A",  "E6 B",   "E6 B/C", "E6 C",    //
    "L1 OF", "L2 OF",                                                    // GLONASS, 29 and 30
    "L1C/A", "L2 CL",  "L2 CM",  "L5 I",  "L5 Q",                        // GPS, 31 to 35
    "L5 A",                                                              // NavIC, 36
    "L1C/A", "L1S",    "L2 CL",  "L2 CM", "L5 I",   "L5 Q",              // QZSS, 37 to 42
    "L1C/A",                                                             // SBAS, 43
};
static_assert(std::size(SignalNames) == 44);

constexpr std::string_view SourceLetters = "*BERGINQS*";

constexpr std::string_view FixQualityNames[] = {
    "Invalid fix",
    "GPS fix (SPS)",
    "DGPS fix",
    "PPS fix",
    "Real Time Kinematic",
    "Float Real Time Kinematic",
    "Estimated (dead reckoning)",
    "Manual input mode",
    "Simulation mode",
};

}  // namespace

bool gnss::SatInfo::IsUsed() const
{
    // An atomic_ref takes no const object before C++26; nothing is written here.
    return std::atomic_ref<uint8_t>(const_cast<uint8_t&>(Used)).load(std::memory_order_relaxed) != 0;
}

void gnss::SatInfo::SetUsed(bool used)
{
    std::atomic_ref<uint8_t>(Used).store(used ? 1 : 0, std::memory_order_relaxed);
}

void gnss::Restart()
{
    Valid = static_cast<uint8_t>(Valid & ~(ValidTime | ValidPosition));
    Model = 0;
    const thrSpinHold hold(SatsLock);
    Sats.clear();
}

void gnss::ReceiverModeSet(uint8_t /*dynamics*/) {}

std::string_view gnss::ModelName() const
{
    return Model <= ModelLast ? ModelNames[Model] : ModelNames[0];
}

void gnss::SwapSats(std::vector<SatInfo>& sats)
{
    const thrSpinHold hold(SatsLock);
    Sats.swap(sats);
}

void gnss::RaiseNewData() const
{
    if (OnNewData)
        OnNewData();
}

void gnss::Transmit(const uint8_t* bytes, size_t count) const
{
    if (OnSend)
        OnSend(bytes, count);
}

std::string_view SignalName(uint8_t signal)
{
    return signal < std::size(SignalNames) ? SignalNames[signal] : std::string_view{};
}

char SourceLetter(gnss::Source source)
{
    const auto index = static_cast<size_t>(source);
    return index < SourceLetters.size() ? SourceLetters[index] : '*';
}

std::string_view FixQualityName(uint8_t quality)
{
    return quality < std::size(FixQualityNames) ? FixQualityNames[quality] : std::string_view{};
}
