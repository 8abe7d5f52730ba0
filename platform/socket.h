// TCP sockets.
//
// All functions may be called from any thread. A handle that was closed is harmless: every call on it fails,
// also when another socket was opened since. socketConnect blocks as long as the system's own limit,
// socketPoll as long as it is told, socketResolve as long as the system's name service; nothing else blocks
// on a socket that was made non-blocking. socketClose ends what is under way on other threads within 100 ms,
// a connect and a poll too.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

using socketHandle = intptr_t;

constexpr socketHandle socketNone = -1;

enum class socketFamily : uint8_t {
    IPv4,
    IPv6,
    Other,
};

struct socketAddress {
    socketFamily Family = socketFamily::IPv4;
    uint16_t Port = 0;      // as people write it
    uint8_t Host[16] = {};  // in the order of the network; of IPv4 the first four
    uint32_t Scope = 0;     // IPv6 alone
};

// Prepares the network for this process; each success is matched by one socketEnd. False when there is none.
bool socketStart();
void socketEnd();

// A new TCP socket over IPv4, blocking; socketNone when the system has none left.
socketHandle socketOpen();

// Ends the connection at once; the peer gets what was handed to the system before.
void socketClose(socketHandle handle);

// Waits for the outcome, also on a socket that was made non-blocking.
bool socketConnect(socketHandle handle, const socketAddress& address);

// Takes an address of this machine, also one whose last owner has just ended, but none that is in use.
bool socketBind(socketHandle handle, const socketAddress& address);
bool socketListen(socketHandle handle, uint32_t backlog);

// The next connection, a blocking socket, or socketNone when there is none or it failed: see socketError.
socketHandle socketAccept(socketHandle handle, socketAddress& peer);

// The address that the socket has on this machine.
bool socketLocal(socketHandle handle, socketAddress& address);

bool socketSetNonBlocking(socketHandle handle);

// Sends or receives up to `count` bytes; how many, or -1. Receiving 0 means that the peer has ended. Never
// raises a signal.
int64_t socketSend(socketHandle handle, const void* data, size_t count);
int64_t socketReceive(socketHandle handle, void* buffer, size_t count);

// How many bytes can be received at once.
bool socketAvailable(socketHandle handle, uint32_t& count);

// Tells the peer that nothing more will be sent; receiving goes on.
bool socketShutdownSend(socketHandle handle);

// The size of the system's buffer for what is sent.
bool socketSendBuffer(socketHandle handle, uint32_t& size);

// Takes the error that is pending on the socket; 0 is none.
bool socketPending(socketHandle handle, uint32_t& code);

// Lets the system ask a silent peer, after `idleMs` and then every `intervalMs`, whether it is still there.
bool socketKeepAlive(socketHandle handle, bool on, uint32_t idleMs, uint32_t intervalMs);

struct socketEvents {
    bool Readable = false;  // there are bytes to read, or a connection to accept
    bool Writable = false;  // asked for only with `wantWritable`
    bool HungUp = false;    // the connection is over, and nothing is left to read
};

// Waits for an event: 1 with `events`, 0 when there was none in `milliseconds`, -1 on failure.
int socketPoll(socketHandle handle, bool wantWritable, uint32_t milliseconds, socketEvents& events);

// The code of the calling thread's last failure in this header, for utfErrorText. 0 when there was none.
uint32_t socketError();

// What a code means.
enum class socketFault : uint8_t {
    None,
    WouldBlock,  // not now
    Shutdown,    // the sending half was ended
    Lost,        // no socket, network down or reset, connection aborted, reset or timed out, host gone
    Other,
};
socketFault socketFaultOf(uint32_t code);

// Finds the address of a host (a name, or numbers with points) and, if it is not empty, of a service (a name
// or a port number); without a service the port is 0. Only addresses of `family` for TCP; the first that the
// system tells. False when there is none.
bool socketResolve(const std::string& host, const std::string& service, socketFamily family,
                   socketAddress& address);
