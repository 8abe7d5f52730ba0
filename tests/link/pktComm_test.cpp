#include "link/pktComm.h"
#include "tests/link/connection.h"

#include <cstring>
#include <gmock/gmock.h>

using testing::ElementsAre;
using testing::IsEmpty;
using testing::StartsWith;

namespace {

std::string message(uint32_t key, const std::string& body)
{
    const msgHead head{key, static_cast<uint32_t>(body.size())};
    return std::string(reinterpret_cast<const char*>(&head), sizeof head) + body;
}

std::string head(uint32_t key, uint32_t length)
{
    const msgHead made{key, length};
    return std::string(reinterpret_cast<const char*>(&made), sizeof made);
}

std::string textOf(const msgHead& message)
{
    const auto body = message.Body();
    return {body.begin(), body.end()};
}

constexpr uint32_t otherKey = 0x12345678;

class pktCommTest : public linkTest
{
protected:
    pktCommTest()
    {
        fakePeer(peerPort);
        Client.SetAddress(loopback(peerPort));
        Comm.OnMessage = [this](const msgHead& arrived) {
            const std::lock_guard lock(Mutex);
            Keys.push_back(arrived.key);
            Bodies.push_back(textOf(arrived));
        };
        Comm.OnEvent = [this](const uint32_t& event) { Told.Note(event); };
    }

    ~pktCommTest() override { Client.Disconnect(true); }

    void ConnectAndAwait()
    {
        const size_t before = Told.Count(netTCPCli::EventConnected);
        Client.Connect();
        ASSERT_TRUE(await([&] { return Told.Count(netTCPCli::EventConnected) > before; }));
    }

    unsigned Peer() { return fakePeerOf(peerPort); }

    std::vector<std::string> Arrived()
    {
        const std::lock_guard lock(Mutex);
        return Bodies;
    }

    bool AwaitArrived(size_t count)
    {
        return await([&] { return Arrived().size() >= count; });
    }

