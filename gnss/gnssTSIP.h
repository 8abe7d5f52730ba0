// TSIP, the binary protocol of the Trimble timing receivers: identifies the model, asks for what the receiver
// does not broadcast by itself, and corrects settings that a report shows to be otherwise than needed.
//
// What a stranger sends:
// - A packet shorter than what is read of it is ignored whole; identification goes a step on all the same.
// - Of a packet without end only the first PacketLimit bytes are stored. No report is read beyond them, so it
//   is decoded as if it were whole.
// - A time that no whole number of days can tell (not a number, infinite, beyond 2^62) counts as day 0.
#pragma once

#include "gnss/bytesBig.h"
#include "gnss/gnss.h"
#include "platform/clock.h"

#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <span>
#include <string>
#include <string_view>
#include <vector>

class gnssTSIP : public gnss
{
public:
    // The page of this decoder.
    class UI;

    enum class Identification : uint8_t {
        Asked,     // the version request is out
        Waiting,   // one packet came since, and it was no reply
        Rejected,  // the receiver did not understand the request
        Known,
    };

    enum class Framing : uint8_t {
        Outside,
        Opened,  // behind the opening DLE
        InPacket,
        AfterDLE,  // behind a DLE in the packet
    };

    static constexpr size_t PacketLimit = 2048;

    gnssTSIP();

    void Restart() override;

    // Acts on model 3 alone.
    void ReceiverModeSet(uint8_t dynamics) override;

    // Consumes received bytes, cut anywhere. Raises OnNewData and OnSend from inside.
    void Feed(const uint8_t* bytes, size_t count);

    // Decodes the message in Packet and goes a step on in identification.
    void Decode();

    // Sends the reset command and restarts. Not from inside an event.
    void ResetReceiver();

    // Keeps what the receiver aligns its pulses to, and tells it.
    void PPSSetup(uint8_t base);

    // Today's date in UTC, by which dates and weeks that have rolled over are placed. Never null; asked from
    // inside Feed.
    clockDate (*Today)() = clockTodayUTC;

    int64_t RequestTime;          // of the last polling round, clockSteadyNs
    std::vector<uint8_t> Packet;  // id and data of the message being collected, unstuffed
    Identification Ident = Identification::Asked;
    Framing ParseState = Framing::Outside;
    float ClockBias = 0;          // nanoseconds
    float BiasRate = 0;           // parts per billion
    float PPSError = 0;           // seconds
    float TDOP = 0;               // time dilution of precision
    float Temperature = 0;        // degrees Celsius
    float WeekTime = 0;           // seconds in the week, UTC if the receiver's offset is known
    float UTCOffset = 0;          // GPS to UTC, seconds
    uint16_t Status = 0;          // alarms, see StatusLines
    uint16_t Week = 0;            // full GPS week
    uint8_t DecodeStatus = 0xFF;  // see DecodeStatusName
    uint8_t PPSBase = 1;          // argument of PPSSetup
    uint8_t RXMode = 8;           // see RXModeName
    uint8_t SurveyProgress = 0;   // percent
    uint8_t TimeFlags = 0;        // see TimeFlagLines

    std::string_view RXModeName() const;
    std::string_view DecodeStatusName() const;

    // What a bit says when it is set, and when it is clear.
    struct FlagLine {
        uint8_t Bit;
        std::string_view Set;
        std::string_view Clear;

        bool IsSet(uint16_t flags) const { return (flags >> Bit & 1) != 0; }
        std::string_view Text(uint16_t flags) const { return IsSet(flags) ? Set : Clear; }
    };

    // The lines of TimeFlags and of Status, in the order in which they are shown. In Status a set bit is an
    // alarm.
    static std::span<const FlagLine> TimeFlagLines();
    static std::span<const FlagLine> StatusLines();

    // The text of a line of Status as it stands now, with the progress of a self-survey.
    std::string StatusText(const FlagLine& line) const;

    // "Date UTC" or "Date GPS"; "Time UTC" or "Time GPS".
    std::string_view DateLabel() const;
    std::string_view TimeLabel() const;

private:
    struct report;
    static const report Reports[];
    static const report SuperReports[];

    size_t TakeOutside(std::span<const uint8_t> bytes);
    size_t TakeInside(std::span<const uint8_t> bytes);
    void TakeOpened(uint8_t byte);
    void TakeAfterDLE(uint8_t byte);
    void Store(std::span<const uint8_t> bytes);

    void Dispatch(std::span<const report> reports, bytesBig message);
    void StepIdentification();
    void Identified(uint8_t model);

    void DecodeRejection(bytesBig data);
    void DecodeHardwareVersion(bytesBig data);
    void DecodeTime(bytesBig data);
    void DecodeSoftwareVersion(bytesBig data);
    void DecodeHealth(bytesBig data);
    void DecodeSignalLevels(bytesBig data);
    void DecodePosition(bytesBig data);
    void DecodeMachine(bytesBig data);
    void DecodeOptions(bytesBig data);
    void DecodeVelocity(bytesBig data);
    void DecodeTracking(bytesBig data);
    void DecodeAllInView(bytesBig data);
    void DecodeDoublePosition(bytesBig data);
    void DecodeSuper(bytesBig data);
    void DecodeComprehensiveTime(bytesBig data);
    void DecodePrimaryTiming(bytesBig data);
    void DecodeSupplementalTiming(bytesBig data);
    void DecodePrimaryUTC(bytesBig data);

    void SetPosition(bytesBig latitudeLongitudeAltitude);
    void SetFixTime(float seconds);
    void SetWeek(uint16_t week);
    void SetWeekTime(double timeOfWeek);
    void SetDate(uint32_t julian);
    void SetDate(uint8_t day, uint8_t month, uint16_t year);
    void SetValidTimeByStatus();

    SatInfo* FindSat(uint8_t svId);
    void AskForUTC() const;
    void Poll();
    void Send(std::initializer_list<uint8_t> frame) const;

    std::vector<SatInfo> SatsNew;  // swapped with Sats, so that neither is allocated anew
};
