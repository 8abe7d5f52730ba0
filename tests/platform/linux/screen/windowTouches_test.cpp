#include "platform/linux/screen/windowTouches.h"

#include <string>

#include <gtest/gtest.h>

namespace {

using phase = windowTouch::phase;

// What a row of touches means: one letter for each, with the place.
class touchesOfFingers : public testing::Test
{
protected:
    std::string Feed(phase which, uint32_t finger, int32_t x, int32_t y, uint32_t time = 0)
    {
        Meant.clear();
        Touches.Feed({which, finger, time, x, y}, Meant);
        std::string text;
        for (const windowTouched& each : Meant) {
            if (!text.empty())
                text += ' ';
            text += Name(each) + std::to_string(each.Gesture.X) + "," + std::to_string(each.Gesture.Y);
        }
        return text;
    }

    static std::string Name(const windowTouched& touched)
    {
        if (touched.Kind == windowTouched::kind::LeftClick)
            return "left ";
        if (touched.Kind == windowTouched::kind::RightClick)
            return "right ";
        switch (touched.Gesture.Kind) {
        case windowGestureKind::Begin:
            return "begin ";
        case windowGestureKind::End:
            return "end ";
        case windowGestureKind::Pan:
            return touched.Gesture.First ? "first " : "pan ";
        default:
            return "other ";
        }
    }

    windowTouches Touches;
    std::vector<windowTouched> Meant;
};

TEST_F(touchesOfFingers, AreAClickWhenTheyAreShort)
{
    EXPECT_EQ(Feed(phase::Begin, 1, 100, 100), "begin 100,100");
    EXPECT_EQ(Feed(phase::Move, 1, 103, 98), "");
    EXPECT_EQ(Feed(phase::End, 1, 103, 98, 200), "end 103,98 left 100,100");
}

TEST_F(touchesOfFingers, AreAClickOfTheRightButtonWhenTheyAreLong)
{
    Feed(phase::Begin, 1, 100, 100, 4'000'000'000);
    EXPECT_EQ(Feed(phase::End, 1, 100, 100, 4'000'000'000u + windowTouches::PressMs),
              "end 100,100 right 100,100");
}

TEST_F(touchesOfFingers, PanFromWhereTheFingerCameDown)
{
    Feed(phase::Begin, 1, 100, 100);
    EXPECT_EQ(Feed(phase::Move, 1, 120, 100), "first 100,100 pan 120,100");
    EXPECT_EQ(Feed(phase::Move, 1, 121, 100), "pan 121,100");
    EXPECT_EQ(Feed(phase::Move, 1, 121, 100), "");
    EXPECT_EQ(Feed(phase::End, 1, 121, 100), "end 121,100");
}

TEST_F(touchesOfFingers, PanAfterALongPress)
{
    Feed(phase::Begin, 1, 100, 100, 0);
    EXPECT_EQ(Feed(phase::Move, 1, 100, 130, 5000), "first 100,100 pan 100,130");
    EXPECT_EQ(Feed(phase::End, 1, 100, 130, 5100), "end 100,130");
}

TEST_F(touchesOfFingers, PanAroundTheMiddleOfTwo)
{
    Feed(phase::Begin, 1, 100, 100);
    EXPECT_EQ(Feed(phase::Begin, 2, 200, 100), "");
    EXPECT_EQ(Feed(phase::Move, 2, 200, 140), "first 150,100 pan 150,120");
    EXPECT_EQ(Feed(phase::End, 2, 200, 140), "");
    EXPECT_EQ(Feed(phase::Move, 1, 100, 101), "pan 100,101");
    EXPECT_EQ(Feed(phase::End, 1, 100, 101), "end 100,101");
}

TEST_F(touchesOfFingers, AreNoClickOfTwo)
{
    Feed(phase::Begin, 1, 100, 100);
    Feed(phase::Begin, 2, 200, 100);
    Feed(phase::End, 1, 100, 100);
    EXPECT_EQ(Feed(phase::End, 2, 200, 100), "end 200,100");
}

TEST_F(touchesOfFingers, GiveEachGestureItsOwnNumber)
{
    uint32_t last = 0;
    for (uint32_t finger = 1; finger <= 3; ++finger) {
        Feed(phase::Begin, finger, 10, 10);
        EXPECT_GT(Meant.front().Gesture.Id, last);
        last = Meant.front().Gesture.Id;
        Feed(phase::Move, finger, 50, 50);
        EXPECT_EQ(Meant.back().Gesture.Id, last);
        Feed(phase::End, finger, 50, 50);
        EXPECT_EQ(Meant.back().Gesture.Id, last);
    }
}

TEST_F(touchesOfFingers, IgnoreFingersThatNeverCameDown)
{
    EXPECT_EQ(Feed(phase::Move, 9, 1, 1), "");
    EXPECT_EQ(Feed(phase::End, 9, 1, 1), "");
}

}  // namespace
