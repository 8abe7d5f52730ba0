#include "link/netTCPSrv.h"
#include "tests/link/connection.h"

#include <gmock/gmock.h>

using testing::ElementsAre;
using testing::HasSubstr;

namespace {

constexpr uint16_t serverPort = 5000;

class netTCPSrvTest : public linkTest
{
protected:
    netTCPSrvTest()
    {
        Told.Watch(Server);
        Server.OnAccepted = [this](netTCPCli& client) {
            const std::lock_guard lock(Mutex);
            Accepted.push_back(&client);
            client.OnEvent = [this](const uint32_t& event) { OfClients.Note(event); };
        };
    }

    void ListenAndAwait()
    {
        Server.SetPort(serverPort);
        Server.Listen();
        ASSERT_TRUE(await([&] { return Told.Count(netTCPSrv::EventListening) == 1; }));
    }

    unsigned Join()
    {
        const unsigned peer = fakePeerConnect(serverPort);
        EXPECT_NE(peer, 0U);
        return peer;
    }

    bool AwaitAccepted(size_t count)
    {
        return await([&] {
            const std::lock_guard lock(Mutex);
            return Accepted.size() == count;
        });
    }

    std::mutex Mutex;
    std::vector<netTCPCli*> Accepted;
    witness Told;
    witness OfClients;
    netTCPSrv Server;
};

TEST_F(netTCPSrvTest, ListensAndStops)
{
    ListenAndAwait();
    EXPECT_EQ(Server.ListeningPort(), serverPort);
    Server.Stop(true);
    EXPECT_FALSE(Server.IsAlive());
    EXPECT_EQ(Server.ListeningPort(), 0);
    EXPECT_EQ(Told.Count(netTCPSrv::EventStopped), 1U);
    EXPECT_EQ(fakeSocketHandles(), 0U);
}

TEST_F(netTCPSrvTest, TellsThatThePortCannotBeHad)
{
    fakeErrorText(fakeCode(socketFault::Other), "It broke.");
    for (const char* function : {"socketOpen", "socketBind", "socketListen"}) {
        SCOPED_TRACE(function);
        witness told;
        netTCPSrv server;
        told.Watch(server);
        fakeSocketFail(function, fakeCode(socketFault::Other));
        server.SetPort(serverPort);
        server.Listen();
        ASSERT_TRUE(await([&] { return !server.IsAlive(); }));
        EXPECT_THAT(told.Errors(), ElementsAre(HasSubstr("It broke.")));
        EXPECT_THAT(told.Events(), ElementsAre(netTCPSrv::EventFailed, netTCPSrv::EventStopped));
    }
}

TEST_F(netTCPSrvTest, EndsWhenAcceptingFails)
{
    ListenAndAwait();
    fakeSocketFail("socketAccept", fakeCode(socketFault::Other));
    ASSERT_TRUE(await([&] { return !Server.IsAlive(); }));
    EXPECT_THAT(Told.Events(), ElementsAre(netTCPSrv::EventListening, netTCPSrv::EventAcceptFailed,
                                           netTCPSrv::EventStopped));
    EXPECT_EQ(Told.Errors().size(), 1U);
}

TEST_F(netTCPSrvTest, TakesEveryPeerThatComes)
{
    ListenAndAwait();
    constexpr unsigned many = 30;
    std::vector<unsigned> peers;
    for (unsigned i = 0; i < many; ++i)
        peers.push_back(Join());
    ASSERT_TRUE(AwaitAccepted(many));
    ASSERT_TRUE(await([&] { return OfClients.Count(netTCPCli::EventConnected) == many; }));
    for (size_t i = 0; i < many; ++i) {
        sendText(*Accepted[i], "hello " + std::to_string(i));
        EXPECT_TRUE(await([&] { return fakePeerReceived(peers[i]) == "hello " + std::to_string(i); }));
    }
    Server.Stop(true);
    EXPECT_EQ(OfClients.Count(netTCPCli::EventDisconnected), many);
    EXPECT_EQ(fakeSocketHandles(), 0U);
}

// Its own thread has not begun then, and a server that serves others must not wait for one.
TEST_F(netTCPSrvTest, SendingToAPeerThatWasJustTakenNeverWaits)
{
    std::atomic<bool> sent{false};
    const auto noted = Server.OnAccepted;
    Server.OnAccepted = [&sent, &noted](netTCPCli& client) {
        constexpr uint8_t bytes[] = {1, 2, 3, 4};
        client.Send(bytes, sizeof bytes);
        sent = true;
        noted(client);
    };
    fakeSendRoom(0);
    ListenAndAwait();
    Join();
    EXPECT_TRUE(await([&sent] { return sent.load(); }));
    fakeSendRoom(1'000);
    EXPECT_TRUE(AwaitAccepted(1));
    Server.Stop(true);
}

TEST_F(netTCPSrvTest, CountsWhatWasQueuedForAPeerBeforeItsThreadBegan)
{
    const auto noted = Server.OnAccepted;
    Server.OnAccepted = [&noted](netTCPCli& client) {
        sendText(client, "early");
        noted(client);
    };
    fakeSendRoom(2);
    ListenAndAwait();
    const unsigned peer = Join();
    ASSERT_TRUE(AwaitAccepted(1));
    ASSERT_TRUE(await([&] { return OfClients.Count(netTCPCli::EventConnected) == 1; }));
    EXPECT_EQ(Accepted[0]->QueuedBytes, 3U);
    fakeSendRoom(1'000);
    ASSERT_TRUE(await([&] { return fakePeerReceived(peer) == "early"; }));
    EXPECT_TRUE(await([&] { return Accepted[0]->QueuedBytes == 0U && Accepted[0]->TxBytes == 5U; }));
    Server.Stop(true);
}

TEST_F(netTCPSrvTest, EndsAPeerWhoseQueueWasFullBeforeItsThreadBegan)
{
    const auto noted = Server.OnAccepted;
    Server.OnAccepted = [&noted](netTCPCli& client) {
        client.QueueLimit = 3;
        sendText(client, "early");
        noted(client);
    };
    fakeSendRoom(0);
    ListenAndAwait();
    const unsigned peer = Join();
    EXPECT_TRUE(await([&] { return fakePeerEnded(peer); })) << "what it got would have a hole";
    EXPECT_EQ(fakePeerReceived(peer), "");
    Server.Stop(true);
}

TEST_F(netTCPSrvTest, ShutsDownARejectedPeerWithoutAnyData)
{
    Server.OnAccepting = [](const socketAddress&) { return false; };
    ListenAndAwait();
    const unsigned peer = Join();
    EXPECT_TRUE(await([&] { return fakePeerEnded(peer); }));
    EXPECT_EQ(fakePeerReceived(peer), "");
    EXPECT_TRUE(Accepted.empty());
    EXPECT_TRUE(OfClients.Events().empty());
    Server.Stop(true);
}

TEST_F(netTCPSrvTest, CountsOnlyLiveAndWelcomePeersAgainstItsLimit)
{
    Server.MaxClients = 2;
    ListenAndAwait();
    const unsigned first = Join();
    ASSERT_TRUE(AwaitAccepted(1));
    Join();
    ASSERT_TRUE(AwaitAccepted(2));
    const unsigned third = Join();
    EXPECT_TRUE(await([&] { return fakePeerEnded(third); }));
    const unsigned fourth = Join();
    EXPECT_TRUE(await([&] { return fakePeerEnded(fourth); }));
    fakePeerClose(first);
    ASSERT_TRUE(await([&] { return OfClients.Count(netTCPCli::EventDisconnected) == 1; }));
    ASSERT_TRUE(await([&] { return !Accepted[0]->IsAlive(); }));
    Join();
    EXPECT_TRUE(AwaitAccepted(3)) << "the place of one that has gone is free, and rejected ones took none";
    Server.Stop(true);
}

TEST_F(netTCPSrvTest, CleansUpAfterThoseWhoHaveGoneWhenTheNextOneComes)
{
    ListenAndAwait();
    for (size_t round = 1; round <= 20; ++round) {
        const unsigned peer = Join();
        ASSERT_TRUE(AwaitAccepted(round));
        fakePeerClose(peer);
        ASSERT_TRUE(await([&] { return OfClients.Count(netTCPCli::EventDisconnected) == round; }));
    }
    EXPECT_LE(fakeSocketStarts(), 4U) << "the server, the last peer and at most one that is ending";
    Server.Stop(true);
}

TEST_F(netTCPSrvTest, StartsAnewOnAnotherPort)
{
    ListenAndAwait();
    const unsigned peer = Join();
    ASSERT_TRUE(AwaitAccepted(1));
    Server.SetPort(serverPort + 1);
    ASSERT_TRUE(await([&] { return Server.ListeningPort() == serverPort + 1; }));
    EXPECT_TRUE(await([&] { return fakePeerEnded(peer); }));
    EXPECT_EQ(fakePeerConnect(serverPort), 0U);
    EXPECT_NE(fakePeerConnect(serverPort + 1), 0U);
    Server.Stop(true);
}

TEST_F(netTCPSrvTest, StopsAndListensAgainAtAnyMoment)
{
    Server.SetPort(serverPort);
    for (int round = 0; round < 60; ++round) {
        Server.Listen();
        if (round % 3 == 0)
            fakePeerConnect(serverPort);
        for (int turn = 0; turn < round % 10; ++turn)
            std::this_thread::yield();
        if (round % 2 == 0)
            Server.Stop(round % 4 == 0);
    }
    Server.Stop(true);
    EXPECT_FALSE(Server.IsAlive());
    EXPECT_EQ(fakeSocketHandles(), 0U);
}

TEST_F(netTCPSrvTest, EndsItsPeersOrderlyWhenItStopsButNotForGood)
{
    ListenAndAwait();
    const unsigned peer = Join();
    ASSERT_TRUE(AwaitAccepted(1));
    ASSERT_TRUE(await([&] { return OfClients.Count(netTCPCli::EventConnected) == 1; }));
    sendText(*Accepted[0], "last words");
    Server.Stop(false);
    EXPECT_TRUE(await([&] { return fakePeerEnded(peer); }));
    EXPECT_EQ(fakePeerReceived(peer), "last words");
    EXPECT_TRUE(await([&] { return !Server.IsAlive(); }));
}

TEST_F(netTCPSrvTest, EndsAPeerThatComesWhileItStops)
{
    for (unsigned round = 0; round < 400; ++round) {
        SCOPED_TRACE(round);
        Server.SetPort(serverPort);
        Server.Listen();
        ASSERT_TRUE(await([&] { return Server.ListeningPort() == serverPort; }));
        const size_t former = Accepted.size();
        const unsigned peer = fakePeerConnect(serverPort);
        if (round % 2 == 0) {
            ASSERT_TRUE(AwaitAccepted(former + 1));
        }
        for (unsigned turn = 0; turn < round % 40; ++turn)
            std::this_thread::yield();
        Server.Stop(false);
        ASSERT_TRUE(await([&] { return !Server.IsAlive(); }));
        ASSERT_TRUE(await([&] { return fakePeerEnded(peer); }));
        fakePeerClose(peer);
    }
    EXPECT_TRUE(await([&] { return OfClients.Count(netTCPCli::EventDisconnected) == Accepted.size(); }));
}

}  // namespace
