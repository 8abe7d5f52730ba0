#include "tools/console/consoleView.h"

#include "foundations/text/utfEdit.h"
#include "tools/decode/decodeObjects.h"
#include "tools/decode/jsonWriter.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <string_view>
#include <vector>

namespace {

constexpr size_t NoLevelInLines = 0;

std::string fixed(double value, int decimals, int width = 0)
{
    char text[352];
    std::snprintf(text, sizeof text, "%*.*f", width, decimals, value);
    return text;
}

std::string padded(unsigned value, int width)
{
    char text[16];
    std::snprintf(text, sizeof text, "%0*u", width, value);
    return text;
}

std::string dateText(const gnss& receiver)
{
    return padded(receiver.Year, 4) + "-" + padded(receiver.Month, 2) + "-" + padded(receiver.Day, 2);
}

// Hundredths of a second are cut, so that no second is shown before it has come.
std::string timeText(double timeOfDay)
{
    constexpr double secondsPerDay = 86400;
    const double inDay = timeOfDay >= 0 && timeOfDay < 2 * secondsPerDay ? timeOfDay : 0;
    const auto hundredths = static_cast<unsigned>(inDay * 100);
    return padded(hundredths / 360000, 2) + ":" + padded(hundredths / 6000 % 60, 2) + ":" +
           padded(hundredths / 100 % 60, 2) + "." + padded(hundredths % 100, 2);
}

std::string angleText(double degrees, char positive, char negative)
{
    return fixed(std::fabs(degrees), 7, 11) + " " + (degrees < 0 ? negative : positive);
}

std::string positionText(const gnss& receiver)
{
    return angleText(receiver.Latitude, 'N', 'S') + "  " + angleText(receiver.Longitude, 'E', 'W') + "  " +
           fixed(receiver.Altitude, 2, 9) + " m";
}

size_t usedCount(const gnss& receiver)
{
    return static_cast<size_t>(std::count_if(receiver.Sats.begin(), receiver.Sats.end(),
                                             [](const SatInfo& each) { return each.IsUsed(); }));
}

std::string satsText(const gnss& receiver)
{
    return std::to_string(usedCount(receiver)) + " of " + std::to_string(receiver.Sats.size()) +
           " satellites";
}

bool has(const gnss& receiver, uint8_t bit)
{
    return (receiver.Valid & bit) != 0;
}

std::string whenText(const gnss& receiver)
{
    return has(receiver, gnss::ValidTime) ? dateText(receiver) + " " + timeText(receiver.TimeOfDay)
                                          : std::string("time not known");
}

std::string whereText(const gnss& receiver)
{
    return has(receiver, gnss::ValidPosition) ? positionText(receiver) : std::string("position not known");
}

// The same without columns to keep.
std::string placeText(const gnss& receiver)
{
    if (!has(receiver, gnss::ValidPosition))
        return "position not known";
    return fixed(std::fabs(receiver.Latitude), 7) + (receiver.Latitude < 0 ? " S, " : " N, ") +
           fixed(std::fabs(receiver.Longitude), 7) + (receiver.Longitude < 0 ? " W, " : " E, ") +
           fixed(receiver.Altitude, 2) + " m";
}

// Trimble receivers may be set to GPS time; the others tell UTC.
std::string_view timeScale(const gnssComm& link)
{
    constexpr uint8_t isUTC = 1;
    const bool isGPS =
        link.Protocol == gnssComm::ProtocolTSIP && link.TSIP && (link.TSIP->TimeFlags & isUTC) == 0;
    return isGPS ? "GPS" : "UTC";
}

std::string_view protocolName(uint8_t protocol)
{
    constexpr std::string_view names[] = {"---", "NMEA", "TSIP", "UBX"};
    return names[protocol < std::size(names) ? protocol : 0];
}

std::string signalsText(const SatInfo& satellite)
{
    std::string text;
    for (const uint8_t signal : satellite.Signals) {
        if (SignalName(signal).empty())
            continue;
        if (!text.empty())
            text += ", ";
        text += SignalName(signal);
    }
    return text;
}

std::string satRow(const SatInfo& satellite)
{
    const std::string number = SourceLetter(satellite.Source) + padded(satellite.SvId, 2);
    std::string row = "  " + number + std::string(number.size() < 5 ? 5 - number.size() : 0, ' ');
    row += satellite.IsUsed() ? "used  " : "      ";
    row += fixed(double{satellite.Elevation}, 0, 9) + fixed(double{satellite.Azimuth}, 0, 9);
    row += satellite.SNR < 0 ? std::string("      -") : fixed(double{satellite.SNR}, 0, 7);
    return row + "   " + signalsText(satellite);
}

// The protocol's own words on the state of the receiver.
std::string stateText(const gnssComm& link)
{
    if (link.Protocol == gnssComm::ProtocolNMEA && link.NMEA)
        return std::string(FixQualityName(link.NMEA->FixQuality));
    if (link.Protocol == gnssComm::ProtocolTSIP && link.TSIP)
        return std::string(link.TSIP->RXModeName()) + ", " + std::string(link.TSIP->DecodeStatusName());
    if (link.Protocol == gnssComm::ProtocolUBX && link.UBX && link.UBX->ProtVer != 0)
        return "Protocol version " + std::to_string(link.UBX->ProtVer / 256) + "." +
               padded(link.UBX->ProtVer % 256, 2);
    return {};
}

// The decoder of UBX tells metres per second, the others kilometres per hour.
std::string motionText(const gnssComm& link, const gnss& receiver)
{
    const bool isUBX = link.Protocol == gnssComm::ProtocolUBX;
    return fixed(double{receiver.Speed}, 2) + (isUBX ? " m/s" : " km/h") + ", course " +
           fixed(double{receiver.Track}, 1) + "\u00B0";
}

void appendReceiver(std::vector<std::string>& lines, const gnssComm& link, const gnss& receiver)
{
    lines.push_back("Receiver   " + std::string(receiver.ModelName()) + ", " + stateText(link));
    lines.push_back("Time       " + whenText(receiver) + " " + std::string(timeScale(link)));
    lines.push_back("Position   " + placeText(receiver));
    lines.push_back("Sea level  " + fixed(double{receiver.SeaLevel}, 2) + " m");
    lines.push_back("Motion     " + motionText(link, receiver));
    lines.push_back("Dilution   PDOP " + fixed(double{receiver.PDOP}, 2) + "  HDOP " +
                    fixed(double{receiver.HDOP}, 2) + "  VDOP " + fixed(double{receiver.VDOP}, 2));
    lines.emplace_back();
    lines.push_back("  " + satsText(receiver));
    lines.emplace_back("  Sat        Elevation  Azimuth  Level   Signals");
    for (const SatInfo& each : receiver.Sats)
        lines.push_back(satRow(each));
}

std::string servingText(const consoleFacts& facts)
{
    if (!facts.Serving)
        return {};
    const std::string clients = facts.Clients == 0   ? "No clients"
                                : facts.Clients == 1 ? "1 client"
                                                     : std::to_string(facts.Clients) + " clients";
    return ", serving on port " + std::to_string(facts.ServingPort) + ", " + clients;
}

// At most so many characters; what is cut is not text of several bytes in the middle.
std::string clipped(const std::string& line, size_t columns)
{
    return line.substr(0, utfOffset(line.c_str(), columns));
}

}  // namespace

