#include "tools/simulator/simNmeaEpoch.h"

#include "tools/simulator/simNmeaText.h"
#include "tools/simulator/simTime.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <numbers>

namespace {

constexpr double KnotsPerMetreSecond = 3600.0 / 1852.0;
constexpr size_t IdsInGSA = 12;
constexpr size_t SatsInGSV = 4;

struct motion {
    double Speed;  // m/s
    double Track;  // degrees, 0 to 360
};

motion MotionOf(const simEpoch& epoch)
{
    const double track = std::atan2(epoch.EastSpeed, epoch.NorthSpeed) * 180 / std::numbers::pi;
    return {std::hypot(epoch.NorthSpeed, epoch.EastSpeed), track < 0 ? track + 360 : track};
}

std::string_view SolutionTalker(const simNmeaStyle& style)
{
    return style.Mixed ? "GN" : "GP";
}

std::string TimeText(const simEpoch& epoch, const simNmeaStyle& style)
{
    const simDate date = simDateOf(epoch.UtcNs);
    // Cut rather than rounded, so that no time says sixty seconds.
    const double unit = std::pow(10.0, style.SecondDecimals);
    const double fraction = std::floor(date.Nanosecond * 1e-9 * unit + 1e-6) / unit;
    return simNmeaReal(date.Hour * 100 + date.Minute, 0, 4) +
           simNmeaReal(date.Second + fraction, style.SecondDecimals, 2);
}

// "4722.61400", where the rounding of the minutes may carry into the degrees.
std::string AngleText(double angle, unsigned degreeDigits, int decimals)
{
    const auto unit = static_cast<int64_t>(std::llround(std::pow(10.0, decimals)));
    const int64_t all = std::llround(std::fabs(angle) * 60 * static_cast<double>(unit));
    const int64_t degrees = all / (60 * unit);
    const double minutes = static_cast<double>(all % (60 * unit)) / static_cast<double>(unit);
    return simNmeaReal(static_cast<double>(degrees), 0, degreeDigits) + simNmeaReal(minutes, decimals, 2);
}

void AddPosition(simNmeaSentence& sentence, const simEpoch& epoch, const simNmeaStyle& style)
{
    if (!epoch.Fixed) {
        sentence.Empty(4);
        return;
    }
    sentence.Text(AngleText(epoch.Place.Latitude, 2, style.MinuteDecimals))
        .Text(epoch.Place.Latitude < 0 ? "S" : "N")
        .Text(AngleText(epoch.Place.Longitude, 3, style.MinuteDecimals))
        .Text(epoch.Place.Longitude < 0 ? "W" : "E");
}

std::string_view ModeText(const simEpoch& epoch)
{
    return epoch.Fixed ? "A" : "N";
}

// SBAS is told of with GPS, whose numbers it shares.
simSystem GroupOf(simSystem system)
{
    return system == simSystem::SBAS ? simSystem::GPS : system;
}

struct systemRow {
    simSystem System;
    std::string_view Talker;
    int Id;      // in GSA
    int Offset;  // from the UBX protocol's number to NMEA's
    int Apart;   // the same, where the numbers of the systems are kept apart
};

constexpr systemRow Systems[] = {
    {simSystem::GPS, "GP", 1, 0, 0},       {simSystem::SBAS, "GP", 1, -87, -87},
    {simSystem::GLONASS, "GL", 2, 64, 64}, {simSystem::Galileo, "GA", 3, 0, 300},
    {simSystem::BeiDou, "GB", 4, 0, 400},  {simSystem::QZSS, "GQ", 5, 192, 192},
    {simSystem::NavIC, "GI", 6, 0, 246},
};

// In this order groups are sent, each system once.
constexpr simSystem Groups[] = {simSystem::GPS,    simSystem::GLONASS, simSystem::Galileo,
                                simSystem::BeiDou, simSystem::QZSS,    simSystem::NavIC};

const systemRow& RowOf(simSystem system)
{
    const systemRow* const found = std::ranges::find(Systems, system, &systemRow::System);
    return found == std::end(Systems) ? Systems[0] : *found;
}

int NumberOf(const simSat& sat, const simNmeaStyle& style)
{
    const systemRow& row = RowOf(sat.System);
    return sat.Svid + (style.Signals ? row.Offset : row.Apart);
}

struct signalRow {
    simSystem System;
    uint8_t Signal;  // the UBX protocol's number
    std::string_view Nmea;
};

constexpr signalRow Signals[] = {
    {simSystem::GPS, 0, "1"},     {simSystem::GPS, 3, "6"},     {simSystem::GPS, 6, "7"},
    {simSystem::SBAS, 0, "1"},    {simSystem::Galileo, 0, "7"}, {simSystem::Galileo, 3, "1"},
    {simSystem::Galileo, 5, "2"}, {simSystem::BeiDou, 0, "1"},  {simSystem::BeiDou, 2, "B"},
    {simSystem::BeiDou, 5, "3"},  {simSystem::BeiDou, 7, "5"},  {simSystem::QZSS, 0, "1"},
    {simSystem::QZSS, 1, "4"},    {simSystem::QZSS, 5, "6"},    {simSystem::QZSS, 8, "7"},
    {simSystem::GLONASS, 0, "1"}, {simSystem::GLONASS, 2, "3"}, {simSystem::NavIC, 0, "1"},
};

bool Sends(const simSat& sat, std::string_view nmeaSignal)
{
    return std::ranges::any_of(sat.Signals, [&](const simSignal& signal) {
        return std::ranges::any_of(Signals, [&](const signalRow& row) {
            return row.System == sat.System && row.Signal == signal.Id && row.Nmea == nmeaSignal;
        });
    });
}

// One group of GSV: all sentences of a system, or of one signal of it. The signal is "" where it is not told.
std::string GroupText(std::string_view talker, const std::vector<const simSat*>& sats,
                      std::string_view signal, const simNmeaStyle& style)
{
    std::string text;
    const size_t count = (sats.size() + SatsInGSV - 1) / SatsInGSV;
    for (size_t number = 0; number < count; ++number) {
        simNmeaSentence sentence(talker, "GSV");
        sentence.Whole(static_cast<int64_t>(count))
            .Whole(static_cast<int64_t>(number + 1))
            .Whole(static_cast<int64_t>(sats.size()), 2);
        const size_t end = std::min(sats.size(), (number + 1) * SatsInGSV);
        for (size_t at = number * SatsInGSV; at < end; ++at) {
            const simSat& sat = *sats[at];
            sentence.Whole(NumberOf(sat, style), 2)
                .Real(sat.Elevation, 0, 2)
                .Whole(std::llround(sat.Azimuth) % 360, 3);
            if (sat.SNR > 0)
                sentence.Real(sat.SNR, 0, 2);
            else
                sentence.Empty();
        }
        if (style.Signals)
            sentence.Text(signal);
        text += sentence.Finished();
    }
    return text;
}

// The signals of a group in the order of their numbers; "0" is the signal of what is not heard.
constexpr std::string_view SignalOrder[] = {"1", "2", "3", "4", "5", "6", "7", "8", "B"};

std::string SystemText(simSystem system, const simEpoch& epoch, const simNmeaStyle& style)
{
    const std::string_view talker = RowOf(system).Talker;
    std::string text;
    const auto add = [&](std::string_view signal, auto belongs) {
        std::vector<const simSat*> sats;
        for (const simSat& sat : epoch.Sats) {
            if (GroupOf(sat.System) == system && belongs(sat))
                sats.push_back(&sat);
        }
        text += GroupText(talker, sats, signal, style);
    };
    if (!style.Signals) {
        add("", [](const simSat&) { return true; });
        return text;
    }
    for (const std::string_view signal : SignalOrder)
        add(signal, [&](const simSat& sat) { return sat.SNR > 0 && Sends(sat, signal); });
    add("0", [](const simSat& sat) { return sat.SNR <= 0; });
    return text;
}

std::string ActiveText(simSystem system, const simEpoch& epoch, const simNmeaStyle& style)
{
    std::vector<const simSat*> used;
    for (const simSat& sat : epoch.Sats) {
        if (sat.Used && GroupOf(sat.System) == system && used.size() < IdsInGSA)
            used.push_back(&sat);
    }
    // A lone talker is told of also while it has no solution.
    if (used.empty() && system != simSystem::GPS)
        return {};
    simNmeaSentence sentence(SolutionTalker(style), "GSA");
    sentence.Text("A").Text(epoch.Fixed ? "3" : "1");
    for (const simSat* const sat : used)
        sentence.Whole(NumberOf(*sat, style), 2);
    sentence.Empty(static_cast<unsigned>(IdsInGSA - used.size()));
    sentence.Real(epoch.Dop.P, 2).Real(epoch.Dop.H, 2).Real(epoch.Dop.V, 2);
    if (style.Signals)
        sentence.Whole(RowOf(system).Id);
    return sentence.Finished();
}

}  // namespace

