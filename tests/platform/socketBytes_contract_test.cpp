// What goes over a connection, and waiting for it.
#include "platform/clock.h"
#include "tests/await.h"
#include "tests/platform/socketTest.h"

#include <thread>

namespace {

using socketBytesContract = socketTest;

constexpr size_t Much = 1u << 20;

std::string Pattern(size_t count)
{
    std::string bytes;
    for (size_t at = 0; at < count; ++at)
        bytes += static_cast<char>(at + at / 255);
    return bytes;
}

socketEvents PollNow(socketHandle handle, bool wantWritable, int expected)
{
    socketEvents events;
    EXPECT_EQ(socketPoll(handle, wantWritable, 0, events), expected);
    return events;
}

// Waits for the event that `isThere` names.
bool AwaitEvent(socketHandle handle, bool socketEvents::*isThere)
{
    return contractAwait([&] {
        socketEvents events;
        return socketPoll(handle, true, 0, events) == 1 && events.*isThere;
    });
}

// Fills what lies between the ends until nothing more is taken; how many bytes that were.
size_t Fill(socketHandle handle, size_t limit)
{
    const std::string part = Pattern(Much);
    size_t sent = 0;
    while (sent < limit) {
        const int64_t taken = socketSend(handle, part.data(), part.size());
        if (taken < 0)
            break;
        sent += static_cast<size_t>(taken);
    }
    return sent;
}

TEST_F(socketBytesContract, CarriesEveryByteBothWays)
{
    const ends both = Connect();
    const std::string bytes = Pattern(Much);
    const auto sendAll = [&](socketHandle handle) {
        size_t sent = 0;
        while (sent < bytes.size()) {
            const int64_t part = socketSend(handle, bytes.data() + sent, bytes.size() - sent);
            ASSERT_GT(part, 0);
            sent += static_cast<size_t>(part);
        }
    };
    const std::jthread one([&] { sendAll(both.Near); });
    const std::jthread two([&] { sendAll(both.Far); });
    std::string atNear;
    std::jthread three([&] { atNear = Receive(both.Near, bytes.size()); });
    EXPECT_EQ(Receive(both.Far, bytes.size()), bytes);
    three.join();
    EXPECT_EQ(atNear, bytes);
}

TEST_F(socketBytesContract, CountsWhatCanBeReceived)
{
    const ends both = Connect();
    uint32_t count = 17;
    EXPECT_TRUE(socketAvailable(both.Far, count));
    EXPECT_EQ(count, 0u);
    EXPECT_TRUE(Send(both.Near, "0123456789"));
    EXPECT_TRUE(AwaitBytes(both.Far, 10));
    EXPECT_EQ(Receive(both.Far, 4), "0123");
    EXPECT_TRUE(socketAvailable(both.Far, count));
    EXPECT_EQ(count, 6u);
}

TEST_F(socketBytesContract, ReceivesNothingAtOnceWhenNothingIsThere)
{
    const ends both = Connect();
    EXPECT_TRUE(socketSetNonBlocking(both.Far));
    char byte = 0;
    EXPECT_EQ(socketReceive(both.Far, &byte, 1), -1);
    EXPECT_EQ(LastFault(), socketFault::WouldBlock);
}

TEST_F(socketBytesContract, SendsAndReceivesOnlyOverAConnection)
{
    const socketHandle alone = Open();
    char byte = 'x';
    EXPECT_EQ(socketReceive(alone, &byte, 1), -1);
    EXPECT_EQ(LastFault(), socketFault::Lost);
    EXPECT_EQ(socketSend(alone, &byte, 1), -1);
    EXPECT_TRUE(LastFault() == socketFault::Lost || LastFault() == socketFault::Shutdown);
}

TEST_F(socketBytesContract, SeesNothingOnAQuietConnection)
{
    const ends both = Connect();
    const socketEvents events = PollNow(both.Near, false, 0);
    EXPECT_FALSE(events.Readable || events.Writable || events.HungUp);
}

TEST_F(socketBytesContract, SeesThatThereIsRoomWhenAsked)
{
    const ends both = Connect();
    const socketEvents events = PollNow(both.Near, true, 1);
    EXPECT_TRUE(events.Writable);
    EXPECT_FALSE(events.Readable || events.HungUp);
}

TEST_F(socketBytesContract, SeesBytesThatArrive)
{
    const ends both = Connect();
    EXPECT_TRUE(Send(both.Far, "x"));
    EXPECT_TRUE(AwaitEvent(both.Near, &socketEvents::Readable));
    const socketEvents events = PollNow(both.Near, false, 1);
    EXPECT_TRUE(events.Readable);
    EXPECT_FALSE(events.Writable || events.HungUp);
}

TEST_F(socketBytesContract, SeesAVisitor)
{
    const socketHandle listener = Listen();
    EXPECT_FALSE(PollNow(listener, true, 0).Readable);
    EXPECT_TRUE(socketConnect(Open(), AddressOf(listener)));
    EXPECT_TRUE(AwaitEvent(listener, &socketEvents::Readable));
}

TEST_F(socketBytesContract, WaitsForAsLongAsItIsTold)
{
    const ends both = Connect();
    const int64_t start = clockSteadyNs();
    socketEvents events;
    EXPECT_EQ(socketPoll(both.Near, false, 30, events), 0);
    EXPECT_GE(clockSteadyNs() - start, 30'000'000);
}

TEST_F(socketBytesContract, EndsAWaitWhenBytesArrive)
{
    contractHoldTime();
    const ends both = Connect();
    socketEvents events;
    int result = 0;
    std::jthread waiter([&] { result = socketPoll(both.Near, false, 60'000, events); });
    letOthersRun();
    EXPECT_TRUE(Send(both.Far, "x"));
    waiter.join();
    EXPECT_EQ(result, 1);
    EXPECT_TRUE(events.Readable);
}

TEST_F(socketBytesContract, TellsOfTheEndAfterTheLastByte)
{
    const ends both = Connect();
    EXPECT_TRUE(Send(both.Far, "last"));
    socketClose(both.Far);
    EXPECT_TRUE(AwaitBytes(both.Near, 4));
    EXPECT_TRUE(AwaitEvent(both.Near, &socketEvents::Readable));
    EXPECT_FALSE(PollNow(both.Near, false, 1).HungUp);
    EXPECT_EQ(Receive(both.Near, 3), "las");
    EXPECT_FALSE(PollNow(both.Near, false, 1).HungUp);
    EXPECT_EQ(Receive(both.Near, 1), "t");
    EXPECT_TRUE(AwaitEvent(both.Near, &socketEvents::HungUp));
    EXPECT_FALSE(PollNow(both.Near, false, 1).Readable);
    char byte = 0;
    EXPECT_EQ(socketReceive(both.Near, &byte, 1), 0);
}

TEST_F(socketBytesContract, TellsOfTheEndOfAPeerThatWouldStillReceive)
{
    const ends both = Connect();
    EXPECT_TRUE(socketShutdownSend(both.Far));
    EXPECT_TRUE(AwaitEvent(both.Near, &socketEvents::HungUp));
    char byte = 0;
    EXPECT_EQ(socketReceive(both.Near, &byte, 1), 0);
}

TEST_F(socketBytesContract, GoesOnReceivingAfterItHasEndedSending)
{
    const ends both = Connect();
    EXPECT_TRUE(Send(both.Near, "last"));
    EXPECT_TRUE(socketShutdownSend(both.Near));
    EXPECT_EQ(Receive(both.Far, 100), "last");
    EXPECT_FALSE(PollNow(both.Near, false, 0).HungUp);
    EXPECT_TRUE(Send(both.Far, "answer"));
    EXPECT_EQ(Receive(both.Near, 6), "answer");
    socketClose(both.Far);
    EXPECT_TRUE(AwaitEvent(both.Near, &socketEvents::HungUp));
}

TEST_F(socketBytesContract, SendsNothingAfterItHasEndedSending)
{
    const ends both = Connect();
    EXPECT_TRUE(socketShutdownSend(both.Near));
    EXPECT_EQ(socketSend(both.Near, "x", 1), -1);
    EXPECT_EQ(LastFault(), socketFault::Shutdown);
}

TEST_F(socketBytesContract, EndsSendingOnlyOnAConnection)
{
    EXPECT_FALSE(socketShutdownSend(Open()));
    EXPECT_EQ(LastFault(), socketFault::Lost);
}

TEST_F(socketBytesContract, TakesWhatThereIsRoomFor)
{
    constexpr size_t Limit = 64u << 20;
    const ends both = Connect();
    EXPECT_TRUE(socketSetNonBlocking(both.Near));
    const size_t sent = Fill(both.Near, Limit);
    if (sent >= Limit)
        GTEST_SKIP() << "the system takes everything";
    EXPECT_EQ(LastFault(), socketFault::WouldBlock);
    EXPECT_FALSE(PollNow(both.Near, true, 0).Writable);

    // What was taken arrives whole, and makes room.
    EXPECT_EQ(Receive(both.Far, sent).size(), sent);
    EXPECT_TRUE(AwaitEvent(both.Near, &socketEvents::Writable));
    EXPECT_TRUE(Send(both.Near, "more"));
    EXPECT_EQ(Receive(both.Far, 4), "more");
}

TEST_F(socketBytesContract, LosesTheConnectionThatThePeerResets)
{
    const ends both = Connect();
    EXPECT_TRUE(socketSetNonBlocking(both.Near));
    EXPECT_TRUE(Send(both.Near, "unread"));
    EXPECT_TRUE(AwaitBytes(both.Far, 6));
    socketClose(both.Far);
    EXPECT_TRUE(AwaitEvent(both.Near, &socketEvents::HungUp));
    char byte = 0;
    if (contractResetIsAnEnd())
        GTEST_SKIP() << "the system takes it for an orderly end";
    EXPECT_EQ(socketReceive(both.Near, &byte, 1), -1);
    EXPECT_EQ(LastFault(), socketFault::Lost);
}

TEST_F(socketBytesContract, FailsToSendToAPeerThatHasGone)
{
    const ends both = Connect();
    EXPECT_TRUE(socketSetNonBlocking(both.Near));
    socketClose(both.Far);
    // The first bytes may go out before anybody knows.
    EXPECT_TRUE(contractAwait([&] { return socketSend(both.Near, "x", 1) < 0; }));
    EXPECT_TRUE(LastFault() == socketFault::Lost || LastFault() == socketFault::Shutdown);
}

}  // namespace
