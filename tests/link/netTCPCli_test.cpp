#include "tests/link/connection.h"

#include <gmock/gmock.h>

using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;

namespace {

class netTCPCliTest : public linkTest
{
protected:
    netTCPCliTest()
    {
        fakePeer(peerPort);
        Client.SetAddress(loopback(peerPort));
        Client.OnError = [this](const std::string& text) { Told.NoteError(text); };
        Client.OnEvent = [this](const uint32_t& event) { TakeEvent(event); };
    }

    void TakeEvent(uint32_t event)
    {
        if (event == netTCPCli::EventData) {
            uint8_t bytes[100];
            const size_t count = Client.Receive(bytes, sizeof bytes);
            const std::lock_guard lock(Mutex);
            Received.append(bytes, bytes + count);
            return;
        }
        Told.Note(event);
    }

    std::string TakeReceived()
    {
        const std::lock_guard lock(Mutex);
        return Received;
    }

    bool ConnectAndAwait()
    {
        const size_t before = Told.Count(netTCPCli::EventConnected);
        Client.Connect();
        return await([&] { return Told.Count(netTCPCli::EventConnected) > before; });
    }

    unsigned Peer() { return fakePeerOf(peerPort); }

    std::mutex Mutex;
    std::string Received;
    witness Told;
    netTCPCli Client;
};

TEST_F(netTCPCliTest, KeepsThePortThatWasSetEarlierForAHostAlone)
{
    Client.SetAddress(loopback(1234));
    EXPECT_TRUE(Client.SetAddress("10.1.2.3"));
    EXPECT_EQ(Client.GetAddress().Port, 1234);
    EXPECT_EQ(Client.GetAddress().Host[3], 3);
    EXPECT_TRUE(Client.SetAddress("10.1.2.4:80"));
    EXPECT_EQ(Client.GetAddress().Port, 80);
}

TEST_F(netTCPCliTest, ForgetsTheAddressForAnEmptyText)
{
    EXPECT_TRUE(Client.SetAddress(""));
    EXPECT_EQ(Client.GetAddress().Port, 0);
    EXPECT_EQ(Client.GetAddress().Host[0], 0);
}

TEST_F(netTCPCliTest, KeepsTheAddressWhenANameHasNone)
{
    EXPECT_FALSE(Client.SetAddress("no.such.host:99"));
    EXPECT_EQ(Client.GetAddress().Port, peerPort);
    fakeHost("antenna.example", loopback(0));
    EXPECT_TRUE(Client.SetAddress("antenna.example"));
    EXPECT_EQ(Client.GetAddress().Port, peerPort);
}

TEST_F(netTCPCliTest, ConnectsTellsItAndEnds)
{
    ASSERT_TRUE(ConnectAndAwait());
    EXPECT_TRUE(Client.Is(netTCPBase::Connected));
    Client.Disconnect(true);
    EXPECT_THAT(Told.Events(), ElementsAre(0U, 2U));
    EXPECT_FALSE(Client.IsAlive());
    EXPECT_EQ(fakeSocketHandles(), 0U);
}

TEST_F(netTCPCliTest, TellsAFailedAttemptAndItsEndAndTriesNoMore)
{
    Client.SetAddress(loopback(1));
    Client.Connect();
    ASSERT_TRUE(await([&] { return !Client.IsAlive(); }));
    EXPECT_THAT(Told.Events(), ElementsAre(1U, 2U));
}

TEST_F(netTCPCliTest, TriesAgainAfterTheRetryTime)
{
    std::vector<int64_t> attempts;
    Client.OnConnecting = [&] {
        attempts.push_back(clockSteadyNs());
        return false;
    };
    Client.SetAddress(loopback(1));
    Client.RetryMs = 2000;
    Client.Connect();
    ASSERT_TRUE(await([&] { return Told.Count(netTCPCli::EventDisconnected) == 2; }));
    Client.Disconnect(true);
    ASSERT_GE(attempts.size(), 2U);
    EXPECT_GE(attempts[1] - attempts[0], 2'000'000'000);
}

TEST_F(netTCPCliTest, TriesAtOnceWhenConnectIsCalledInTheWait)
{
    Client.SetAddress(loopback(1));
    Client.RetryMs = 1'000'000'000;
    Client.Connect();
    ASSERT_TRUE(await([&] { return Told.Count(netTCPCli::EventDisconnected) == 1; }));
    Client.SetAddress(loopback(peerPort));
    EXPECT_TRUE(ConnectAndAwait());
    Client.Disconnect(true);
}

TEST_F(netTCPCliTest, DoesNotConnectWhenToldNotTo)
{
    Client.OnConnecting = [] { return true; };
    Client.Connect();
    ASSERT_TRUE(await([&] { return !Client.IsAlive(); }));
    EXPECT_THAT(Told.Events(), ElementsAre(1U, 2U));
    EXPECT_EQ(fakeCallCount("socketOpen"), 0U);
}

TEST_F(netTCPCliTest, ComesBackAfterALostConnection)
{
    Client.RetryMs = 50;
    ASSERT_TRUE(ConnectAndAwait());
    fakePeerReset(Peer(), fakeCode(socketFault::Lost));
    ASSERT_TRUE(await([&] { return Told.Count(netTCPCli::EventConnected) == 2; }));
    fakePeerClose(Peer());
    ASSERT_TRUE(await([&] { return Told.Count(netTCPCli::EventConnected) == 3; }));
    Client.Disconnect(true);
    EXPECT_THAT(Told.Events(), ElementsAre(0U, 2U, 0U, 2U, 0U, 2U));
}

TEST_F(netTCPCliTest, ComesBackAfterItWasDisconnectedButNotForGood)
{
    Client.RetryMs = 50;
    ASSERT_TRUE(ConnectAndAwait());
    const unsigned peer = Peer();
    Client.Disconnect(false);
    ASSERT_TRUE(await([&] { return fakePeerEnded(peer); }));
    fakePeerClose(peer);
    ASSERT_TRUE(await([&] { return Told.Count(netTCPCli::EventConnected) == 2; }));
    Client.Disconnect(true);
    const size_t connected = Told.Count(netTCPCli::EventConnected);
    letOthersRun();
    EXPECT_EQ(Told.Count(netTCPCli::EventConnected), connected);
}

TEST_F(netTCPCliTest, LetsGoOfAPeerThatWasToldOfTheEndAndHangs)
{
    ASSERT_TRUE(ConnectAndAwait());
    const int64_t told = clockSteadyNs();
    Client.Disconnect(false);
    // One that goes on as if nothing had happened has no more time than one that is silent.
    const bool ended = await([&] {
        fakePeerSend(Peer(), "more");
        return !Client.IsAlive();
    });
    ASSERT_TRUE(ended);
    EXPECT_GE(clockSteadyNs() - told, netTCPCli::FarewellMs * 1'000'000LL);
    EXPECT_THAT(TakeReceived(), testing::StartsWith("more")) << "what comes on the way is still taken";
    EXPECT_EQ(fakeSocketHandles(), 0U);
}

TEST_F(netTCPCliTest, GoesToAnotherPeerThoughTheFirstHangs)
{
    constexpr uint16_t otherPort = peerPort + 1;
    fakePeer(otherPort);
    Client.RetryMs = 50;
    ASSERT_TRUE(ConnectAndAwait());
    Client.SetAddress(loopback(otherPort));
    ASSERT_TRUE(ConnectAndAwait());
    EXPECT_NE(fakePeerOf(otherPort), 0U);
    // The time that the first had is not the second one's.
    const int64_t since = clockSteadyNs();
    ASSERT_TRUE(await([&] { return clockSteadyNs() - since > 2 * netTCPCli::FarewellMs * 1'000'000LL; }));
    EXPECT_EQ(Told.Count(netTCPCli::EventConnected), 2U);
    Client.Disconnect(true);
}

TEST_F(netTCPCliTest, EndsAConnectThatHangs)
{
    for (const uint32_t retry : {0U, 2000U}) {
        fakeBlockConnects(true);
        Client.RetryMs = retry;
        Client.Connect();
        ASSERT_TRUE(await([] { return fakeCallCount("socketConnect") > 0; }));
        Client.Disconnect(true);
        EXPECT_FALSE(Client.IsAlive());
        fakeClearCalls();
    }
    fakeBlockConnects(false);
}

TEST_F(netTCPCliTest, EndsAtAnyMomentOfItsStart)
{
    for (int round = 0; round < 200; ++round) {
        fakeBlockConnects(round % 2 == 0);
        Client.RetryMs = 1;
        Client.Connect();
        for (int turn = 0; turn < round % 20; ++turn)
            std::this_thread::yield();
        Client.Disconnect(true);
        ASSERT_FALSE(Client.IsAlive());
    }
    fakeBlockConnects(false);
    EXPECT_EQ(fakeSocketHandles(), 0U);
}

TEST_F(netTCPCliTest, ReceivesAndCounts)
{
    ASSERT_TRUE(ConnectAndAwait());
    std::string all;
    for (int i = 0; i < 20; ++i) {
        const std::string piece(static_cast<size_t>(1 + i * 23), static_cast<char>('a' + i));
        all += piece;
        fakePeerSend(Peer(), piece);
    }
    ASSERT_TRUE(await([&] { return TakeReceived() == all; }));
    EXPECT_EQ(Client.RxBytes, all.size());
    Client.Disconnect(true);
}

TEST_F(netTCPCliTest, DeliversWhatCameBeforeThePeerEnded)
{
    ASSERT_TRUE(ConnectAndAwait());
    fakePeerSend(Peer(), std::string(1000, 'z'));
    fakePeerClose(Peer());
    ASSERT_TRUE(await([&] { return Told.Count(netTCPCli::EventDisconnected) == 1; }));
    EXPECT_EQ(TakeReceived(), std::string(1000, 'z'));
}

TEST_F(netTCPCliTest, CountsAndDropsWhatNobodyTakes)
{
    Client.OnEvent = nullptr;
    Client.Connect();
    ASSERT_TRUE(await([&] { return Client.Is(netTCPBase::Connected); }));
    // Also when they end exactly with one of the small reads.
    for (const size_t size : {16U, 17U, 640U, 1U}) {
        const uint64_t before = Client.RxBytes;
        fakePeerSend(Peer(), std::string(size, 'x'));
        ASSERT_TRUE(await([&] { return Client.RxBytes == before + size; })) << size;
    }
    EXPECT_TRUE(Client.Is(netTCPBase::Connected));
    Client.Disconnect(true);
}

TEST_F(netTCPCliTest, RaisesDataAgainForBytesThatWereNotTaken)
{
    std::atomic<unsigned> asked{0};
    Client.OnEvent = [&](const uint32_t& event) {
        Told.Note(event);
        if (event == netTCPCli::EventData && ++asked == 5) {
            uint8_t bytes[10];
            Client.Receive(bytes, sizeof bytes);
        }
    };
    ASSERT_TRUE(ConnectAndAwait());
    fakePeerSend(Peer(), "abc");
    ASSERT_TRUE(await([&] { return Client.RxBytes == 3; }));
    EXPECT_EQ(asked, 5U);
    Client.Disconnect(true);
}

TEST_F(netTCPCliTest, LosesWithoutAWordWhatIsSentWithoutAConnection)
{
    sendText(Client, "lost");
    EXPECT_EQ(Client.QueuedBytes, 0U);
    EXPECT_EQ(Client.TxBytes, 0U);
    EXPECT_THAT(Told.Errors(), ElementsAre());
}

TEST_F(netTCPCliTest, QueuesExactlyWhatWasNotTakenAndKeepsTheOrder)
{
    ASSERT_TRUE(ConnectAndAwait());
    fakeSendRoom(4);
    sendText(Client, "abcdef");
    EXPECT_EQ(Client.QueuedBytes, 2U);
    EXPECT_EQ(Client.TxBytes, 4U);
    const size_t calls = fakeCallCount("socketSend #1 3");
    sendText(Client, "ghi");
    EXPECT_EQ(Client.QueuedBytes, 5U);
    EXPECT_EQ(fakeCallCount("socketSend #1 3"), calls) << "nothing overtakes the queue";
    fakeSendRoom(1'000'000);
    ASSERT_TRUE(await([&] { return fakePeerReceived(Peer()) == "abcdefghi"; }));
    EXPECT_TRUE(await([&] { return Client.QueuedBytes == 0 && Client.TxBytes == 9; }));
    Client.Disconnect(true);
}

TEST_F(netTCPCliTest, SendsTheCallersOwnBytesWhenToldNotToCopy)
{
    ASSERT_TRUE(ConnectAndAwait());
    fakeSendRoom(0);
    std::string text = "before";
    Client.Send(reinterpret_cast<const uint8_t*>(text.data()), text.size(), true);
    text = "behind";
    fakeSendRoom(1'000'000);
    EXPECT_TRUE(await([&] { return fakePeerReceived(Peer()) == "behind"; }));
    Client.Disconnect(true);
}

TEST_F(netTCPCliTest, LetsNobodyComeBetweenTheTwoPiecesOfAMessage)
{
    ASSERT_TRUE(ConnectAndAwait());
    fakeSendRoom(1000);
    constexpr unsigned rounds = 200;
    {
        std::vector<std::jthread> threads;
        for (const char letter : {'a', 'b', 'c'}) {
            threads.emplace_back([&, letter] {
                const std::string head(3, letter);
                const std::string tail(7, letter);
                for (unsigned round = 0; round < rounds; ++round)
                    Client.SendTwo(reinterpret_cast<const uint8_t*>(head.data()), head.size(),
                                   reinterpret_cast<const uint8_t*>(tail.data()), tail.size());
            });
        }
    }
    fakeSendRoom(1'000'000);
    ASSERT_TRUE(await([&] { return fakePeerReceived(Peer()).size() == size_t{rounds} * 30; }));
    const std::string all = fakePeerReceived(Peer());
    for (size_t at = 0; at < all.size(); at += 10)
        ASSERT_EQ(all.substr(at, 10), std::string(10, all[at]));
    Client.Disconnect(true);
}

TEST_F(netTCPCliTest, TellsAnErrorInSendAndGoesDown)
{
    ASSERT_TRUE(ConnectAndAwait());
    const unsigned peer = Peer();
    fakeErrorText(fakeCode(socketFault::Other), "It broke.\r\n");
    fakeSocketFail("socketSend", fakeCode(socketFault::Other));
    sendText(Client, "x");
    ASSERT_EQ(Told.Errors().size(), 1U);
    EXPECT_THAT(Told.Errors()[0], testing::StartsWith("Error while sending data - Error "));
    EXPECT_THAT(Told.Errors()[0], HasSubstr("It broke."));
    EXPECT_TRUE(await([&] { return fakePeerEnded(peer); }));
    fakePeerClose(peer);
    EXPECT_TRUE(await([&] { return !Client.IsAlive(); }));
    EXPECT_EQ(fakePeerReceived(peer), "");
}

TEST_F(netTCPCliTest, DropsAPieceWhenTheSendingHalfHasEnded)
{
    ASSERT_TRUE(ConnectAndAwait());
    fakeSocketFail("socketSend", fakeCode(socketFault::Shutdown));
    sendText(Client, "dropped");
    sendText(Client, "sent");
    EXPECT_TRUE(await([&] { return fakePeerReceived(Peer()) == "sent"; }));
    EXPECT_THAT(Told.Errors(), ElementsAre());
    Client.Disconnect(true);
}

TEST_F(netTCPCliTest, TellsAnErrorInTheQueueAndEnds)
{
    ASSERT_TRUE(ConnectAndAwait());
    fakeSendRoom(0);
    sendText(Client, "queued");
    fakeSocketFail("socketSend", fakeCode(socketFault::Other));
    fakeSendRoom(100);
    ASSERT_TRUE(await([&] { return Told.Count(netTCPCli::EventDisconnected) == 1; }));
    ASSERT_EQ(Told.Errors().size(), 1U);
    EXPECT_THAT(Told.Errors()[0], testing::StartsWith("Error while sending more data - Error "));
    EXPECT_TRUE(await([&] { return Client.QueuedBytes == 0; }));
}

TEST_F(netTCPCliTest, EndsQuietlyWhenTheSendingHalfEndsUnderTheQueue)
{
    ASSERT_TRUE(ConnectAndAwait());
    fakeSendRoom(0);
    sendText(Client, "queued");
    fakeSocketFail("socketSend", fakeCode(socketFault::Shutdown));
    fakeSendRoom(100);
    ASSERT_TRUE(await([&] { return Told.Count(netTCPCli::EventDisconnected) == 1; }));
    EXPECT_THAT(Told.Errors(), ElementsAre());
}

TEST_F(netTCPCliTest, TellsWhenTheStateOfAnIdleSocketCannotBeRead)
{
    ASSERT_TRUE(ConnectAndAwait());
    fakeSocketFail("socketPending", fakeCode(socketFault::Other));
    ASSERT_TRUE(await([&] { return Told.Count(netTCPCli::EventDisconnected) == 1; }));
    ASSERT_EQ(Told.Errors().size(), 1U);
    EXPECT_THAT(Told.Errors()[0], testing::StartsWith("Fatal error after select timeout - Error "));
}

TEST_F(netTCPCliTest, EndsWhenWaitingForTheSocketFails)
{
    ASSERT_TRUE(ConnectAndAwait());
    fakeSocketFail("socketPoll", fakeCode(socketFault::Other));
    EXPECT_TRUE(await([&] { return Told.Count(netTCPCli::EventDisconnected) == 1; }));
}

TEST_F(netTCPCliTest, DisconnectsAPeerThatReadsNothingAtItsLimit)
{
    Client.QueueLimit = 1000;
    ASSERT_TRUE(ConnectAndAwait());
    fakeSendRoom(10);
    sendText(Client, std::string(1000, 'a'));
    EXPECT_EQ(Client.QueuedBytes, 990U);
    sendText(Client, std::string(10, 'b'));
    letOthersRun();
    EXPECT_TRUE(Client.IsAlive());
    sendText(Client, "c");
    EXPECT_TRUE(await([&] { return !Client.IsAlive(); }));
    EXPECT_EQ(Client.QueuedBytes, 0U);
}

TEST_F(netTCPCliTest, AsksASilentPeerOnlyOnALiveConnection)
{
    Client.SetKeepAlive(true, 15);
    EXPECT_EQ(fakeCallCount("socketKeepAlive"), 0U);
    ASSERT_TRUE(ConnectAndAwait());
    Client.SetKeepAlive(true, 15);
    Client.SetKeepAlive(false, 0);
    EXPECT_EQ(fakeCallCount("socketKeepAlive"), 2U);
    EXPECT_THAT(fakeCalls(), Contains("socketKeepAlive #1 on 15000 1000"));
    EXPECT_THAT(fakeCalls(), Contains("socketKeepAlive #1 off 7200000 1000"))
        << "two hours where none are told";
    Client.Disconnect(true);
}

TEST_F(netTCPCliTest, KnowsTheSystemsBuffer)
{
    ASSERT_TRUE(ConnectAndAwait());
    EXPECT_GT(Client.SendBufSize, 0U);
    Client.Disconnect(true);
    fakeSocketFail("socketSendBuffer", fakeCode(socketFault::Other));
    ASSERT_TRUE(ConnectAndAwait());
    EXPECT_EQ(Client.SendBufSize, 0U);
    Client.Disconnect(true);
}

TEST_F(netTCPCliTest, CountsAnewWithEachConnection)
{
    Client.RetryMs = 50;
    ASSERT_TRUE(ConnectAndAwait());
    sendText(Client, "abc");
    EXPECT_EQ(Client.TxBytes, 3U);
    fakePeerClose(Peer());
    ASSERT_TRUE(await([&] { return Told.Count(netTCPCli::EventConnected) == 2; }));
    EXPECT_EQ(Client.TxBytes, 0U);
    Client.Disconnect(true);
}

TEST_F(netTCPCliTest, MayBeEndedFromItsOwnHandler)
{
    Client.RetryMs = 50;
    Client.OnEvent = [this](const uint32_t& event) {
        Told.Note(event);
        if (event == netTCPCli::EventConnected)
            Client.Disconnect(true);
    };
    Client.Connect();
    ASSERT_TRUE(await([&] { return !Client.IsAlive(); }));
    EXPECT_THAT(Told.Events(), ElementsAre(0U, 2U));
}

TEST_F(netTCPCliTest, GivesTheNetworkBackWithItsLastObject)
{
    EXPECT_EQ(fakeSocketStarts(), 1U);
    {
        const netTCPCli other;
        EXPECT_EQ(fakeSocketStarts(), 2U);
    }
    EXPECT_EQ(fakeSocketStarts(), 1U);
}

TEST_F(netTCPCliTest, GoesOnWithoutANetworkAndFails)
{
    fakeFail("socketStart");
    netTCPCli offline;
    EXPECT_FALSE(offline.Is(netTCPBase::Started));
    EXPECT_EQ(fakeSocketStarts(), 1U);
}

TEST_F(netTCPCliTest, CanBeSentToByManyWhileItConnectsAndEnds)
{
    std::vector<std::jthread> threads;
    for (int i = 0; i < 2; ++i) {
        threads.emplace_back([&](const std::stop_token& stop) {
            while (!stop.stop_requested()) {
                sendText(Client, "some bytes");
                std::this_thread::sleep_for(std::chrono::microseconds(100));
            }
        });
    }
    for (int round = 0; round < 20; ++round) {
        Client.RetryMs = 1;
        const size_t before = Told.Count(netTCPCli::EventConnected);
        Client.Connect();
        ASSERT_TRUE(await([&] {
            // A peer that behaves: it ends when it is told that we do.
            if (Peer() != 0 && fakePeerEnded(Peer()))
                fakePeerClose(Peer());
            return Told.Count(netTCPCli::EventConnected) > before;
        }));
        if (round % 3 == 0)
            fakePeerReset(Peer(), fakeCode(socketFault::Lost));
        else
            Client.Disconnect(round % 3 == 1);
    }
    Client.Disconnect(true);
    threads.clear();
    EXPECT_EQ(fakeSocketHandles(), 0U);
    EXPECT_EQ(Client.QueuedBytes, 0U);
}

}  // namespace
