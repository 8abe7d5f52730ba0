// One TCP connection with a thread of its own: a client that connects and, if told so, connects again for
// ever; or the server's end of a connection that was accepted.
//
// It moves bytes and raises events on its own thread. Send may come from any thread and never waits for the
// peer: what the system does not take at once is queued. The other operations may come from any thread too,
// but two threads do not start or end one connection at the same time.
#pragma once

#include "foundations/thread/thrEvent.h"
#include "foundations/thread/thrSpin.h"
#include "link/netTCPBase.h"

#include <cstddef>

// Bytes that wait to be sent.
struct netSendNode;

class netTCPCli : public netTCPBase
{
public:
    // Codes of OnEvent.
    static constexpr uint32_t EventConnected = 0;
    static constexpr uint32_t EventFailed = 1;  // could not connect; EventDisconnected follows
    static constexpr uint32_t EventDisconnected = 2;
    static constexpr uint32_t EventData = 3;  // there are bytes for Receive

    // More than this queued for a peer that does not read ends its connection.
    static constexpr uint32_t QueueLimitDefault = 64 * 1024 * 1024;

    explicit netTCPCli(uint32_t flags = 0);

    // Ends the connection as Disconnect(true) does. Not on its own thread.
    ~netTCPCli();

    // "host", "host:port" or "host:service". A host alone keeps the port set earlier; an empty text is no
    // address. False, with the address kept, when the name has none. May take as long as the system's name
    // service.
    bool SetAddress(const std::string& text);
    void SetAddress(const socketAddress& address);
    socketAddress GetAddress() const;

    // Takes over a socket that a server has accepted. Before Connect.
    void Adopt(socketHandle socket, const socketAddress& peer);

    // Starts to connect, or ends what is under way and starts anew. Returns once the thread has started.
    void Connect();

    // A peer that was told of the end has so long to end its side as well. One that hangs would otherwise
    // keep its connection, and with it the next attempt, for ever.
    static constexpr uint32_t FarewellMs = 2000;

    // Ends the connection. `final`: for good, and when it returns the thread has ended (unless it is the
    // caller's). Otherwise the peer is told, what was sent still arrives, within FarewellMs the connection is
    // over, and with RetryMs set a new attempt follows.
    void Disconnect(bool final);

    // Ends the connection without a word to the peer, as if it were broken. Any thread.
    void Abandon() { Set(Finished); }

    // Lets the system ask a silent peer after so many seconds (0: 7200), then each second.
    void SetKeepAlive(bool on, uint32_t seconds);

    // Takes up to `size` bytes; how many. On the thread of the connection, in EventData.
    size_t Receive(uint8_t* buffer, size_t size);

    // Sends bytes, or queues what does not go at once. `noCopy`: the bytes outlive the sending. Without a
    // connection they are lost without a word.
    void Send(const uint8_t* data, size_t size, bool noCopy = false);

    // Sends two pieces of which nobody else's can come between.
    void SendTwo(const uint8_t* dataA, size_t sizeA, const uint8_t* dataB, size_t sizeB, bool noCopyA = false,
                 bool noCopyB = false);

    // True keeps it from connecting this time. On the thread of the connection. May be empty.
    std::function<bool()> OnConnecting;

    // On the thread of the connection. May be empty: received bytes are then counted and dropped. Set it
    // before Connect.
    std::function<void(const uint32_t& event)> OnEvent;

    std::atomic<uint64_t> RxBytes{0};      // since the connection began
    std::atomic<uint64_t> TxBytes{0};      // since the connection began
    std::atomic<uint32_t> QueuedBytes{0};  // waiting to be sent
    std::atomic<uint32_t> RetryMs{0};      // between attempts; 0 is a single one
    std::atomic<uint32_t> QueueLimit{QueueLimitDefault};
    std::atomic<uint32_t> SendBufSize{0};  // the system's, once connected; 0 when it cannot be told

private:
    void Run();
    void Attempt();
    bool Reach();
    void Serve();
    bool Turn(socketHandle socket);
    bool TakeData();
    bool SendQueued(socketHandle socket);
    bool IsSound(socketHandle socket);
    void SayFarewell(socketHandle socket);
    bool IsForsaken(socketHandle socket) const;
    void EndConnection();
    void Interrupt();
    void WaitWhileConnecting();
    void Raise(uint32_t event);

    void SendPiece(const uint8_t* data, size_t size, bool noCopy);
    void SendLocked(const uint8_t* data, uint32_t size, bool noCopy);
    bool SendNow(const uint8_t* data, uint32_t size, uint32_t& sent);
    void Queue(const uint8_t* data, uint32_t size, bool noCopy);
    netSendNode* Unlink();
    void DropQueue();

    thrEvent WaitEvent;  // between two attempts
    std::atomic<netSendNode*> SendQueue{nullptr};
    netSendNode* SendTail = nullptr;
    thrSpin SendLock;                                  // guards the queue's links and the order of sends
    std::atomic<int64_t> ToldAtNs{0};                  // when the peer of ToldSocket was told of the end
    std::atomic<socketHandle> ToldSocket{socketNone};  // written after ToldAtNs
    mutable thrSpin AddressLock;
    socketAddress Address;
};
