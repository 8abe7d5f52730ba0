#include "gnss/gnssUBX.h"

#include "foundations/fatal/crashFatal.h"
#include "gnss/ubxChecksum.h"
#include "gnss/ubxMessage.h"

#include <array>
#include <cstring>

namespace {

// Whole frames, checksum and all, that never change.
constexpr uint8_t PollVersion[] = {0xB5, 0x62, 0x0A, 0x04, 0x00, 0x00, 0x0E, 0x34};  // MON-VER
constexpr uint8_t ResetCold[] = {0xB5, 0x62, 0x06, 0x04, 0x04, 0x00,                 // CFG-RST
                                 0xFF, 0xFF,                                         // navBbrMask
                                 0x00,                                               // resetMode: hardware
                                 0x00, 0x0C, 0x5D};

ubxPayload PayloadOf(const uint8_t* bytes, size_t count)
{
    constexpr size_t BeforePayload = 3;  // id and length
    return {bytes + BeforePayload, count - BeforePayload};
}

// Class, id, length and payload: all that the checksum covers.
size_t CoveredSize(const uint8_t* header)
{
    return ubx::HeaderSize + (header[2] | size_t{header[3]} << 8);
}

}  // namespace

void gnssUBX::Restart()
{
    gnss::Restart();
    TellIdentity();
    Select.Store({});
    ParseState = Parse::Idle;
    PendingGNSS = 0;
    PortId = PortUnknown;
    if (!OnSend)
        return;
    ConfigState = State::Identify;
    Transmit(PollVersion, sizeof PollVersion);
}

void gnssUBX::ResetReceiver()
{
    if (!OnSend)
        return;
    Transmit(ResetCold, sizeof ResetCold);
    Restart();
}

void gnssUBX::Feed(const uint8_t* bytes, size_t count)
{
    const uint8_t* const end = bytes + count;
    while (bytes != end) {
        switch (ParseState) {
        case Parse::Idle:
            bytes = SkipToSync(bytes, end);
            break;
        case Parse::SyncSeen:
            bytes = TakeSecondSync(bytes, end);
            break;
        case Parse::Collecting:
            bytes = Collect(bytes, end);
            break;
        }
    }
}

const uint8_t* gnssUBX::SkipToSync(const uint8_t* bytes, const uint8_t* end)
{
    const void* const sync = std::memchr(bytes, ubx::SyncFirst, static_cast<size_t>(end - bytes));
    if (sync == nullptr)
        return end;
    Frame.clear();
    ParseState = Parse::SyncSeen;
    return static_cast<const uint8_t*>(sync) + 1;
}

const uint8_t* gnssUBX::TakeSecondSync(const uint8_t* bytes, const uint8_t* end)
{
    while (bytes != end && *bytes == ubx::SyncFirst)
        bytes++;
    if (bytes == end)
        return end;
    ParseState = *bytes == ubx::SyncSecond ? Parse::Collecting : Parse::Idle;
    return bytes + 1;
}

const uint8_t* gnssUBX::Collect(const uint8_t* bytes, const uint8_t* end)
{
    const auto held = static_cast<size_t>(end - bytes);
    // A frame that lies whole in the chunk is decoded where it lies.
    if (Frame.empty() && held >= ubx::HeaderSize) {
        const size_t size = CoveredSize(bytes) + ubx::ChecksumSize;
        if (held >= size) {
            TakeFrame(bytes, size);
            return bytes + size;
        }
    }
    const bool sized = Frame.size() >= ubx::HeaderSize;
    const size_t full = sized ? CoveredSize(Frame.data()) + ubx::ChecksumSize : ubx::HeaderSize;
    const size_t taken = std::min(full - Frame.size(), held);
    Frame.insert(Frame.end(), bytes, bytes + taken);
    if (sized && Frame.size() == full)
        TakeFrame(Frame.data(), full);
    return bytes + taken;
}

void gnssUBX::TakeFrame(const uint8_t* frame, size_t size)
{
    const size_t covered = size - ubx::ChecksumSize;
    if (ubxChecksumOf(frame, covered) == ubxChecksum{frame[covered], frame[covered + 1]})
        Decode(frame, covered);
    ParseState = Parse::Idle;
}

// The frame may lie in `Frame`, which handlers and the step fill anew: they read all they need before.
void gnssUBX::Decode(const uint8_t* frame, size_t size)
{
    const uint8_t* const id = frame + 1;
    const size_t count = size - 1;
    switch (frame[0]) {
    case ubx::NAV:
        Decode_Navig(id, count);
        break;
    case ubx::ACK:
        Decode_Ack(id, count);
        break;
    case ubx::CFG:
        Decode_Config(id, count);
        break;
    case ubx::MON:
        Decode_Monitor(id, count);
        break;
    case ubx::TIM:
        if (*id == ubx::TimTP)
            Decode_TimTP(PayloadOf(id, count));
        break;
    default:
        break;
    }
    StateStep();
}

void gnssUBX::Send(uint8_t messageClass, uint8_t id, const uint8_t* payload, size_t size)
{
    if (!OnSend)
        return;
    if (size > ubx::PayloadLimit) {
        crashFatal("A UBX message is longer than its length field can say.");
        return;
    }
    constexpr size_t SyncSize = 2;
    std::array<uint8_t, SyncSize + ubx::HeaderSize + ubx::PayloadLimit + ubx::ChecksumSize> bytes;
    bytes[0] = ubx::SyncFirst;
    bytes[1] = ubx::SyncSecond;
    bytes[2] = messageClass;
    bytes[3] = id;
    bytes[4] = static_cast<uint8_t>(size);
    bytes[5] = static_cast<uint8_t>(size >> 8);
    std::copy_n(payload, size, bytes.data() + SyncSize + ubx::HeaderSize);
    const size_t covered = ubx::HeaderSize + size;
    const ubxChecksum sum = ubxChecksumOf(bytes.data() + SyncSize, covered);
    bytes[SyncSize + covered] = sum.A;
    bytes[SyncSize + covered + 1] = sum.B;
    Transmit(bytes.data(), SyncSize + covered + ubx::ChecksumSize);
}

// TIM-TP: when the next pulse comes, and by how much it misses.
void gnssUBX::Decode_TimTP(ubxPayload payload)
{
    if (payload.size() < 16)
        return;
    constexpr double SubMilliseconds = 1.0 / 4294967296.0;
    const double towMS = payload.u4(0);
    const double towSubMS = payload.u4(4);
    PPSTime = (towSubMS * SubMilliseconds + towMS) * 0.001;
    PPSError = payload.i4(8) * 1e-12;  // qErr
    PPSWeek = payload.u2(12);          // week
    RaiseNewData();
    OnPPS();
}
