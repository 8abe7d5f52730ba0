// NMEA 0183: eight talkers, the sentences GGA, GLL, GSA, GSV and RMC, two proprietary replies by which one
// family of receivers is known, and the head of one binary reply that tells a u-blox receiver in text mode.
//
// What a stranger sends cannot make the decoder grow without end:
// - A sentence of more than LineLimit bytes is dropped at its line end like one with a bad checksum.
// - A byte 0xB5 at a sentence boundary that begins anything but B5 62 0A 04 stops decoding until Restart; of
//   what follows nothing is stored.
// - Satellites that wait for an RMC which never comes are merged early, in the way the RMC would do it.
#pragma once

#include "gnss/gnss.h"
#include "gnss/satIndex.h"

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

class gnssNMEA : public gnss
{
public:
    // The page of this decoder.
    class UI;

    // The fields of a sentence. A routine advances the span over what it took.
    using fields = std::span<const std::string_view>;

    // The longest sentence that is decoded, from the "$" to the byte before the line end.
    static constexpr size_t LineLimit = 65536;

    void Restart() override;

    // Consumes received bytes, cut anywhere. Raises OnNewData and OnSend from inside.
    void Feed(const uint8_t* bytes, size_t count);

    // Sends the reset command of the model, if there is one, and restarts. At a sentence boundary, not from
    // inside an event.
    void ResetReceiver();

    // Whether no part of a sentence is held.
    bool IsIdle() const { return Line.empty(); }

    // Decodes one sentence; the first field is its address, such as "$GPGGA".
    void Decode(fields sentence);

    // Sends "$", the text, "*", its checksum and a line end. Does nothing if nobody can send.
    void SendSentence(std::string_view text);

    std::string Line;              // the sentence being collected, or the binary candidate
    std::vector<SatInfo> SatsNew;  // what GSV sentences told since the last RMC
    float DGPSAge = 0;             // age of differential data, seconds
    uint32_t DGPSStation = 0;      // differential station
    float MagVar = 0;              // magnetic variation, degrees, east positive
    uint8_t FixQuality = 0;        // see FixQualityName

private:
    struct sentenceType;
    static const sentenceType SentenceTypes[];

    size_t TakeOutside(std::span<const uint8_t> bytes);
    size_t TakeCandidate(std::span<const uint8_t> bytes);
    size_t TakeSentence(std::span<const uint8_t> bytes);
    void EndSentence();
    bool AcceptChecksum();
    void SplitLine();

    bool DecodeProprietary(fields sentence);
    void DecodeGGA(fields& left);
    void DecodeGLL(fields& left);
    void DecodeGSA(fields& left);
    void DecodeRMC(fields& left);
    bool DecodeGSV(fields& left, gnss::Source talker);

    void DecodeLatitude(fields& left);
    void DecodeLongitude(fields& left);
    void DecodeTime(fields& left);
    void DecodeDifferential(fields& left);
    void DecodeStatus(char status);
    void DecodeSpeed(fields& left);
    void DecodeDate(std::string_view date);
    void DecodeVariation(fields& left);
    void DecodeMode(char mode);
    void MarkUsed(std::span<const int64_t> ids, gnss::Source system);

    bool IsLiveUsed(gnss::Source source, uint8_t svId) const;
    void MergeStaged();
    void CommitSats();

    std::vector<std::string_view> Fields;  // of Line
    std::vector<SatInfo> Merged;           // swapped with SatsNew, so that neither is ever allocated anew
    satIndex Live;                         // where satellites stand in Sats
};
