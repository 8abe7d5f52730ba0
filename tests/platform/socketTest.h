// What the suites of sockets have in common: a network that was started, and connections within it.
#pragma once

#include "platform/socket.h"
#include "tests/platform/contractLinks.h"

#include <chrono>
#include <string>
#include <string_view>
#include <vector>

class socketTest : public contractTest
{
protected:
    void SetUp() override
    {
        contractTest::SetUp();
        ASSERT_TRUE(socketStart());
    }

    void TearDown() override
    {
        for (const socketHandle handle : Opened)
            socketClose(handle);
        socketEnd();
    }

    // Closed at the end of the test if not before.
    socketHandle Keep(socketHandle handle)
    {
        Opened.push_back(handle);
        return handle;
    }

    socketHandle Open() { return Keep(socketOpen()); }

    static socketAddress Loopback(uint16_t port) { return {socketFamily::IPv4, port, {127, 0, 0, 1}, 0}; }

    static socketAddress AddressOf(socketHandle handle)
    {
        socketAddress address;
        EXPECT_TRUE(socketLocal(handle, address));
        return address;
    }

    // One that listens on a port of the system's choice.
    socketHandle Listen(uint32_t backlog = 10)
    {
        const socketHandle handle = Open();
        EXPECT_TRUE(socketBind(handle, Loopback(0)));
        EXPECT_TRUE(socketListen(handle, backlog));
        return handle;
    }

    // Both ends of a connection over `listener`.
    struct ends {
        socketHandle Near;
        socketHandle Far;
    };
    ends Connect(socketHandle listener)
    {
        ends both{Open(), socketNone};
        EXPECT_TRUE(socketConnect(both.Near, AddressOf(listener)));
        socketAddress peer;
        both.Far = Keep(socketAccept(listener, peer));
        EXPECT_NE(both.Far, socketNone);
        return both;
    }
    ends Connect() { return Connect(Listen()); }

    static bool Send(socketHandle handle, std::string_view bytes)
    {
        return socketSend(handle, bytes.data(), bytes.size()) == static_cast<int64_t>(bytes.size());
    }

    // As many bytes as are asked for, or those before the end.
    static std::string Receive(socketHandle handle, size_t count)
    {
        std::string bytes(count, '\0');
        size_t got = 0;
        while (got < count) {
            const int64_t part = socketReceive(handle, bytes.data() + got, count - got);
            if (part <= 0)
                break;
            got += static_cast<size_t>(part);
        }
        bytes.resize(got);
        return bytes;
    }

    // Waits for what is on its way over the loopback.
    static bool AwaitBytes(socketHandle handle, uint32_t count)
    {
        return contractAwait([&] {
            uint32_t available = 0;
            return socketAvailable(handle, available) && available >= count;
        });
    }

    static socketFault LastFault() { return socketFaultOf(socketError()); }

private:
    std::vector<socketHandle> Opened;
};
