#include "link/pktComm.h"

#include "foundations/fatal/crashFatal.h"

#include <algorithm>
#include <cstring>

namespace {

constexpr uint32_t KeepAliveSeconds = 15;

struct streamHead {
    msgHead Head;
    uint32_t Subkey;
};
static_assert(sizeof(streamHead) == 12);

}  // namespace

std::optional<std::span<const uint8_t>> pktStreamOf(const msgHead& message)
{
    const std::span<const uint8_t> body = message.Body();
    uint32_t subkey = 0;
    if (message.key != pktKey::GNSS || body.size() < sizeof subkey)
        return std::nullopt;
    std::memcpy(&subkey, body.data(), sizeof subkey);
    if (subkey != pktKey::Stream)
        return std::nullopt;
    return body.subspan(sizeof subkey);
}

bool pktIsServer(const msgHead& message)
{
    const std::span<const uint8_t> body = message.Body();
    return message.key == pktKey::Handshake && body.size() >= pktIdentityServer.size() &&
           std::equal(pktIdentityServer.begin(), pktIdentityServer.end(), body.begin());
}

pktComm::pktComm(netTCPCli* client, std::string_view identity) : Identity(identity)
{
    Stream(client);
}

void pktComm::Stream(netTCPCli* client)
{
    const thrSpinHold hold(Lock);
    Client = client;
    if (client != nullptr)
        client->OnEvent = [this](const uint32_t& event) { Client_OnEvent(event); };
}

void pktComm::Send(const msgHead* message)
{
    Send(message, nullptr, 0);
}

void pktComm::Send(const msgHead* message, const uint8_t* data, size_t size)
{
    if (size > message->length) {
        crashFatal("A message is shorter than its tail!");
        return;
    }
    const auto* const head = reinterpret_cast<const uint8_t*>(message);
    const size_t headSize = sizeof *message + message->length - size;
    const thrSpinHold hold(Lock);
    if (Client == nullptr)
        return;
    if (size == 0)
        Client->Send(head, headSize);
    else
        Client->SendTwo(head, headSize, data, size);
}

void pktComm::SendStream(const uint8_t* data, size_t size)
{
    const auto length = static_cast<uint32_t>(size + sizeof(uint32_t));
    const streamHead stream{{pktKey::GNSS, length}, pktKey::Stream};
    Send(&stream.Head, data, size);
}

void pktComm::Client_OnEvent(const uint32_t& event)
{
    if (event == netTCPCli::EventData)
        return TakeData();
    if (event == netTCPCli::EventConnected)
        Greet();
    // Taken out by value: the handler may delete this object, and with it the member that it was called by.
    const auto handler = OnEvent;
    if (handler)
        handler(event);
}

void pktComm::Greet()
{
    Client->SetKeepAlive(true, KeepAliveSeconds);
    Buffer.Clear();
    const msgHead head{pktKey::Handshake, static_cast<uint32_t>(Identity.size())};
    Send(&head, reinterpret_cast<const uint8_t*>(Identity.data()), Identity.size());
}

void pktComm::TakeData()
{
    const std::span<uint8_t> room = Buffer.Room();
    switch (Buffer.Took(Client->Receive(room.data(), room.size()))) {
    case pktBuffer::State::Partial:
        return;
    case pktBuffer::State::Whole:
        return Deliver();
    case pktBuffer::State::TooLong:
        return Client->Abandon();
    }
}

void pktComm::Deliver()
{
    const msgHead& message = Buffer.Message();
    if (message.key == pktKey::NoOperation)
        Send(&message);
    else if (OnMessage)
        OnMessage(message);
    Buffer.Clear();
}
