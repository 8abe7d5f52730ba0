// The decoder of the binary protocol UBX, and the dialogue that configures a receiver that speaks it.
//
// Feed turns bytes into frames, each good frame overwrites the fields that it carries, and then gives the
// configuration one step: received frames, and nothing else, drive it. Once a receiver has told its version
// it is asked on which port the link arrives, left with UBX alone on that port, and told which messages to
// send. From then on requests of the user are carried out, one at a good frame.
//
// All runs on the thread that delivers the data. The interface thread touches `Select` (by GNSSSelect),
// `PPSDuty`, `PPSRate` and the three bytes `Pending...`, which it raises last.
#pragma once

#include "gnss/gnss.h"
#include "gnss/gnssEvent.h"
#include "gnss/ubxPayload.h"
#include "gnss/ubxSignals.h"

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <vector>

class gnssUBX : public gnss
{
public:
    // The page that shows this decoder.
    class UI;

    // What the configuration waits for.
    enum class State : uint8_t {
        Idle,         // nothing; requests are taken
        Identify,     // MON-VER
        CommsFirst,   // MON-COMMS
        CommsSecond,  // MON-COMMS once more
        PortPoll,     // acknowledgement of the poll of CFG-PRT
        PortSet,      // of the output protocols of the port
        SignalsRead,  // of the read of the signals
        MsgDOP,       // of CFG-MSG, this one and those below
        MsgPOSLLH,
        MsgSat,
        MsgSIG,
        MsgTIMEUTC,
        MsgVELNED,
        MsgTP,         // of CFG-MSG, or of the CFG-VALSET with all messages
        PulseRead,     // of the read of the time pulse
        PulseSet,      // of its change
        SelectRead,    // CFG-GNSS, then its acknowledgement
        SelectSet,     // acknowledgement of the change of the signals
        SelectVerify,  // of the read-back
    };

    // How far the frame at hand has come.
    enum class Parse : uint8_t {
        Idle,        // no byte of it
        SyncSeen,    // the first sync byte
        Collecting,  // both
    };

    // The spectrum of one RF block; valid during the call only.
    struct Spectrum {
        unsigned Block;       // from 0
        const float* Levels;  // dB, from the lowest frequency on
        size_t Count;
        double LowFrequency;  // Hz, of the first level
        double HighFrequency;
        float LowLevel;  // dB, the least that can be told
        float HighLevel;
    };

    // The port of the receiver on which the link arrives is not known yet.
    static constexpr uint8_t PortUnknown = 5;

    gnssUBX() = default;
    ~gnssUBX() override = default;

    // Also asks the receiver for its version, if it can be asked.
    void Restart() override;

    // Takes received bytes of any number at any alignment. May raise OnNewData, OnPPS, OnRFSpectrum and
    // OnSend.
    void Feed(const uint8_t* bytes, size_t count);

    // Whether no part of a message is held.
    bool IsIdle() const { return ParseState == Parse::Idle; }

    // Lets the receiver start anew from cold, then restarts. Nothing if the receiver cannot be reached.
    void ResetReceiver();

    // Puts one message in a frame and sends it. More than 65535 bytes are a fault of the program.
    void Send(uint8_t messageClass, uint8_t id, const uint8_t* payload, size_t size);

    // Asks for a selection of signals. What the model cannot run together is changed first. Interface thread.
    void GNSSSelect(bool beiDouB1C, bool beiDouB1I, bool beiDouB2a, bool beiDouB2I, bool galileoE1,
                    bool galileoE5a, bool galileoE5b, bool glonassL1, bool glonassL2, bool gpsL1CA,
                    bool gpsL2C, bool gpsL5, bool imes, bool navICL5, bool qzssL1CA, bool qzssL1S,
                    bool qzssL2C, bool qzssL5, bool sbas);

private:
    std::vector<uint8_t> Frame;  // the frame without its sync bytes; between frames a payload being built
    std::vector<uint32_t> PortRxBytes;  // the counters of the first MON-COMMS

public:
    Parse ParseState = Parse::Idle;

private:
    static constexpr size_t ConfigBlockSize = 60;  // CFG-GNSS of seven blocks
    uint8_t ConfigBlock[ConfigBlockSize] = {};     // a configuration message that is sent back changed

public:
    // Requests of the interface thread; not 0 when raised.
    std::atomic<uint8_t> PendingGNSS{0};
    std::atomic<uint8_t> PendingPPS{0};
    std::atomic<uint8_t> PendingSpectrum{0};

