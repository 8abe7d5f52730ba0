#include "link/gnssCommClient.h"

namespace {

constexpr uint32_t KeepAliveSeconds = 15;

}  // namespace

gnssCommClient::gnssCommClient() : Stream(nullptr, pktIdentityClient)
{
    Stream.OnMessage = [this](const msgHead& message) { Stream_OnMessage(message); };
    Stream.OnEvent = [this](const uint32_t& event) {
        if (OnEvent)
            OnEvent(event);
    };
    Stream.Stream(&Link);
}

gnssCommClient::~gnssCommClient()
{
    Disconnect(true);
    Stream.Stream(nullptr);
}

bool gnssCommClient::Connect(const std::string& address)
{
    socketAddress known = Link.GetAddress();
    known.Port = pktPort;
    Link.SetAddress(known);
    const bool found = Link.SetAddress(address);
    Link.RetryMs = RetryMs;
    Link.Connect();
    return found;
}

void gnssCommClient::Disconnect(bool final)
{
    Link.RetryMs = 0;
    Link.Disconnect(final);
}

void gnssCommClient::Send(const uint8_t* bytes, size_t count)
{
    Stream.SendStream(bytes, count);
}

void gnssCommClient::Stream_OnMessage(const msgHead& message)
{
    if (const auto bytes = pktStreamOf(message)) {
        if (OnStream)
            OnStream(bytes->data(), bytes->size());
    } else if (pktIsServer(message)) {
        Link.SetKeepAlive(true, KeepAliveSeconds);
    } else if (message.key == pktKey::Handshake && OnWrongServer) {
        OnWrongServer();
    }
}
