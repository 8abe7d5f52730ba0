#include "gnss/nmeaTables.h"

nmeaSatellite nmeaMapId(uint32_t id, gnss::Source source)
{
    const bool countsItsOwn = source == gnss::Source::BeiDou || source == gnss::Source::Galileo;
    for (const nmeaIdRange& row : NmeaIdRanges) {
        if (id < row.First || id > row.Last || (row.OwnOfBeiDouAndGalileo && countsItsOwn))
            continue;
        return {row.Source, static_cast<uint8_t>(static_cast<int32_t>(id) + row.Shift)};
    }
    return {source, static_cast<uint8_t>(id)};
}

uint8_t nmeaMapSignal(gnss::Source talker, char id)
{
    for (const nmeaSignal& row : NmeaSignals) {
        if (row.Source == talker && row.Id == id)
            return row.Signal;
    }
    return 0;
}
