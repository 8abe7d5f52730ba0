#include "platform/linux/screen/windowClicks.h"

#include <gtest/gtest.h>

namespace {

struct pressRow {
    const char* Name;
    windowId Window;
    uint32_t Button;
    uint32_t Time;
    int32_t X, Y;
    bool IsDouble;
};

// Each after a press of button 1 in window 1 at 100, 100 and time 4294967200, just before the clock wraps.
constexpr pressRow Rows[] = {
    {"at once", 1, 1, 4294967250, 100, 100, true},
    {"as late as can be, behind the wrap", 1, 1, 404, 100, 100, true},
    {"too late", 1, 1, 405, 100, 100, false},
    {"as far as can be", 1, 1, 0, 104, 96, true},
    {"too far", 1, 1, 0, 105, 100, false},
    {"another button", 1, 2, 0, 100, 100, false},
    {"another window", 2, 1, 0, 100, 100, false},
};

TEST(clicksOfTheMouse, AreDoubleWhenTheyAreNear)
{
    for (const pressRow& row : Rows) {
        windowClicks clicks;
        EXPECT_FALSE(clicks.Press(1, 1, 4294967200, 100, 100));
        EXPECT_EQ(clicks.Press(row.Window, row.Button, row.Time, row.X, row.Y), row.IsDouble) << row.Name;
    }
}

TEST(clicksOfTheMouse, BeginAnewWithTheThird)
{
    windowClicks clicks;
    EXPECT_FALSE(clicks.Press(1, 1, 1000, 5, 5));
    EXPECT_TRUE(clicks.Press(1, 1, 1100, 5, 5));
    EXPECT_FALSE(clicks.Press(1, 1, 1200, 5, 5));
    EXPECT_TRUE(clicks.Press(1, 1, 1300, 5, 5));
}

}  // namespace
