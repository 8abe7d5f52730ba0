// What the canvas and the controls really draw, read back from surfaces in memory.
//
// Tolerances: what lies on whole pixels is exact. Blends may differ by 1, since systems round them
// differently. Text and curves are anti-aliased or not, as the system likes, so ink is looked for within one
// pixel of where it must be.
#include "toolkit/ctrlWindow.h"
#include "toolkit/pixmapDyn.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdlib>
#include <functional>
#include <numbers>
#include <string>
#include <vector>

namespace {

// A control that draws into memory.
class sheet : public ctrlWindow
{
public:
    sheet(uint32_t width, uint32_t height) : ctrlWindow(nullptr, 0, 0, width, height, 0)
    {
        SurfaceSize(width, height);
        TargetCreate(nullptr);
    }

    using ctrlWindow::Border;
    using ctrlWindow::PaintRect;

    // Black, and then what is drawn. 0x00RRGGBB.
    void Draw(const std::function<void(sheet&)>& draw)
    {
        ASSERT_TRUE(HasTarget());
        BeginDraw();
        PaintRect = {0, 0, static_cast<int32_t>(Width()), static_cast<int32_t>(Height())};
        Colour(0);
        RectFill(0, 0, static_cast<float>(Width()), static_cast<float>(Height()));
        draw(*this);
        PopAllClips();
        EndDraw();
        ASSERT_TRUE(Read(Pixels));
    }

    uint32_t At(int32_t x, int32_t y) const
    {
        return Pixels.at(static_cast<size_t>(y) * Width() + static_cast<size_t>(x));
    }

    // The smallest rectangle that has all pixels which are not black.
    rect Ink() const
    {
        rect ink{INT32_MAX, INT32_MAX, 0, 0};
        for (int32_t y = 0; y < static_cast<int32_t>(Height()); ++y) {
            for (int32_t x = 0; x < static_cast<int32_t>(Width()); ++x) {
                if (At(x, y) == 0)
                    continue;
                ink = {std::min(ink.Left, x), std::min(ink.Top, y), std::max(ink.Right, x + 1),
                       std::max(ink.Bottom, y + 1)};
            }
        }
        return ink;
    }

