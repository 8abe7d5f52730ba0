// Serial ports: opening, line settings, bytes, modem lines, and what the system knows of the ports it has.
//
// A port is named by its short name ("COM5", "ttyUSB0"); the backend adds what the system wants around it.
// All functions may be called from any thread. A handle that was closed is harmless: every call on it fails,
// also when another port was opened since, and calls that are under way on other threads return soon.
// Nothing here blocks but commWrite, and commClose does not wait for it.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

using commHandle = intptr_t;

constexpr commHandle commNone = -1;

// Bits of commControl::Flags.
namespace commFlag {

constexpr uint32_t Parity = 0x2;           // the parity of received bytes is checked
constexpr uint32_t OutCTS = 0x4;           // sends only while CTS is on
constexpr uint32_t OutDSR = 0x8;           // sends only while DSR is on
constexpr uint32_t DTREnable = 0x10;       // DTR is on while the port is open
constexpr uint32_t DTRHandshake = 0x20;    // DTR tells whether there is room for more
constexpr uint32_t DSRSensitivity = 0x40;  // bytes that arrive while DSR is off are dropped
constexpr uint32_t OutX = 0x100;           // XOFF from the other side stops sending
constexpr uint32_t InX = 0x200;            // XOFF is sent when there is no room for more
constexpr uint32_t RTSEnable = 0x1000;     // RTS is on while the port is open
constexpr uint32_t RTSHandshake = 0x2000;  // RTS tells whether there is room for more

// Every bit that has to do with the control of flow.
constexpr uint32_t FlowControl =
    OutCTS | OutDSR | DTREnable | DTRHandshake | OutX | InX | RTSEnable | RTSHandshake;

}  // namespace commFlag

// The settings of a line. What a system cannot do it leaves out; see commSetControl.
struct commControl {
    uint32_t BaudRate = 9600;
    uint32_t Flags = 0;    // commFlag bits; others belong to the driver and are handed back unchanged
    uint8_t DataBits = 8;  // 5 to 8
    uint8_t Parity = 0;    // 0 none, 1 odd, 2 even, 3 mark, 4 space
    uint8_t StopBits = 0;  // 0 one, 1 one and a half, 2 two
};

// Opens a port for reading and writing, for this caller alone where the system can say so. commNone when
// there is no such port, it is in use, or the name has a separator of paths in it. What came before is
// dropped: the far end of a virtual port goes on sending while nobody has it open.
commHandle commOpen(std::string_view name);

// Drops what was received and not read, ends a write that waits, and ends the handle. What the driver has
// taken may still be sent, for which some systems let the caller wait; what a dead line holds up is dropped.
void commClose(commHandle handle);

// The settings with which the driver would like to start.
bool commDefault(commHandle handle, commControl& control);

bool commGetControl(commHandle handle, commControl& control);

// Applies the settings. False when the system refuses them or cannot set the baud rate; settings that a
// driver ignores in silence (parity on a virtual port) are no failure.
bool commSetControl(commHandle handle, const commControl& control);

// The most bytes that the driver would queue each way; 0 where it sets no limit.
struct commQueue {
    uint32_t Receive = 0;
    uint32_t Transmit = 0;
};
bool commQueueLimits(commHandle handle, commQueue& limits);

// Asks the driver for queues of these sizes.
void commSetQueues(commHandle handle, const commQueue& sizes);

// Chooses the events of the line that the driver notes, as the system numbers them. Systems without such
// notes ignore it.
void commSetEvents(commHandle handle, uint32_t mask);

// How many bytes are received and not read, and how many are written and not sent. False when the port has
// failed or gone.
struct commLevel {
    uint32_t Received = 0;
    uint32_t Unsent = 0;
};
bool commPending(commHandle handle, commLevel& level);

// Reads `count` bytes, of which no more may be asked for than commPending told; `done` is how many came.
bool commRead(commHandle handle, void* buffer, uint32_t count, uint32_t& done);

// Hands bytes to the driver and waits until it has taken them; `done` is how many it took. On a dead line
// that waits until commClose.
bool commWrite(commHandle handle, const void* data, uint32_t count, uint32_t& done);

// The state of the modem lines, 0 where the port has none; false, with `status` unchanged, when they cannot
// be read.
constexpr uint32_t commCTS = 0x10;
bool commModemStatus(commHandle handle, uint32_t& status);

// Ports are found in classes of devices; a port may be in more than one.
constexpr unsigned commClasses = 3;

// Something that the system keeps of a device.
struct commText {
    bool Found = false;
    bool IsText = false;  // what is found may be a number or a binary value
    std::string Text;     // UTF-8
};

struct commDevice {
    commText Port;          // the short name
    commText Description;   // as the bus reports it
    commText FriendlyName;  // as the system shows it
};

// The devices of a class, 0 to commClasses - 1, that are there at this moment, in no particular order: serial
// ports, but also other devices with ports. Empty when there are none or they cannot be listed. May take some
// tens of milliseconds.
std::vector<commDevice> commDevices(unsigned deviceClass);

// What the short name of every serial port begins with, and that of no other device: "COM", "tty".
std::string_view commNamePrefix();
