#include "tools/simulator/simNmeaReceiver.h"

#include <algorithm>
#include <charconv>

namespace {

constexpr int ColdFix = 3;  // seconds
constexpr unsigned SlowestRate = 255;

constexpr simNmeaStyle GenericStyle = {
    .Signals = true, .Mixed = true, .MinuteDecimals = 4, .SecondDecimals = 2};
constexpr simNmeaStyle NvsStyle = {.Signals = false, .Mixed = true, .MinuteDecimals = 5, .SecondDecimals = 2};

constexpr char Accuracy[] = "RZD";

using sentenceMaker = std::string (*)(const simEpoch&, const simNmeaStyle&);

struct sentenceRow {
    const char* Name;
    sentenceMaker Make;
};

constexpr sentenceRow Sentences[] = {
    {"RMC", simNmeaRMC}, {"GGA", simNmeaGGA}, {"GSA", simNmeaGSA},
    {"GSV", simNmeaGSV}, {"GLL", simNmeaGLL}, {"ZDA", simNmeaZDA},
};

// $PORZD,A,003.1*3C: whether the solution is good, and its error in metres.
std::string AccuracyText(const simEpoch& epoch, const simNmeaStyle&)
{
    return simNmeaSentence("P", "ORZD")
        .Text(epoch.Fixed ? "A" : "V")
        .Real(epoch.Fixed ? epoch.HorizontalAccuracy : 999.9, 1, 3)
        .Finished();
}

// The short ones come first: what comes last is lost at each solution where the line is too slow for all.
constexpr sentenceRow NvsSentences[] = {
    {"RMC", simNmeaRMC}, {"GGA", simNmeaGGA}, {"GLL", simNmeaGLL}, {Accuracy, AccuracyText},
    {"ZDA", simNmeaZDA}, {"GSA", simNmeaGSA}, {"GSV", simNmeaGSV},
};

}  // namespace

void simNmeaReceiver::OnBytes(std::span<const uint8_t> fromHost)
{
    for (const std::string& body : Parser.Take(fromHost))
        OnCommand(simNmeaFields(body));
}

// A line that is too slow takes some sentences of a list and loses the others.
void simNmeaReceiver::SendSentences(std::string_view text)
{
    while (!text.empty()) {
        const size_t length = std::min(text.find('\n'), text.size() - 1) + 1;
        SendText(text.substr(0, length), kind::Periodic);
        text.remove_prefix(length);
    }
}

void simNmeaReceiver::OnEpoch(const simEpoch& epoch)
{
    for (const sentenceRow& row : Sentences)
        SendSentences(row.Make(epoch, GenericStyle));
}

bool simNmeaReceiver::Hears(simSystem system, const simSignal& signal) const
{
    return signal.Id == 0 && system != simSystem::NavIC;
}

void simNmeaReceiver::OnCommand(const std::vector<std::string_view>& fields)
{
    // $PSRF104,lat,lon,alt,clock,time,week,channels,reset
    if (fields[0] == "PSRF104" && !Faults.Nak)
        Restart(ColdFix);
}

void simNvsReceiver::PowerUp()
{
    simNmeaReceiver::PowerUp();
    Rates.clear();
    for (const sentenceRow& row : NvsSentences)
        Rates[row.Name] = 1;
    Solutions = 0;
}

void simNvsReceiver::OnEpoch(const simEpoch& epoch)
{
    for (const sentenceRow& row : NvsSentences) {
        const unsigned rate = Rates[row.Name];
        if (rate != 0 && Solutions % rate == 0)
            SendSentences(row.Make(epoch, NvsStyle));
    }
    ++Solutions;
}

void simNvsReceiver::OnCommand(const std::vector<std::string_view>& fields)
{
    if (Faults.Nak)
        return;
    if (fields[0] == "POVER")
        SendText(simNmeaFinish("ALVER,NVS,CSM54,0206,V02.06,19/11/14"), kind::Answer);
    else if (fields[0] == "PORZB")
        SetRates(fields);
    else if (fields[0] == "PORST")
        Restart(ColdFix);
}

// Its numbers have room for the satellites of BeiDou that were planned when it was made.
bool simNvsReceiver::Knows(simSystem system, uint8_t svid) const
{
    constexpr uint8_t LastBeiDou = 37;
    return system != simSystem::BeiDou || svid <= LastBeiDou;
}

// $PORZB,GSA,2,GSV,3: names and rates in turn. What is not named keeps its rate.
void simNvsReceiver::SetRates(const std::vector<std::string_view>& fields)
{
    for (size_t at = 1; at + 1 < fields.size(); at += 2) {
        const auto row = Rates.find(std::string(fields[at]));
        const std::string_view number = fields[at + 1];
        unsigned rate = 0;
        const std::from_chars_result read =
            std::from_chars(number.data(), number.data() + number.size(), rate);
        if (row != Rates.end() && read.ec == std::errc() && rate <= SlowestRate)
            row->second = rate;
    }
}
