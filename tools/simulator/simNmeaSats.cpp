// The satellites of a solution as NMEA sentences.
#include "tools/simulator/simNmeaEpoch.h"

#include "tools/simulator/simNmeaText.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr size_t IdsInGSA = 12;
constexpr size_t SatsInGSV = 4;

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
    simNmeaSentence sentence(style.Mixed ? "GN" : "GP", "GSA");
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
