#include "tools/console/consoleMonitor.h"

#include "tests/gnss/nmeaSentence.h"
#include "tests/link/runningClock.h"

#include <gmock/gmock.h>

#include <thread>

using testing::ElementsAre;
using testing::StartsWith;

namespace {

consoleOptions portOptions()
{
    consoleOptions options;
    options.Port = "COM5";
    return options;
}

class consoleMonitorTest : public linkTest
{
protected:
    consoleMonitorTest()
    {
        fakePort("COM5");
        Monitor.OnStatus = [this](const std::string& status) { Statuses.push_back(status); };
        Monitor.OnGroup = [this] { ++Groups; };
    }

    // Goes on until something is true; false when it does not become so.
    template <class Condition>
    bool TurnUntil(const Condition& isTrue)
    {
        constexpr uint32_t turnMs = 50;
        std::string fault;
        return await([&] { return Monitor.Turn(turnMs, fault) && isTrue(); });
    }

    std::vector<std::string> Statuses;
    unsigned Groups = 0;
    consoleMonitor Monitor{portOptions()};
};

TEST_F(consoleMonitorTest, SaysWhereItStandsUntilAReceiverIsKnownAndThenTellsWhatComes)
{
    std::string fault;
    ASSERT_TRUE(Monitor.Start(fault)) << fault;
    EXPECT_TRUE(TurnUntil([this] { return Statuses.size() > 1; }));
    EXPECT_THAT(Statuses,
                ElementsAre("Waiting for device reply...", StartsWith("Waiting for device reply (")));
    EXPECT_TRUE(TurnUntil([this] {
        fakePortReceive("COM5", rmc());
        return Groups > 0 && Statuses.back() == "Model: Generic NMEA";
    }));
}

TEST_F(consoleMonitorTest, LetsDataArriveWhileAStatusIsTold)
{
    std::atomic<bool> isDecoded{false};
    bool wasHeldUp = false;
    std::jthread line;
    // A table is drawn of the decoder, under the lock that whoever feeds it holds while he leaves his notes.
    Monitor.OnStatus = [&](const std::string& status) {
        if (line.joinable() || !status.starts_with("Waiting for device reply ("))
            return;
        line = std::jthread([&] {
            const std::string sentence = rmc();
            Monitor.Link().Feed(reinterpret_cast<const uint8_t*>(sentence.data()), sentence.size());
            isDecoded = true;
        });
        wasHeldUp = !await([&] { return isDecoded.load(); });
    };
    std::string fault;
    ASSERT_TRUE(Monitor.Start(fault)) << fault;
    EXPECT_TRUE(TurnUntil([&] { return isDecoded.load(); }));
    EXPECT_FALSE(wasHeldUp);
}

TEST_F(consoleMonitorTest, SeeksWithAllDecodersAgainWhenNoUBloxReceiverIsBehindWhatLookedLikeOne)
{
    const std::string looksLikeOne = "\xB5\x62\x0A\x04.";
    std::string fault;
    ASSERT_TRUE(Monitor.Start(fault)) << fault;
    EXPECT_TRUE(TurnUntil([&] {
        fakePortReceive("COM5", rmc() + (Monitor.Link().UBXOnly ? "" : looksLikeOne));
        return Monitor.Link().UBXOnly;
    }));
    Statuses = {"what came before"};
    EXPECT_TRUE(TurnUntil([this] {
        fakePortReceive("COM5", rmc());
        return Statuses.back() == "Model: Generic NMEA";
    }));
}

TEST_F(consoleMonitorTest, SaysWhichPortCannotBeOpened)
{
    fakePortGone("COM5");
    std::string fault;
    EXPECT_FALSE(Monitor.Start(fault));
    EXPECT_EQ(fault, "the port \"COM5\" cannot be opened");
}

}  // namespace
