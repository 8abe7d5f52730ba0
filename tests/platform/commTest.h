// What the suites of serial ports have in common: a port that is open, with somebody at the far end of its
// line.
#pragma once

#include "platform/comm.h"
#include "tests/platform/contractLinks.h"

#include <algorithm>
#include <string>

class commTest : public contractTest
{
protected:
    void SetUp() override
    {
        contractTest::SetUp();
        if (!contractPlug())
            GTEST_SKIP() << "tests have no serial port here";
        Port = commOpen(contractPort());
        ASSERT_NE(Port, commNone);
    }

    void TearDown() override
    {
        commClose(Port);
        contractUnplug();
    }

    uint32_t Received() const
    {
        commLevel level;
        EXPECT_TRUE(commPending(Port, level));
        return level.Received;
    }

    bool AwaitReceived(uint32_t count) const
    {
        return contractAwait([&] { return Received() >= count; });
    }

    bool Write(const std::string& bytes) const
    {
        uint32_t done = 0;
        const uint32_t count = static_cast<uint32_t>(bytes.size());
        return commWrite(Port, bytes.data(), count, done) && done == count;
    }

    // What is there, at most `count` bytes of it.
    std::string Read(uint32_t count) const
    {
        std::string bytes(std::min(count, Received()), '\0');
        uint32_t done = 0;
        EXPECT_TRUE(commRead(Port, bytes.data(), static_cast<uint32_t>(bytes.size()), done));
        bytes.resize(done);
        return bytes;
    }

    commHandle Port = commNone;
};
