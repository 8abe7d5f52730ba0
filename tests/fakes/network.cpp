#include "tests/fakes/network.h"

#include "tests/fakes/core.h"

#include <algorithm>

namespace {

constexpr uint16_t FirstFreePort = 49152;

}  // namespace

namespace fakes {

networkState& network()
{
    static networkState& only = *new networkState;
    return only;
}

std::shared_ptr<socketState> networkSocket(socketHandle handle)
{
    const auto found = network().Sockets.find(handle);
    return found == network().Sockets.end() ? nullptr : found->second;
}

socketHandle networkAdd(const std::shared_ptr<socketState>& socket)
{
    socket->Number = ++network().LastNumber;
    network().Sockets[++network().LastHandle] = socket;
    return network().LastHandle;
}

uint16_t networkFreePort()
{
    uint16_t& last = network().LastPort;
    last = last < FirstFreePort ? FirstFreePort : static_cast<uint16_t>(last + 1);
    return last;
}

std::shared_ptr<socketState> networkListener(uint16_t port)
{
    for (const auto& [handle, socket] : network().Sockets) {
        if (socket->Listens && socket->Port == port)
            return socket;
    }
    return nullptr;
}

networkPair networkConnect(uint16_t portOfFirst, uint16_t portOfSecond)
{
    networkPair pair{std::make_shared<end>(), std::make_shared<end>()};
    pair.First->Other = pair.Second;
    pair.First->From = networkLoopback(portOfSecond);
    pair.Second->Other = pair.First;
    pair.Second->From = networkLoopback(portOfFirst);
    return pair;
}

unsigned networkPeer(const std::shared_ptr<end>& end)
{
    end->IsPeer = true;
    network().Peers[++network().LastPeerNumber] = end;
    return network().LastPeerNumber;
}

void networkClose(end& here)
{
    here.Closed = true;
    here.Ended = true;
    // What lies here unread is lost, and the sender is told so.
    const std::shared_ptr<end> other = here.Other.lock();
    if (other && !here.Unread.empty())
        networkFail(*other, CodeReset);
    here.Unread.clear();
    network().Changed.notify_all();
}

void networkFail(end& here, uint32_t code)
{
    here.Failure = code;
    here.Pending = code;
    here.Unread.clear();
    network().Changed.notify_all();
}

bool networkHasRoom(const end& here)
{
    const std::shared_ptr<end> other = here.Other.lock();
    if (here.Failure != CodeNone || here.Ended || !other || other->Closed)
        return true;
    if (network().RoomIsLimited && network().Room == 0)
        return false;
    return other->IsPeer || other->Unread.size() < EndRoom;
}

socketAddress networkLoopback(uint16_t port)
{
    return {socketFamily::IPv4, port, {127, 0, 0, 1}, 0};
}

std::string networkText(const socketAddress& address)
{
    if (address.Family != socketFamily::IPv4)
        return "other";
    std::string text;
    for (size_t part = 0; part < 4; ++part)
        text += (part == 0 ? "" : ".") + std::to_string(address.Host[part]);
    return text + ':' + std::to_string(address.Port);
}

void resetSocket()
{
    networkState& all = network();
    for (const auto& [handle, socket] : all.Sockets)
        socket->Closed = true;
    all.Sockets.clear();
    all.LastNumber = 0;
    all.LastPort = 0;
    all.Starts = 0;
    ++all.Resets;
    all.ConnectsBlocked = false;
    all.RoomIsLimited = false;
    all.Answering.clear();
    all.Peers.clear();
    all.LastPeer.clear();
    all.LastPeerNumber = 0;
    all.Failures.clear();
    all.Hosts.clear();
    all.Changed.notify_all();
}

}  // namespace fakes