    std::mutex Mutex;
    std::vector<uint32_t> Keys;
    std::vector<std::string> Bodies;
    witness Told;
    netTCPCli Client;
    pktComm Comm{&Client, "Skyreckoning Client v20240612"};
};

const std::string greeting = message(pktKey::Handshake, "Skyreckoning Client v20240612");

TEST_F(pktCommTest, GreetsAndLooksAfterTheConnection)
{
    ConnectAndAwait();
    EXPECT_TRUE(await([&] { return fakePeerReceived(Peer()) == greeting; }));
    EXPECT_EQ(greeting.substr(0, 8), std::string("\x01\x00\xFF\xFF\x1D\x00\x00\x00", 8));
    EXPECT_EQ(fakeCallCount("socketKeepAlive"), 1U);
}

TEST_F(pktCommTest, TakesAMessageThatIsSplitAnywhere)
{
    ConnectAndAwait();
    const std::string whole = message(otherKey, "the body");
    for (size_t cut = 1; cut < whole.size(); ++cut) {
        const uint64_t before = Client.RxBytes;
        fakePeerSend(Peer(), whole.substr(0, cut));
        ASSERT_TRUE(await([&] { return Client.RxBytes == before + cut; })) << cut;
        fakePeerSend(Peer(), whole.substr(cut));
        ASSERT_TRUE(AwaitArrived(cut)) << cut;
        ASSERT_EQ(Arrived().back(), "the body");
    }
}

TEST_F(pktCommTest, TakesMessagesThatArriveTogetherOneByOne)
{
    ConnectAndAwait();
    fakePeerSend(Peer(), message(otherKey, "one") + message(otherKey, "") + message(otherKey, "three"));
    ASSERT_TRUE(AwaitArrived(3));
    EXPECT_THAT(Arrived(), ElementsAre("one", "", "three"));
}

TEST_F(pktCommTest, AsksForTheHeadAloneSoThatNoByteOfTheNextMessageIsTaken)
{
    std::vector<uint64_t> taken;
    Comm.OnMessage = [&](const msgHead&) {
        const std::lock_guard lock(Mutex);
        taken.push_back(Client.RxBytes);
        Bodies.emplace_back();
    };
    ConnectAndAwait();
    fakePeerSend(Peer(), message(otherKey, "abc") + message(otherKey, "de"));
    ASSERT_TRUE(AwaitArrived(2));
    EXPECT_THAT(taken, ElementsAre(11U, 21U));
}

TEST_F(pktCommTest, DeliversAMessageWithoutABodyAsSoonAsItsHeadIsThere)
{
    ConnectAndAwait();
    fakePeerSend(Peer(), head(otherKey, 0));
    ASSERT_TRUE(AwaitArrived(1));
    EXPECT_EQ(Arrived()[0], "");
}

TEST_F(pktCommTest, EchoesANoOperationAndTellsNobody)
{
    ConnectAndAwait();
    const std::string noop = message(pktKey::NoOperation, "are you there");
    EXPECT_THAT(noop, StartsWith("NOOP"));
    fakePeerSend(Peer(), noop);
    EXPECT_TRUE(await([&] { return fakePeerReceived(Peer()) == greeting + noop; }));
    EXPECT_THAT(Arrived(), IsEmpty());
}

TEST_F(pktCommTest, PassesOnMessagesThatItDoesNotKnow)
{
    ConnectAndAwait();
    fakePeerSend(Peer(), message(0, "zero") + message(0xFFFFFFFF, "all"));
    ASSERT_TRUE(AwaitArrived(2));
    EXPECT_THAT(Keys, ElementsAre(0U, 0xFFFFFFFFU));
}

TEST_F(pktCommTest, SendsAMessageWhoseTailLiesElsewhere)
{
    ConnectAndAwait();
    const std::string payload = "raw bytes";
    Comm.SendStream(reinterpret_cast<const uint8_t*>(payload.data()), payload.size());
    EXPECT_TRUE(await([&] {
        return fakePeerReceived(Peer()) == greeting + std::string("GNSS\x0D\x00\x00\x00STRM", 12) + payload;
    }));
}

TEST_F(pktCommTest, SendsAMessageWhoseBodyStandsBehindItsHead)
{
    ConnectAndAwait();
    const std::string whole = message(otherKey, "body");
    alignas(msgHead) uint8_t bytes[32];
    std::copy(whole.begin(), whole.end(), bytes);
    Comm.Send(reinterpret_cast<const msgHead*>(bytes));
    EXPECT_TRUE(await([&] { return fakePeerReceived(Peer()) == greeting + whole; }));
}

TEST_F(pktCommTest, StopsTheProgramForATailLongerThanItsMessage)
{
    const msgHead made{otherKey, 3};
    const uint8_t tail[4] = {};
    EXPECT_THROW(Comm.Send(&made, tail, 4), fakeBreak);
}

TEST_F(pktCommTest, SendsNothingWithoutAConnection)
{
    Comm.Stream(nullptr);
    const msgHead made{otherKey, 0};
    Comm.Send(&made);
    EXPECT_EQ(fakeCallCount("socketSend"), 0U);
}

TEST_F(pktCommTest, ForgetsACutMessageWhenItConnectsAgain)
{
    Client.RetryMs = 20;
    ConnectAndAwait();
    fakePeerSend(Peer(), head(otherKey, 100) + "cut");
    fakePeerClose(Peer());
    ASSERT_TRUE(await([&] { return Told.Count(netTCPCli::EventConnected) == 2; }));
    fakePeerSend(Peer(), message(otherKey, "whole"));
    ASSERT_TRUE(AwaitArrived(1));
    EXPECT_THAT(Arrived(), ElementsAre("whole"));
}

TEST_F(pktCommTest, TakesTheLongestMessageAndEndsTheConnectionForALongerOne)
{
    ConnectAndAwait();
    const std::string longest(pktBuffer::LengthLimit, 'L');
    fakePeerSend(Peer(), message(otherKey, longest));
    ASSERT_TRUE(AwaitArrived(1));
    EXPECT_EQ(Arrived()[0].size(), longest.size());
    fakePeerSend(Peer(), head(otherKey, pktBuffer::LengthLimit + 1));
    EXPECT_TRUE(await([&] { return Told.Count(netTCPCli::EventDisconnected) == 1; }));
    EXPECT_EQ(Arrived().size(), 1U);
}

TEST_F(pktCommTest, PassesOnEveryEventButTheArrivalOfData)
{
    ConnectAndAwait();
    fakePeerSend(Peer(), message(otherKey, "x"));
    ASSERT_TRUE(AwaitArrived(1));
    Client.Disconnect(true);
    EXPECT_THAT(Told.Events(), ElementsAre(0U, 2U));
}

TEST_F(pktCommTest, LetsAHandlerAnswer)
{
    Comm.OnMessage = [this](const msgHead& arrived) { Comm.Send(&arrived); };
    ConnectAndAwait();
    fakePeerSend(Peer(), message(otherKey, "echo me"));
    EXPECT_TRUE(await([&] { return fakePeerReceived(Peer()) == greeting + message(otherKey, "echo me"); }));
}

TEST_F(pktCommTest, MayBeDeletedByTheHandlerOfItsEnd)
{
    netTCPCli client;
    client.SetAddress(loopback(peerPort));
    auto comm = std::make_unique<pktComm>(&client, "x");
    std::atomic<bool> gone{false};
    comm->OnEvent = [&](const uint32_t& event) {
        if (event != netTCPCli::EventDisconnected)
            return;
        comm.reset();
        gone = true;
    };
    client.Connect();
    ASSERT_TRUE(await([&] { return client.Is(netTCPBase::Connected); }));
    client.Disconnect(true);
    EXPECT_TRUE(gone);
}

TEST(pktStream, IsFoundInAStreamMessageAlone)
{
    struct row {
        uint32_t Key;
        std::string Body;
        bool Found;
        std::string Payload;
    };
    const row rows[] = {
        {pktKey::GNSS, "STRMdata", true, "data"}, {pktKey::GNSS, "STRM", true, ""},
        {pktKey::GNSS, "STR", false, ""},         {pktKey::GNSS, "", false, ""},
        {pktKey::GNSS, "XXXXdata", false, ""},    {pktKey::NoOperation, "STRMdata", false, ""},
    };
    for (const row& each : rows) {
        const std::string whole = message(each.Key, each.Body);
        alignas(msgHead) uint8_t bytes[32] = {};
        std::copy(whole.begin(), whole.end(), bytes);
        const auto found = pktStreamOf(*reinterpret_cast<const msgHead*>(bytes));
        ASSERT_EQ(found.has_value(), each.Found) << each.Body;
        const std::string payload = found ? std::string(found->begin(), found->end()) : std::string();
        EXPECT_EQ(payload, each.Payload);
    }
}

TEST(pktGreeting, IsAServersAlsoWithALongerVersion)
{
    struct row {
        uint32_t Key;
        std::string Text;
        bool IsServer;
    };
    const row rows[] = {
        {pktKey::Handshake, "Skyreckoning Server v20240612", true},
        {pktKey::Handshake, "Skyreckoning Server v20240612-2 and more", true},
        {pktKey::Handshake, "Skyreckoning Server v2024061", false},
        {pktKey::Handshake, "Skyreckoning Server v20230101", false},
        {pktKey::Handshake, "Skyreckoning Client v20240612", false},
        {pktKey::Handshake, "", false},
        {pktKey::GNSS, "Skyreckoning Server v20240612", false},
    };
    for (const row& each : rows) {
        const std::string whole = message(each.Key, each.Text);
        alignas(msgHead) uint8_t bytes[64] = {};
        std::copy(whole.begin(), whole.end(), bytes);
        EXPECT_EQ(pktIsServer(*reinterpret_cast<const msgHead*>(bytes)), each.IsServer) << each.Text;
    }
}

}  // namespace
