// A u-blox receiver: answers the UBX protocol, is configured by the classic messages or by keys, and tells
// its solutions in UBX, NMEA or both.
#pragma once

#include "tools/simulator/simCore.h"
#include "tools/simulator/simNmeaEpoch.h"
#include "tools/simulator/simUbxFrame.h"
#include "tools/simulator/simUbxKeys.h"
#include "tools/simulator/simUbxMessages.h"
#include "tools/simulator/simUbxModel.h"

#include <cstdint>
#include <optional>
#include <utility>
#include <vector>

class simUblox final : public simCore
{
public:
    simUblox(const simUbxModel& model, const simOptions& options);

    simTruth Truth() const override;
    simLine Line() const override;

protected:
    void PowerUp() override;
    void OnReady() override;
    void OnBytes(std::span<const uint8_t> fromHost) override;
    void OnEpoch(const simEpoch& epoch) override;
    bool Hears(simSystem system, const simSignal& signal) const override;
    bool Knows(simSystem system, uint8_t svid) const override;

private:
    using pairs = std::vector<std::pair<uint32_t, uint64_t>>;

    // What becomes of a configuration message.
    enum class outcome : uint8_t {
        Done,
        Refused,
        Unanswered,  // neither acknowledged nor refused
    };

    void OnMessage(const simUbxMessage& message);
    void OnConfig(const simUbxMessage& message);
    void OnPoll(const simUbxMessage& message);
    void Answer(uint8_t messageClass, uint8_t id, const simBytes& payload);
    bool SendsUbx() const { return Keys[simUbxKey::OutUbx + PortKeys()] != 0; }
    bool SendsNmea() const { return Keys[simUbxKey::OutNmea + PortKeys()] != 0; }
    uint32_t PortIndex() const { return static_cast<uint32_t>(Options.Port); }
    uint32_t PortKeys() const { return PortIndex() * simUbxKey::PortStep; }
    simNmeaStyle Style() const;
    uint32_t Itow() const;

    // Configuration by the classic messages: simUbloxClassic.cpp.
    outcome Classic(uint8_t id, const simReader& payload);
    outcome ConfigPort(const simReader& payload);
    outcome ConfigMessage(const simReader& payload);
    outcome ConfigRate(const simReader& payload);
    outcome ConfigSystems(const simReader& payload);
    outcome ConfigPulse(const simReader& payload);
    outcome ConfigSaved(const simReader& payload);
    outcome Reset(const simReader& payload);
    bool SetPort(const simReader& payload);
    bool SetSystems(const simReader& payload);
    bool SetPulse(const simReader& payload);
    simBytes PortPayload(uint8_t port) const;
    simBytes SystemsPayload() const;
    simBytes PulsePayload() const;

    // Configuration by keys: simUbloxValues.cpp.
    outcome SetValues(const simReader& payload);
    outcome GetValues(const simReader& payload);
    std::optional<pairs> ReadPairs(const simReader& payload) const;
    std::optional<std::vector<uint32_t>> AskedKeys(const simReader& payload) const;

    // Whether the receiver's radio can do what a configuration asks of it.
    bool SignalsFit(const simUbxKeys& keys) const;
    // After a change of the configuration.
    void Apply();

    // Solutions: simUbloxNavigation.cpp. Payloads of one message each.
    simBytes NavPOSLLH() const;
    simBytes NavDOP() const;
    simBytes NavVELNED() const;
    simBytes NavTIMEUTC() const;
    simBytes NavSVINFO() const;
    simBytes NavSAT() const;
    simBytes NavSIG() const;
    simBytes TimTP() const;
    // The receiver itself: simUbloxMonitor.cpp.
    simBytes MonVER() const;
    simBytes MonCOMMS() const;
    simBytes MonSPAN() const;
    std::string NmeaText(uint8_t id) const;
    // The payload of a message by its name; nothing when there is none of that name.
    std::optional<simBytes> PayloadOf(uint8_t messageClass, uint8_t id) const;

    const simUbxModel& Model;
    simUbxKeys Keys;
    simUbxParser Parser;
    uint32_t Solutions = 0;  // since power-up
    uint32_t TakenMessages = 0;
};
