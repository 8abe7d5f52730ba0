#include "platform/socket.h"

#include "tests/await.h"
#include "tests/platform/socketTest.h"

#include <thread>

// From a new socket to its end.

namespace {

using socketContract = socketTest;

// Calls every function on a handle that is not open.
void ExpectHarmless(socketHandle handle)
{
    SCOPED_TRACE(handle);
    socketAddress address;
    socketEvents events{true, true, true};
    uint32_t number = 0;
    char byte = 'x';
    const auto lost = [] { return socketFaultOf(socketError()) == socketFault::Lost; };
    EXPECT_TRUE(!socketConnect(handle, {socketFamily::IPv4, 9, {127, 0, 0, 1}, 0}) && lost());
    EXPECT_TRUE(!socketBind(handle, {}) && lost());
    EXPECT_TRUE(!socketListen(handle, 1) && lost());
    EXPECT_TRUE(socketAccept(handle, address) == socketNone && lost());
    EXPECT_TRUE(!socketLocal(handle, address) && lost());
    EXPECT_TRUE(!socketSetNonBlocking(handle) && lost());
    EXPECT_TRUE(socketSend(handle, &byte, 1) == -1 && lost());
    EXPECT_TRUE(socketReceive(handle, &byte, 1) == -1 && lost());
    EXPECT_TRUE(!socketAvailable(handle, number) && lost());
    EXPECT_TRUE(!socketShutdownSend(handle) && lost());
    EXPECT_TRUE(!socketSendBuffer(handle, number) && lost());
    EXPECT_TRUE(!socketPending(handle, number) && lost());
    EXPECT_TRUE(!socketKeepAlive(handle, true, 1000, 1000) && lost());
    EXPECT_TRUE(socketPoll(handle, true, 0, events) == -1 && lost());
    EXPECT_FALSE(events.Readable || events.Writable || events.HungUp);
    socketClose(handle);
}

TEST_F(socketContract, StartsMoreThanOnce)
{
    EXPECT_TRUE(socketStart());
    socketEnd();
    EXPECT_NE(Open(), socketNone);
}

TEST_F(socketContract, ConnectsTwoOfThisMachine)
{
    const socketHandle listener = Listen();
    const socketHandle near = Open();
    ASSERT_TRUE(socketConnect(near, AddressOf(listener)));
    socketAddress peer;
    const socketHandle far = Keep(socketAccept(listener, peer));
    ASSERT_NE(far, socketNone);
    EXPECT_EQ(peer.Family, socketFamily::IPv4);
    EXPECT_EQ(peer.Port, AddressOf(near).Port);
    EXPECT_EQ(std::string(peer.Host, peer.Host + 4), std::string("\x7F\0\0\1", 4));
    EXPECT_EQ(AddressOf(far).Port, AddressOf(listener).Port);
    EXPECT_NE(AddressOf(far).Port, 0u);
}

TEST_F(socketContract, IsRefusedWhereNobodyListens)
{
    const socketHandle before = Listen();
    const socketAddress address = AddressOf(before);
    socketClose(before);
    EXPECT_FALSE(socketConnect(Open(), address));
    EXPECT_NE(socketError(), 0u);
    EXPECT_EQ(LastFault(), socketFault::Other);
}

TEST_F(socketContract, ConnectsAlsoOnASocketThatDoesNotBlock)
{
    const socketHandle listener = Listen();
    const socketHandle near = Open();
    EXPECT_TRUE(socketSetNonBlocking(near));
    EXPECT_TRUE(socketConnect(near, AddressOf(listener)));
    EXPECT_TRUE(Send(near, "here"));
}

TEST_F(socketContract, ConnectsToNoAddressOfAnUnknownKind)
{
    socketAddress address = AddressOf(Listen());
    address.Family = socketFamily::Other;
    EXPECT_FALSE(socketConnect(Open(), address));
    EXPECT_FALSE(socketBind(Open(), address));
    EXPECT_EQ(LastFault(), socketFault::Other);
}

TEST_F(socketContract, ConnectsOnce)
{
    const socketHandle listener = Listen();
    const ends both = Connect(listener);
    EXPECT_FALSE(socketConnect(both.Near, AddressOf(listener)));
    EXPECT_TRUE(Send(both.Near, "still"));
    EXPECT_EQ(Receive(both.Far, 5), "still");
}

TEST_F(socketContract, AcceptsNothingWhenNobodyHasCome)
{
    const socketHandle listener = Listen();
    EXPECT_TRUE(socketSetNonBlocking(listener));
    socketAddress peer;
    EXPECT_EQ(socketAccept(listener, peer), socketNone);
    EXPECT_EQ(LastFault(), socketFault::WouldBlock);
}

TEST_F(socketContract, WaitsForSomebodyToCome)
{
    const socketHandle listener = Listen();
    std::jthread visitor([&] { socketConnect(Open(), AddressOf(listener)); });
    socketAddress peer;
    EXPECT_NE(Keep(socketAccept(listener, peer)), socketNone);
    visitor.join();
}

TEST_F(socketContract, TakesVisitorsInTheirOrder)
{
    const socketHandle listener = Listen();
    uint16_t ports[3] = {};
    for (uint16_t& port : ports) {
        const socketHandle visitor = Open();
        ASSERT_TRUE(socketConnect(visitor, AddressOf(listener)));
        port = AddressOf(visitor).Port;
    }
    for (const uint16_t port : ports) {
        socketAddress peer;
        EXPECT_NE(Keep(socketAccept(listener, peer)), socketNone);
        EXPECT_EQ(peer.Port, port);
    }
}

TEST_F(socketContract, AcceptsOnlyWhereItListens)
{
    socketAddress peer;
    EXPECT_EQ(socketAccept(Open(), peer), socketNone);
    EXPECT_NE(LastFault(), socketFault::WouldBlock);
}

// A server's socket that does not block says nothing about those it accepts.
TEST_F(socketContract, AcceptsSocketsThatBlock)
{
    const socketHandle listener = Listen();
    EXPECT_TRUE(socketSetNonBlocking(listener));
    const socketHandle near = Open();
    ASSERT_TRUE(socketConnect(near, AddressOf(listener)));
    socketAddress peer;
    socketHandle far = socketNone;
    ASSERT_TRUE(contractAwait([&] { return (far = socketAccept(listener, peer)) != socketNone; }));
    Keep(far);
    std::string got;
    std::jthread reader([&] { got = Receive(far, 4); });
    letOthersRun();
    EXPECT_TRUE(Send(near, "late"));
    reader.join();
    EXPECT_EQ(got, "late");
}

TEST_F(socketContract, TakesNoAddressOnWhichAnotherListens)
{
    const socketAddress address = AddressOf(Listen());
    EXPECT_FALSE(socketBind(Open(), address));
    EXPECT_EQ(LastFault(), socketFault::Other);
}

TEST_F(socketContract, TakesAnAddressWhoseOwnerHasJustEnded)
{
    const socketHandle listener = Listen();
    const socketAddress address = AddressOf(listener);
    const ends both = Connect(listener);
    // The one that closes first keeps the address for a while.
    socketClose(both.Far);
    EXPECT_EQ(Receive(both.Near, 1), "");
    socketClose(both.Near);
    socketClose(listener);
    const socketHandle next = Open();
    EXPECT_TRUE(socketBind(next, address));
    EXPECT_TRUE(socketListen(next, 1));
    EXPECT_TRUE(socketConnect(Open(), address));
}

TEST_F(socketContract, KeepsManySocketsAtOnce)
{
    constexpr size_t Pairs = 100;
    const socketHandle listener = Listen();
    std::vector<ends> all;
    for (size_t each = 0; each < Pairs; ++each)
        all.push_back(Connect(listener));
    for (size_t each = 0; each < Pairs; ++each)
        EXPECT_TRUE(Send(all[each].Near, std::to_string(1000 + each)));
    for (size_t each = 0; each < Pairs; ++each)
        EXPECT_EQ(Receive(all[each].Far, 4), std::to_string(1000 + each));
}

TEST_F(socketContract, IsHarmlessWithHandlesThatNeverWere)
{
    for (const socketHandle handle : {socketNone, socketHandle{0}, socketHandle{1'000'000}})
        ExpectHarmless(handle);
}

TEST_F(socketContract, IsHarmlessOnceClosed)
{
    const ends both = Connect();
    socketClose(both.Near);
    ExpectHarmless(both.Near);
}

TEST_F(socketContract, KeepsAnOldHandleOffANewSocket)
{
    const socketHandle listener = Listen();
    const ends first = Connect(listener);
    socketClose(first.Near);
    socketClose(first.Far);
    const ends second = Connect(listener);
    EXPECT_TRUE(Send(second.Near, "mine"));
    EXPECT_TRUE(AwaitBytes(second.Far, 4));
    ExpectHarmless(first.Near);
    ExpectHarmless(first.Far);
    EXPECT_EQ(Receive(second.Far, 4), "mine");
    EXPECT_TRUE(Send(second.Far, "yours"));
    EXPECT_EQ(Receive(second.Near, 5), "yours");
}

TEST_F(socketContract, HasNoPendingErrorWhenAllIsWell)
{
    const ends both = Connect();
    uint32_t code = 17;
    EXPECT_TRUE(socketPending(both.Near, code));
    EXPECT_EQ(code, 0u);
}

TEST_F(socketContract, AsksASilentPeerWhetherItIsThere)
{
    const ends both = Connect();
    EXPECT_TRUE(socketKeepAlive(both.Near, true, 15'000, 1'000));
    EXPECT_TRUE(socketKeepAlive(both.Near, true, 1, 1));
    EXPECT_TRUE(socketKeepAlive(both.Near, false, 0, 0));
    EXPECT_TRUE(socketKeepAlive(both.Near, false, 7'200'000, 1'000));
    EXPECT_TRUE(Send(both.Near, "there"));
    EXPECT_EQ(Receive(both.Far, 5), "there");
}

TEST_F(socketContract, TellsTheSizeOfTheSystemsBuffer)
{
    uint32_t size = 0;
    EXPECT_TRUE(socketSendBuffer(Connect().Near, size));
    EXPECT_GT(size, 1000u);
}

TEST_F(socketContract, KeepsFailuresToTheirThread)
{
    ExpectHarmless(socketNone);
    EXPECT_NE(socketError(), 0u);
    std::jthread([] { EXPECT_EQ(socketError(), 0u); }).join();
    EXPECT_NE(Open(), socketNone);
    EXPECT_NE(socketError(), 0u);
}

TEST_F(socketContract, HasNoFaultForNoError)
{
    EXPECT_EQ(socketFaultOf(0), socketFault::None);
    for (const uint32_t code : {1u, 2u, 0x7FFFFFFFu, 0xFFFFFFFFu})
        EXPECT_EQ(socketFaultOf(code), socketFault::Other) << code;
}

}  // namespace
