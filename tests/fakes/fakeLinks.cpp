// What a test does to the network.
#include "tests/fakes/fakeLinks.h"

#include "tests/fakes/core.h"
#include "tests/fakes/network.h"

namespace {

using fakes::network;

std::shared_ptr<fakes::end> peerEnd(unsigned peer)
{
    const auto found = network().Peers.find(peer);
    if (found == network().Peers.end())
        fakes::misuse("there is no such peer");
    return found->second;
}

}  // namespace

void fakePeer(uint16_t port)
{
    const std::lock_guard lock(fakes::stateMutex());
    network().Answering.insert(port);
}

unsigned fakePeerConnect(uint16_t port)
{
    const std::lock_guard lock(fakes::stateMutex());
    const std::shared_ptr<fakes::socketState> listener = fakes::networkListener(port);
    if (!listener)
        return 0;
    const fakes::networkPair pair = fakes::networkConnect(fakes::networkFreePort(), port);
    listener->Waiting.push_back(pair.Second);
    network().Changed.notify_all();
    return fakes::networkPeer(pair.First);
}

unsigned fakePeerOf(uint16_t port)
{
    const std::lock_guard lock(fakes::stateMutex());
    const auto found = network().LastPeer.find(port);
    return found == network().LastPeer.end() ? 0 : found->second;
}

void fakePeerSend(unsigned peer, const std::string& bytes)
{
    const std::lock_guard lock(fakes::stateMutex());
    const std::shared_ptr<fakes::end> other = peerEnd(peer)->Other.lock();
    if (!other || other->Closed || other->Failure != fakes::CodeNone)
        return;
    other->Unread += bytes;
    network().Changed.notify_all();
}

std::string fakePeerReceived(unsigned peer)
{
    const std::lock_guard lock(fakes::stateMutex());
    return peerEnd(peer)->Received;
}

bool fakePeerEnded(unsigned peer)
{
    const std::lock_guard lock(fakes::stateMutex());
    const std::shared_ptr<fakes::end> other = peerEnd(peer)->Other.lock();
    return !other || other->Ended;
}

void fakePeerClose(unsigned peer)
{
    const std::lock_guard lock(fakes::stateMutex());
    fakes::networkClose(*peerEnd(peer));
}

void fakePeerReset(unsigned peer, uint32_t code)
{
    const std::lock_guard lock(fakes::stateMutex());
    const std::shared_ptr<fakes::end> here = peerEnd(peer);
    here->Closed = true;
    here->Ended = true;
    if (const std::shared_ptr<fakes::end> other = here->Other.lock())
        fakes::networkFail(*other, code);
}

void fakePeerPending(unsigned peer, uint32_t code)
{
    const std::lock_guard lock(fakes::stateMutex());
    if (const std::shared_ptr<fakes::end> other = peerEnd(peer)->Other.lock())
        other->Pending = code;
}

void fakeSocketFail(const std::string& function, uint32_t code, unsigned skip, unsigned times)
{
    if (times == 0)
        return;
    const std::lock_guard lock(fakes::stateMutex());
    network().Failures[function].push_back({code, skip, times});
}

void fakeSendRoom(uint64_t bytes)
{
    const std::lock_guard lock(fakes::stateMutex());
    network().RoomIsLimited = true;
    network().Room = bytes;
    network().Changed.notify_all();
}

void fakeBlockConnects(bool blocked)
{
    const std::lock_guard lock(fakes::stateMutex());
    network().ConnectsBlocked = blocked;
    network().Changed.notify_all();
}

void fakeHost(const std::string& host, const socketAddress& address)
{
    const std::lock_guard lock(fakes::stateMutex());
    network().Hosts[host] = address;
}

unsigned fakeSocketHandles()
{
    const std::lock_guard lock(fakes::stateMutex());
    return static_cast<unsigned>(network().Sockets.size());
}

unsigned fakeSocketStarts()
{
    const std::lock_guard lock(fakes::stateMutex());
    return network().Starts;
}

uint32_t fakeCode(socketFault fault)
{
    switch (fault) {
    case socketFault::None:
        return fakes::CodeNone;
    case socketFault::WouldBlock:
        return fakes::CodeWouldBlock;
    case socketFault::Shutdown:
        return fakes::CodeShutdown;
    case socketFault::Lost:
        return fakes::CodeReset;
    default:
        return fakes::CodeRefused;
    }
}
