// The network of the fake platform: sockets, the connections between them and the peers that a test plays.
// Used under the fake's mutex.
#pragma once

#include "tests/fakes/fakeLinks.h"

#include <condition_variable>
#include <deque>
#include <map>
#include <memory>
#include <set>
#include <string>

namespace fakes {

// Codes of the fake. They are those of one system, so that a text for them can be scripted.
constexpr uint32_t CodeNone = 0;
constexpr uint32_t CodeWouldBlock = 10035;
constexpr uint32_t CodeNoSocket = 10038;
constexpr uint32_t CodeOtherFamily = 10047;
constexpr uint32_t CodeInUse = 10048;
constexpr uint32_t CodeReset = 10054;
constexpr uint32_t CodeIsConnected = 10056;
constexpr uint32_t CodeNotConnected = 10057;
constexpr uint32_t CodeShutdown = 10058;
constexpr uint32_t CodeRefused = 10061;
constexpr uint32_t CodeInvalid = 10022;
constexpr uint32_t CodeNotStarted = 10093;
constexpr uint32_t CodeNoHost = 11001;

// How many bytes wait for a reader that is a socket before the sender would block.
constexpr size_t EndRoom = 256u << 10;

// One end of a connection.
struct end {
    std::weak_ptr<end> Other;
    std::string Unread;    // arrived here
    std::string Received;  // of a peer: all that ever arrived
    bool IsPeer = false;
    bool Ended = false;   // nothing more will be sent from here
    bool Closed = false;  // nobody listens here any more
    uint32_t Failure = CodeNone;
    uint32_t Pending = CodeNone;
    socketAddress From;  // the address of the other end
};

struct socketState {
    unsigned Number = 0;
    bool Closed = false;
    bool Blocks = true;
    bool Listens = false;
    uint16_t Port = 0;  // 0 for none
    std::shared_ptr<end> End;
    std::deque<std::shared_ptr<end>> Waiting;  // connections that were not accepted
};

struct failureRow {
    uint32_t Code;
    unsigned Skip;
    unsigned Times;
};

struct networkState {
    std::map<socketHandle, std::shared_ptr<socketState>> Sockets;
    socketHandle LastHandle = 0;
    unsigned LastNumber = 0;
    uint16_t LastPort = 0;
    unsigned Starts = 0;
    unsigned Resets = 0;
    bool ConnectsBlocked = false;
    bool RoomIsLimited = false;
    uint64_t Room = 0;
    std::set<uint16_t> Answering;
    std::map<unsigned, std::shared_ptr<end>> Peers;
    std::map<uint16_t, unsigned> LastPeer;
    unsigned LastPeerNumber = 0;
    std::map<std::string, std::deque<failureRow>> Failures;
    std::map<std::string, socketAddress> Hosts;
    std::condition_variable Changed;
};

networkState& network();

// Null for a handle that is not open.
std::shared_ptr<socketState> networkSocket(socketHandle handle);

// Gives a socket a handle and a number.
socketHandle networkAdd(const std::shared_ptr<socketState>& socket);

// A port that nobody has.
uint16_t networkFreePort();

// The socket that listens on a port; null when there is none.
std::shared_ptr<socketState> networkListener(uint16_t port);

// Both ends of a new connection.
struct networkPair {
    std::shared_ptr<end> First;
    std::shared_ptr<end> Second;
};
networkPair networkConnect(uint16_t portOfFirst, uint16_t portOfSecond);

// Makes an end a test's own; its number.
unsigned networkPeer(const std::shared_ptr<end>& end);

// What happens to the far end when this one closes, or fails.
void networkClose(end& here);
void networkFail(end& here, uint32_t code);

// Whether the far end is open and has room, or writing would tell that it is not.
bool networkHasRoom(const end& here);

socketAddress networkLoopback(uint16_t port);
std::string networkText(const socketAddress& address);

}  // namespace fakes
