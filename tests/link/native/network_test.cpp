// The links over real sockets.
#include "link/gnssCommClient.h"
#include "link/gnssCommServer.h"
#include "tests/await.h"
#include "tests/link/native/machine.h"

#include <atomic>
#include <cstring>
#include <gtest/gtest.h>
#include <mutex>
#include <thread>

namespace {

// What is not waited for would take two seconds or more; a stop itself takes some ten milliseconds.
constexpr int64_t StopMs = 1000;

// Many threads that end at once need the processor one after the other, and a busy machine has little of it.
constexpr int64_t StopManyMs = 3000;

socketAddress loopback(uint16_t port)
{
    socketAddress address;
    address.Port = port;
    const uint8_t host[] = {127, 0, 0, 1};
    std::copy(std::begin(host), std::end(host), address.Host);
    return address;
}

std::string hostOf(uint16_t port)
{
    return "127.0.0.1:" + std::to_string(port);
}

template <class Server>
uint16_t awaitPort(Server& server)
{
    EXPECT_TRUE(await([&] { return server.ListeningPort() != 0; }));
    return server.ListeningPort();
}

class networkTest : public testing::Test
{
protected:
    networkTest() { socketStart(); }
    ~networkTest() override { socketEnd(); }
};

TEST_F(networkTest, SurvivesAThousandForcedReconnectionsWithoutGrowth)
{
    constexpr unsigned clients = 10;
    constexpr unsigned rounds = 100;
    // A first thread may bring one of the run-time library's along.
    std::thread([] {}).join();
    const size_t descriptors = openDescriptors();
    const size_t threads = livingThreads();
    {
        netTCPSrv server;
        std::atomic<unsigned> accepted{0};
        server.OnAccepted = [&](netTCPCli& client) {
            // Every other one is cut off rudely, the others are told.
            client.OnEvent = [&client, rude = ++accepted % 2 == 0](const uint32_t& event) {
                if (event != netTCPCli::EventConnected)
                    return;
                if (rude)
                    client.Abandon();
                else
                    client.Disconnect(false);
            };
        };
        server.Listen();
        const uint16_t port = awaitPort(server);
        std::atomic<unsigned> ended{0};
        std::vector<std::unique_ptr<netTCPCli>> all;
        for (unsigned i = 0; i < clients; i++) {
            netTCPCli& client = *all.emplace_back(std::make_unique<netTCPCli>());
            client.SetAddress(loopback(port));
            client.RetryMs = 1;
            client.OnEvent = [&ended, &client](const uint32_t& event) {
                uint8_t bytes[16];
                if (event == netTCPCli::EventData)
                    client.Receive(bytes, sizeof bytes);
                ended += event == netTCPCli::EventDisconnected ? 1U : 0U;
            };
            client.Connect();
        }
        for (unsigned some = 1; some <= 10; some++)
            ASSERT_TRUE(await([&] { return ended >= clients * rounds / 10 * some; })) << ended;
        EXPECT_LE(livingThreads(), threads + 3 * clients + 10);
        for (const auto& client : all)
            EXPECT_LE(msOf([&] { client->Disconnect(true); }), StopManyMs);
    }
    EXPECT_EQ(openDescriptors(), descriptors);
    EXPECT_EQ(livingThreads(), threads);
}

TEST_F(networkTest, StopsAConnectToAHostThatNeverAnswers)
{
    // A queue of connections that nobody takes: when it is full, whoever comes next hears nothing.
    const socketHandle full = socketOpen();
    ASSERT_TRUE(socketBind(full, loopback(0)));
    ASSERT_TRUE(socketListen(full, 0));
    socketAddress address;
    ASSERT_TRUE(socketLocal(full, address));
    std::vector<std::unique_ptr<netTCPCli>> waiting;
    for (int i = 0; i < 4; i++) {
        netTCPCli& client = *waiting.emplace_back(std::make_unique<netTCPCli>());
        client.SetAddress(loopback(address.Port));
        client.RetryMs = 2000;
        client.Connect();
    }
    std::this_thread::sleep_for(std::chrono::milliseconds(50));
    for (const auto& client : waiting) {
        EXPECT_LE(msOf([&] { client->Disconnect(true); }), StopMs);
        EXPECT_FALSE(client->IsAlive());
    }
    socketClose(full);
}

TEST_F(networkTest, StopsAServerWithManyClientsAtOnce)
{
    gnssCommServer server;
    server.Start(0);
    const uint16_t port = awaitPort(server);
    constexpr unsigned many = 60;
    std::vector<std::unique_ptr<gnssCommClient>> clients;
    for (unsigned i = 0; i < many; i++)
        clients.emplace_back(std::make_unique<gnssCommClient>())->Connect(hostOf(port));
    ASSERT_TRUE(await([&] { return server.Clients() == many; }));
    EXPECT_LE(msOf([&] { server.Stop(true); }), StopManyMs);
    EXPECT_EQ(server.Clients(), 0U);
    for (const auto& client : clients)
        EXPECT_LE(msOf([&] { client->Disconnect(true); }), StopMs);
}

TEST_F(networkTest, CarriesAMegabyteEachWayWhole)
{
    gnssCommServer server;
    std::mutex mutex;
    std::string commands;
    server.OnCommand = [&](const uint8_t* bytes, size_t count) {
        const std::lock_guard lock(mutex);
        commands.append(bytes, bytes + count);
    };
    server.Start(0);
    gnssCommClient client;
    std::string stream;
    client.OnStream = [&](const uint8_t* bytes, size_t count) {
        const std::lock_guard lock(mutex);
        stream.append(bytes, bytes + count);
    };
    client.Connect(hostOf(awaitPort(server)));
    ASSERT_TRUE(await([&] { return server.Clients() == 1 && client.Link.Is(netTCPBase::Connected); }));
    std::string all;
    for (size_t i = 0; all.size() < 1024 * 1024; i++) {
        const std::string piece(1 + i * 7919 % 5000, static_cast<char>('a' + i % 26));
        server.Send({piece.begin(), piece.end()});
        client.Send(reinterpret_cast<const uint8_t*>(piece.data()), piece.size());
        all += piece;
    }
    EXPECT_TRUE(await([&] {
        const std::lock_guard lock(mutex);
        return stream.size() >= all.size() && commands.size() >= all.size();
    }));
    const std::lock_guard lock(mutex);
    EXPECT_TRUE(stream == all);
    EXPECT_TRUE(commands == all);
}

// A peer that means no good, or is broken.
class badPeer
{
public:
    explicit badPeer(uint16_t port) : Socket(socketOpen())
    {
        EXPECT_TRUE(socketConnect(Socket, loopback(port)));
    }
    ~badPeer() { socketClose(Socket); }
    badPeer(const badPeer&) = delete;
    badPeer& operator=(const badPeer&) = delete;

