#include "tools/decode/decodeObjects.h"

#include <iterator>
#include <string_view>

namespace {

// In the order of gnss::Source.
constexpr std::string_view SourceNames[] = {
    "Unknown", "BeiDou", "Galileo", "GLONASS", "GPS", "IMES", "NavIC", "QZSS", "SBAS", "Mixed",
};
static_assert(std::size(SourceNames) == static_cast<size_t>(gnss::Source::Mixed) + 1);

void writeModel(jsonWriter& json, const gnss& model, const decodeEvents* events)
{
    json.Key("Model").Count(model.Model);
    json.Key("ModelName").Text(model.ModelName());
    json.Key("ValidTime").Truth((model.Valid & gnss::ValidTime) != 0);
    json.Key("ValidPosition").Truth((model.Valid & gnss::ValidPosition) != 0);
    json.Key("Latitude").Number(model.Latitude);
    json.Key("Longitude").Number(model.Longitude);
    json.Key("Altitude").Number(model.Altitude);
    json.Key("TimeOfDay").Number(model.TimeOfDay);
    json.Key("Year").Count(model.Year);
    json.Key("Month").Count(model.Month);
    json.Key("Day").Count(model.Day);
    json.Key("HDOP").Number(model.HDOP);
    json.Key("PDOP").Number(model.PDOP);
    json.Key("VDOP").Number(model.VDOP);
    json.Key("SeaLevel").Number(model.SeaLevel);
    json.Key("Speed").Number(model.Speed);
    json.Key("Track").Number(model.Track);
    if (events != nullptr)
        json.Key("OnNewData").Count(events->NewData);
}

void writeSat(jsonWriter& json, const SatInfo& satellite)
{
    json.BeginObject();
    json.Key("Source").Text(SourceNames[static_cast<size_t>(satellite.Source)]);
    json.Key("SvId").Count(satellite.SvId);
    json.Key("Elevation").Number(satellite.Elevation);
    json.Key("Azimuth").Number(satellite.Azimuth);
    json.Key("SNR").Number(satellite.SNR);
    json.Key("Signals").BeginArray();
    for (const uint8_t signal : satellite.Signals)
        json.Count(signal);
    json.End();
    json.Key("Used").Count(satellite.IsUsed() ? 1 : 0);
    json.End();
}

void writeSats(jsonWriter& json, const gnss& model)
{
    json.Key("Sats").BeginArray();
    for (const SatInfo& satellite : model.Sats)
        writeSat(json, satellite);
    json.End();
}

void writeSignals(jsonWriter& json, ubxSignalSet signals)
{
    json.BeginArray();
    for (const ubxSignalRow& row : ubxSignalTable) {
        if (signals.Has(row.Signal))
            json.Text(row.Name);
    }
    json.End();
}

}  // namespace

void decodeWrite(jsonWriter& json, const gnssNMEA& receiver, const decodeEvents* events)
{
    json.BeginObject();
    writeModel(json, receiver, events);
    json.Key("DGPSAge").Number(receiver.DGPSAge);
    json.Key("DGPSStation").Count(receiver.DGPSStation);
    json.Key("MagVar").Number(receiver.MagVar);
    json.Key("FixQuality").Count(receiver.FixQuality);
    writeSats(json, receiver);
    json.End();
}

void decodeWrite(jsonWriter& json, const gnssTSIP& receiver, const decodeEvents* events)
{
    json.BeginObject();
    writeModel(json, receiver, events);
    json.Key("ClockBias").Number(receiver.ClockBias);
    json.Key("BiasRate").Number(receiver.BiasRate);
    json.Key("PPSError").Number(receiver.PPSError);
    json.Key("TDOP").Number(receiver.TDOP);
    json.Key("Temperature").Number(receiver.Temperature);
    json.Key("WeekTime").Number(receiver.WeekTime);
    json.Key("UTCOffset").Number(receiver.UTCOffset);
    json.Key("Status").Count(receiver.Status);
    json.Key("Week").Count(receiver.Week);
    json.Key("DecodeStatus").Count(receiver.DecodeStatus);
    json.Key("RXMode").Count(receiver.RXMode);
    json.Key("SurveyProgress").Count(receiver.SurveyProgress);
    json.Key("TimeFlags").Count(receiver.TimeFlags);
    writeSats(json, receiver);
    json.End();
}

void decodeWrite(jsonWriter& json, const gnssUBX& receiver, const decodeEvents* events)
{
    json.BeginObject();
    writeModel(json, receiver, events);
    json.Key("PPSError").Number(receiver.PPSError);
    json.Key("PPSTime").Number(receiver.PPSTime);
    json.Key("PPSWeek").Count(receiver.PPSWeek);
    json.Key("TDOP").Number(receiver.TDOP);
    json.Key("ProtVer").Count(receiver.ProtVer);
    json.Key("PPSRate").Number(receiver.PPSRate);
    json.Key("PPSDuty").Number(receiver.PPSDuty);
    writeSignals(json.Key("Select"), receiver.Select.Load());
    if (events != nullptr)
        json.Key("OnPPS").Count(events->PPS);
    writeSats(json, receiver);
    json.End();
}
