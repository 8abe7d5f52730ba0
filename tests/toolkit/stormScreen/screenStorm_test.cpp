// The storm on a real screen, with a real mouse and keyboard in it.
#include "tests/platform/screen/screenInput.h"
#include "tests/toolkit/storm/storm.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace {

constexpr unsigned steps = 10'000;

void user(storm& s)
{
    screenMove(s.Place() + 50, s.Place() + 50);
    switch (s.Below(5)) {
    case 0:
        screenPress(screenButton::Left);
        screenRelease(screenButton::Left);
        break;
    case 1:
        screenWheel(1);
        break;
    case 2:
        screenKeyDown(keyTab);
        screenKeyUp(keyTab);
        break;
    default:
        break;
    }
}

class screenStorm : public testing::TestWithParam<unsigned>
{
};

TEST_P(screenStorm, TheTreeStandsThroughAnything)
{
    screenReset();
    storm one{GetParam(), user, [] {}};
    auto* first = new leaf(one, nullptr, 20, 40, 400, 300, ctrlFramed);
    first->FrameStyle(frameMaximise | frameMinimise | frameResize, 0);
    first->Show();
    size_t most = 0;
    for (unsigned step = 0; step < steps; ++step) {
        one.Step();
        if (one.Chance(40))
            Toolkit().PumpPending();
        most = std::max(most, one.All.size());
        ASSERT_NO_FATAL_FAILURE(storm::Check()) << step;
    }
    EXPECT_GT(most, 20U) << "there was something to blow at";
    Toolkit().PumpPending();
    while (Toolkit().HasWindows())
        delete Toolkit().WindowList().front();
    EXPECT_TRUE(one.All.empty());
    screenReset();
}

INSTANTIATE_TEST_SUITE_P(Seeds, screenStorm, testing::Range(1U, 3U));

}  // namespace
