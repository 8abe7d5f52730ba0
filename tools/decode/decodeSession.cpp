#include "tools/decode/decodeSession.h"

namespace {

// Here because a decoder asks a plain function.
clockDate givenToday;

// A satellite has a line of its own, its fields have not.
constexpr size_t LevelsInLines = 3;

}  // namespace

decodeSession::decodeSession(const decodeOptions& options) : Protocols(options.Protocols)
{
    if (options.Today) {
        givenToday = *options.Today;
        TSIP.Today = [] { return givenToday; };
    }
    NMEA.OnNewData = [this] { ++EventsNMEA.NewData; };
    TSIP.OnNewData = [this] { ++EventsTSIP.NewData; };
    UBX.OnNewData = [this] { ++EventsUBX.NewData; };
    UBX.OnPPS = [this] { ++EventsUBX.PPS; };
}

void decodeSession::Feed(std::span<const uint8_t> bytes)
{
    if (Has(decodeOptions::NMEA))
        NMEA.Feed(bytes.data(), bytes.size());
    if (Has(decodeOptions::TSIP))
        TSIP.Feed(bytes.data(), bytes.size());
    if (Has(decodeOptions::UBX))
        UBX.Feed(bytes.data(), bytes.size());
}

std::string decodeSession::Describe() const
{
    jsonWriter json(LevelsInLines);
    json.BeginObject();
    if (Has(decodeOptions::NMEA))
        decodeWrite(json.Key("nmea"), NMEA, &EventsNMEA);
    if (Has(decodeOptions::TSIP))
        decodeWrite(json.Key("tsip"), TSIP, &EventsTSIP);
    if (Has(decodeOptions::UBX))
        decodeWrite(json.Key("ubx"), UBX, &EventsUBX);
    json.End();
    return json.Result() + '\n';
}
