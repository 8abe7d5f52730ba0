#include "gnss/gnssTSIP.h"
#include "gnss/tsipModel.h"
#include "platform/clock.h"

#include <algorithm>
#include <array>

namespace {

constexpr int64_t PollNs = 900'000'000;

constexpr uint8_t DynamicsStationary = 0;

// The code of the platform dynamics in the receiver's own setting; it counts the stationary one last.
constexpr uint8_t dynamicsCode(uint8_t dynamics)
{
    constexpr uint8_t codes[] = {4, 1, 2, 3};
    return dynamics < std::size(codes) ? codes[dynamics] : uint8_t{0};
}

// BB-00: receiver configuration; 0xFF leaves a setting as it is.
std::array<uint8_t, 47> dynamicsFrame(uint8_t dynamics)
{
    std::array<uint8_t, 47> frame;
    frame.fill(0xFF);
    constexpr std::array<uint8_t, 5> head = {0x10, 0xBB, 0x00, 0xFF, 0xFF};
    std::copy(head.begin(), head.end(), frame.begin());
    frame[head.size()] = dynamicsCode(dynamics);
    frame[frame.size() - 2] = 0x10;
    frame[frame.size() - 1] = 0x03;
    return frame;
}

}  // namespace

void gnssTSIP::ReceiverModeSet(uint8_t dynamics)
{
    if (!OnSend || Model != ModelAcutime)
        return;
    const uint8_t survey = dynamics == DynamicsStationary ? 1 : 0;
    Send({0x10, 0x8E, 0xA6, 0x00, 0x10, 0x03});
    Send({0x10, 0x8E, 0xA9, survey, 0x00, 0x00, 0x00, 0x07, 0xD0, 0x00, 0x00, 0x00, 0x00, 0x10, 0x03});
    Send({0x10, 0x8E, 0xA6, 0x00, 0x10, 0x03});
    const std::array<uint8_t, 47> frame = dynamicsFrame(dynamics);
    Transmit(frame.data(), frame.size());
}

void gnssTSIP::PPSSetup(uint8_t base)
{
    PPSBase = base;
    Send({0x10, 0x8E, 0x4A, base, 0x01, 0x00, 0x00, 0x00, 0x00, 0x00,
          0x00, 0x00, 0x00, 0x00, 0x43, 0x96, 0x00, 0x00, 0x10, 0x03});
}

// A receiver that reports GPS time is told at each such report until it obeys.
void gnssTSIP::AskForUTC() const
{
    if (Model == ModelAcutime)
        Send({0x10, 0x35, 0x10, 0x03});
    else if (Model == ModelResolution)
        Send({0x10, 0x8E, 0xA2, 0x03, 0x10, 0x03});
}

void gnssTSIP::Poll()
{
    if (!OnSend)
        return;
    const int64_t now = clockSteadyNs();
    if (now - RequestTime <= PollNs)
        return;
    RequestTime = now;
    Send({0x10, 0x2A, 0x10, 0x03});        // altitude reference
    Send({0x10, 0x24, 0x10, 0x03});        // satellites used, answered by 0x6D
    Send({0x10, 0x27, 0x10, 0x03});        // signal levels, answered by 0x47
    Send({0x10, 0x3C, 0x00, 0x10, 0x03});  // tracking status of all satellites, answered by 0x5C
}

// 0x55, I/O options: 0 position, 1 velocity, 2 timing, 3 auxiliary.
void gnssTSIP::DecodeOptions(bytesBig data)
{
    constexpr uint8_t position = 0x1C;  // heights above sea level, both precisions
    constexpr uint8_t velocity = 0x02;  // east, north, up
    constexpr uint8_t timing = 0x01;    // UTC
    const uint8_t d0 = data.u1(0);
    const uint8_t d1 = data.u1(1);
    const uint8_t d2 = data.u1(2);
    if ((d0 & position) == position && (d1 & velocity) == velocity && (d2 & timing) == timing)
        return;
    Send({0x10, 0x35, static_cast<uint8_t>(d0 | position), static_cast<uint8_t>(d1 | velocity),
          static_cast<uint8_t>(d2 | timing), data.u1(3), 0x10, 0x03});
}