    // False when the other end does not take it any more.
    bool Send(const std::string& bytes)
    {
        size_t sent = 0;
        while (sent < bytes.size()) {
            const int64_t count = socketSend(Socket, bytes.data() + sent, bytes.size() - sent);
            if (count <= 0)
                return false;
            sent += static_cast<size_t>(count);
        }
        return true;
    }

    // Waits until the other end has ended the connection; what it sent before is thrown away.
    bool IsEnded()
    {
        socketSetNonBlocking(Socket);
        return await([this] {
            uint8_t bytes[4096];
            const int64_t count = socketReceive(Socket, bytes, sizeof bytes);
            return count == 0 || (count < 0 && socketFaultOf(socketError()) != socketFault::WouldBlock);
        });
    }

private:
    socketHandle Socket;
};

std::string head(uint32_t key, uint32_t length)
{
    const msgHead made{key, length};
    return std::string(reinterpret_cast<const char*>(&made), sizeof made);
}

class badPeerTest : public networkTest
{
protected:
    badPeerTest()
    {
        Server.Start(0);
        Port = awaitPort(Server);
        Good.OnStream = [this](const uint8_t*, size_t count) { Received += count; };
        Good.Connect(hostOf(Port));
        EXPECT_TRUE(await([this] { return Server.Clients() == 1; }));
    }

    // The server still serves whoever behaves.
    void ExpectService()
    {
        const size_t before = Received;
        EXPECT_TRUE(await([&] {
            Server.Send({1, 2, 3});
            return Received > before;
        }));
    }

    gnssCommServer Server;
    uint16_t Port = 0;
    std::atomic<size_t> Received{0};
    gnssCommClient Good;
};

TEST_F(badPeerTest, IsCutOffForALengthThatNobodySends)
{
    for (const uint32_t length : {pktBuffer::LengthLimit + 1, 0x80000000U, 0xFFFFFFFFU}) {
        badPeer peer(Port);
        peer.Send(head(pktKey::GNSS, length));
        EXPECT_TRUE(peer.IsEnded()) << length;
    }
    ExpectService();
}

TEST_F(badPeerTest, MayLeaveAMessageUnfinishedForAsLongAsItLikes)
{
    badPeer peer(Port);
    peer.Send(head(pktKey::GNSS, 1000) + "STRM and then nothing");
    badPeer silent(Port);
    ASSERT_TRUE(await([this] { return Server.Clients() == 3; }));
    ExpectService();
    EXPECT_EQ(Server.Clients(), 3U);
}

TEST_F(badPeerTest, MayGoInTheMiddleOfAMessage)
{
    for (size_t size = 1; size < 30; size++) {
        badPeer peer(Port);
        peer.Send((head(pktKey::GNSS, 100) + "STRM and more of it").substr(0, size));
    }
    EXPECT_TRUE(await([this] { return Server.Clients() == 1; }));
    ExpectService();
}

TEST_F(badPeerTest, MaySendMuchOfNothing)
{
    badPeer peer(Port);
    std::atomic<bool> stop{false};
    std::atomic<uint64_t> sent{0};
    std::jthread flood([&] {
        const std::string nothing(1024 * 1024, '\0');
        while (!stop && peer.Send(nothing))
            sent += nothing.size();
    });
    ASSERT_TRUE(await([&] { return sent > 0; }));
    for (int round = 0; round < 20; round++)
        ExpectService();
    stop = true;
    Server.Stop(true);
}

TEST_F(badPeerTest, MayAskForAnEchoOfMuchAndNeverReadIt)
{
    badPeer peer(Port);
    const std::string noop = head(pktKey::NoOperation, 1024 * 1024) + std::string(1024 * 1024, 'n');
    std::jthread flood([&] {
        for (int i = 0; i < 200 && peer.Send(noop); i++) {
        }
    });
    EXPECT_TRUE(await([this] { return Server.Clients() == 1; })) << "it is cut off at the limit of the queue";
    flood.join();
    ExpectService();
}

}  // namespace
