// A small surface to draw on and to look at.
#pragma once

#include "platform/draw.h"
#include "tests/platform/screen/drawContract.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <string_view>
#include <vector>

// Colours as 0xRRGGBB.
constexpr uint32_t Black = 0x000000;
constexpr uint32_t White = 0xFFFFFF;
constexpr uint32_t Red = 0xFF0000;
constexpr uint32_t Green = 0x00FF00;
constexpr uint32_t Blue = 0x0000FF;

// Drawing, made once for all tests: the first time takes a second on some systems.
drawSystem& drawContractSystem();

enum class canvasKind {
    Image,       // pixels in memory
    Compatible,  // a surface that is then put on such pixels
};

// The box around the pixels that something was drawn on; right and bottom are just outside.
struct inkBox {
    int Left = 0, Top = 0, Right = 0, Bottom = 0;
    bool IsEmpty() const { return Left >= Right; }
};

// Black at first and ready to be drawn on, with units of pixels.
class drawCanvas
{
public:
    drawCanvas(canvasKind kind, uint32_t width, uint32_t height);

    drawTarget* operator->() { return Target; }
    drawTarget& operator*() { return *Target; }

    std::unique_ptr<drawBrush> Brush(uint32_t colour, float alpha = 1);
    void Fill(const drawRect& rect, uint32_t colour, float alpha = 1);

    // Ends drawing; then there are pixels.
    void Finish();
    // And begins again, on what is there.
    void Resume();

    uint32_t At(int x, int y) const;  // 0xRRGGBB
    int Red(int x, int y) const { return static_cast<int>(At(x, y) >> 16); }
    int Green(int x, int y) const { return static_cast<int>(At(x, y) >> 8 & 0xFF); }
    int Width() const { return static_cast<int>(Width_); }
    int Height() const { return static_cast<int>(Height_); }

    // Of all pixels that are not black.
    inkBox Ink() const;
    inkBox Ink(const inkBox& within) const;
    bool IsBlank(const inkBox& within) const { return Ink(within).IsEmpty(); }

    const std::vector<uint32_t>& Pixels() const { return Pixels_; }

private:
    uint32_t Width_;
    uint32_t Height_;
    std::unique_ptr<drawImage> Image;
    std::unique_ptr<drawTarget> Base;
    std::unique_ptr<drawTarget> Surface;
    drawTarget* Target = nullptr;
    std::vector<uint32_t> Pixels_;
};

// Tests that look at pixels, on both kinds of canvas.
class drawPixelTest : public testing::TestWithParam<canvasKind>
{
protected:
    void SetUp() override
    {
        if (!drawContractHasPixels())
            GTEST_SKIP() << "nothing is drawn here";
    }
};

std::string drawCanvasName(const testing::TestParamInfo<canvasKind>& kind);

#define DRAW_ON_ALL_CANVASES(suite)                                                                          \
    INSTANTIATE_TEST_SUITE_P(On, suite, testing::Values(canvasKind::Image, canvasKind::Compatible),          \
                             drawCanvasName)

#define DRAW_NEEDS(ability)                                                                                  \
    if (const char* lack = drawContractLacks(ability))                                                       \
    GTEST_SKIP() << lack

// A turn by `eighths` of a full one, clockwise as y goes down, about the origin; then a move.
drawMatrix drawTurn(int eighths, float x, float y);

constexpr float Endless = 1'000'000;

// A format that every system of the tests has.
std::shared_ptr<drawTextFormat> drawTestFormat(float size, bool bold = false, bool italic = false);

// A text on one line.
std::unique_ptr<drawTextLayout> drawTestText(std::string_view text, const drawTextFormat& format,
                                             float width = Endless, float height = Endless);
