#include "platform/linux/commLine.h"

#include "platform/commRate.h"

#include <cerrno>

#include <asm/termbits.h>
#include <sys/ioctl.h>

namespace {

constexpr cc_t CharacterXOn = 0x11;
constexpr cc_t CharacterXOff = 0x13;

constexpr tcflag_t DataBitsOf[] = {CS5, CS6, CS7, CS8};
constexpr uint8_t FewestBits = 5;
constexpr uint8_t MostBits = 8;

constexpr tcflag_t ParityOf[] = {0, PARENB | PARODD, PARENB, PARENB | PARODD | CMSPAR, PARENB | CMSPAR};
constexpr tcflag_t ParityMask = PARENB | PARODD | CMSPAR;
constexpr uint8_t Parities = 5;

constexpr uint8_t OneAndAHalf = 1;
constexpr uint8_t Two = 2;

// One and a half stop bits exist with five data bits alone, where they are the system's longer form.
bool CanBe(const commControl& control)
{
    const bool hasBits = control.DataBits >= FewestBits && control.DataBits <= MostBits;
    const bool hasStop =
        control.StopBits == 0 || control.StopBits == (control.DataBits == FewestBits ? OneAndAHalf : Two);
    return control.BaudRate > 0 && hasBits && hasStop && control.Parity < Parities;
}

// Raw: no byte means anything to the line, none is echoed or changed.
void MakeRaw(termios2& line)
{
    line.c_iflag = IGNBRK;
    line.c_oflag = 0;
    line.c_lflag = 0;
    line.c_cflag |= CREAD | CLOCAL;
    line.c_cc[VMIN] = 1;
    line.c_cc[VTIME] = 0;
    line.c_cc[VSTART] = CharacterXOn;
    line.c_cc[VSTOP] = CharacterXOff;
}

void Apply(const commControl& control, termios2& line)
{
    MakeRaw(line);
    line.c_iflag |= (control.Flags & commFlag::Parity) != 0 ? INPCK : 0;
    line.c_iflag |= (control.Flags & commFlag::OutX) != 0 ? IXON : 0;
    line.c_iflag |= (control.Flags & commFlag::InX) != 0 ? IXOFF : 0;
    line.c_cflag &= ~(CBAUD | (CBAUD << IBSHIFT) | CSIZE | CSTOPB | ParityMask | CRTSCTS);
    line.c_cflag |= BOTHER | (BOTHER << IBSHIFT);
    line.c_cflag |= DataBitsOf[control.DataBits - FewestBits] | ParityOf[control.Parity];
    line.c_cflag |= control.StopBits != 0 ? CSTOPB : 0;
    // The system knows both halves of this handshake as one.
    line.c_cflag |= (control.Flags & commFlag::OutCTS) != 0 ? CRTSCTS : 0;
    line.c_ispeed = control.BaudRate;
    line.c_ospeed = control.BaudRate;
}

void SetLevel(int descriptor, int line, bool on)
{
    // A port without such lines has nothing to set.
    ioctl(descriptor, on ? TIOCMBIS : TIOCMBIC, &line);
}

uint8_t ParityIn(const termios2& line)
{
    if ((line.c_cflag & PARENB) == 0)
        return 0;
    for (uint8_t parity = 1; parity < Parities; parity++) {
        if ((line.c_cflag & ParityMask) == ParityOf[parity])
            return parity;
    }
    return 0;
}

uint32_t FlagsIn(const termios2& line)
{
    uint32_t flags = 0;
    flags |= (line.c_iflag & INPCK) != 0 ? commFlag::Parity : 0;
    flags |= (line.c_iflag & IXON) != 0 ? commFlag::OutX : 0;
    flags |= (line.c_iflag & IXOFF) != 0 ? commFlag::InX : 0;
    flags |= (line.c_cflag & CRTSCTS) != 0 ? commFlag::OutCTS | commFlag::RTSHandshake : 0;
    return flags;
}

// Whether the other side may be what keeps the rest from being sent.
bool IsHeld(int descriptor, const termios2& line)
{
    // The system does not tell whether a character has stopped the line.
    if ((line.c_iflag & IXON) != 0)
        return true;
    uint32_t status = commCTS;
    return (line.c_cflag & CRTSCTS) != 0 && commLineModem(descriptor, status) && (status & commCTS) == 0;
}

}  // namespace