    State ConfigState = State::Idle;

    double PPSError = 0;  // seconds: the quantisation error of the next pulse
    double PPSTime = 0;   // seconds of the week of the next pulse

    // These two may be set while Feed runs.
    gnssEvent<void()> OnPPS;                        // the next pulse was announced; may be empty
    gnssEvent<void(const Spectrum&)> OnRFSpectrum;  // may be empty

    std::atomic<float> PPSDuty{0};     // 0 to 1
    std::atomic<float> PPSRate{1.0f};  // pulses per second
    float TDOP = 0;
    uint16_t PPSWeek = 0;  // GPS week of the next pulse
    uint16_t ProtVer = 0;  // major times 256 plus minor; 0 until known

    ubxSharedSignals Select;  // which signals are enabled

    uint8_t PortId = 0;  // 0 I2C, 1 UART1, 2 UART2, 3 USB, or PortUnknown

private:
    // --- Frames
    const uint8_t* SkipToSync(const uint8_t* bytes, const uint8_t* end);
    const uint8_t* TakeSecondSync(const uint8_t* bytes, const uint8_t* end);
    const uint8_t* Collect(const uint8_t* bytes, const uint8_t* end);
    void TakeFrame(const uint8_t* frame, size_t size);
    void Decode(const uint8_t* frame, size_t size);
    void Decode_TimTP(ubxPayload payload);

    // Each takes the id byte of a frame and what follows it, in all the payload's length plus 3.
    void Decode_Ack(const uint8_t* bytes, size_t count);
    void Decode_Config(const uint8_t* bytes, size_t count);
    void Decode_Navig(const uint8_t* bytes, size_t count);
    void Decode_Monitor(const uint8_t* bytes, size_t count);

    // --- NAV
    void Decode_NavPOSLLH(ubxPayload payload);
    void Decode_NavDOP(ubxPayload payload);
    void Decode_NavVELNED(ubxPayload payload);
    void Decode_NavTIMEUTC(ubxPayload payload);
    void Decode_NavSVINFO(ubxPayload payload);
    void Decode_NavSAT(ubxPayload payload);
    void Decode_NavSIG(ubxPayload payload);
    void ShowSats(std::vector<SatInfo>& sats);
    void SetValid(uint8_t bit, bool valid);

    // --- MON
    void Decode_MonVER(ubxPayload payload);
    void Decode_MonSPAN(ubxPayload payload);
    void Decode_MonCOMMS(ubxPayload payload);

    // --- CFG
    void Decode_CfgPRT(ubxPayload payload);
    void Decode_CfgTP5(ubxPayload payload);
    void Decode_CfgGNSS(ubxPayload payload);
    void Decode_CfgVALGET(ubxPayload payload);
    void KeepGNSS(ubxPayload payload);
    void ReportGNSS(ubxPayload payload);

    // --- Configuration
    bool HasKeys() const;
    void StateStep();
    bool StepSelect();
    void StepSpectrum();
    void ConfigStart();
    void ConfigForState(State state);
    void ConfigMessage();
    void ConfigSignalMessage();
    void ConfigMessagesByKey();
    void PortsRemember(ubxPayload payload);
    void PortFind(ubxPayload payload);
    void PortSendBack();
    void PortSetByKey();
    void SignalsPoll();
    void SelectSendBack();
    void SelectSetByKey();
    void PulsePoll();
    void PulsePollByKey();
    void PulseChange();
    void PulseSetByBlock();
    void PulseSetByKey();

    // --- Payloads of the configuration by keys, built in Frame
    void ValueBegin(uint8_t layer);
    void ValueKey(uint32_t key);
    void ValueSet8(uint32_t key, uint8_t value);
    void ValueSet32(uint32_t key, uint32_t value);
    void ValueSet64(uint32_t key, uint64_t value);
    void ValueAppend(uint64_t value, size_t width);
    void SendFrame(uint8_t id);

    // Model and ProtVer as GNSSSelect may read them at any moment.
    void TellIdentity();
    std::atomic<uint32_t> Identity{0};
};