    std::vector<uint32_t> Pixels;
};

uint32_t swapped(colour value)
{
    const auto bits = static_cast<uint32_t>(value);
    return (bits & 0xFF) << 16 | (bits & 0xFF00) | (bits >> 16 & 0xFF);
}

bool isNear(uint32_t a, uint32_t b, int tolerance)
{
    for (const unsigned shift : {0U, 8U, 16U}) {
        if (std::abs(static_cast<int>(a >> shift & 0xFF) - static_cast<int>(b >> shift & 0xFF)) > tolerance)
            return false;
    }
    return true;
}

// The sheets are hidden windows, which the toolkit deletes one by one.
class pixels : public testing::Test
{
protected:
    sheet& Sheet(uint32_t width, uint32_t height)
    {
        auto* made = new sheet(width, height);
        Sheets.emplace_back(made);
        return *made;
    }
    void TearDown() override
    {
        for (const ctrlLife& life : Sheets)
            delete life.Window();
        Toolkit().Scale = 1.0F;
    }

private:
    std::vector<ctrlLife> Sheets;
};

TEST_F(pixels, AFilledRectangleHasExactlyItsPixels)
{
    sheet& on = Sheet(40, 30);
    on.Draw([](sheet& s) {
        s.Colour(0x3060C0);
        s.RectFill(5, 7, 31, 22);
    });
    for (int32_t y = 0; y < 30; ++y) {
        for (int32_t x = 0; x < 40; ++x) {
            const bool inside = x >= 5 && x < 31 && y >= 7 && y < 22;
            ASSERT_EQ(on.At(x, y), inside ? 0xC06030U : 0U) << x << "," << y;
        }
    }
}

// One ring at a time, outermost first, the way a pixel belongs to the bottom right before the top left.
uint32_t ringColour(ctrlBorder style, int32_t width, colour value, int32_t ring, bool bottomRight)
{
    const bool second = ring >= width;
    const bool raised = (style == ctrlBorder::Raised || style == ctrlBorder::Etched) != second;
    const int32_t at = second ? ring - width : ring;
    const int32_t whole = width == 1 ? 2 : width * width;
    const int32_t light = (2 * width - 1) - 2 * at;
    const bool lit = raised != bottomRight;
    return swapped(ColourScale(value, static_cast<uint32_t>(lit ? whole + light : whole - light),
                               static_cast<uint32_t>(whole)));
}

TEST_F(pixels, BordersOfEveryStyleAndWidthHaveTheirRings)
{
    constexpr colour value = 0x806040;
    constexpr int32_t wide = 30;
    constexpr int32_t high = 24;
    for (const ctrlBorder style :
         {ctrlBorder::Flat, ctrlBorder::Raised, ctrlBorder::Sunken, ctrlBorder::Etched, ctrlBorder::Ridged}) {
        for (int32_t width = 1; width <= 4; ++width) {
            const bool twice = style == ctrlBorder::Etched || style == ctrlBorder::Ridged;
            const int32_t rings = twice ? 2 * width : width;
            sheet& on = Sheet(wide, high);
            rect left;
            on.Draw([&](sheet& s) {
                left = s.PaintRect;
                s.Border(style, static_cast<uint32_t>(width), value, left);
            });
            ASSERT_EQ(left, (rect{rings, rings, wide - rings, high - rings}));
            for (int32_t y = 0; y < high; ++y) {
                for (int32_t x = 0; x < wide; ++x) {
                    const int32_t ring = std::min({x, y, wide - 1 - x, high - 1 - y});
                    const bool bottomRight = ring == wide - 1 - x || ring == high - 1 - y;
                    const uint32_t wanted = ring >= rings ? 0U
                                            : style == ctrlBorder::Flat
                                                ? swapped(value)
                                                : ringColour(style, width, value, ring, bottomRight);
                    ASSERT_EQ(on.At(x, y), wanted)
                        << x << "," << y << " style " << static_cast<int>(style) << " width " << width;
                }
            }
        }
    }
}

TEST_F(pixels, ClipsNestAndCutExactly)
{
    sheet& on = Sheet(40, 40);
    on.Draw([](sheet& s) {
        s.ClipPush({5, 5, 30, 30});
        s.ClipPush({10, 0, 40, 20});
        s.Colour(0xFFFFFF);
        s.RectFill(0, 0, 40, 40);
        s.ClipPop();
        s.Colour(0x0000FF);
        s.RectFill(0, 28, 40, 40);
        s.ClipPop();
    });
    EXPECT_EQ(on.At(10, 5), 0xFFFFFFU);
    EXPECT_EQ(on.At(29, 19), 0xFFFFFFU);
    EXPECT_EQ(on.At(9, 5), 0U);
    EXPECT_EQ(on.At(10, 20), 0U);
    EXPECT_EQ(on.At(5, 28), 0xFF0000U);
    EXPECT_EQ(on.At(5, 30), 0U);
    EXPECT_EQ(on.At(30, 29), 0U);
}

TEST_F(pixels, ASurfaceIsComposedWithItsTransparency)
{
    sheet& on = Sheet(60, 20);
    Canvas child;
    child.SurfaceSize(16, 16);
    on.Draw([&child](sheet& s) {
        s.Colour(0x00FF00);
        s.RectFill(30, 0, 60, 20);
        child.TargetCreate(&s);
        ASSERT_EQ(child.TargetKind(), canvasTarget::Compatible);
        child.BeginDraw();
        child.Colour(0x0000FF);
        child.RectFill(0, 0, 16, 16);
        child.EndDraw();
        s.CanvasDraw(2, 2, child, 0.0F, 0, 0, 16, 16);
        s.CanvasDraw(34, 2, child, 0.5F, 4, 4, 8, 8);
    });
    child.DeviceRelease();
    EXPECT_EQ(on.At(2, 2), 0xFF0000U);
    EXPECT_EQ(on.At(17, 17), 0xFF0000U);
    EXPECT_EQ(on.At(18, 17), 0U);
    EXPECT_PRED3(isNear, on.At(38, 6), 0x808000U, 1);
    EXPECT_EQ(on.At(42, 6), 0x00FF00U);
}

TEST_F(pixels, WhatIsNotDrawnOverStays)
{
    sheet& on = Sheet(20, 20);
    on.Draw([](sheet& s) {
        s.Colour(0xFF0000);
        s.RectFill(0, 0, 20, 20);
    });
    on.BeginDraw();
    on.Colour(0x00FF00);
    on.RectFill(5, 5, 10, 10);
    on.EndDraw();
    ASSERT_TRUE(on.Read(on.Pixels));
    EXPECT_EQ(on.At(0, 0), 0x0000FFU);
    EXPECT_EQ(on.At(6, 6), 0x00FF00U);
}

TEST_F(pixels, TextStaysInsideItsMeasuredBoxAtEverySizeAndScale)
{
    constexpr char text[] = "\xC2\xB5g 48\xC2\xB0 N";
    for (const float scale : {1.0F, 1.25F, 1.5F, 2.0F}) {
        Toolkit().Scale = scale;
        for (float size = 7; size <= 32; size += 1) {
            sheet& on = Sheet(420, 110);
            rect box;
            on.Draw([&](sheet& s) {
                s.FontSize(size);
                const Canvas::textSize measured = s.TextSize(text);
                box = {20, 20, 20 + static_cast<int32_t>(measured.Width),
                       20 + static_cast<int32_t>(measured.Height)};
                s.Colour(0xFFFFFF);
                s.Text(box, text, textLeft | textTop | textUnclipped);
            });
            const rect ink = on.Ink();
            ASSERT_FALSE(ink.IsEmpty()) << size << " x " << scale;
            EXPECT_TRUE(rectCovers({box.Left - 1, box.Top - 1, box.Right + 1, box.Bottom + 1}, ink))
                << size << " x " << scale << ": ink " << ink.Left << "," << ink.Top << "," << ink.Right << ","
                << ink.Bottom << " in " << box.Right << "," << box.Bottom;
            // Capitals and digits are about three quarters of an em high.
            EXPECT_GT(ink.Height(), static_cast<int32_t>(0.55F * size * scale)) << size << " x " << scale;
            delete &on;
        }
    }
}

TEST_F(pixels, TextGrowsWithTheScale)
{
    sheet& on = Sheet(10, 10);
    const auto width = [&on](float scale) {
        Toolkit().Scale = scale;
        on.BeginDraw();
        const Canvas::textSize size = on.TextSize("Satellites 0123456789");
        on.EndDraw();
        return static_cast<float>(size.Width);
    };
    const float plain = width(1.0F);
    // The measure is rounded up to a pixel, and a system may keep glyphs on whole pixels.
    for (const float scale : {1.25F, 1.5F, 2.0F})
        EXPECT_NEAR(width(scale), plain * scale, plain * 0.04F + 2.0F) << scale;
}

TEST_F(pixels, TextStandsAtTheEdgeThatItIsAlignedTo)
{
    struct row {
        unsigned Flags;
        int Across, Down;  // -1 near, 0 middle, 1 far
    };
    constexpr row rows[] = {
        {textLeft | textTop, -1, -1},
        {textTop, 0, -1},
        {textRight | textTop, 1, -1},
        {textLeft, -1, 0},
        {0, 0, 0},
        {textRight, 1, 0},
        {textLeft | textBottom, -1, 1},
        {textBottom, 0, 1},
        {textRight | textBottom, 1, 1},
    };
    constexpr rect box{20, 20, 180, 100};
    for (const row& one : rows) {
        sheet& on = Sheet(200, 120);
        Canvas::textSize size;
        on.Draw([&](sheet& s) {
            size = s.TextSize("H0H");
            s.Colour(0xFFFFFF);
            s.Text(box, "H0H", one.Flags);
        });
        const rect ink = on.Ink();
        const auto wide = static_cast<int32_t>(size.Width);
        const auto high = static_cast<int32_t>(size.Height);
        const int32_t left = one.Across < 0   ? box.Left
                             : one.Across > 0 ? box.Right - wide
                                              : (box.Left + box.Right - wide) / 2;
        const int32_t top = one.Down < 0   ? box.Top
                            : one.Down > 0 ? box.Bottom - high
                                           : (box.Top + box.Bottom - high) / 2;
        EXPECT_TRUE(rectCovers({left - 1, top - 1, left + wide + 1, top + high + 1}, ink)) << one.Flags;
    }
}

TEST_F(pixels, TextIsCutAtItsBox)
{
    sheet& on = Sheet(100, 40);
    on.Draw([](sheet& s) {
        s.Colour(0xFFFFFF);
        s.Text({10, 10, 50, 22}, "WWWWWWWWWWWWWWWWWWWW", textLeft);
    });
    const rect ink = on.Ink();
    EXPECT_TRUE(rectCovers({10, 10, 50, 22}, ink));
    EXPECT_GE(ink.Right, 48);
}

// A ramp in an image of the given depth, and what each of its pixels must be.
struct depthImage {
    static constexpr uint32_t Side = 16;

