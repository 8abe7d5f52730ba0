// A server and its clients, as two copies of the program have them.
#include "link/gnssCommClient.h"
#include "link/gnssCommServer.h"
#include "tests/link/connection.h"

namespace {

constexpr uint16_t serverPort = 4003;

std::string message(uint32_t key, const std::string& body)
{
    const msgHead head{key, static_cast<uint32_t>(body.size())};
    return std::string(reinterpret_cast<const char*>(&head), sizeof head) + body;
}

// A copy of the program at the other end.
class client
{
public:
    client()
    {
        Link.OnStream = [this](const uint8_t* bytes, size_t count) {
            const std::lock_guard lock(Mutex);
            Bytes.append(bytes, bytes + count);
        };
        Link.OnWrongServer = [this] { ++WrongServers; };
        Link.OnEvent = [this](const uint32_t& event) { Told.Note(event); };
    }
    ~client() { Link.Disconnect(true); }

    std::string Received()
    {
        const std::lock_guard lock(Mutex);
        return Bytes;
    }

    void Send(const std::string& text)
    {
        Link.Send(reinterpret_cast<const uint8_t*>(text.data()), text.size());
    }

    std::mutex Mutex;
    std::string Bytes;
    std::atomic<unsigned> WrongServers{0};
    witness Told;
    gnssCommClient Link;
};

class gnssCommServerTest : public linkTest
{
protected:
    gnssCommServerTest()
    {
        Server.OnCommand = [this](const uint8_t* bytes, size_t count) {
            const std::lock_guard lock(Mutex);
            Commands.append(bytes, bytes + count);
        };
        Server.OnClients = [this](unsigned count) {
            const std::lock_guard lock(Mutex);
            Counts.push_back(count);
        };
        Server.OnFailed = [this] { ++Failures; };
        Server.OnBroken = [this] { ++Breaks; };
    }

    ~gnssCommServerTest() override { Server.Stop(true); }

    void Start()
    {
        Server.Start(serverPort);
        ASSERT_TRUE(await([this] { return Server.ListeningPort() == serverPort; }));
    }

    bool AwaitClients(unsigned count)
    {
        return await([&] { return Server.Clients() == count; });
    }

    void Serve(const std::string& bytes) { Server.Send({bytes.begin(), bytes.end()}); }

    // A client counts a moment before bytes are sent to it, so some are sent until the first comes through.
    bool AwaitStream(client& watched)
    {
        return await([&] {
            Serve("!");
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
            return !watched.Received().empty();
        });
    }

    // What a client has received behind those.
    static std::string Behind(client& watched)
    {
        const std::string all = watched.Received();
        return all.substr(std::min(all.find_first_not_of('!'), all.size()));
    }

    std::string TakeCommands()
    {
        const std::lock_guard lock(Mutex);
        return Commands;
    }

    std::vector<unsigned> TakeCounts()
    {
        const std::lock_guard lock(Mutex);
        return Counts;
    }

