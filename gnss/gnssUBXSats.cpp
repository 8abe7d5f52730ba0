#include "gnss/gnssUBX.h"

#include "gnss/satIndex.h"

#include <algorithm>
#include <array>

namespace {

constexpr float NotTracked = -1.0f;
constexpr size_t SatHeader = 8;
constexpr size_t SatRecord = 12;
constexpr size_t SignalRecord = 16;
constexpr uint8_t QualityLeast = 2;  // a signal was at least found

struct svidRow {
    uint8_t First;
    uint8_t Last;
    gnss::Source Source;
    uint8_t Shift;  // what is added to svid, modulo 256
    uint8_t Signal;
};

// svid of NAV-SVINFO; any other is of no known constellation.
constexpr svidRow Svids[] = {
    {1, 32, gnss::Source::GPS, 0, 31},        {65, 96, gnss::Source::GLONASS, 192, 29},
    {120, 158, gnss::Source::SBAS, 0, 43},    {193, 197, gnss::Source::QZSS, 64, 37},
    {255, 255, gnss::Source::GLONASS, 0, 29},  // a GLONASS satellite whose number is not known yet
};

constexpr svidRow SvidOther = {0, 255, gnss::Source::Unknown, 0, 0};

constexpr size_t SigIdCount = 11;

struct gnssIdRow {
    gnss::Source Source;
    uint8_t Signal;                               // the one shown until NAV-SIG tells better
    std::array<uint8_t, SigIdCount> SigIdSignal;  // by sigId; 0 where there is none
};

// By gnssId.
constexpr gnssIdRow GnssIds[] = {
    {gnss::Source::GPS, 31, {31, 0, 0, 32, 33, 0, 34, 35}},
    {gnss::Source::SBAS, 43, {43}},
    {gnss::Source::Galileo, 16, {18, 17, 0, 20, 21, 23, 24, 0, 26, 28, 25}},
    {gnss::Source::BeiDou, 4, {5, 6, 11, 12, 14, 3, 2, 9, 8, 0, 15}},
    {gnss::Source::IMES, 0, {}},
    {gnss::Source::QZSS, 37, {37, 38, 0, 0, 40, 39, 0, 0, 41, 42}},
    {gnss::Source::GLONASS, 29, {29, 0, 30}},
    {gnss::Source::NavIC, 36, {36}},
};

constexpr gnssIdRow GnssIdOther = {gnss::Source::Unknown, 0, {}};

const svidRow& RowOfSvid(uint8_t svid)
{
    for (const svidRow& row : Svids)
        if (svid >= row.First && svid <= row.Last)
            return row;
    return SvidOther;
}

const gnssIdRow& RowOfGnssId(uint8_t gnssId)
{
    return gnssId < std::size(GnssIds) ? GnssIds[gnssId] : GnssIdOther;
}

uint8_t SignalOf(const gnssIdRow& row, uint8_t sigId)
{
    return sigId < SigIdCount ? row.SigIdSignal[sigId] : uint8_t{0};
}

// Of satellites that are listed twice the later one counts.
void IndexLast(const std::vector<SatInfo>& sats, satIndex& index)
{
    for (size_t at = 0; at < sats.size(); at++)
        index.Put(sats[at].Source, sats[at].SvId, at);
}

// Of satellites that are listed twice the earlier one counts.
void IndexFirst(const std::vector<SatInfo>& sats, satIndex& index)
{
    for (size_t at = sats.size(); at > 0; at--)
        index.Put(sats[at - 1].Source, sats[at - 1].SvId, at - 1);
}

// flags bit 0 tells use in the solution, bit 4 poor health.
SatInfo SvinfoSat(ubxPayload record)
{
    const uint8_t svid = record.u1(1);
    const uint8_t flags = record.u1(2);
    const svidRow& row = RowOfSvid(svid);
    SatInfo sat;
    sat.Elevation = record.i1(5);                                                 // elev
    sat.Azimuth = record.i2(6);                                                   // azim
    const bool tracked = (flags & 1u << 4) == 0 && record.u1(3) >= QualityLeast;  // quality
    sat.SNR = tracked ? record.u1(4) : NotTracked;                                // cno
    sat.SvId = static_cast<uint8_t>(svid + row.Shift);
    sat.Source = row.Source;
    sat.Signals[0] = row.Signal;
    sat.Used = flags & 1;
    return sat;
}

// flags bits 0 to 2 are qualityInd, bit 3 svUsed, bits 4 and 5 health, of which 1 is good.
SatInfo NavSat(ubxPayload record)
{
    const gnssIdRow& row = RowOfGnssId(record.u1(0));  // gnssId
    const uint32_t flags = record.u4(8);
    SatInfo sat;
    sat.Elevation = record.i1(3);  // elev
    sat.Azimuth = record.i2(4);    // azim
    const bool tracked = (flags >> 4 & 3) == 1 && (flags & 7) >= QualityLeast;
    sat.SNR = tracked ? record.u1(2) : NotTracked;  // cno
    sat.SvId = record.u1(1);                        // svId
    sat.Source = row.Source;
    sat.Signals[0] = row.Signal;
    sat.Used = flags >> 3 & 1;
    return sat;
}

void AddSignal(SatInfo& sat, uint8_t signal)
{
    for (uint8_t& slot : sat.Signals) {
        if (slot == 0) {
            slot = signal;
            return;
        }
    }
}

}  // namespace

