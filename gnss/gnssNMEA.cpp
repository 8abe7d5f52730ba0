#include "gnss/gnssNMEA.h"

#include "gnss/nmeaNumber.h"
#include "gnss/nmeaTables.h"
#include "gnss/nmeaText.h"

#include <algorithm>

namespace {

constexpr uint8_t ModelGeneric = 1;
constexpr uint8_t ModelNVS = 2;
constexpr uint8_t ModelUblox = 6;

constexpr size_t AddressLength = 6;
constexpr size_t TalkerLength = 3;

// The head of the reply to the u-blox version poll, MON-VER, as bytes of text.
constexpr char CandidateStart = '\xB5';
constexpr std::string_view VersionReply = "\xB5\x62\x0A\x04";

// CFG-RST: a cold start, at once.
constexpr uint8_t ResetUblox[] = {0xB5, 0x62, 0x06, 0x04, 0x04, 0x00, 0xFF, 0xFF, 0x00, 0x00, 0x0C, 0x5D};

const nmeaTalker* findTalker(std::string_view address)
{
    for (const nmeaTalker& row : NmeaTalkers) {
        if (address.starts_with(row.Prefix))
            return &row;
    }
    return nullptr;
}

}  // namespace

struct gnssNMEA::sentenceType {
    std::string_view Name;
    bool IsNewData;
    void (*Run)(gnssNMEA& self, fields& left, gnss::Source talker);
};

constexpr gnssNMEA::sentenceType gnssNMEA::SentenceTypes[] = {
    {"GGA", true, [](gnssNMEA& self, fields& left, gnss::Source) { self.DecodeGGA(left); }},
    {"GLL", true, [](gnssNMEA& self, fields& left, gnss::Source) { self.DecodeGLL(left); }},
    {"GSA", true, [](gnssNMEA& self, fields& left, gnss::Source) { self.DecodeGSA(left); }},
    {"GSV", false, [](gnssNMEA& self, fields& left, gnss::Source talker) { self.DecodeGSV(left, talker); }},
    {"RMC", true, [](gnssNMEA& self, fields& left, gnss::Source) { self.DecodeRMC(left); }},
};

void gnssNMEA::Restart()
{
    gnss::Restart();
    Line.clear();
    SatsNew.clear();
    Live.Clear();
}

void gnssNMEA::Feed(const uint8_t* bytes, size_t count)
{
    std::span<const uint8_t> left(bytes, count);
    while (!left.empty()) {
        if (Line.empty())
            left = left.subspan(TakeOutside(left));
        else if (Line.front() == CandidateStart)
            left = left.subspan(TakeCandidate(left));
        else
            left = left.subspan(TakeSentence(left));
    }
}

size_t gnssNMEA::TakeOutside(std::span<const uint8_t> bytes)
{
    const auto starts = [](uint8_t byte) {
        return byte == '$' || byte == static_cast<uint8_t>(CandidateStart);
    };
    const auto start = std::find_if(bytes.begin(), bytes.end(), starts);
    if (start == bytes.end())
        return bytes.size();
    Line.push_back(static_cast<char>(*start));
    return static_cast<size_t>(start - bytes.begin()) + 1;
}

// The byte behind the head decides, and goes with it. A candidate that turns out to be something else is kept
// as it is, and with it the decoder stands until Restart.
size_t gnssNMEA::TakeCandidate(std::span<const uint8_t> bytes)
{
    if (Line.size() < VersionReply.size()) {
        Line.push_back(static_cast<char>(bytes.front()));
        return 1;
    }
    if (Line != VersionReply)
        return bytes.size();
    Model = ModelUblox;
    Line.clear();
    return 1;
}

size_t gnssNMEA::TakeSentence(std::span<const uint8_t> bytes)
{
    const size_t length = nmeaLineLength(bytes);
    // One byte over the limit is enough to know an overlong sentence.
    const size_t stored = std::min(length, LineLimit + 1 - Line.size());
    Line.append(reinterpret_cast<const char*>(bytes.data()), stored);
    if (length == bytes.size())
        return length;
    if (Line.size() <= LineLimit)
        EndSentence();
    Line.clear();
    return length + 1;
}

// $GPGLL,4807.038,N,01131.000,E,123519,A,A*45
void gnssNMEA::EndSentence()
{
    if (!AcceptChecksum())
        return;
    Fields.clear();
    nmeaSplit(Line, Fields);
    if (!Fields.empty())
        Decode(Fields);
}

// Cuts the checksum off. A sentence without one is accepted.
bool gnssNMEA::AcceptChecksum()
{
    constexpr size_t checksumLength = 3;
    if (Line.size() <= checksumLength + 1 || Line[Line.size() - checksumLength] != '*')
        return true;
    const size_t length = Line.size() - checksumLength;
    const std::string_view line = Line;
    const uint32_t told = nmeaHex(line.substr(length + 1));
    const bool good = nmeaChecksum(line.substr(1, length - 1)) == told;
    Line.resize(length);
    return good;
}

void gnssNMEA::Decode(fields sentence)
{
    if (sentence.empty())
        return;
    const std::string_view address = sentence.front();
    if (address.size() != AddressLength)
        return;

    bool isNewData = false;
    if (!DecodeProprietary(sentence)) {
        const nmeaTalker* const talker = findTalker(address);
        if (talker == nullptr)
            return;
        const std::string_view name = address.substr(TalkerLength);
        const auto type = std::find_if(std::begin(SentenceTypes), std::end(SentenceTypes),
                                       [name](const sentenceType& row) { return row.Name == name; });
        if (type == std::end(SentenceTypes))
            return;
        fields left = sentence.subspan(1);
        type->Run(*this, left, talker->Source);
        isNewData = type->IsNewData;
    }
    if (Model == 0)
        Model = ModelGeneric;
    if (isNewData)
        RaiseNewData();
}

// $ALVER,NVS,CSM54,0425
// $PORZD,A,002.5
bool gnssNMEA::DecodeProprietary(fields sentence)
{
    if (sentence[0] == "$ALVER") {
        if (sentence.size() >= 4 && sentence[1] == "NVS" && sentence[2] == "CSM54") {
            Model = ModelNVS;
            SendSentence("PORZB,GSA,2,GSV,3");
        }
        return true;
    }
    if (sentence[0] != "$PORZD")
        return false;
    if (Model == ModelGeneric)
        SendSentence("POVER");
    return true;
}

void gnssNMEA::SendSentence(std::string_view text)
{
    if (!OnSend)
        return;
    constexpr std::string_view digits = "0123456789ABCDEF";
    const uint8_t sum = nmeaChecksum(text);
    std::string sentence = "$";
    sentence += text;
    sentence += '*';
    sentence += digits[sum >> 4];
    sentence += digits[sum & 15];
    sentence += "\r\n";
    Transmit(reinterpret_cast<const uint8_t*>(sentence.data()), sentence.size());
}

void gnssNMEA::ResetReceiver()
{
    for (const nmeaReset& row : NmeaResets) {
        if (row.Model == Model)
            SendSentence(row.Command);
    }
    if (Model == ModelUblox)
        Transmit(ResetUblox, sizeof ResetUblox);
    Restart();
}
