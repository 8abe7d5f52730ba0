// What a TCP connection and a TCP server share: a socket, a thread, and the state of both.
#pragma once

#include "link/linkThread.h"
#include "platform/socket.h"

#include <atomic>
#include <cstdint>
#include <functional>
#include <string>

class netTCPBase
{
public:
    // Bits of Flags.
    static constexpr uint32_t Started = 1;          // this object holds the system's network
    static constexpr uint32_t Connecting = 2;       // or, in the server, starting
    static constexpr uint32_t Connected = 4;        // or listening
    static constexpr uint32_t DataWaiting = 8;      // data are waiting to be read
    static constexpr uint32_t Finished = 16;        // the connection is over, the loop is to end
    static constexpr uint32_t Accepted = 32;        // made by a server: the socket is connected already
    static constexpr uint32_t Rejected = 64;        // to be closed as soon as it is up
    static constexpr uint32_t ThreadBegun = 128;    // the thread has started
    static constexpr uint32_t ThreadEnded = 256;    // the thread has ended
    static constexpr uint32_t Disconnecting = 512;  // a disconnect is in progress

    netTCPBase(const netTCPBase&) = delete;
    netTCPBase& operator=(const netTCPBase&) = delete;

    // Has any of these bits.
    bool Is(uint32_t flags) const { return (Flags.load() & flags) != 0; }

    // The thread has begun and not ended.
    bool IsAlive() const { return Is(ThreadBegun) && !Is(ThreadEnded); }

    // Errors in words, on the thread on which they happen. Set it while no thread runs. May be empty.
    std::function<void(const std::string& text)> OnError;

protected:
    // Without a network the object goes on, and its calls fail.
    netTCPBase();
    ~netTCPBase();

    void Set(uint32_t flags) { Flags |= flags; }
    void Clear(uint32_t flags) { Flags &= ~flags; }

    // Whoever takes the socket closes it, so that exactly one does.
    void CloseSocket();

    // Starts the thread and waits until it says that it has begun.
    void Begin(const char* name, std::function<void()> body);

    // Waits until the thread has ended. It may just be about to make a socket, so what it has is closed again
    // and again, and `wake` is called, until then. Not on the thread itself.
    void EndThread(const std::function<void()>& wake);

    // Tells the last error of the calling thread, behind `prefix`.
    void TellError(const char* prefix) const;

    std::atomic<socketHandle> Socket{socketNone};
    linkThread Thread;
    std::atomic<uint32_t> Flags{0};
};