bool commLineMakeRaw(int descriptor)
{
    termios2 line = {};
    if (ioctl(descriptor, TCGETS2, &line) != 0)
        return false;
    MakeRaw(line);
    return ioctl(descriptor, TCSETS2, &line) == 0;
}

bool commLineGet(int descriptor, uint32_t flags, commControl& control)
{
    termios2 line = {};
    if (ioctl(descriptor, TCGETS2, &line) != 0)
        return false;
    control.BaudRate = line.c_ospeed;
    control.Flags = FlagsIn(line) | (flags & (commFlag::DTREnable | commFlag::RTSEnable));
    control.DataBits = FewestBits;
    while (control.DataBits < MostBits && DataBitsOf[control.DataBits - FewestBits] != (line.c_cflag & CSIZE))
        ++control.DataBits;
    control.Parity = ParityIn(line);
    control.StopBits = 0;
    if ((line.c_cflag & CSTOPB) != 0)
        control.StopBits = control.DataBits == FewestBits ? OneAndAHalf : Two;
    return true;
}

bool commLineSet(int descriptor, const commControl& control, uint32_t& flags)
{
    termios2 line = {};
    if (!CanBe(control) || ioctl(descriptor, TCGETS2, &line) != 0)
        return false;
    Apply(control, line);
    if (ioctl(descriptor, TCSETS2, &line) != 0 || ioctl(descriptor, TCGETS2, &line) != 0)
        return false;
    // The level of DTR stands for a handshake on it, which the system does not have.
    SetLevel(descriptor, TIOCM_DTR, (control.Flags & (commFlag::DTREnable | commFlag::DTRHandshake)) != 0);
    if ((line.c_cflag & CRTSCTS) == 0)
        SetLevel(descriptor, TIOCM_RTS,
                 (control.Flags & (commFlag::RTSEnable | commFlag::RTSHandshake)) != 0);
    flags = FlagsIn(line) | (control.Flags & (commFlag::DTREnable | commFlag::RTSEnable));
    return commRateIsNear(control.BaudRate, line.c_ospeed);
}

void commLineFlush(int descriptor, bool unsentToo)
{
    ioctl(descriptor, TCFLSH, unsentToo ? TCIOFLUSH : TCIFLUSH);
}

bool commLineLevel(int descriptor, commLevel& level)
{
    int received = 0;
    int unsent = 0;
    if (ioctl(descriptor, TIOCINQ, &received) != 0 || ioctl(descriptor, TIOCOUTQ, &unsent) != 0)
        return false;
    level.Received = static_cast<uint32_t>(received);
    level.Unsent = static_cast<uint32_t>(unsent);
    return true;
}

bool commLineModem(int descriptor, uint32_t& status)
{
    int lines = 0;
    if (ioctl(descriptor, TIOCMGET, &lines) == 0) {
        status = (lines & TIOCM_CTS) != 0 ? commCTS : 0;
        return true;
    }
    // These are the answers of ports that have no such lines.
    if (errno != ENOTTY && errno != EINVAL)
        return false;
    status = 0;
    return true;
}

bool commLineDrainsSoon(int descriptor)
{
    constexpr uint64_t bitsPerByte = 11;
    constexpr uint64_t soon = 10;  // parts of a second
    termios2 line = {};
    commLevel level;
    if (ioctl(descriptor, TCGETS2, &line) != 0 || !commLineLevel(descriptor, level))
        return false;
    return !IsHeld(descriptor, line) && level.Unsent * bitsPerByte * soon <= line.c_ospeed;
}
