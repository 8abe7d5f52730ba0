#include "platform/socket.h"

#include "tests/platform/linux/openFiles.h"
#include "tests/platform/socketTest.h"

#include <cerrno>

#include <fcntl.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <unistd.h>

namespace {

using linuxSocket = socketTest;

// The system's socket that has this port on its side and is no listener; -1 for none.
int DescriptorOf(uint16_t port)
{
    for (const int file : openFiles()) {
        sockaddr_in name = {};
        sockaddr_in peer = {};
        socklen_t size = sizeof(name);
        socklen_t peerSize = sizeof(peer);
        if (getsockname(file, reinterpret_cast<sockaddr*>(&name), &size) == 0 &&
            ntohs(name.sin_port) == port &&
            getpeername(file, reinterpret_cast<sockaddr*>(&peer), &peerSize) == 0)
            return file;
    }
    return -1;
}

int OptionOf(int descriptor, int level, int option)
{
    int value = -1;
    socklen_t size = sizeof(value);
    EXPECT_EQ(getsockopt(descriptor, level, option, &value, &size), 0);
    return value;
}

TEST_F(linuxSocket, KeepsNoDescriptor)
{
    const socketHandle listener = Listen();
    const socketAddress address = AddressOf(listener);
    const size_t before = openFiles().size();
    for (int turn = 0; turn < 50; ++turn) {
        const socketHandle near = socketOpen();
        EXPECT_TRUE(socketConnect(near, address));
        socketAddress peer;
        const socketHandle far = socketAccept(listener, peer);
        socketClose(near);
        socketClose(far);
        const socketHandle refused = socketOpen();
        EXPECT_FALSE(socketBind(refused, address));
        EXPECT_FALSE(socketConnect(refused, Loopback(1)));
        socketClose(refused);
    }
    EXPECT_EQ(openFiles().size(), before);
}

TEST_F(linuxSocket, KeepsSocketsFromProgramsThatItStarts)
{
    const std::vector<int> before = openFiles();
    const ends both = Connect();
    EXPECT_NE(both.Far, socketNone);
    EXPECT_GE(openFiles().size(), before.size() + 3);
    EXPECT_TRUE(openFilesToInherit(before).empty());
}

TEST_F(linuxSocket, TakesThePlaceOfNoStandardStream)
{
    const closedInput closed;
    const ends both = Connect();
    EXPECT_TRUE(Send(both.Near, "well"));
    EXPECT_EQ(Receive(both.Far, 4), "well");
    EXPECT_FALSE(closed.IsTaken());
}

TEST_F(linuxSocket, AsksASilentPeerInWholeSeconds)
{
    struct timeRow {
        uint32_t IdleMs;
        uint32_t IntervalMs;
        int Idle;
        int Interval;
    };
    constexpr timeRow Rows[] = {
        {15'000, 1'000, 15, 1},
        {14'001, 999, 15, 1},
        {0, 0, 1, 1},
        {7'200'000, 1'000, 7200, 1},
        {0xFFFFFFFF, 0xFFFFFFFF, 32767, 32767},
    };
    const ends both = Connect();
    const int near = DescriptorOf(AddressOf(both.Near).Port);
    ASSERT_GE(near, 0);
    for (const timeRow& row : Rows) {
        SCOPED_TRACE(row.IdleMs);
        EXPECT_TRUE(socketKeepAlive(both.Near, true, row.IdleMs, row.IntervalMs));
        EXPECT_EQ(OptionOf(near, SOL_SOCKET, SO_KEEPALIVE), 1);
        EXPECT_EQ(OptionOf(near, IPPROTO_TCP, TCP_KEEPIDLE), row.Idle);
        EXPECT_EQ(OptionOf(near, IPPROTO_TCP, TCP_KEEPINTVL), row.Interval);
    }
    EXPECT_TRUE(socketKeepAlive(both.Near, false, 0, 0));
    EXPECT_EQ(OptionOf(near, SOL_SOCKET, SO_KEEPALIVE), 0);
}

TEST_F(linuxSocket, HandsOutAPendingErrorOnce)
{
    const ends both = Connect();
    EXPECT_TRUE(Send(both.Near, "unread"));
    EXPECT_TRUE(AwaitBytes(both.Far, 6));
    socketClose(both.Far);
    uint32_t code = 0;
    EXPECT_TRUE(contractAwait([&] { return socketPending(both.Near, code) && code != 0; }));
    EXPECT_EQ(code, static_cast<uint32_t>(ECONNRESET));
    EXPECT_TRUE(socketPending(both.Near, code));
    EXPECT_EQ(code, 0u);
}

TEST_F(linuxSocket, KnowsWhatItsCodesMean)
{
    for (const int code :
         {EBADF, ENOTSOCK, ENETDOWN, ENETRESET, ECONNABORTED, ECONNRESET, ENOTCONN, ETIMEDOUT, EHOSTUNREACH})
        EXPECT_EQ(socketFaultOf(static_cast<uint32_t>(code)), socketFault::Lost) << code;
    EXPECT_EQ(socketFaultOf(EAGAIN), socketFault::WouldBlock);
    EXPECT_EQ(socketFaultOf(EPIPE), socketFault::Shutdown);
    for (const int code : {EPERM, EINPROGRESS, ECONNREFUSED, EADDRINUSE, EMFILE})
        EXPECT_EQ(socketFaultOf(static_cast<uint32_t>(code)), socketFault::Other) << code;
}

TEST_F(linuxSocket, FindsAddressesOfTheLongerKind)
{
    socketAddress address;
    ASSERT_TRUE(socketResolve("::1", "4003", socketFamily::IPv6, address));
    EXPECT_EQ(address.Family, socketFamily::IPv6);
    EXPECT_EQ(address.Port, 4003u);
    const uint8_t expected[16] = {0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 1};
    EXPECT_TRUE(std::equal(std::begin(expected), std::end(expected), address.Host));
    EXPECT_FALSE(socketResolve("::1", "4003", socketFamily::IPv4, address));
}

TEST_F(linuxSocket, SaysWhyItCannotOpenMore)
{
    rlimit before = {};
    ASSERT_EQ(getrlimit(RLIMIT_NOFILE, &before), 0);
    const rlimit none = {0, before.rlim_max};
    ASSERT_EQ(setrlimit(RLIMIT_NOFILE, &none), 0);
    const socketHandle handle = socketOpen();
    const uint32_t code = socketError();
    ASSERT_EQ(setrlimit(RLIMIT_NOFILE, &before), 0);
    EXPECT_EQ(handle, socketNone);
    EXPECT_EQ(code, static_cast<uint32_t>(EMFILE));
}

}  // namespace
