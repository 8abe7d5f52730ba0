#include "platform/clock.h"
#include "platform/linux/screen/windowSurface.h"
#include "tests/platform/screen/windowTest.h"

#include <algorithm>
#include <cstdlib>
#include <string>

namespace {

// The program is started without a display.
class noDisplay
{
public:
    noDisplay() : Kept(std::getenv("DISPLAY")) { unsetenv("DISPLAY"); }
    ~noDisplay() { setenv("DISPLAY", Kept.c_str(), 1); }
    noDisplay(const noDisplay&) = delete;
    noDisplay& operator=(const noDisplay&) = delete;

private:
    std::string Kept;
};

using windowsOfX = windowTest;

TEST_F(windowsOfX, AreNoneWithoutADisplay)
{
    const noDisplay missing;
    uint32_t error = 0;
    EXPECT_EQ(System->Create({}, error), 0u);
    EXPECT_NE(error, 0u);
    windowMessage message;
    EXPECT_EQ(System->Peek(message), windowTake::None);
    EXPECT_EQ(System->SystemCursor(windowCursor::Arrow), 0u);
    EXPECT_EQ(System->DesktopWorkArea().Right, 0);
    windowArea area;
    EXPECT_FALSE(System->WorkAreaAt(1, 1, area));
    EXPECT_FALSE(System->ClipboardText(1).has_value());
    System->SetCursor(0);
    System->ReleaseCapture();
    System->Alert("no display", "so it is written here");
}

TEST_F(windowsOfX, ComeWithTheDisplayThatComesLater)
{
    {
        const noDisplay missing;
        uint32_t error = 0;
        EXPECT_EQ(System->Create({}, error), 0u);
    }
    EXPECT_NE(Make(), 0u);
}

TEST_F(windowsOfX, GiveDrawingWhatItNeeds)
{
    const windowId window = Make();
    windowSurface surface;
    ASSERT_TRUE(windowSurfaceOf(window, surface));
    EXPECT_NE(surface.Connection, nullptr);
    EXPECT_NE(surface.Window, 0u);
    EXPECT_NE(surface.Visual, nullptr);
    EXPECT_GE(surface.Depth, 24);
    System->Destroy(window);
    EXPECT_FALSE(windowSurfaceOf(window, surface));
    EXPECT_FALSE(windowSurfaceOf(0, surface));
}

TEST_F(windowsOfX, WaitForNoFocusWhereTheirOwnerIsHidden)
{
    const windowId owner = OpenAt({100, 100, 400, 300});
    const windowId menu = OpenAt({150, 160, 200, 190}, stylePopup, owner);
    System->Show(owner, windowShow::Hide);
    const windowId other = OpenAt({500, 100, 700, 300});
    ASSERT_TRUE(Until([&] { return System->Focus() == other; }));
    const int64_t start = clockSteadyNs();
    // Each would be waited for half a second.
    constexpr int asked = 20;
    for (int i = 0; i < asked; ++i)
        System->SetFocus(menu);
    constexpr int64_t tooLong = 5'000'000'000;
    EXPECT_LT(clockSteadyNs() - start, tooLong);
    EXPECT_EQ(System->Focus(), other);
}

struct box {
    int Left = 100000, Top = 100000, Right = 0, Bottom = 0;
};

void note(void* context, int x, int y, int width, int height)
{
    box& seen = *static_cast<box*>(context);
    seen.Left = std::min(seen.Left, x);
    seen.Top = std::min(seen.Top, y);
    seen.Right = std::max(seen.Right, x + width);
    seen.Bottom = std::max(seen.Bottom, y + height);
}

TEST_F(windowsOfX, ShowAgainWhatWasCovered)
{
    const windowId window = OpenAt({100, 100, 400, 300});
    const windowId cover = OpenAt({150, 160, 200, 190}, stylePopup, window);
    ASSERT_TRUE(Point(cover, 10, 10));
    Heard.clear();
    box seen;
    windowOnExpose(window, note, &seen);
    System->Show(cover, windowShow::Hide);
    ASSERT_TRUE(Until([&] { return seen.Right == 100; }));
    EXPECT_EQ(seen.Left, 50);
    EXPECT_EQ(seen.Top, 60);
    EXPECT_EQ(seen.Bottom, 90);
    EXPECT_FALSE(Has(window, msgPaint));
    windowOnExpose(window, nullptr, nullptr);
    System->Show(cover, windowShow::NoActivate);
    ASSERT_TRUE(Point(cover, 20, 10));
    Heard.clear();
    System->Show(cover, windowShow::Hide);
    EXPECT_TRUE(Until([&] { return Has(window, msgPaint); }));
}

TEST_F(windowsOfX, AreGoneFromTheScreenWithTheirSystem)
{
    const windowId window = OpenAt({100, 100, 400, 300});
    windowSurface surface;
    ASSERT_TRUE(windowSurfaceOf(window, surface));
    xcb_connection_t* const other = xcb_connect(nullptr, nullptr);
    const auto lives = [&] {
        xcb_get_geometry_reply_t* const reply =
            xcb_get_geometry_reply(other, xcb_get_geometry(other, surface.Window), nullptr);
        const bool isThere = reply != nullptr;
        std::free(reply);
        return isThere;
    };
    EXPECT_TRUE(lives());
    System.reset();
    EXPECT_FALSE(lives());
    xcb_disconnect(other);
}

}  // namespace
