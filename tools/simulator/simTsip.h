// Trimble receivers: they speak TSIP, big-endian packets of an id and data.
#pragma once

#include "tools/simulator/simCore.h"
#include "tools/simulator/simTsipFrame.h"

#include <cstdint>
#include <span>
#include <string_view>
#include <vector>

// Weeks are told by their lowest ten bits.
constexpr int simTsipWeeks = 1024;

// Which commands a receiver knows: those of all, and these.
enum class simTsipPart : uint8_t {
    All = 0,
    Version = 1,   // 0x1C, the newer way to ask for versions
    Timing = 2,    // 0x8E with its subcodes, 0xBB
    Position = 4,  // position and velocity sent by themselves, 0x4B
};

struct simTsipModel {
    simModel Model;
    uint8_t Parts;        // bits of simTsipPart
    uint8_t MachineCode;  // in 0x4B
    uint16_t HardwareCode;
    const char* HardwareName;
    const char* FirmwareName;
    uint8_t Major, Minor;     // of the software
    uint8_t Options[4];       // of 0x35 at first
    bool ErrorInNanoseconds;  // of the pulse, in 0x8F-AC; else in seconds
};

// The row of a Trimble receiver; null for any other.
const simTsipModel* simTsipModelOf(simModel model);

class simTsip final : public simCore
{
public:
    simTsip(const simTsipModel& model, const simOptions& options);

protected:
    void PowerUp() override;
    void OnReady() override;
    void OnBytes(std::span<const uint8_t> fromHost) override;
    void OnEpoch(const simEpoch& epoch) override;
    bool Hears(simSystem system, const simSignal& signal) const override;

private:
    struct command {
        uint8_t Id;
        simTsipPart Part;
        bool (simTsip::*Run)(const simReader& data);
    };
    static const command Commands[];
    static const command TimingCommands[];

    bool Has(simTsipPart part) const
    {
        return (Model.Parts & static_cast<uint8_t>(part)) == static_cast<uint8_t>(part);
    }
    void OnPacket(const simBytes& packet);
    bool RunFrom(std::span<const command> commands, uint8_t id, const simReader& data);
    void Answer(uint8_t id, const simBytes& data);
    void Report(uint8_t id, const simBytes& data) { Send(simTsipFrame(id, data), kind::Periodic); }
    void Reject(const simBytes& packet);

    // Commands: simTsipCommands.cpp. False for data that make no sense.
    bool AskVersion(const simReader& data);
    bool AskSoftware(const simReader& data);
    bool AskTime(const simReader& data);
    bool AskUsed(const simReader& data);
    bool AskHealth(const simReader& data);
    bool AskLevels(const simReader& data);
    bool AskAltitude(const simReader& data);
    bool SoftReset(const simReader& data);
    bool ColdReset(const simReader& data);
    bool SetOptions(const simReader& data);
    bool AskTracking(const simReader& data);
    bool SetReceiver(const simReader& data);

    // The commands of 0x8E: simTsipTiming.cpp.
    bool Timing(const simReader& data);
    bool AskEvent(const simReader& data);
    bool SetPulse(const simReader& data);
    bool SetTimeBase(const simReader& data);
    bool SetMask(const simReader& data);
    bool SurveyAgain(const simReader& data);
    bool SetSurvey(const simReader& data);
    bool AskPrimary(const simReader& data);
    bool AskSupplemental(const simReader& data);
    bool AskUtc(const simReader& data);

    // Reports: simTsipReports.cpp. The data of one packet each.
    simBytes SoftwareData() const;                                     // 0x45
    simBytes TimeData() const;                                         // 0x41
    simBytes UsedData() const;                                         // 0x6D
    simBytes HealthData() const;                                       // 0x46
    simBytes MachineData() const;                                      // 0x4B
    simBytes LevelsData() const;                                       // 0x47
    simBytes TrackingData(const simSat& sat, unsigned channel) const;  // 0x5C
    simBytes PositionData() const;                                     // 0x4A
    simBytes LongPositionData() const;                                 // 0x84
    simBytes VelocityData() const;                                     // 0x56
    uint8_t DecodingStatus() const;
    double SecondsOfWeek() const;
    double TimeOfFix() const;
    double ReportedAltitude() const;

    // The reports of 0x8F: simTsipTiming.cpp.
    simBytes EventData() const;         // 0x8F-0B
    simBytes PrimaryData() const;       // 0x8F-AB
    simBytes SupplementalData() const;  // 0x8F-AC
    simBytes UtcData() const;           // 0x8F-AD
    bool UtcTime() const;               // UTC rather than GPS time
    unsigned SurveyProgress() const;    // percent

    const simTsipModel& Model;
    simTsipParser Parser;
    uint8_t IoOptions[4] = {};
    uint8_t TimeBase = 0;     // of 0x8E-A2: bit 0 the time, bit 1 the pulse is UTC
    uint16_t Mask = 0;        // of 0x8E-A5
    simBytes Pulse;           // data of 0x8F-4A
    simBytes Survey;          // data of 0x8F-A9
    simBytes Receiver;        // data of 0xBB
    int64_t SurveyStart = 0;  // UTC
    unsigned Seconds = 0;     // since power-up
};
