// What a u-blox receiver tells of itself: its version, its ports, what its radio hears.
#include "tools/simulator/simUblox.h"

#include "tools/simulator/simNoise.h"
#include "tools/simulator/simTime.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr uint16_t PortIds[] = {0x0000, 0x0100, 0x0201, 0x0300};  // I2C, UART1, UART2, USB

constexpr size_t Bins = 256;

// One band of the radio, and the places in it where satellites lift the noise a little.
struct band {
    uint32_t Span;        // hertz
    uint32_t Resolution;  // hertz
    uint32_t Center;      // hertz
    uint8_t Gain;         // dB
};

constexpr band Bands[] = {
    {128'000'000, 500'000, 1'583'400'000, 38},
    {128'000'000, 500'000, 1'209'000'000, 44},
};

// The filter before the converter is flat in the middle and falls off to both sides.
double FilterAt(size_t bin)
{
    const double off = std::fabs(static_cast<double>(bin) - Bins / 2.0) / (Bins / 2.0);
    constexpr double Edge = 0.42;
    return off < Edge ? 0 : -90 * (off - Edge);
}

// A lift round one bin.
double BumpAt(size_t bin, double center, double width, double height)
{
    const double off = (static_cast<double>(bin) - center) / width;
    return height * std::exp(-off * off);
}

uint8_t AmplitudeAt(const band& radio, size_t bin, uint64_t second)
{
    constexpr double Floor = 110;
    const double place = static_cast<double>(bin);
    const double noise = 7 * simNoise::Of(radio.Center + bin, second);
    const double carrier = BumpAt(bin, 70 + 3 * std::sin(static_cast<double>(second % 600) / 95.0), 1.2, 30);
    const double satellites = BumpAt(bin, 112, 9, 10) + BumpAt(bin, 165, 14, 7);
    const double ripple = 3 * std::sin(place / 17.0);
    const double level = Floor + FilterAt(bin) + noise + carrier + satellites + ripple;
    return static_cast<uint8_t>(std::clamp(level, 0.0, 255.0));
}

}  // namespace

// MON-VER: software, hardware and extensions.
simBytes simUblox::MonVER() const
{
    simWriter message(std::endian::little);
    message.Text(Model.Software, 30).Text(Model.Hardware, 10);
    for (const char* const extension : Model.Extensions)
        message.Text(extension, 30);
    return message.Data;
}

// MON-COMMS: what went over each port. Only the one at which the host is has any traffic.
simBytes simUblox::MonCOMMS() const
{
    constexpr uint8_t ProtocolUbx = 0;
    constexpr uint8_t ProtocolNmea = 1;
    constexpr uint8_t ProtocolNone = 0xFF;
    simWriter message(std::endian::little);
    message.U1(0).U1(std::size(PortIds)).U1(0).U1(0);  // version, nPorts, txErrors, reserved
    message.U1(ProtocolUbx).U1(ProtocolNmea).U1(ProtocolNone).U1(ProtocolNone);
    for (size_t port = 0; port < std::size(PortIds); ++port) {
        const bool ours = port == PortIndex();
        message
            .U2(PortIds[port])             // portId
            .U2(0)                         // txPending
            .U4(ours ? SentBytes : 0)      // txBytes
            .U1(ours ? 12 : 0)             // txUsage
            .U1(ours ? 31 : 0)             // txPeakUsage
            .U2(0)                         // rxPending
            .U4(ours ? ReceivedBytes : 0)  // rxBytes
            .U1(ours ? 1 : 0)              // rxUsage
            .U1(ours ? 4 : 0)              // rxPeakUsage
            .U2(0)                         // overrunErrs
            .U2(ours ? TakenMessages : 0)  // msgs, of the first protocol
            .Zeros(6)                      // msgs, of the others
            .Zeros(8)                      // reserved
            .U4(0);                        // skipped
    }
    return message.Data;
}

// MON-SPAN: the spectrum of each band.
simBytes simUblox::MonSPAN() const
{
    const auto second = static_cast<uint64_t>(UtcNs() / simSecond);
    simWriter message(std::endian::little);
    message.U1(0).U1(Model.Spans).U2(0);  // version, numRfBlocks, reserved
    for (const band& radio : std::span(Bands).first(Model.Spans)) {
        for (size_t bin = 0; bin < Bins; ++bin)
            message.U1(AmplitudeAt(radio, bin, second));  // spectrum
        message.U4(radio.Span).U4(radio.Resolution).U4(radio.Center).U1(radio.Gain).Zeros(3);
    }
    return message.Data;
}
