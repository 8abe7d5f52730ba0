#include "tests/platform/screen/drawCanvas.h"

#include <algorithm>
#include <cmath>

// Bitmaps, and surfaces that are drawn like one.

namespace {

class drawBitmaps : public drawPixelTest
{
};
DRAW_ON_ALL_CANVASES(drawBitmaps);

constexpr uint32_t Opaque = 0xFF000000;

TEST_P(drawBitmaps, ShowsEveryPixelInItsPlace)
{
    const std::vector<uint32_t> pixels = {Opaque | 0x123456, Opaque | 0xFEDCBA, Opaque | 0x010203,
                                          Opaque | 0xFF0000, Opaque | 0x00FF00, Opaque | 0x0000FF};
    drawCanvas canvas(GetParam(), 8, 8);
    canvas->DrawBitmap(canvas->MakeBitmap(pixels, 3, 2, true).get(), {2, 3, 5, 5}, 1, {0, 0, 3, 2});
    canvas.Finish();
    for (int y = 0; y < 2; ++y) {
        for (int x = 0; x < 3; ++x)
            EXPECT_EQ(canvas.At(2 + x, 3 + y), pixels[static_cast<size_t>(3 * y + x)] & 0xFFFFFF);
    }
    const inkBox ink = canvas.Ink();
    EXPECT_EQ(ink.Right - ink.Left, 3);
    EXPECT_EQ(ink.Bottom - ink.Top, 2);
}

TEST_P(drawBitmaps, CutsTheSourceOut)
{
    std::vector<uint32_t> pixels(8 * 8);
    for (uint32_t at = 0; at < pixels.size(); ++at)
        pixels[at] = Opaque | at << 8 | 0x010001;
    drawCanvas canvas(GetParam(), 8, 8);
    canvas->DrawBitmap(canvas->MakeBitmap(pixels, 8, 8, true).get(), {1, 1, 4, 3}, 1, {5, 2, 8, 4});
    canvas.Finish();
    for (int y = 0; y < 2; ++y) {
        for (int x = 0; x < 3; ++x)
            EXPECT_EQ(canvas.Green(1 + x, 1 + y), 8 * (2 + y) + 5 + x);
    }
    EXPECT_EQ(canvas.At(4, 1), Black);
}

// Blue within a red frame, which a scaled blue part must never show.
std::vector<uint32_t> framed()
{
    std::vector<uint32_t> pixels(16 * 16, Opaque | Red);
    for (size_t y = 4; y < 12; ++y)
        std::fill_n(pixels.begin() + static_cast<ptrdiff_t>(16 * y + 4), 8, Opaque | Blue);
    return pixels;
}

TEST_P(drawBitmaps, ScalesWithoutWhatIsBesideTheSource)
{
    DRAW_NEEDS(drawAbility::SourceEdges);
    for (const float scale : {1.0f, 1.25f, 1.5f, 2.0f, 0.5f}) {
        drawCanvas canvas(GetParam(), 32, 32);
        const float side = 8 * scale;
        canvas->DrawBitmap(canvas->MakeBitmap(framed(), 16, 16, true).get(), {6, 6, 6 + side, 6 + side}, 1,
                           {4, 4, 12, 12});
        canvas.Finish();
        const int end = 6 + static_cast<int>(side);
        for (int y = 0; y < 32; ++y) {
            for (int x = 0; x < 32; ++x) {
                const bool within = x >= 6 && x < end && y >= 6 && y < end;
                EXPECT_EQ(canvas.At(x, y), within ? Blue : Black) << scale << ": " << x << ',' << y;
            }
        }
    }
}

TEST_P(drawBitmaps, BlendsBetweenPixelsWhenItScales)
{
    const std::vector<uint32_t> pixels = {Opaque, Opaque | Red};
    drawCanvas canvas(GetParam(), 24, 4);
    canvas->DrawBitmap(canvas->MakeBitmap(pixels, 2, 1, true).get(), {0, 0, 20, 4}, 1, {0, 0, 2, 1});
    canvas.Finish();
    EXPECT_LE(canvas.Red(2, 2), 2);
    EXPECT_NEAR(canvas.Red(7, 2), 64, 4);
    EXPECT_NEAR(canvas.Red(12, 2), 191, 4);
    EXPECT_GE(canvas.Red(17, 2), 253);
    for (int x = 1; x < 20; ++x)
        EXPECT_GE(canvas.Red(x, 2), canvas.Red(x - 1, 2)) << x;
}

TEST_P(drawBitmaps, LetsTheBackgroundThroughByAlpha)
{
    const std::vector<uint32_t> pixels = {0x00000000, 0x80800000, 0xFFFF0000};
    drawCanvas canvas(GetParam(), 3, 1);
    canvas.Fill({0, 0, 3, 1}, Green);
    canvas->DrawBitmap(canvas->MakeBitmap(pixels, 3, 1, true).get(), {0, 0, 3, 1}, 1, {0, 0, 3, 1});
    canvas.Finish();
    EXPECT_EQ(canvas.At(0, 0), Green);
    EXPECT_NEAR(canvas.Red(1, 0), 128, 1);
    EXPECT_NEAR(canvas.Green(1, 0), 127, 1);
    EXPECT_EQ(canvas.At(2, 0), Red);
}

TEST_P(drawBitmaps, IgnoresAlphaWhenAsked)
{
    const std::vector<uint32_t> pixels = {0x00123456, 0x80800000, 0xFFFF0000};
    drawCanvas canvas(GetParam(), 3, 1);
    canvas.Fill({0, 0, 3, 1}, Green);
    canvas->DrawBitmap(canvas->MakeBitmap(pixels, 3, 1, false).get(), {0, 0, 3, 1}, 1, {0, 0, 3, 1});
    canvas.Finish();
    EXPECT_EQ(canvas.At(0, 0), 0x123456u);
    EXPECT_EQ(canvas.At(1, 0), 0x800000u);
    EXPECT_EQ(canvas.At(2, 0), Red);
}

TEST_P(drawBitmaps, WeighsByOpacity)
{
    const std::vector<uint32_t> pixels(16, Opaque | Red);
    drawCanvas canvas(GetParam(), 16, 4);
    canvas.Fill({0, 0, 16, 4}, Green);
    const std::unique_ptr<drawBitmap> bitmap = canvas->MakeBitmap(pixels, 4, 4, true);
    for (const float quarters : {0.0f, 1.0f, 2.0f, 4.0f}) {
        const float left = 4 * std::min(quarters, 3.0f);
        canvas->DrawBitmap(bitmap.get(), {left, 0, left + 4, 4}, quarters / 4, {0, 0, 4, 4});
    }
    canvas.Finish();
    const int shares[] = {0, 64, 128, 255};
    for (int strip = 0; strip < 4; ++strip) {
        EXPECT_NEAR(canvas.Red(4 * strip + 1, 1), shares[strip], 1);
        EXPECT_NEAR(canvas.Green(4 * strip + 1, 1), 255 - shares[strip], 1);
    }
}

TEST_P(drawBitmaps, CopiesThePixelsOfItsMaker)
{
    std::vector<uint32_t> pixels(4, Opaque | Red);
    drawCanvas canvas(GetParam(), 2, 2);
    const std::unique_ptr<drawBitmap> bitmap = canvas->MakeBitmap(pixels, 2, 2, true);
    std::ranges::fill(pixels, Opaque | Blue);
    canvas->DrawBitmap(bitmap.get(), {0, 0, 2, 2}, 1, {0, 0, 2, 2});
    canvas.Finish();
    EXPECT_EQ(canvas.At(1, 1), Red);
}

TEST_P(drawBitmaps, CopiesAnImageAsItIs)
{
    drawSystem& system = drawContractSystem();
    const std::unique_ptr<drawImage> image = system.MakeImage(4, 4);
    const std::unique_ptr<drawTarget> painter = system.MakeImageTarget(*image);
    const auto paint = [&](const drawColour& colour) {
        painter->Begin();
        painter->FillRectangle({0, 0, 4, 2}, painter->MakeBrush(colour).get());
        EXPECT_EQ(painter->End(), 0u);
    };
    paint({1, 0, 0, 1});
    drawCanvas canvas(GetParam(), 4, 4);
    canvas.Fill({0, 0, 4, 4}, Green);
    const std::unique_ptr<drawBitmap> bitmap = canvas->MakeBitmap(*image);
    ASSERT_NE(bitmap, nullptr);
    paint({0, 0, 1, 1});
    canvas->DrawBitmap(bitmap.get(), {0, 0, 4, 4}, 1, {0, 0, 4, 4});
    canvas.Finish();
    EXPECT_EQ(canvas.At(1, 1), Red);
    EXPECT_EQ(canvas.At(1, 3), Black);
}

// --- Surfaces

struct child {
    std::unique_ptr<drawTarget> Target;
    explicit child(drawTarget& parent, float width = 8, float height = 8)
    {
        uint32_t error = 0;
        Target = parent.MakeCompatible(width, height, error);
        EXPECT_EQ(error, 0u);
    }
    drawTarget* operator->() const { return Target.get(); }
};

TEST_P(drawBitmaps, SurfacesAreTransparentUntilDrawnOn)
{
    drawCanvas canvas(GetParam(), 8, 8);
    canvas.Fill({0, 0, 8, 8}, Green);
    const child surface(*canvas);
    surface->Begin();
    surface->FillRectangle({2, 2, 6, 6}, surface->MakeBrush({1, 0, 0, 1}).get());
    EXPECT_EQ(surface->End(), 0u);
    canvas->DrawBitmap(surface->Content().get(), {0, 0, 8, 8}, 1, {0, 0, 8, 8});
    canvas.Finish();
    EXPECT_EQ(canvas.At(1, 1), Green);
    EXPECT_EQ(canvas.At(2, 2), Red);
    EXPECT_EQ(canvas.At(5, 5), Red);
    EXPECT_EQ(canvas.At(6, 6), Green);
}

TEST_P(drawBitmaps, SurfacesAreComposedWithOpacity)
{
    drawCanvas canvas(GetParam(), 16, 8);
    canvas.Fill({0, 0, 16, 8}, Green);
    const child surface(*canvas);
    surface->Begin();
    surface->FillRectangle({0, 0, 8, 8}, surface->MakeBrush({1, 0, 0, 0.5f}).get());
    EXPECT_EQ(surface->End(), 0u);
    const std::unique_ptr<drawBitmap> content = surface->Content();
    canvas->DrawBitmap(content.get(), {0, 0, 8, 8}, 1, {0, 0, 8, 8});
    canvas->DrawBitmap(content.get(), {8, 0, 16, 8}, 0.5f, {0, 0, 8, 8});
    canvas.Finish();
    EXPECT_NEAR(canvas.Red(4, 4), 128, 2);
    EXPECT_NEAR(canvas.Green(4, 4), 127, 2);
    EXPECT_NEAR(canvas.Red(12, 4), 64, 2);
    EXPECT_NEAR(canvas.Green(12, 4), 191, 2);
}

TEST_P(drawBitmaps, TheContentOfASurfaceChangesWithIt)
{
    drawCanvas canvas(GetParam(), 8, 8);
    const child surface(*canvas);
    const std::unique_ptr<drawBitmap> content = surface->Content();
    for (const drawColour colour : {drawColour{1, 0, 0, 1}, drawColour{0, 0, 1, 1}}) {
        surface->Begin();
        surface->FillRectangle({0, 0, 8, 8}, surface->MakeBrush(colour).get());
        EXPECT_EQ(surface->End(), 0u);
    }
    canvas->DrawBitmap(content.get(), {0, 0, 8, 8}, 1, {0, 0, 8, 8});
    canvas.Finish();
    EXPECT_EQ(canvas.At(4, 4), Blue);
}

TEST_P(drawBitmaps, SeveralSurfacesAreDrawnOnAtATime)
{
    drawCanvas canvas(GetParam(), 8, 8);
    const child outer(*canvas);
    const child inner(*outer.Target, 4, 4);
    outer->Begin();
    outer->FillRectangle({0, 0, 8, 8}, outer->MakeBrush({1, 0, 0, 1}).get());
    inner->Begin();
    inner->FillRectangle({0, 0, 4, 4}, inner->MakeBrush({0, 0, 1, 1}).get());
    canvas.Fill({0, 0, 1, 1}, Green);
    EXPECT_EQ(inner->End(), 0u);
    outer->DrawBitmap(inner->Content().get(), {2, 2, 6, 6}, 1, {0, 0, 4, 4});
    EXPECT_EQ(outer->End(), 0u);
    canvas->DrawBitmap(outer->Content().get(), {1, 1, 8, 8}, 1, {1, 1, 8, 8});
    canvas.Finish();
    EXPECT_EQ(canvas.At(0, 0), Green);
    EXPECT_EQ(canvas.At(1, 1), Red);
    EXPECT_EQ(canvas.At(2, 2), Blue);
    EXPECT_EQ(canvas.At(5, 5), Blue);
    EXPECT_EQ(canvas.At(6, 6), Red);
}

TEST_P(drawBitmaps, ABrushIsSharedBetweenASurfaceAndWhatItWasMadeFor)
{
    drawCanvas canvas(GetParam(), 8, 8);
    const child surface(*canvas);
    const std::unique_ptr<drawBrush> ofParent = canvas.Brush(Red);
    const std::unique_ptr<drawBrush> ofSurface = surface->MakeBrush({0, 0, 1, 1});
    surface->Begin();
    surface->FillRectangle({0, 0, 8, 4}, ofParent.get());
    EXPECT_EQ(surface->End(), 0u);
    canvas->DrawBitmap(surface->Content().get(), {0, 0, 8, 8}, 1, {0, 0, 8, 8});
    canvas->FillRectangle({0, 4, 8, 8}, ofSurface.get());
    canvas.Finish();
    EXPECT_EQ(canvas.At(4, 2), Red);
    EXPECT_EQ(canvas.At(4, 6), Blue);
}

TEST_P(drawBitmaps, ASurfaceOfNoSizeShowsNothing)
{
    drawCanvas canvas(GetParam(), 8, 8);
    const child surface(*canvas, 0, 0);
    ASSERT_NE(surface.Target, nullptr);
    surface->Begin();
    EXPECT_EQ(surface->End(), 0u);
    canvas->DrawBitmap(surface->Content().get(), {0, 0, 0, 0}, 1, {0, 0, 0, 0});
    canvas.Finish();
    EXPECT_TRUE(canvas.Ink().IsEmpty());
}

}  // namespace
