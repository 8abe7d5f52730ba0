// What tests may do to the network of the fake platform, and see of it.
#include "platform/clock.h"
#include "tests/await.h"
#include "tests/fakes/fakeLinks.h"
#include "tests/fakes/fakes.h"

#include <gmock/gmock.h>

#include <atomic>
#include <thread>

namespace {

using testing::ElementsAre;

constexpr uint16_t Port = 4003;
constexpr socketAddress Here{socketFamily::IPv4, Port, {127, 0, 0, 1}, 0};

class fakeNetwork : public testing::Test
{
protected:
    void SetUp() override
    {
        fakeReset();
        ASSERT_TRUE(socketStart());
    }

    // A socket that is connected to a peer of the test's.
    struct connection {
        socketHandle Socket;
        unsigned Peer;
    };
    static connection Connect()
    {
        fakePeer(Port);
        const socketHandle handle = socketOpen();
        EXPECT_TRUE(socketConnect(handle, Here));
        EXPECT_TRUE(socketSetNonBlocking(handle));
        return {handle, fakePeerOf(Port)};
    }

    static std::string Receive(socketHandle handle)
    {
        char bytes[100] = {};
        const int64_t got = socketReceive(handle, bytes, sizeof(bytes));
        return got < 0 ? "failed" : std::string(bytes, static_cast<size_t>(got));
    }

