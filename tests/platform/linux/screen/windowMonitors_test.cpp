#include "platform/linux/screen/windowMonitors.h"

#include "platform/linux/screen/windowClipboard.h"
#include "platform/linux/screen/windowCursors.h"

#include <string>

#include <gtest/gtest.h>

namespace {

const std::vector<windowArea> Two = {{0, 0, 1000, 800}, {1000, 0, 2600, 1200}};

TEST(monitorsOfTheDesktop, HaveTheWindowsThatAreMostlyOnThem)
{
    EXPECT_EQ(windowMonitorOf(Two, {100, 100, 400, 300}), &Two[0]);
    EXPECT_EQ(windowMonitorOf(Two, {900, 100, 1101, 300}), &Two[1]);
    EXPECT_EQ(windowMonitorOf(Two, {900, 100, 1099, 300}), &Two[0]);
    EXPECT_EQ(windowMonitorOf(Two, {-500, 100, 1, 300}), &Two[0]);
    EXPECT_EQ(windowMonitorOf(Two, {-500, 100, 0, 300}), nullptr);
}

TEST(monitorsOfTheDesktop, HavePoints)
{
    EXPECT_EQ(windowMonitorOf(Two, {999, 799, 999, 799}), &Two[0]);
    EXPECT_EQ(windowMonitorOf(Two, {1000, 0, 1000, 0}), &Two[1]);
    EXPECT_EQ(windowMonitorOf(Two, {999, 800, 999, 800}), nullptr);
}

TEST(monitorsOfTheDesktop, HaveTheDensityThatTheDesktopAsksFor)
{
    EXPECT_EQ(windowDPIOfResources("Xft.dpi:\t144\n"), 144u);
    EXPECT_EQ(windowDPIOfResources("Xft.antialias:\t1\nXft.dpi: 120\nXcursor.size:\t24\n"), 120u);
    EXPECT_EQ(windowDPIOfResources("*Xft.dpi:\t144\n"), 96u);
    EXPECT_EQ(windowDPIOfResources(""), 96u);
    EXPECT_EQ(windowDPIOfResources("Xft.dpi:"), 96u);
    EXPECT_EQ(windowDPIOfResources("Xft.dpi:\tmuch"), 96u);
    EXPECT_EQ(windowDPIOfResources("Xft.dpi:\t100000"), 96u);
}

TEST(cursorsOfShapes, ShowAndOverTheScreenAndThenXor)
{
    windowCursorShape shape;
    for (uint32_t& row : shape.And)
        row = 0xFFFFFFFF;
    shape.And[0] = 0x1FFFFFFF;  // three pixels of its own
    shape.Xor[0] = 0x50000000;  // the second of them, and one that would invert
    const std::array<uint32_t, 1024> pixels = windowCursorPixels(shape);
    EXPECT_EQ(pixels[0], 0xFF000000);
    EXPECT_EQ(pixels[1], 0xFFFFFFFF);
    EXPECT_EQ(pixels[2], 0xFF000000);
    EXPECT_EQ(pixels[3], 0xFF000000);
    EXPECT_EQ(pixels[4], 0u);
    EXPECT_EQ(pixels[1023], 0u);
}

TEST(textOfOld, TurnsIntoUnicodeAndBack)
{
    EXPECT_EQ(windowTextFromLatin("\xB5 \xE9 \xB0"), "µ é °");
    EXPECT_EQ(windowTextToLatin("µ é ° Ω"), "\xB5 \xE9 \xB0 ?");
}

}  // namespace
