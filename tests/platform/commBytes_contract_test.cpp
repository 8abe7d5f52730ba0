// What goes over a line, and a line that is dead.
#include "tests/platform/commTest.h"

#include <atomic>
#include <chrono>
#include <thread>

namespace {

using std::chrono::milliseconds;
using std::chrono::steady_clock;

using commBytesContract = commTest;

constexpr size_t Much = 64u << 10;

// Every value of a byte, in an order that does not repeat soon.
std::string Pattern(size_t count)
{
    std::string bytes;
    for (size_t at = 0; at < count; ++at)
        bytes += static_cast<char>(at + at / 255);
    return bytes;
}

TEST_F(commBytesContract, CarriesEveryByteToTheFarEnd)
{
    const std::string sent = Pattern(Much);
    std::atomic<bool> whole{false};
    {
        const std::jthread writer([&] { whole = Write(sent); });
        EXPECT_TRUE(contractAwait([&] { return contractLineReceived().size() >= sent.size(); }));
    }
    EXPECT_TRUE(whole);
    EXPECT_EQ(contractLineReceived(), sent);
}

TEST_F(commBytesContract, CarriesEveryByteFromTheFarEnd)
{
    const std::string sent = Pattern(Much);
    std::string got;
    size_t taken = 0;
    EXPECT_TRUE(contractAwait([&] {
        taken += contractLineSend(std::string_view(sent).substr(taken));
        got += Read(Much);
        return got.size() >= sent.size();
    }));
    EXPECT_EQ(got, sent);
}

TEST_F(commBytesContract, CountsWhatWasReceivedAndNotRead)
{
    EXPECT_EQ(Received(), 0u);
    contractLineSend("0123456789");
    EXPECT_TRUE(AwaitReceived(10));
    EXPECT_EQ(Received(), 10u);
    EXPECT_EQ(Read(4), "0123");
    EXPECT_EQ(Received(), 6u);
    EXPECT_EQ(Read(100), "456789");
    EXPECT_EQ(Received(), 0u);
}

TEST_F(commBytesContract, WritesNothingWithoutAWord)
{
    uint32_t done = 5;
    EXPECT_TRUE(commWrite(Port, "", 0, done));
    EXPECT_EQ(done, 0u);
}

TEST_F(commBytesContract, PassesEveryByteAfterSettingsWithoutFlowControl)
{
    ASSERT_TRUE(commSetControl(Port, {9600, commFlag::DTREnable | commFlag::RTSEnable, 8, 0, 0}));
    const std::string all = Pattern(256);
    contractLineSend(all);
    EXPECT_TRUE(AwaitReceived(256));
    EXPECT_EQ(Read(256), all);
    EXPECT_TRUE(Write(all));
    EXPECT_TRUE(contractAwait([&] { return contractLineReceived().size() >= all.size(); }));
    EXPECT_EQ(contractLineReceived(), all);
}

// Writes until that fails, counting.
class endlessWriter
{
public:
    explicit endlessWriter(commHandle port) : Port(port), Thread([this] { Run(); }) {}

    // Waits until no write comes to its end any more.
    bool AwaitBlocked() const
    {
        constexpr auto Long = milliseconds(50);
        unsigned last = Writes;
        auto since = steady_clock::now();
        return contractAwait([&] {
            if (last != Writes) {
                last = Writes;
                since = steady_clock::now();
            }
            return Started && steady_clock::now() - since > Long;
        });
    }

    bool HasEnded() const { return Ended; }

    void Join()
    {
        EXPECT_TRUE(contractAwait([&] { return HasEnded(); })) << "the write does not end";
        Thread.join();
    }

private:
    void Run()
    {
        const std::string bytes(Much, 'x');
        uint32_t done = 0;
        Started = true;
        while (commWrite(Port, bytes.data(), static_cast<uint32_t>(bytes.size()), done))
            ++Writes;
        Ended = true;
    }

    const commHandle Port;
    std::atomic<bool> Started{false};
    std::atomic<bool> Ended{false};
    std::atomic<unsigned> Writes{0};
    std::jthread Thread;
};

TEST_F(commBytesContract, EndsAWriteOnADeadLineWhenItIsClosed)
{
    contractLineDies();
    endlessWriter writer(Port);
    ASSERT_TRUE(writer.AwaitBlocked());
    EXPECT_FALSE(writer.HasEnded());
    const auto start = steady_clock::now();
    commClose(Port);
    EXPECT_LT(steady_clock::now() - start, milliseconds(300));
    writer.Join();
    EXPECT_LT(steady_clock::now() - start, milliseconds(300));
}

TEST_F(commBytesContract, EndsAWriteWhenThePortIsUnplugged)
{
    contractLineDies();
    endlessWriter writer(Port);
    ASSERT_TRUE(writer.AwaitBlocked());
    contractUnplug();
    EXPECT_TRUE(contractAwait([&] { return writer.HasEnded(); }));
}

TEST_F(commBytesContract, GoesOnReadingWhileAWriteWaits)
{
    contractLineDies();
    endlessWriter writer(Port);
    ASSERT_TRUE(writer.AwaitBlocked());
    contractLineSend("news");
    EXPECT_TRUE(AwaitReceived(4));
    EXPECT_EQ(Read(4), "news");
    commClose(Port);
    writer.Join();
}

}  // namespace