    static socketEvents Poll(socketHandle handle)
    {
        socketEvents events;
        socketPoll(handle, true, 0, events);
        return events;
    }
};

TEST_F(fakeNetwork, RecordsWhatIsAskedOfIt)
{
    fakeClearCalls();
    const socketHandle one = socketOpen();
    const socketHandle two = socketOpen();
    socketAddress address;
    uint32_t number = 0;
    char bytes[9] = {};
    socketBind(one, Here);
    socketListen(one, 5);
    socketConnect(two, Here);
    socketSetNonBlocking(two);
    socketSend(two, bytes, 9);
    const socketHandle three = socketAccept(one, address);
    socketReceive(three, bytes, 7);
    socketAvailable(three, number);
    socketShutdownSend(three);
    socketKeepAlive(three, true, 15'000, 1000);
    socketSendBuffer(three, number);
    socketLocal(three, address);
    socketResolve("localhost", "80", socketFamily::IPv4, address);
    Poll(three);
    socketPending(three, number);
    socketClose(two);
    socketClose(two);
    EXPECT_THAT(fakeCalls(),
                ElementsAre("socketOpen", "socketOpen", "socketBind #1 127.0.0.1:4003", "socketListen #1 5",
                            "socketConnect #2 127.0.0.1:4003", "socketSetNonBlocking #2", "socketSend #2 9",
                            "socketAccept #1", "socketReceive #3 7", "socketAvailable #3",
                            "socketShutdownSend #3", "socketKeepAlive #3 on 15000 1000",
                            "socketSendBuffer #3", "socketLocal #3", "socketResolve localhost 80",
                            "socketClose #2", "socketClose closed"));
}

TEST_F(fakeNetwork, ConnectsToAPeerOfTheTest)
{
    EXPECT_EQ(fakePeerOf(Port), 0u);
    const connection ours = Connect();
    ASSERT_NE(ours.Peer, 0u);
    EXPECT_EQ(socketSend(ours.Socket, "hello", 5), 5);
    EXPECT_EQ(socketSend(ours.Socket, " you", 4), 4);
    EXPECT_EQ(fakePeerReceived(ours.Peer), "hello you");
    fakePeerSend(ours.Peer, "and you");
    EXPECT_TRUE(Poll(ours.Socket).Readable);
    EXPECT_EQ(Receive(ours.Socket), "and you");
    EXPECT_EQ(Receive(ours.Socket), "failed");
    EXPECT_EQ(socketError(), fakeCode(socketFault::WouldBlock));
}

TEST_F(fakeNetwork, GivesEachConnectionAPeerOfItsOwn)
{
    const connection one = Connect();
    const connection two = Connect();
    EXPECT_NE(one.Peer, two.Peer);
    fakePeerSend(one.Peer, "one");
    fakePeerSend(two.Peer, "two");
    EXPECT_EQ(Receive(two.Socket), "two");
    EXPECT_EQ(Receive(one.Socket), "one");
}

TEST_F(fakeNetwork, LetsAPeerConnectToAListener)
{
    EXPECT_EQ(fakePeerConnect(Port), 0u);
    const socketHandle listener = socketOpen();
    EXPECT_TRUE(socketBind(listener, Here));
    EXPECT_TRUE(socketListen(listener, 1));
    const unsigned peer = fakePeerConnect(Port);
    ASSERT_NE(peer, 0u);
    fakePeerSend(peer, "early");
    socketAddress from;
    const socketHandle accepted = socketAccept(listener, from);
    EXPECT_EQ(Receive(accepted), "early");
    EXPECT_EQ(socketSend(accepted, "answer", 6), 6);
    EXPECT_EQ(fakePeerReceived(peer), "answer");
}

TEST_F(fakeNetwork, TellsWhenOurSideHasEnded)
{
    const connection half = Connect();
    EXPECT_FALSE(fakePeerEnded(half.Peer));
    EXPECT_TRUE(socketShutdownSend(half.Socket));
    EXPECT_TRUE(fakePeerEnded(half.Peer));
    fakePeerSend(half.Peer, "still");
    EXPECT_EQ(Receive(half.Socket), "still");
    const connection whole = Connect();
    socketClose(whole.Socket);
    EXPECT_TRUE(fakePeerEnded(whole.Peer));
}

TEST_F(fakeNetwork, EndsAConnectionInOrder)
{
    const connection ours = Connect();
    fakePeerSend(ours.Peer, "last");
    fakePeerClose(ours.Peer);
    EXPECT_FALSE(Poll(ours.Socket).HungUp);
    EXPECT_EQ(Receive(ours.Socket), "last");
    EXPECT_TRUE(Poll(ours.Socket).HungUp);
    EXPECT_EQ(Receive(ours.Socket), "");
}

TEST_F(fakeNetwork, BreaksAConnectionWithACode)
{
    constexpr uint32_t TimedOut = 10060;
    const connection ours = Connect();
    fakePeerReset(ours.Peer, TimedOut);
    EXPECT_TRUE(Poll(ours.Socket).HungUp);
    EXPECT_EQ(Receive(ours.Socket), "failed");
    EXPECT_EQ(socketError(), TimedOut);
    EXPECT_EQ(socketSend(ours.Socket, "x", 1), -1);
    EXPECT_EQ(socketError(), TimedOut);
    uint32_t code = 0;
    EXPECT_TRUE(socketPending(ours.Socket, code));
    EXPECT_EQ(code, TimedOut);
    EXPECT_TRUE(socketPending(ours.Socket, code));
    EXPECT_EQ(code, 0u);
}

TEST_F(fakeNetwork, LeavesAnErrorOfWhichOnlyTheQuestionTells)
{
    const connection ours = Connect();
    fakePeerPending(ours.Peer, fakeCode(socketFault::Lost));
    EXPECT_FALSE(Poll(ours.Socket).HungUp);
    uint32_t code = 0;
    EXPECT_TRUE(socketPending(ours.Socket, code));
    EXPECT_EQ(socketFaultOf(code), socketFault::Lost);
}

TEST_F(fakeNetwork, FailsAsTheScriptSays)
{
    const connection ours = Connect();
    fakeSocketFail("socketSend", fakeCode(socketFault::Shutdown), 1, 2);
    EXPECT_EQ(socketSend(ours.Socket, "a", 1), 1);
    for (int call = 0; call < 2; ++call) {
        EXPECT_EQ(socketSend(ours.Socket, "b", 1), -1);
        EXPECT_EQ(socketFaultOf(socketError()), socketFault::Shutdown);
    }
    EXPECT_EQ(socketSend(ours.Socket, "c", 1), 1);
    EXPECT_EQ(fakePeerReceived(ours.Peer), "ac");
    fakeFail("socketOpen");
    EXPECT_EQ(socketOpen(), socketNone);
    EXPECT_EQ(socketFaultOf(socketError()), socketFault::Other);
    EXPECT_NE(socketOpen(), socketNone);
}

TEST_F(fakeNetwork, TakesWhatThereIsRoomFor)
{
    const connection ours = Connect();
    fakeSendRoom(5);
    EXPECT_EQ(socketSend(ours.Socket, "0123456789", 10), 5);
    EXPECT_EQ(socketSend(ours.Socket, "56789", 5), -1);
    EXPECT_EQ(socketFaultOf(socketError()), socketFault::WouldBlock);
    EXPECT_FALSE(Poll(ours.Socket).Writable);
    fakeSendRoom(100);
    EXPECT_TRUE(Poll(ours.Socket).Writable);
    EXPECT_EQ(socketSend(ours.Socket, "56789", 5), 5);
    EXPECT_EQ(fakePeerReceived(ours.Peer), "0123456789");
}

TEST_F(fakeNetwork, HoldsConnectsUntilTheyAreUnblocked)
{
    fakePeer(Port);
    fakeBlockConnects(true);
    const socketHandle handle = socketOpen();
    std::atomic<int> result{-1};
    const std::jthread caller([&] { result = socketConnect(handle, Here) ? 1 : 0; });
    EXPECT_TRUE(await([] { return fakeCallCount("socketConnect") == 1; }));
    letOthersRun();
    EXPECT_EQ(result, -1);
    fakeBlockConnects(false);
    EXPECT_TRUE(await([&] { return result == 1; }));
}

TEST_F(fakeNetwork, AnswersForHostsThatATestNames)
{
    socketAddress address;
    EXPECT_FALSE(socketResolve("receiver.example", "", socketFamily::IPv4, address));
    fakeHost("receiver.example", {socketFamily::IPv4, 0, {192, 0, 2, 7}, 0});
    fakeHost("six.example", {socketFamily::IPv6, 0, {0x20, 1}, 0});
    EXPECT_TRUE(socketResolve("receiver.example", "4003", socketFamily::IPv4, address));
    EXPECT_EQ(address.Host[3], 7u);
    EXPECT_EQ(address.Port, 4003u);
    EXPECT_FALSE(socketResolve("six.example", "", socketFamily::IPv4, address));
    EXPECT_TRUE(socketResolve("six.example", "", socketFamily::IPv6, address));
}

TEST_F(fakeNetwork, MovesTheClockWhileItWaits)
{
    const connection ours = Connect();
    const int64_t start = clockSteadyNs();
    socketEvents events;
    EXPECT_EQ(socketPoll(ours.Socket, false, 500, events), 0);
    EXPECT_EQ(clockSteadyNs() - start, 500'000'000);
    fakePeerSend(ours.Peer, "x");
    EXPECT_EQ(socketPoll(ours.Socket, false, 500, events), 1);
    EXPECT_EQ(clockSteadyNs() - start, 500'000'000);
}

TEST_F(fakeNetwork, WaitsForTheClockThatATestMoves)
{
    fakeSleepMovesClock(false);
    const connection ours = Connect();
    std::atomic<int> result{-2};
    const std::jthread caller([&] {
        socketEvents events;
        result = socketPoll(ours.Socket, false, 500, events);
    });
    letOthersRun();
    fakeClockMove(499'000'000);
    letOthersRun();
    EXPECT_EQ(result, -2);
    // The wait may have begun after that move.
    EXPECT_TRUE(await([&] {
        fakeClockMove(1'000'000);
        return result == 0;
    }));
}

TEST_F(fakeNetwork, CountsSocketsAndStarts)
{
    EXPECT_EQ(fakeSocketStarts(), 1u);
    const socketHandle handle = socketOpen();
    EXPECT_EQ(fakeSocketHandles(), 1u);
    socketClose(handle);
    EXPECT_EQ(fakeSocketHandles(), 0u);
    socketEnd();
    EXPECT_EQ(fakeSocketStarts(), 0u);
    EXPECT_EQ(socketOpen(), socketNone);
}

TEST_F(fakeNetwork, IsForgottenByAReset)
{
    const connection ours = Connect();
    const socketHandle blocking = socketOpen();
    EXPECT_TRUE(socketConnect(blocking, Here));
    std::atomic<bool> ended{false};
    const std::jthread reader([&] {
        EXPECT_EQ(Receive(blocking), "failed");
        ended = true;
    });
    EXPECT_TRUE(await([] { return fakeCallCount("socketReceive") == 1; }));
    EXPECT_EQ(Receive(ours.Socket), "failed");
    fakeReset();
    EXPECT_TRUE(await([&] { return ended.load(); }));
    EXPECT_EQ(socketError(), 0u);
    EXPECT_EQ(fakeSocketHandles(), 0u);
    EXPECT_EQ(fakeSocketStarts(), 0u);
    EXPECT_EQ(fakePeerOf(Port), 0u);
    socketClose(ours.Socket);
}

TEST_F(fakeNetwork, HasACodeForEveryFault)
{
    for (const socketFault fault : {socketFault::None, socketFault::WouldBlock, socketFault::Shutdown,
                                    socketFault::Lost, socketFault::Other})
        EXPECT_EQ(socketFaultOf(fakeCode(fault)), fault);
}

}  // namespace
