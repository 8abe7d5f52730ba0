#include "tools/simulator/simTsip.h"

#include <algorithm>

namespace {

constexpr uint8_t ReportRejected = 0x13;
constexpr uint8_t ReportTiming = 0x8F;

// Bits of 0x8E-A5, where some reports have two: one for each generation of receivers.
constexpr uint16_t MaskPrimary = 1 << 0 | 1 << 5;
constexpr uint16_t MaskSupplemental = 1 << 2 | 1 << 6;
constexpr uint16_t MaskUtc = 1 << 7;
constexpr uint16_t MaskAtFirst = 1 << 0 | 1 << 2;

constexpr uint8_t TimingReceiver =
    static_cast<uint8_t>(simTsipPart::Version) | static_cast<uint8_t>(simTsipPart::Timing);

constexpr simTsipModel Models[] = {
    {simModel::Acutime,
     TimingReceiver,
     0x61,
     3001,
     "Acutime Gold",
     "Acutime Gold",
     1,
     3,
     {0x12, 0x02, 0x00, 0x00},
     true},
    {simModel::Lassen,
     static_cast<uint8_t>(simTsipPart::Position),
     0x5A,
     0,
     "",
     "",
     7,
     82,
     {0x02, 0x02, 0x00, 0x00},
     true},
    {simModel::Resolution,
     static_cast<uint8_t>(simTsipPart::Timing),
     0x00,
     0,
     "",
     "",
     1,
     14,
     {0x12, 0x02, 0x00, 0x00},
     false},
};

// 0xBB as from the factory: subcode, receiver mode, dynamics, elevation mask and more.
constexpr size_t ReceiverSize = 43;

}  // namespace

const simTsipModel* simTsipModelOf(simModel model)
{
    const simTsipModel* const found = std::ranges::find(Models, model, &simTsipModel::Model);
    return found == std::end(Models) ? nullptr : found;
}

simTsip::simTsip(const simTsipModel& model, const simOptions& options) : simCore(options), Model(model)
{
    simTsip::PowerUp();
}

void simTsip::PowerUp()
{
    constexpr uint8_t OverDetermined = 7;
    constexpr uint8_t Automatic = 0;
    Parser = {};
    std::ranges::copy(Model.Options, IoOptions);
    TimeBase = 0;
    Mask = MaskAtFirst;
    // On, UTC, rising edge, no delay, sent while the error is below 300 ns.
    Pulse = simWriter(std::endian::big).U1(0x4A).U1(1).U1(0).U1(0).F8(0).F4(300).Data;
    Survey = simWriter(std::endian::big).U1(0xA9).U1(1).U1(1).U4(2000).U4(0).Data;
    Receiver.assign(ReceiverSize, 0xFF);
    Receiver[0] = 0;
    Receiver[1] = Has(simTsipPart::Timing) ? OverDetermined : Automatic;
    SurveyStart = UtcNs();
    Seconds = 0;
}

// The position receiver says at once what it is; the others wait for the second.
void simTsip::OnReady()
{
    if (!Has(simTsipPart::Position))
        return;
    Report(0x45, SoftwareData());
    Report(0x46, HealthData());
    Report(0x4B, MachineData());
}

void simTsip::OnBytes(std::span<const uint8_t> fromHost)
{
    for (const simBytes& packet : Parser.Take(fromHost)) {
        // What came behind a reset was for a receiver that was no longer listening.
        if (IsBooting())
            return;
        OnPacket(packet);
    }
}

// These receivers have a solution each second and no more.
void simTsip::OnEpoch(const simEpoch& epoch)
{
    constexpr unsigned TimeEvery = 5;  // seconds
    constexpr uint8_t LongForm = 1 << 4;
    if (!epoch.IsWholeSecond())
        return;
    if (Has(simTsipPart::Timing)) {
        if ((Mask & MaskPrimary) != 0)
            Report(ReportTiming, PrimaryData());
        if ((Mask & MaskSupplemental) != 0)
            Report(ReportTiming, SupplementalData());
        if ((Mask & MaskUtc) != 0)
            Report(ReportTiming, UtcData());
    }
    if (Has(simTsipPart::Position)) {
        if (epoch.Fixed && (IoOptions[0] & 2) != 0)
            (IoOptions[0] & LongForm) != 0 ? Report(0x84, LongPositionData()) : Report(0x4A, PositionData());
        if (epoch.Fixed && (IoOptions[1] & 2) != 0)
            Report(0x56, VelocityData());
        if (Seconds % TimeEvery == 0)
            Report(0x41, TimeData());
        Report(0x46, HealthData());
        Report(0x4B, MachineData());
    }
    ++Seconds;
}

bool simTsip::Hears(simSystem system, const simSignal& signal) const
{
    return system == simSystem::GPS && signal.Id == 0;
}

void simTsip::Answer(uint8_t id, const simBytes& data)
{
    Send(simTsipFrame(id, data), kind::Answer);
}

// 0x13: the packet that was not understood, its id first.
void simTsip::Reject(const simBytes& packet)
{
    Answer(ReportRejected, packet);
}