std::string consoleLine(gnssComm& link)
{
    const thrSpinHold hold(link.Lock);
    const gnss* const receiver = link.Decoder();
    if (receiver == nullptr)
        return {};
    return whenText(*receiver) + "  " + whereText(*receiver) + "  HDOP " + fixed(double{receiver->HDOP}, 2) +
           "  " + satsText(*receiver);
}

std::string consoleJson(gnssComm& link)
{
    jsonWriter json(NoLevelInLines);
    const thrSpinHold hold(link.Lock);
    json.BeginObject();
    json.Key("event").Text("data");
    if (link.Protocol == gnssComm::ProtocolNMEA && link.NMEA) {
        json.Key("protocol").Text("nmea");
        decodeWrite(json.Key("receiver"), *link.NMEA);
    } else if (link.Protocol == gnssComm::ProtocolTSIP && link.TSIP) {
        json.Key("protocol").Text("tsip");
        decodeWrite(json.Key("receiver"), *link.TSIP);
    } else if (link.Protocol == gnssComm::ProtocolUBX && link.UBX) {
        json.Key("protocol").Text("ubx");
        decodeWrite(json.Key("receiver"), *link.UBX);
    }
    json.End();
    return json.Result();
}

std::string consoleJsonStatus(const std::string& status)
{
    jsonWriter json(NoLevelInLines);
    json.BeginObject();
    json.Key("event").Text("status");
    json.Key("status").Text(status);
    json.End();
    return json.Result();
}

std::string consoleTable(gnssComm& link, const consoleFacts& facts, const terminalSize& size)
{
    std::vector<std::string> lines;
    lines.push_back("Skyreckoning  " + facts.Source + servingText(facts));
    {
        const thrSpinHold hold(link.Lock);
        lines.push_back(std::string(protocolName(link.Protocol)) + "  " + facts.Status);
        lines.emplace_back();
        if (const gnss* const receiver = link.Decoder())
            appendReceiver(lines, link, *receiver);
    }
    // The last line of the terminal stays free: a line end there would scroll all others.
    const size_t room = size.Rows > 1 ? size.Rows - 1U : 1U;
    lines.resize(std::min(lines.size(), room));
    std::string text;
    for (const std::string& line : lines)
        text += clipped(line, size.Columns) + "\x1B[K\r\n";
    return text;
}