    explicit depthImage(int32_t bits)
    {
        Image.Width = Side;
        Image.Height = Side;
        Image.Bits = bits;
        Image.Stride = static_cast<uint32_t>(pixmapStride(static_cast<uint32_t>(bits), Side));
        Bytes.resize(size_t{Image.Stride} * Side);
        for (size_t i = 0; i < Bytes.size(); ++i)
            Bytes[i] = static_cast<uint8_t>(i * 37 + i / 7);
        for (size_t i = 0; i < Palette.size(); ++i)
            Palette[i] = 0xFF000000U | static_cast<uint32_t>(i * 0x030507) % 0x1000000U;
        Image.Palette = Palette.data();
        Image.PaletteSize = bits <= 8 ? 1U << bits : 0;
        Image.Pixels = Bytes.data();
        Image.Size = static_cast<uint32_t>(Bytes.size());
    }

    // Read by hand, not by the toolkit.
    uint32_t At(uint32_t x, uint32_t y) const
    {
        const uint8_t* row = Bytes.data() + size_t{Image.Stride} * y;
        switch (Image.Bits) {
        case 1:
            return Palette[row[x / 8] >> (7 - x % 8) & 1] & 0xFFFFFF;
        case 4:
            return Palette[row[x / 2] >> (x % 2 ? 0 : 4) & 15] & 0xFFFFFF;
        case 8:
            return Palette[row[x]] & 0xFFFFFF;
        case 16: {
            const uint32_t pixel = row[2 * x] | static_cast<uint32_t>(row[2 * x + 1]) << 8;
            return (pixel & 0xF800) << 8 | (pixel & 0x07E0) << 5 | (pixel & 0x001F) << 3;
        }
        default: {
            const uint8_t* at = row + x * static_cast<uint32_t>(Image.Bits) / 8;
            return static_cast<uint32_t>(at[2]) << 16 | static_cast<uint32_t>(at[1]) << 8 | at[0];
        }
        }
    }

