#include "platform/socket.h"

#include "tests/platform/socketTest.h"

namespace {

using win32Socket = socketTest;

TEST_F(win32Socket, KnowsWhatItsCodesMean)
{
    for (const uint32_t code : {10038u, 10050u, 10052u, 10053u, 10054u, 10057u, 10060u, 10065u})
        EXPECT_EQ(socketFaultOf(code), socketFault::Lost) << code;
    EXPECT_EQ(socketFaultOf(10035), socketFault::WouldBlock);
    EXPECT_EQ(socketFaultOf(10058), socketFault::Shutdown);
    for (const uint32_t code : {5u, 10013u, 10048u, 10061u, 11001u})
        EXPECT_EQ(socketFaultOf(code), socketFault::Other) << code;
}

TEST_F(win32Socket, FindsAddressesOfTheLongerKind)
{
    socketAddress address;
    ASSERT_TRUE(socketResolve("::1", "4003", socketFamily::IPv6, address));
    EXPECT_EQ(address.Family, socketFamily::IPv6);
    EXPECT_EQ(address.Port, 4003u);
    const uint8_t expected[16] = {0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 1};
    EXPECT_TRUE(std::equal(std::begin(expected), std::end(expected), address.Host));
}

TEST_F(win32Socket, TellsWhyAConnectionWasRefused)
{
    constexpr uint32_t Refused = 10061;
    const socketHandle before = Listen();
    const socketAddress address = AddressOf(before);
    socketClose(before);
    EXPECT_FALSE(socketConnect(Open(), address));
    EXPECT_EQ(socketError(), Refused);
}

}  // namespace
