#include "tools/simulator/main/simServerWay.h"

#include <algorithm>

namespace {

constexpr uint8_t Loopback[] = {127, 0, 0, 1};
constexpr size_t MostWaiting = size_t{64} << 20;
constexpr uint32_t Backlog = 16;

bool WouldBlock()
{
    return socketFaultOf(socketError()) == socketFault::WouldBlock;
}

}  // namespace

simServerWay::~simServerWay()
{
    for (const client& each : Clients)
        socketClose(each.Socket);
    socketClose(Listener);
    if (Started)
        socketEnd();
}

std::string simServerWay::Open(uint16_t port)
{
    Started = socketStart();
    Listener = Started ? socketOpen() : socketNone;
    socketAddress address;
    address.Port = port;
    std::ranges::copy(Loopback, address.Host);
    if (Listener == socketNone)
        return "there is no network";
    if (!socketBind(Listener, address))
        return "TCP port " + std::to_string(port) + " is in use or not allowed";
    if (!socketListen(Listener, Backlog) || !socketSetNonBlocking(Listener) ||
        !socketLocal(Listener, address))
        return "the system does not let this program serve";
    Number = address.Port;
    return {};
}

simBytes simServerWay::Receive()
{
    LetIn();
    simBytes toReceiver;
    for (client& each : Clients)
        Hear(each, toReceiver);
    DropOver();
    return toReceiver;
}

void simServerWay::Send(std::span<const uint8_t> bytes)
{
    const simBytes message = bytes.empty() ? simBytes() : simPeer::Stream(bytes);
    for (client& each : Clients) {
        Queue(each, message);
        Flush(each);
    }
    DropOver();
}

void simServerWay::LetIn()
{
    socketAddress peer;
    for (;;) {
        const socketHandle socket = socketAccept(Listener, peer);
        if (socket == socketNone)
            return;
        client& fresh = Clients.emplace_back();
        fresh.Socket = socket;
        fresh.Over = !socketSetNonBlocking(socket);
        Queue(fresh, simPeer::Greeting());
    }
}

void simServerWay::Hear(client& from, simBytes& toReceiver)
{
    uint8_t bytes[16384];
    while (!from.Over) {
        const int64_t count = socketReceive(from.Socket, bytes, sizeof bytes);
        if (count < 0 && WouldBlock())
            return;
        simBytes reply;
        const auto length = static_cast<size_t>(std::max<int64_t>(count, 0));
        from.Over = count <= 0 || !from.Peer.Take(std::span(bytes, length), toReceiver, reply);
        Queue(from, reply);
    }
}

void simServerWay::Queue(client& to, std::span<const uint8_t> bytes)
{
    to.Waiting.insert(to.Waiting.end(), bytes.begin(), bytes.end());
    to.Over = to.Over || to.Waiting.size() > MostWaiting;
}

void simServerWay::Flush(client& to)
{
    while (!to.Over && !to.Waiting.empty()) {
        uint8_t bytes[16384];
        const size_t count = std::min(to.Waiting.size(), sizeof bytes);
        std::copy_n(to.Waiting.begin(), count, bytes);
        const int64_t sent = socketSend(to.Socket, bytes, count);
        if (sent <= 0) {
            to.Over = !WouldBlock();
            return;
        }
        to.Waiting.erase(to.Waiting.begin(), to.Waiting.begin() + sent);
    }
}

void simServerWay::DropOver()
{
    for (const client& each : Clients) {
        if (each.Over)
            socketClose(each.Socket);
    }
    std::erase_if(Clients, [](const client& each) { return each.Over; });
}