    pixmap Image;

private:
    std::array<uint32_t, 256> Palette{};
    std::vector<uint8_t> Bytes;
};

TEST_F(pixels, ImagesOfEveryDepthAreDrawnPixelByPixel)
{
    for (const int32_t bits : {1, 4, 8, 16, 24, 32}) {
        const depthImage image(bits);
        sheet& on = Sheet(24, 24);
        constexpr float side = depthImage::Side;
        on.Draw([&](sheet& s) { s.PixmapDraw(image.Image, 4, 4, side, side, 0, 0, side, side, false); });
        for (uint32_t y = 0; y < depthImage::Side; ++y) {
            for (uint32_t x = 0; x < depthImage::Side; ++x)
                ASSERT_EQ(on.At(static_cast<int32_t>(x) + 4, static_cast<int32_t>(y) + 4), image.At(x, y))
                    << bits << " bits at " << x << "," << y;
        }
        EXPECT_EQ(on.At(3, 4), 0U);
        EXPECT_EQ(on.At(20, 4), 0U);
    }
}

TEST_F(pixels, AnImageOfOneColourKeepsItAtEveryScale)
{
    const std::vector<uint32_t> colours(64, 0xFF4080C0);
    pixmap image;
    image.Width = 8;
    image.Height = 8;
    image.Bits = 32;
    image.Stride = 32;
    image.Pixels = reinterpret_cast<const uint8_t*>(colours.data());
    image.Size = 256;
    for (const float scale : {1.0F, 1.25F, 1.5F, 2.0F}) {
        sheet& on = Sheet(24, 24);
        const float side = 8 * scale;
        on.Draw([&](sheet& s) { s.PixmapDraw(image, 2, 2, side, side, 0, 0, 8, 8, false); });
        const auto end = static_cast<int32_t>(2 + side);
        for (int32_t y = 2; y < end; ++y) {
            for (int32_t x = 2; x < end; ++x)
                ASSERT_PRED3(isNear, on.At(x, y), 0x4080C0U, 1) << scale << " at " << x << "," << y;
        }
        EXPECT_EQ(on.At(1, 2), 0U);
        EXPECT_EQ(on.At(end + 1, 2), 0U);
    }
}

TEST_F(pixels, AnArcLiesOnItsCircleAndWithinItsAngles)
{
    sheet& on = Sheet(80, 80);
    on.Draw([](sheet& s) {
        s.Colour(0xFFFFFF);
        s.PenWidth(3.0F);
        s.Arc(40, 40, 30, 30, 240);
    });
    const auto inked = [&on](float degrees) {
        const float angle = degrees * std::numbers::pi_v<float> / 180;
        const auto x = static_cast<int32_t>(std::floor(40 + 30 * std::cos(angle)));
        const auto y = static_cast<int32_t>(std::floor(40 - 30 * std::sin(angle)));
        return on.At(x, y) != 0;
    };
    for (float angle = 34; angle <= 236; angle += 4)
        EXPECT_TRUE(inked(angle)) << angle;
    for (float angle = 246; angle <= 384; angle += 4)
        EXPECT_FALSE(inked(angle)) << angle;
}

TEST_F(pixels, LinesOnHalfPixelsAreSharp)
{
    sheet& on = Sheet(30, 30);
    on.Draw([](sheet& s) {
        s.Colour(0xFFFFFF);
        s.Line(5, 10.5F, 25, 10.5F);
        s.Rectangle(2.5F, 15.5F, 27.5F, 27.5F);
    });
    for (int32_t x = 5; x < 25; ++x) {
        ASSERT_EQ(on.At(x, 10), 0xFFFFFFU) << x;
        ASSERT_EQ(on.At(x, 9), 0U) << x;
        ASSERT_EQ(on.At(x, 11), 0U) << x;
    }
    EXPECT_EQ(on.At(2, 20), 0xFFFFFFU);
    EXPECT_EQ(on.At(3, 20), 0U);
    EXPECT_EQ(on.At(27, 20), 0xFFFFFFU);
    EXPECT_EQ(on.At(10, 15), 0xFFFFFFU);
    EXPECT_EQ(on.At(10, 16), 0U);
}

}  // namespace