void gnssUBX::ShowSats(std::vector<SatInfo>& sats)
{
    SwapSats(sats);
    RaiseNewData();
}

// NAV-SVINFO: the satellites, of older receivers.
void gnssUBX::Decode_NavSVINFO(ubxPayload payload)
{
    const size_t count = payload.u1(4);  // numCh
    if (payload.size() < SatHeader || payload.size() != SatHeader + SatRecord * count)
        return;
    std::vector<SatInfo> sats;
    sats.reserve(count);
    for (size_t at = 0; at < count; at++)
        sats.push_back(SvinfoSat(payload.Part(SatHeader + SatRecord * at, SatRecord)));
    ShowSats(sats);
}

// NAV-SAT: the satellites. The signals that NAV-SIG found are carried over, since this message tells none.
void gnssUBX::Decode_NavSAT(ubxPayload payload)
{
    const size_t count = payload.u1(5);  // numSvs
    if (payload.size() < SatHeader || payload.size() != SatHeader + SatRecord * count || payload.u1(4) != 1)
        return;
    satIndex known;
    IndexLast(Sats, known);
    std::vector<SatInfo> sats;
    sats.reserve(count);
    for (size_t at = 0; at < count; at++) {
        SatInfo& sat = sats.emplace_back(NavSat(payload.Part(SatHeader + SatRecord * at, SatRecord)));
        const size_t place = known.Find(sat.Source, sat.SvId);
        if (place != satIndex::None)
            std::copy(std::begin(Sats[place].Signals), std::end(Sats[place].Signals), sat.Signals);
    }
    ShowSats(sats);
}

// NAV-SIG: the signals of each satellite, whatever their quality.
void gnssUBX::Decode_NavSIG(ubxPayload payload)
{
    const size_t count = payload.u1(5);  // numSigs
    if (payload.size() < SatHeader || payload.size() != SatHeader + SignalRecord * count ||
        payload.u1(4) != 0)
        return;
    std::vector<SatInfo> sats = Sats;
    for (SatInfo& sat : sats)
        std::fill(std::begin(sat.Signals), std::end(sat.Signals), uint8_t{0});
    satIndex listed;
    IndexFirst(sats, listed);
    for (size_t at = 0; at < count; at++) {
        const ubxPayload record = payload.Part(SatHeader + SignalRecord * at, SignalRecord);
        const gnssIdRow& row = RowOfGnssId(record.u1(0));            // gnssId
        const uint8_t signal = SignalOf(row, record.u1(2));          // sigId
        const size_t place = listed.Find(row.Source, record.u1(1));  // svId
        if (signal != 0 && place != satIndex::None)
            AddSignal(sats[place], signal);
    }
    ShowSats(sats);
}
