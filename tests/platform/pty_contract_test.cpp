#include "platform/pty.h"

#include "platform/comm.h"
#include "tests/platform/contractLinks.h"

namespace {

constexpr char Name[] = "ttyPTY";

class ptyContract : public contractTest
{
protected:
    void SetUp() override
    {
        contractTest::SetUp();
        // Where tests can have a serial port they have a place for virtual ones.
        if (!ptyAvailable() || !contractPlug())
            GTEST_SKIP() << "there are no virtual ports here";
        ptyFault fault = ptyFault::System;
        Port = ptyOpen(Name, fault);
        ASSERT_NE(Port, nullptr);
        EXPECT_EQ(fault, ptyFault::None);
    }

    void TearDown() override
    {
        ptyClose(Port);
        commClose(Host);
        if (ptyAvailable())
            contractUnplug();
    }

    void OpenHost()
    {
        Host = commOpen(Name);
        ASSERT_NE(Host, commNone);
    }

    bool HostWrites(const std::string& bytes) const
    {
        uint32_t done = 0;
        return commWrite(Host, bytes.data(), static_cast<uint32_t>(bytes.size()), done) &&
               done == bytes.size();
    }

    // Reads what comes until it is as long as `count`.
    std::string HostReads(size_t count) const
    {
        std::string all;
        contractAwait([&] {
            commLevel level;
            uint32_t done = 0;
            std::string bytes(commPending(Host, level) ? level.Received : 0, '\0');
            if (!bytes.empty() && commRead(Host, bytes.data(), static_cast<uint32_t>(bytes.size()), done))
                all += bytes.substr(0, done);
            return all.size() >= count;
        });
        return all;
    }

    std::string DeviceReads(size_t count) const
    {
        std::string all;
        contractAwait([&] {
            char bytes[256];
            all.append(bytes, ptyRead(Port, bytes, sizeof bytes));
            return all.size() >= count;
        });
        return all;
    }

    ptyPort* Port = nullptr;
    commHandle Host = commNone;
};

TEST_F(ptyContract, CarriesEveryByteBothWays)
{
    std::string all;
    for (unsigned byte = 0; byte < 256; ++byte)
        all += static_cast<char>(byte);
    OpenHost();
    EXPECT_EQ(ptyWrite(Port, all.data(), all.size()), all.size());
    EXPECT_EQ(HostReads(all.size()), all);
    EXPECT_TRUE(HostWrites(all));
    EXPECT_EQ(DeviceReads(all.size()), all);
}

TEST_F(ptyContract, SendsNothingBackByItself)
{
    OpenHost();
    EXPECT_TRUE(HostWrites("asked"));
    EXPECT_EQ(DeviceReads(5), "asked");
    EXPECT_EQ(ptyWrite(Port, "answer", 6), 6u);
    EXPECT_EQ(HostReads(6), "answer");
}

TEST_F(ptyContract, HasNothingToReadWhileNobodySends)
{
    char byte = 0;
    EXPECT_EQ(ptyRead(Port, &byte, 1), 0u);
}

TEST_F(ptyContract, ServesOneHostAfterTheOther)
{
    for (int turn = 0; turn < 3; ++turn) {
        OpenHost();
        EXPECT_TRUE(HostWrites("hello"));
        EXPECT_EQ(DeviceReads(5), "hello");
        commClose(Host);
    }
}

TEST_F(ptyContract, StartsWith9600BaudWithoutParity)
{
    const ptySetting setting = ptyHostSetting(Port);
    EXPECT_EQ(setting.BaudRate, 9600u);
    EXPECT_FALSE(setting.Odd);
    EXPECT_EQ(setting.StopBits, 1u);
}

TEST_F(ptyContract, SeesTheSettingOfTheHost)
{
    struct row {
        uint32_t Baud;
        uint8_t Parity;    // 0 none, 1 odd
        uint8_t StopBits;  // 0 one, 2 two
    };
    constexpr row Rows[] = {{4800, 0, 0}, {9600, 1, 0}, {115200, 0, 2}, {921600, 1, 2}, {9600, 0, 0}};
    OpenHost();
    for (const row& wanted : Rows) {
        commControl control;
        EXPECT_TRUE(commGetControl(Host, control));
        control.BaudRate = wanted.Baud;
        control.Parity = wanted.Parity;
        control.StopBits = wanted.StopBits;
        EXPECT_TRUE(commSetControl(Host, control));
        const ptySetting setting = ptyHostSetting(Port);
        EXPECT_EQ(setting.BaudRate, wanted.Baud);
        EXPECT_EQ(setting.Odd, wanted.Parity == 1) << wanted.Baud;
        EXPECT_EQ(setting.StopBits, wanted.StopBits == 2 ? 2u : 1u) << wanted.Baud;
    }
}

TEST_F(ptyContract, GoesAwayWhenItIsClosed)
{
    OpenHost();
    ptyClose(Port);
    Port = nullptr;
    commLevel level;
    EXPECT_TRUE(contractAwait([&] { return !commPending(Host, level); }));
    commClose(Host);
    Host = commOpen(Name);
    EXPECT_EQ(Host, commNone);
}

TEST_F(ptyContract, ComesBackUnderItsName)
{
    ptyClose(Port);
    ptyFault fault = ptyFault::System;
    Port = ptyOpen(Name, fault);
    ASSERT_NE(Port, nullptr);
    OpenHost();
    EXPECT_TRUE(HostWrites("again"));
    EXPECT_EQ(DeviceReads(5), "again");
}

TEST_F(ptyContract, IsMadeOnceUnderOneName)
{
    ptyFault fault = ptyFault::None;
    EXPECT_EQ(ptyOpen(Name, fault), nullptr);
    EXPECT_EQ(fault, ptyFault::Taken);
    OpenHost();
    EXPECT_TRUE(HostWrites("still there"));
    EXPECT_EQ(DeviceReads(11), "still there");
}

TEST_F(ptyContract, RefusesNamesThatAreNoneOfAPort)
{
    for (const char* const name : {"", "COM1", "sky", "tty/../x", "/dev/ttyS0", "tty\\x"}) {
        ptyFault fault = ptyFault::None;
        EXPECT_EQ(ptyOpen(name, fault), nullptr) << name;
        EXPECT_EQ(fault, ptyFault::Name) << name;
    }
}

TEST_F(ptyContract, ClosesNothingWithoutHarm)
{
    ptyClose(nullptr);
}

}  // namespace
