// What closing a socket does to calls that are under way on it.
#include "tests/await.h"
#include "tests/platform/socketTest.h"

#include <algorithm>
#include <atomic>
#include <functional>
#include <thread>

namespace {

using std::chrono::milliseconds;
using std::chrono::steady_clock;

class socketCloseContract : public socketTest
{
protected:
    void SetUp() override
    {
        socketTest::SetUp();
        contractHoldTime();
    }

    // Runs a call that waits in a thread of its own and closes its socket; how long it took to end, the best
    // of some times, for the machine may be busy.
    static milliseconds TimeToEnd(const std::function<socketHandle()>& prepare,
                                  const std::function<bool(socketHandle)>& fails)
    {
        constexpr int Times = 5;
        milliseconds best = std::chrono::hours(1);
        for (int time = 0; time < Times && best > Promised / 2; ++time)
            best = std::min(best, TimeOnce(prepare(), fails));
        return best;
    }

    static constexpr milliseconds Promised{100};

private:
    static milliseconds TimeOnce(socketHandle handle, const std::function<bool(socketHandle)>& fails)
    {
        constexpr auto Settled = milliseconds(30);
        std::atomic<bool> started{false};
        std::atomic<bool> ended{false};
        std::jthread caller([&] {
            started = true;
            EXPECT_TRUE(fails(handle));
            EXPECT_EQ(LastFault(), socketFault::Lost);
            ended = true;
        });
        EXPECT_TRUE(await([&] { return started.load(); }));
        const auto from = steady_clock::now();
        EXPECT_TRUE(await([&] { return steady_clock::now() - from > Settled; }));
        EXPECT_FALSE(ended);
        const auto start = steady_clock::now();
        socketClose(handle);
        EXPECT_TRUE(await([&] { return ended.load(); })) << "the call does not end";
        caller.join();
        return std::chrono::duration_cast<milliseconds>(steady_clock::now() - start);
    }
};

TEST_F(socketCloseContract, EndsAWaitForEvents)
{
    const socketHandle listener = Listen();
    const auto fails = [](socketHandle handle) {
        socketEvents events;
        return socketPoll(handle, false, 60'000, events) == -1;
    };
    EXPECT_LT(TimeToEnd([&] { return Connect(listener).Near; }, fails), Promised);
    EXPECT_LT(TimeToEnd([&] { return Listen(); }, fails), Promised);
}

TEST_F(socketCloseContract, EndsAConnectThatIsNotAnswered)
{
    const contractSilentHost host;
    const auto fails = [&](socketHandle handle) { return !socketConnect(handle, host.Address); };
    EXPECT_LT(TimeToEnd([&] { return Open(); }, fails), Promised);
}

TEST_F(socketCloseContract, EndsAWaitForVisitors)
{
    const auto fails = [](socketHandle handle) {
        socketAddress peer;
        return socketAccept(handle, peer) == socketNone;
    };
    EXPECT_LT(TimeToEnd([&] { return Listen(); }, fails), Promised);
}

TEST_F(socketCloseContract, EndsAWaitForBytes)
{
    const socketHandle listener = Listen();
    const auto fails = [](socketHandle handle) {
        char byte = 0;
        return socketReceive(handle, &byte, 1) == -1;
    };
    EXPECT_LT(TimeToEnd([&] { return Connect(listener).Near; }, fails), Promised);
}

TEST_F(socketCloseContract, EndsAWaitForRoom)
{
    const socketHandle listener = Listen();
    const std::string part(1u << 20, 'x');
    const auto fails = [&](socketHandle handle) {
        // As many as any system's buffers hold.
        for (int turn = 0; turn < 64; ++turn) {
            if (socketSend(handle, part.data(), part.size()) < 0)
                return true;
        }
        return false;
    };
    EXPECT_LT(TimeToEnd([&] { return Connect(listener).Near; }, fails), Promised);
}

TEST_F(socketCloseContract, TellsThePeer)
{
    const ends both = Connect();
    EXPECT_TRUE(Send(both.Near, "last"));
    socketClose(both.Near);
    EXPECT_EQ(Receive(both.Far, 100), "last");
}

TEST_F(socketCloseContract, TurnsVisitorsAwayThatWereNotAccepted)
{
    const socketHandle listener = Listen();
    const socketHandle visitor = Open();
    ASSERT_TRUE(socketConnect(visitor, AddressOf(listener)));
    socketClose(listener);
    char byte = 0;
    EXPECT_LE(socketReceive(visitor, &byte, 1), 0);
}

TEST_F(socketCloseContract, BearsCallsOnAllSidesOfAClose)
{
    constexpr int Rounds = 40;
    const socketHandle listener = Listen();
    std::atomic<socketHandle> current{socketNone};
    std::atomic<bool> stop{false};
    const auto use = [&] {
        while (!stop) {
            char bytes[16] = {};
            socketEvents events;
            uint32_t number = 0;
            socketPoll(current, true, 0, events);
            socketSend(current, bytes, sizeof(bytes));
            socketPending(current, number);
            socketSetNonBlocking(current);
            socketReceive(current, bytes, sizeof(bytes));
            socketShutdownSend(current);
            std::this_thread::yield();
        }
    };
    const std::jthread one(use);
    const std::jthread two(use);
    for (int round = 0; round < Rounds; ++round) {
        const ends both = Connect(listener);
        current = both.Near;
        socketSend(both.Far, "abc", 3);
        std::this_thread::yield();
        socketClose(both.Near);
        socketClose(both.Far);
    }
    stop = true;
}

}  // namespace
