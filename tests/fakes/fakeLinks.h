// The serial ports and the network of the fake platform. The rules of fakes.h hold here too; fakeReset
// forgets all ports, peers and scripts of this header.
//
// Recorded calls name the port or the socket: "commOpen COM5", "commSetControl COM5 9600 8 0 0 0x1010" (baud
// rate, data bits, parity, stop bits, flags), "commWrite COM5 12", "socketSend #1 12", where sockets are
// numbered from 1 in the order in which they were made; one that is not open is "closed". commPending,
// commModemStatus, commNamePrefix, socketPoll, socketPending, socketError and socketFaultOf are not recorded.
//
// fakeFail works on all functions; what it fails on the network has the code of socketFault::Other.
#pragma once

#include "platform/comm.h"
#include "platform/socket.h"

#include <cstdint>
#include <string>
#include <vector>

// --- Serial ports

// Plugs in a port, or unplugs it: open handles on it then fail.
void fakePort(const std::string& name);
void fakePortGone(const std::string& name);

// How many handles are open at this moment.
unsigned fakePortHandles();

// What arrives on the line.
void fakePortReceive(const std::string& name, const std::string& bytes);

// Everything that was written to the port since the reset.
std::string fakePortSent(const std::string& name);

// The settings as they stand on the driver. `fakePortControl` before commOpen is what the driver starts with.
commControl fakePortSettings(const std::string& name);
void fakePortControl(const std::string& name, const commControl& control);

// Limits that commQueueLimits tells.
void fakePortQueues(const std::string& name, const commQueue& limits);

// The modem lines, commCTS for one.
void fakePortModem(const std::string& name, uint32_t status);

// While blocked, commWrite waits until the port is unblocked or the handle is closed.
void fakePortBlockWrites(const std::string& name, bool blocked);

// What commPending tells as unsent.
void fakePortUnsent(const std::string& name, uint32_t bytes);

// What commDevices gives for a class.
void fakeDevices(unsigned deviceClass, const std::vector<commDevice>& devices);
void fakeNamePrefix(const std::string& prefix);  // "COM" after a reset

// --- Network. What two sockets of the fake say to each other arrives by itself; a test may also be a peer.

// Whether anybody answers at 127.0.0.1 and the like: a connect to a port on which no fake socket listens
// succeeds when a peer was put there.
void fakePeer(uint16_t port);

// Connects to a listening fake socket from outside. The number of the peer's end, for the functions below; 0
// when nobody listens.
unsigned fakePeerConnect(uint16_t port);

// The end of the peer for the connection that was last made to fakePeer(port); 0 when there is none.
unsigned fakePeerOf(uint16_t port);

void fakePeerSend(unsigned peer, const std::string& bytes);
std::string fakePeerReceived(unsigned peer);       // everything since the connection began
bool fakePeerEnded(unsigned peer);                 // our side has ended or closed
void fakePeerClose(unsigned peer);                 // orderly
void fakePeerReset(unsigned peer, uint32_t code);  // as after a pulled cable: calls then fail with this code

// Leaves an error on our socket of which socketPending alone tells.
void fakePeerPending(unsigned peer, uint32_t code);

// Makes the next calls of a function ("socketSend", "socketAccept", ...) fail with a code, after `skip` that
// work.
void fakeSocketFail(const std::string& function, uint32_t code, unsigned skip = 0, unsigned times = 1);

// How many bytes all following socketSend take in total before they would block; without a limit after a
// reset. Raising it makes the sockets writable again.
void fakeSendRoom(uint64_t bytes);

// While blocked, socketConnect waits until it is unblocked (then it succeeds or fails as it would) or the
// socket is closed.
void fakeBlockConnects(bool blocked);

// What socketResolve answers for a host name beside numbers with points.
void fakeHost(const std::string& host, const socketAddress& address);

unsigned fakeSocketHandles();  // open at this moment
unsigned fakeSocketStarts();   // socketStart less socketEnd

// Codes of the fake for each socketFault, such as fakeCode(socketFault::WouldBlock).
uint32_t fakeCode(socketFault fault);
