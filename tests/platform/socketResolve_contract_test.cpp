// Names of hosts and services.
#include "tests/platform/socketTest.h"

#include <array>

namespace {

using socketResolveContract = socketTest;

struct nameRow {
    const char* Host;
    const char* Service;
    std::array<uint8_t, 4> Address;
    uint16_t Port;
};

TEST_F(socketResolveContract, FindsTheAddress)
{
    const nameRow rows[] = {
        {"127.0.0.1", "", {127, 0, 0, 1}, 0},      {"127.0.0.1", "4003", {127, 0, 0, 1}, 4003},
        {"192.0.2.255", "1", {192, 0, 2, 255}, 1}, {"192.0.2.1", "65535", {192, 0, 2, 1}, 65535},
        {"localhost", "", {127, 0, 0, 1}, 0},      {"localhost", "80", {127, 0, 0, 1}, 80},
        {"localhost", "http", {127, 0, 0, 1}, 80},
    };
    for (const nameRow& row : rows) {
        SCOPED_TRACE(std::string(row.Host) + ' ' + row.Service);
        socketAddress address{socketFamily::IPv6, 1, {1, 2, 3, 4}, 5};
        ASSERT_TRUE(socketResolve(row.Host, row.Service, socketFamily::IPv4, address));
        EXPECT_EQ(address.Family, socketFamily::IPv4);
        EXPECT_EQ(address.Port, row.Port);
        EXPECT_TRUE(std::equal(row.Address.begin(), row.Address.end(), address.Host));
    }
}

TEST_F(socketResolveContract, FindsNothing)
{
    struct badRow {
        std::string Host;
        std::string Service;
    };
    const badRow rows[] = {
        {"", ""},
        {"", "80"},
        {"no-such-host.invalid", ""},
        {"no-such-host.invalid", "80"},
        {"127.0.0.1", "no-such-service"},
        {"127.0.0.1", "65536"},
        {"127.0.0.1", "-1"},
        {"127.0.0.1", "+80"},
        {"127.0.0.1", "+65616"},
        {"127.0.0.1", " 65616"},
        {"127.0.0.1", "80 "},
        {std::string("127.0.0.1\0x", 11), ""},
        {"127.0.0.1", std::string("80\0x", 4)},
        {std::string(5000, 'a'), ""},
    };
    for (const badRow& row : rows) {
        SCOPED_TRACE(row.Host.substr(0, 30) + ' ' + row.Service);
        socketAddress address{socketFamily::IPv4, 17, {1, 2, 3, 4}, 0};
        EXPECT_FALSE(socketResolve(row.Host, row.Service, socketFamily::IPv4, address));
        EXPECT_NE(socketError(), 0u);
        EXPECT_EQ(address.Port, 17u);
    }
}

TEST_F(socketResolveContract, FindsNoAddressOfAnotherFamily)
{
    socketAddress address;
    EXPECT_FALSE(socketResolve("127.0.0.1", "80", socketFamily::IPv6, address));
    EXPECT_FALSE(socketResolve("127.0.0.1", "80", socketFamily::Other, address));
}

}  // namespace
