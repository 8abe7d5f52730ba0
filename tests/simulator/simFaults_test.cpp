#include "tests/simulator/host.h"
#include "tools/simulator/simFaultCommand.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <bit>

namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::Not;

const hostBytes PollVersion = ubxSay(0x0A04);

TEST(simFaults, SilenceKeepsEverythingInButObeys)
{
    host host(simModel::M9);
    host.Faults().Silent = true;
    EXPECT_THAT(host.Ask(ubxValSet(ubxPair(0x20910039, 1))), IsEmpty());
    EXPECT_THAT(host.Wait(2), IsEmpty());
    host.Faults().Silent = false;
    EXPECT_THAT(ubxNames(host.Wait(1)), ElementsAre(0x0104));
}

TEST(simFaults, LosesSoManyAnswersAndNothingElse)
{
    host host(simModel::M9);
    host.Ask(ubxValSet(ubxPair(0x20910039, 1)));
    host.Faults().LoseAnswers = 2;
    EXPECT_THAT(ubxNames(host.Wait(1)), ElementsAre(0x0104));
    EXPECT_THAT(host.Ask(PollVersion), IsEmpty());
    EXPECT_THAT(host.Ask(PollVersion), IsEmpty());
    EXPECT_THAT(ubxNames(host.Ask(PollVersion)), ElementsAre(0x0A04));
    EXPECT_EQ(host.Faults().LoseAnswers, 0u);
}

TEST(simFaults, BreaksAboutSoManyBytesByOneBit)
{
    host host(simModel::M9);
    const hostBytes right = host.Ask(PollVersion);
    host.Faults().ByteErrors = 0.05;
    constexpr int Turns = 200;
    size_t broken = 0;
    for (int turn = 0; turn < Turns; ++turn) {
        const hostBytes said = host.Ask(PollVersion);
        ASSERT_EQ(said.size(), right.size());
        for (size_t at = 0; at < said.size(); ++at) {
            const int bits = std::popcount(static_cast<unsigned>(said[at] ^ right[at]));
            EXPECT_LE(bits, 1);
            broken += static_cast<size_t>(bits);
        }
    }
    const double share = static_cast<double>(broken) / static_cast<double>(Turns * right.size());
    EXPECT_NEAR(share, 0.05, 0.005);
}

TEST(simFaults, CutsMessagesSomewhere)
{
    host host(simModel::M9);
    host.Faults().Cut = 1;
    const hostBytes whole = [] {
        ::host other(simModel::M9);
        return other.Ask(PollVersion);
    }();
    for (int turn = 0; turn < 50; ++turn) {
        const hostBytes cut = host.Ask(PollVersion);
        ASSERT_LT(cut.size(), whole.size());
        ASSERT_GE(cut.size(), 1u);
        EXPECT_TRUE(std::equal(cut.begin(), cut.end(), whole.begin()));
    }
}

TEST(simFaults, ComesBackAsNewWhenItWasUnplugged)
{
    host host(simModel::M9);
    host.Ask(ubxValSet(ubxPair(0x20910039, 1)));
    host.Faults().Unplugged = true;
    EXPECT_THAT(host.Wait(2), IsEmpty());
    EXPECT_THAT(host.Ask(PollVersion), IsEmpty());
    host.Faults().Unplugged = false;
    EXPECT_THAT(host.Ask(PollVersion), IsEmpty()) << "it is still starting";
    EXPECT_THAT(host.Wait(1), IsEmpty()) << "what was set is gone";
    EXPECT_EQ(host.Receiver->Truth().Keys.at(0x20910039), 0u);
    EXPECT_THAT(ubxNames(host.Ask(PollVersion)), ElementsAre(0x0A04));
    host.Wait(2);
    EXPECT_TRUE(host.Receiver->Truth().Fixed);
}

TEST(simFaultCommand, DoesWhatALineSays)
{
    struct row {
        const char* Line;
        simFaults Expected;
    };
    const row Rows[] = {
        {"silence on", {.Silent = true}},
        {" nak  on \r\n", {.Nak = true}},
        {"lose 12", {.LoseAnswers = 12}},
        {"errors 0.5", {.ByteErrors = 0.5}},
        {"cut 1", {.Cut = 1}},
        {"unplug", {.Unplugged = true}},
        {"", {}},
        {"\n", {}},
    };
    for (const row& each : Rows) {
        simFaults faults;
        EXPECT_EQ(simFaultCommand(faults, each.Line), "") << each.Line;
        EXPECT_EQ(faults.Silent, each.Expected.Silent);
        EXPECT_EQ(faults.Nak, each.Expected.Nak);
        EXPECT_EQ(faults.LoseAnswers, each.Expected.LoseAnswers);
        EXPECT_EQ(faults.ByteErrors, each.Expected.ByteErrors);
        EXPECT_EQ(faults.Cut, each.Expected.Cut);
        EXPECT_EQ(faults.Unplugged, each.Expected.Unplugged);
    }
}

TEST(simFaultCommand, TakesBackWhatItDid)
{
    simFaults faults{.Silent = true, .Nak = true, .Unplugged = true};
    for (const char* const line : {"silence off", "nak off", "plug"})
        EXPECT_EQ(simFaultCommand(faults, line), "");
    EXPECT_FALSE(faults.Silent || faults.Nak || faults.Unplugged);
}

TEST(simFaultCommand, TellsWhatItDoesNotUnderstand)
{
    for (const char* const line : {"silence", "silence maybe", "lose", "lose -1", "lose 1.5", "lose x",
                                   "errors 2", "errors nan", "cut", "unplug now", "shout on", "plug 1"}) {
        simFaults faults;
        EXPECT_THAT(simFaultCommand(faults, line), Not(IsEmpty())) << line;
        EXPECT_FALSE(faults.Silent || faults.Unplugged || faults.LoseAnswers != 0 || faults.ByteErrors != 0);
    }
}

}  // namespace