std::string simNmeaRMC(const simEpoch& epoch, const simNmeaStyle& style)
{
    const simDate date = simDateOf(epoch.UtcNs);
    const motion moves = MotionOf(epoch);
    simNmeaSentence sentence(SolutionTalker(style), "RMC");
    sentence.Text(TimeText(epoch, style)).Text(epoch.Fixed ? "A" : "V");
    AddPosition(sentence, epoch, style);
    if (epoch.Fixed)
        sentence.Real(moves.Speed * KnotsPerMetreSecond, 3).Real(moves.Track, 2);
    else
        sentence.Empty(2);
    sentence.Whole(date.Day * 10'000 + date.Month * 100 + date.Year % 100, 6).Empty(2).Text(ModeText(epoch));
    if (style.Signals)
        sentence.Text("V");
    return sentence.Finished();
}

std::string simNmeaVTG(const simEpoch& epoch, const simNmeaStyle& style)
{
    const motion moves = MotionOf(epoch);
    simNmeaSentence sentence(SolutionTalker(style), "VTG");
    if (epoch.Fixed)
        sentence.Real(moves.Track, 2)
            .Text("T")
            .Empty()
            .Text("M")
            .Real(moves.Speed * KnotsPerMetreSecond, 3)
            .Text("N")
            .Real(moves.Speed * 3.6, 3)
            .Text("K");
    else
        sentence.Empty().Text("T").Empty().Text("M").Empty().Text("N").Empty().Text("K");
    return sentence.Text(ModeText(epoch)).Finished();
}

std::string simNmeaGGA(const simEpoch& epoch, const simNmeaStyle& style)
{
    // Sentences of old count no further than twelve.
    const auto used = std::min<int64_t>(std::ranges::count_if(epoch.Sats, &simSat::Used), 12);
    simNmeaSentence sentence(SolutionTalker(style), "GGA");
    sentence.Text(TimeText(epoch, style));
    AddPosition(sentence, epoch, style);
    sentence.Text(epoch.Fixed ? "1" : "0").Whole(used, 2).Real(epoch.Dop.H, 2);
    if (epoch.Fixed)
        sentence.Real(epoch.Place.Altitude, 1).Text("M").Real(epoch.Place.Separation, 1).Text("M");
    else
        sentence.Empty(4);
    return sentence.Empty(2).Finished();
}

std::string simNmeaGSA(const simEpoch& epoch, const simNmeaStyle& style)
{
    std::string text;
    for (const simSystem system : Groups)
        text += ActiveText(system, epoch, style);
    return text;
}

std::string simNmeaGSV(const simEpoch& epoch, const simNmeaStyle& style)
{
    std::string text;
    for (const simSystem system : Groups)
        text += SystemText(system, epoch, style);
    return text;
}

std::string simNmeaGLL(const simEpoch& epoch, const simNmeaStyle& style)
{
    simNmeaSentence sentence(SolutionTalker(style), "GLL");
    AddPosition(sentence, epoch, style);
    return sentence.Text(TimeText(epoch, style))
        .Text(epoch.Fixed ? "A" : "V")
        .Text(ModeText(epoch))
        .Finished();
}

std::string simNmeaZDA(const simEpoch& epoch, const simNmeaStyle& style)
{
    const simDate date = simDateOf(epoch.UtcNs);
    return simNmeaSentence(SolutionTalker(style), "ZDA")
        .Text(TimeText(epoch, style))
        .Whole(date.Day, 2)
        .Whole(date.Month, 2)
        .Whole(date.Year, 4)
        .Text("00")
        .Text("00")
        .Finished();
}
