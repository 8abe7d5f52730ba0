// The storm on the scripted platform, where a user plays along, targets get lost and time is moved by hand.
#include "tests/toolkit/storm/storm.h"
#include "tests/toolkit/toolkitTest.h"

#include <algorithm>

namespace {

constexpr unsigned steps = 10'000;

void user(storm& s)
{
    leaf* one = s.Any();
    const windowId handle = one->Root()->Handle();
    switch (s.Below(9)) {
    case 0:
        fakeMouseClick(s.Place() + 50, s.Place() + 50);
        break;
    case 1:
        fakeMouseMove(s.Place() + 50, s.Place() + 50);
        break;
    case 2:
        fakeMouseWheel(120);
        break;
    case 3:
        fakeKeyPress(keyTab);
        break;
    case 4:
        fakeType("a");
        break;
    case 5:
        fakeUserMaximises(handle);
        break;
    case 6:
        fakeUserMinimises(handle);
        break;
    case 7:
        fakeUserRestores(handle);
        break;
    default:
        if (handle != Toolkit().WindowList().front()->Handle())
            fakeUserCloses(handle);
        break;
    }
}

class ctrlStormTest : public toolkitTest, public testing::WithParamInterface<unsigned>
{
protected:
    // The system and the toolkit are of one mind.
    static void CheckWindows()
    {
        for (const ctrlWindow* window : Toolkit().WindowList()) {
            const auto fake = fakeWindowOf(window->Handle());
            ASSERT_TRUE(fake);
            ASSERT_EQ(fake->Visible, window->HasState(stateVisible));
        }
    }

    storm Storm{GetParam(), user, [] { fakeEndGives(drawTargetLost); }};
};

TEST_P(ctrlStormTest, TheTreeStandsThroughAnything)
{
    auto* first = new leaf(Storm, nullptr, 20, 40, 400, 300, ctrlFramed);
    first->FrameStyle(frameMaximise | frameMinimise | frameResize, 0);
    first->Show();
    size_t most = 0;
    for (unsigned step = 0; step < steps; ++step) {
        Storm.Step();
        if (Storm.Chance(40))
            Toolkit().PumpPending();
        if (step % 50 == 0)
            fakeClockMove(30'000'000);
        fakeClearCalls();
        fakeClearDraws();
        most = std::max(most, Storm.All.size());
        ASSERT_NO_FATAL_FAILURE(storm::Check()) << step;
        ASSERT_NO_FATAL_FAILURE(CheckWindows()) << step;
    }
    EXPECT_GT(most, 20U) << "there was something to blow at";

    for (int i = 0; i < 20; ++i) {
        fakeClockMove(100'000'000);
        Toolkit().PumpPending();
    }
    ASSERT_NO_FATAL_FAILURE(storm::CheckDrawn());
    while (Toolkit().HasWindows())
        delete Toolkit().WindowList().front();
    EXPECT_TRUE(Storm.All.empty());
}

INSTANTIATE_TEST_SUITE_P(Seeds, ctrlStormTest, testing::Range(1U, 4U));

}  // namespace
