#include "gnss/gnssNMEA.h"
#include "gnss/nmeaNumber.h"
#include "gnss/nmeaTables.h"

#include <algorithm>
#include <iterator>

namespace {

using fields = gnssNMEA::fields;

constexpr uint32_t UnknownId = 255;
constexpr float NotTracked = -1;
constexpr size_t GroupSize = 4;
constexpr size_t IdsPerGSA = 12;

// Far above what a receiver sees, and far more than there are satellites, so that merging makes room.
constexpr size_t StagedLimit = 4096;

bool startsWithDigit(std::string_view field)
{
    return !field.empty() && field.front() >= '0' && field.front() <= '9';
}

char letterOf(std::string_view field)
{
    return field.empty() ? '\0' : field.front();
}

// 12,40,130,44
SatInfo readSatellite(fields group, gnss::Source talker)
{
    const std::string_view id = group[0];
    const uint32_t number = startsWithDigit(id) ? static_cast<uint32_t>(nmeaInteger(id)) : UnknownId;
    const nmeaSatellite mapped = nmeaMapId(number, talker);

    SatInfo satellite;
    satellite.Source = mapped.Source;
    satellite.SvId = mapped.SvId;
    satellite.Elevation = nmeaFloat(group[1]);
    satellite.Azimuth = nmeaFloat(group[2]);
    satellite.SNR = startsWithDigit(group[3]) ? nmeaFloat(group[3]) : NotTracked;
    return satellite;
}

void addSignal(SatInfo& satellite, uint8_t signal)
{
    const auto slot = std::find(std::begin(satellite.Signals), std::end(satellite.Signals), 0);
    if (slot != std::end(satellite.Signals))
        *slot = signal;
}

}  // namespace

// $GAGSV,3,1,09,12,40,130,44,19,05,262,,21,71,301,48,27,33,054,41,7*7A
bool gnssNMEA::DecodeGSV(fields& left, gnss::Source talker)
{
    if (left.size() < 2)
        return false;
    const bool isLast = nmeaInteger(left[0]) == nmeaInteger(left[1]);
    left = left.subspan(std::min<size_t>(left.size(), 3));

    if (SatsNew.size() >= StagedLimit)
        MergeStaged();
    const size_t first = SatsNew.size();
    for (; left.size() >= GroupSize; left = left.subspan(GroupSize)) {
        SatInfo satellite = readSatellite(left, talker);
        satellite.Used = IsLiveUsed(satellite.Source, satellite.SvId) ? 1 : 0;
        SatsNew.push_back(satellite);
    }
    if (left.empty())
        return isLast;

    const uint8_t signal = nmeaMapSignal(talker, letterOf(left.front()));
    left = left.subspan(1);
    if (signal != 0) {
        for (SatInfo& satellite : std::span(SatsNew).subspan(first))
            satellite.Signals[0] = signal;
    }
    return isLast;
}

bool gnssNMEA::IsLiveUsed(gnss::Source source, uint8_t svId) const
{
    const size_t position = Live.Find(source, svId);
    return position < Sats.size() && Sats[position].IsUsed();
}

// Sorts by Source and SvId. Of a satellite that was told several times the first entry stays, and the first
// signals of the later ones fill its free slots.
void gnssNMEA::MergeStaged()
{
    satIndex places;
    for (size_t i = 0; i < SatsNew.size(); ++i) {
        const SatInfo& satellite = SatsNew[i];
        const size_t earlier = places.Find(satellite.Source, satellite.SvId);
        if (earlier == satIndex::None)
            places.Put(satellite.Source, satellite.SvId, i);
        else
            addSignal(SatsNew[earlier], satellite.Signals[0]);
    }
    Merged.clear();
    places.Walk([this](size_t position) { Merged.push_back(SatsNew[position]); });
    SatsNew.swap(Merged);
}

void gnssNMEA::CommitSats()
{
    if (SatsNew.empty())
        return;
    MergeStaged();
    Live.Clear();
    for (size_t i = 0; i < SatsNew.size(); ++i)
        Live.Put(SatsNew[i].Source, SatsNew[i].SvId, i);
    SwapSats(SatsNew);
    SatsNew.clear();
}

// $GNGSA,A,3,02,06,12,19,,,,,,,,,1.43,0.80,1.18,1*05
void gnssNMEA::DecodeGSA(fields& left)
{
    if (left.size() < 2)
        return;
    left = left.subspan(2);  // mode, fix type

    int64_t ids[IdsPerGSA];
    size_t count = 0;
    const fields idFields = left.first(std::min(left.size(), IdsPerGSA));
    for (const std::string_view field : idFields) {
        if (!field.empty())
            ids[count++] = nmeaInteger(field);
    }
    left = left.subspan(idFields.size());

    for (float* const value : {&PDOP, &HDOP, &VDOP}) {
        if (left.empty())
            break;
        *value = nmeaFloat(left.front());
        left = left.subspan(1);
    }
    const char system = left.empty() ? '\0' : letterOf(left.front());
    MarkUsed({ids, count}, nmeaMeaning<gnss::Source>(NmeaSystems, system, gnss::Source::GPS));
}

void gnssNMEA::MarkUsed(std::span<const int64_t> ids, gnss::Source system)
{
    gnss::Source current = system;
    for (const int64_t id : ids) {
        // A number that reveals another constellation speaks for those behind it, too.
        const nmeaSatellite mapped = nmeaMapId(static_cast<uint32_t>(id), current);
        current = mapped.Source;
        if (id == ids.front()) {
            for (SatInfo& satellite : Sats) {
                if (satellite.Source == current)
                    satellite.SetUsed(false);
            }
        }
        const size_t position = Live.Find(current, mapped.SvId);
        if (position < Sats.size())
            Sats[position].SetUsed(true);
    }
}
