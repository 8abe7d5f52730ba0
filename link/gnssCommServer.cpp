#include "link/gnssCommServer.h"

#include <algorithm>

gnssCommServer::gnssCommServer()
{
    Server.OnAccepted = [this](netTCPCli& client) { Server_OnAcceptedClient(client); };
    Server.OnEvent = [this](const uint32_t& event) {
        if (event == netTCPSrv::EventFailed && OnFailed)
            OnFailed();
        if (event == netTCPSrv::EventAcceptFailed && Server.HasSocket() && OnBroken)
            OnBroken();
    };
}

gnssCommServer::~gnssCommServer()
{
    Ending = true;
    Stop(true);
}

void gnssCommServer::Start(uint16_t port)
{
    const bool listening = Server.Is(netTCPBase::Connected);
    Server.SetPort(port);
    if (!listening)
        Server.Listen();
}

void gnssCommServer::Stop(bool final)
{
    Server.Stop(final);
}

void gnssCommServer::Send(const std::vector<uint8_t>& block)
{
    const thrSpinHold hold(StreamsLock);
    for (const auto& stream : Streams)
        stream->SendStream(block.data(), block.size());
}

unsigned gnssCommServer::Clients() const
{
    const thrSpinHold hold(StreamsLock);
    return static_cast<unsigned>(Streams.size());
}

void gnssCommServer::Server_OnAcceptedClient(netTCPCli& client)
{
    auto made = std::make_unique<pktComm>(nullptr, pktIdentityServer);
    pktComm* const stream = made.get();
    stream->OnMessage = [this](const msgHead& message) { Client_OnMessage(message); };
    stream->OnEvent = [this, stream](const uint32_t& event) {
        if (event == netTCPCli::EventDisconnected)
            Client_OnEnd(stream);
    };
    client.QueueLimit = QueueLimit.load();
    unsigned count = 0;
    {
        const thrSpinHold hold(StreamsLock);
        Streams.push_back(std::move(made));
        count = static_cast<unsigned>(Streams.size());
    }
    if (OnClients)
        OnClients(count);
    stream->Stream(&client);
}

// What a client's decoder sends goes to the receiver unchanged; its greeting is not looked at.
void gnssCommServer::Client_OnMessage(const msgHead& message)
{
    if (const auto bytes = pktStreamOf(message); bytes && OnCommand)
        OnCommand(bytes->data(), bytes->size());
}

void gnssCommServer::Client_OnEnd(const pktComm* stream)
{
    if (Ending)
        return;
    unsigned count = 0;
    std::unique_ptr<pktComm> ended;
    {
        const thrSpinHold hold(StreamsLock);
        const auto found = std::find_if(Streams.begin(), Streams.end(),
                                        [stream](const auto& each) { return each.get() == stream; });
        if (found == Streams.end())
            return;
        ended = std::move(*found);
        Streams.erase(found);
        count = static_cast<unsigned>(Streams.size());
    }
    if (OnClients)
        OnClients(count);
}