    std::mutex Mutex;
    std::string Commands;
    std::vector<unsigned> Counts;
    std::atomic<unsigned> Failures{0};
    std::atomic<unsigned> Breaks{0};
    gnssCommServer Server;
};

TEST_F(gnssCommServerTest, GivesEveryClientAllBytesAndTakesTheCommandsOfEach)
{
    Start();
    client first;
    client second;
    EXPECT_TRUE(first.Link.Connect("127.0.0.1"));
    EXPECT_TRUE(second.Link.Connect("127.0.0.1:4003"));
    ASSERT_TRUE(AwaitStream(first));
    ASSERT_TRUE(AwaitStream(second));
    Serve("$GPGGA");
    Serve(",1,2,3\r\n");
    EXPECT_TRUE(await([&] { return Behind(first) == "$GPGGA,1,2,3\r\n"; }));
    EXPECT_TRUE(await([&] { return Behind(second) == "$GPGGA,1,2,3\r\n"; }));
    first.Send("ask");
    ASSERT_TRUE(await([&] { return TakeCommands() == "ask"; }));
    second.Send("tell");
    EXPECT_TRUE(await([&] { return TakeCommands() == "asktell"; }));
    EXPECT_EQ(first.WrongServers, 0U);
}

TEST_F(gnssCommServerTest, SendsNothingToNobody)
{
    Start();
    Serve("lost");
    EXPECT_EQ(fakeCallCount("socketSend"), 0U);
}

TEST_F(gnssCommServerTest, CountsItsClientsAsTheyComeAndGo)
{
    Start();
    auto first = std::make_unique<client>();
    first->Link.Connect("127.0.0.1");
    EXPECT_TRUE(await([this] { return TakeCounts() == std::vector<unsigned>{1}; }));
    client second;
    second.Link.Connect("127.0.0.1");
    EXPECT_TRUE(await([this] { return TakeCounts() == std::vector<unsigned>{1, 2}; }));
    EXPECT_EQ(Server.Clients(), 2U);
    first.reset();
    EXPECT_TRUE(await([this] { return TakeCounts() == std::vector<unsigned>{1, 2, 1}; }));
    EXPECT_EQ(Server.Clients(), 1U);
}

TEST_F(gnssCommServerTest, StreamsAlsoToAClientWithAnotherGreeting)
{
    Start();
    const unsigned peer = fakePeerConnect(serverPort);
    fakePeerSend(peer, message(pktKey::Handshake, "Somebody v1"));
    ASSERT_TRUE(AwaitClients(1));
    const std::string greeting = message(pktKey::Handshake, "Skyreckoning Server v20240612");
    ASSERT_TRUE(await([&] { return fakePeerReceived(peer) == greeting; }));
    Serve("bytes");
    EXPECT_TRUE(
        await([&] { return fakePeerReceived(peer) == greeting + message(pktKey::GNSS, "STRMbytes"); }));
}

TEST_F(gnssCommServerTest, IgnoresWhatIsNoCommand)
{
    Start();
    const unsigned peer = fakePeerConnect(serverPort);
    ASSERT_TRUE(AwaitClients(1));
    fakePeerSend(peer, message(pktKey::GNSS, "STR") + message(pktKey::GNSS, "") +
                           message(pktKey::GNSS, "OTHRxx") + message(0x1234, "STRMyy") +
                           message(pktKey::GNSS, "STRMreal"));
    EXPECT_TRUE(await([&] { return TakeCommands() == "real"; }));
}

TEST_F(gnssCommServerTest, TellsAServerThatBrokeAndNotOneThatWasEnded)
{
    Start();
    Server.Start(serverPort + 1);
    ASSERT_TRUE(await([this] { return Server.ListeningPort() == serverPort + 1; }));
    Server.Stop(false);
    ASSERT_TRUE(await([this] { return Server.ListeningPort() == 0; }));
    Server.Stop(true);
    EXPECT_EQ(Breaks, 0U);
    Start();
    fakeSocketFail("socketAccept", fakeCode(socketFault::Other));
    EXPECT_TRUE(await([this] { return Breaks == 1; }));
    EXPECT_EQ(Failures, 0U);
}

TEST_F(gnssCommServerTest, TellsThatItsPortCannotBeHad)
{
    fakeSocketFail("socketBind", fakeCode(socketFault::Other));
    Server.Start(serverPort);
    EXPECT_TRUE(await([this] { return Failures == 1; }));
    Start();
    EXPECT_EQ(Failures, 1U);
}

TEST_F(gnssCommServerTest, StartsAndStopsAgainAndAgain)
{
    client watcher;
    watcher.Link.Connect("127.0.0.1");
    for (int round = 0; round < 10; ++round) {
        Server.Start(serverPort);
        ASSERT_TRUE(await([this] { return Server.ListeningPort() == serverPort; })) << round;
        ASSERT_TRUE(AwaitClients(1)) << round;
        Server.Stop(round % 2 == 0);
        ASSERT_TRUE(AwaitClients(0)) << round;
    }
}

TEST_F(gnssCommServerTest, DropsAClientThatDoesNotReadAndServesTheOthers)
{
    Server.QueueLimit = 65536;
    Start();
    client reader;
    reader.Link.Connect("127.0.0.1");
    ASSERT_TRUE(AwaitStream(reader));
    // From here on nobody's bytes go out at once, and the queue fills.
    fakeSendRoom(0);
    const std::string block(4096, 'x');
    for (int i = 0; i < 12; ++i)
        Serve(block);
    letOthersRun();
    EXPECT_EQ(reader.Told.Count(netTCPCli::EventDisconnected), 0U);
    for (int i = 0; i < 10; ++i)
        Serve(block);
    EXPECT_TRUE(await([&] { return reader.Told.Count(netTCPCli::EventDisconnected) > 0; }));
    fakeSendRoom(1'000'000);
}

TEST_F(gnssCommServerTest, ComesBackToAServerThatReturns)
{
    Start();
    client watcher;
    watcher.Link.Connect("127.0.0.1");
    ASSERT_TRUE(await([&] { return watcher.Told.Count(netTCPCli::EventConnected) == 1; }));
    Server.Stop(true);
    ASSERT_TRUE(await([&] { return watcher.Told.Count(netTCPCli::EventDisconnected) >= 1; }));
    Start();
    EXPECT_TRUE(await([&] { return watcher.Told.Count(netTCPCli::EventConnected) == 2; }));
}

TEST(gnssCommClientTest, ReachesTheUsualPortWhenTheAddressNamesNone)
{
    runningClock clock;
    fakePeer(4003);
    fakePeer(5000);
    client watcher;
    watcher.Link.Connect("127.0.0.1:5000");
    ASSERT_TRUE(await([] { return fakePeerOf(5000) != 0; }));
    watcher.Link.Disconnect(true);
    watcher.Link.Connect("127.0.0.1");
    EXPECT_TRUE(await([] { return fakePeerOf(4003) != 0; }));
    EXPECT_EQ(watcher.Link.Link.GetAddress().Port, 4003);
}

TEST(gnssCommClientTest, SaysThatANameHasNoAddress)
{
    runningClock clock;
    client watcher;
    EXPECT_FALSE(watcher.Link.Connect("no.such.host"));
}

struct greetingCase {
    const char* Text;
    bool IsRight;
};

TEST(gnssCommClientTest, KnowsAServerByItsGreeting)
{
    runningClock clock;
    const greetingCase cases[] = {
        {"Skyreckoning Server v20240612", true},
        {"Skyreckoning Server v20240612 and later", true},
        {"Skyreckoning Server v2024", false},
        {"Another Server", false},
    };
    uint16_t port = 6000;
    for (const greetingCase& each : cases) {
        fakePeer(++port);
        client watcher;
        watcher.Link.Connect("127.0.0.1:" + std::to_string(port));
        ASSERT_TRUE(await([&] { return fakePeerOf(port) != 0; }));
        fakePeerSend(fakePeerOf(port),
                     message(pktKey::Handshake, each.Text) + message(pktKey::GNSS, "STRMx"));
        ASSERT_TRUE(await([&] { return watcher.Received() == "x"; })) << each.Text;
        EXPECT_EQ(watcher.WrongServers, each.IsRight ? 0U : 1U) << each.Text;
    }
}

}  // namespace
