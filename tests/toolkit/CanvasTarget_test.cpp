#include "tests/toolkit/toolkitTest.h"

#include "toolkit/pixmapDyn.h"

using testing::ElementsAre;
using testing::IsEmpty;
using testing::Pair;

namespace {

class CanvasTargetTest : public toolkitTest
{
protected:
    void SetUp() override
    {
        toolkitTest::SetUp();
        Paper.SurfaceSize(100, 50);
    }
    void TearDown() override
    {
        Paper.DeviceRelease();
        toolkitTest::TearDown();
    }

    Canvas Paper;
};

TEST_F(CanvasTargetTest, IsMadeOnceInMemoryWithItsImage)
{
    EXPECT_EQ(Paper.TargetKind(), canvasTarget::Image);
    EXPECT_FALSE(Paper.HasTarget());
    Paper.TargetCreate(nullptr);
    Paper.TargetCreate(nullptr);
    EXPECT_TRUE(Paper.HasTarget());
    EXPECT_EQ(Paper.TargetKind(), canvasTarget::Image);
    EXPECT_THAT(fakeDraws(), ElementsAre("image 1 100x50"));
    EXPECT_EQ(fakeDrawObjects(), 2U) << "the image and its target";

    std::vector<uint32_t> pixels;
    EXPECT_TRUE(Paper.Read(pixels));
    EXPECT_EQ(pixels.size(), 5000U);
    Paper.DeviceRelease();
    EXPECT_FALSE(Paper.Read(pixels));
}

TEST_F(CanvasTargetTest, OneInMemoryThatCannotBeMadeIsSilent)
{
    fakeFail("drawMakeImage");
    Paper.TargetCreate(nullptr);
    EXPECT_FALSE(Paper.HasTarget());
    fakeFail("drawMakeImageTarget");
    Paper.TargetCreate(nullptr);
    EXPECT_FALSE(Paper.HasTarget());
    EXPECT_EQ(fakeDrawObjects(), 0U) << "the image goes with its target";
    EXPECT_THAT(fakeAlerts(), IsEmpty());
    Paper.TargetCreate(nullptr);
    EXPECT_TRUE(Paper.HasTarget());
}

TEST_F(CanvasTargetTest, IsMadeCompatibleWithTheParents)
{
    Paper.TargetCreate(nullptr);
    Canvas child;
    child.SurfaceSize(40, 20);
    child.TargetCreate(&Paper);
    EXPECT_EQ(child.TargetKind(), canvasTarget::Compatible);
    EXPECT_THAT(fakeDraws(), ElementsAre("image 1 100x50", "compatible 2 of 1 40x20"));
    std::vector<uint32_t> pixels;
    EXPECT_FALSE(child.Read(pixels));
}

TEST_F(CanvasTargetTest, ACompatibleOneThatCannotBeMadeIsTold)
{
    Paper.TargetCreate(nullptr);
    Canvas child;
    child.SurfaceSize(40, 20);
    fakeFail("drawMakeCompatible");
    child.TargetCreate(&Paper);
    EXPECT_FALSE(child.HasTarget());
    EXPECT_THAT(fakeAlerts(),
                ElementsAre(Pair("Canvas Fatal Error", "Can't create compatible render target!\n"
                                                       "Image size: 40x20\nError code: 88990001")));
}

TEST_F(CanvasTargetTest, ALostOneTakesAllAlongAndIsMadeAgain)
{
    Paper.TargetCreate(nullptr);
    Paper.BeginDraw();
    Paper.Colour(7);
    Paper.RectFill(0, 0, 1, 1);
    Paper.Text({0, 0, 50, 20}, "A", 0);
    fakeEndGives(drawTargetLost);
    Paper.EndDraw();
    EXPECT_FALSE(Paper.HasTarget());
    EXPECT_EQ(fakeDrawObjects(), 0U);
    EXPECT_EQ(Paper.Colour(), 7) << "what is no matter of the target survives";

    Paper.TargetCreate(nullptr);
    Paper.BeginDraw();
    fakeClearDraws();
    Paper.RectFill(0, 0, 1, 1);
    Paper.EndDraw();
    EXPECT_THAT(fakeDraws(), ElementsAre("fill 2 0,0,1,1 070000/1", "end 2"));
}

TEST_F(CanvasTargetTest, AnotherCodeAtTheEndLosesNothing)
{
    Paper.TargetCreate(nullptr);
    Paper.BeginDraw();
    fakeEndGives(drawTargetLost + 1);
    Paper.EndDraw();
    EXPECT_TRUE(Paper.HasTarget());
}

// --- Copies

TEST_F(CanvasTargetTest, CopiesFromACompatibleTargetAndFromMemory)
{
    Paper.TargetCreate(nullptr);
    Canvas child;
    child.SurfaceSize(40, 20);
    child.TargetCreate(&Paper);
    Canvas image;
    image.SurfaceSize(30, 30);
    image.TargetCreate(nullptr);
    Paper.BeginDraw();
    fakeClearDraws();
    Paper.CanvasDraw(1, 2, child, 0.25F, 3, 4, 10, 11);
    Paper.CanvasDraw(5, 6, image, 0.0F, 0, 0, 7, 8);
    EXPECT_THAT(fakeDraws(), ElementsAre("bitmap 1 of 2 at 1,2,11,13 from 3,4,13,15 opacity 0.75",
                                         "bitmap 1 of 3 at 5,6,12,14 from 0,0,7,8 opacity 1"));
    Paper.EndDraw();
}

TEST_F(CanvasTargetTest, CopiesNothingFromAWindowOrFromNoTarget)
{
    auto* window = new ctrlWindow(nullptr, 100, 100, 200, 100, 0);
    window->Show();
    Drawn();
    ASSERT_EQ(window->TargetKind(), canvasTarget::Window);
    Paper.TargetCreate(nullptr);
    Paper.BeginDraw();
    fakeClearDraws();
    const Canvas bare;
    Paper.CanvasDraw(0, 0, *window, 0, 0, 0, 10, 10);
    Paper.CanvasDraw(0, 0, bare, 0, 0, 0, 10, 10);
    EXPECT_THAT(fakeDraws(), IsEmpty());
    Paper.EndDraw();
}

// --- Images

TEST_F(CanvasTargetTest, DrawsImagesOfEveryDepth)
{
    Paper.TargetCreate(nullptr);
    Paper.BeginDraw();
    constexpr uint32_t palette[] = {0, 0xFF0000FF};
    constexpr uint8_t pixels[64] = {};
    for (const int32_t bits : {1, 4, 8, 16, 24, 32}) {
        pixmap image;
        image.Width = 3;
        image.Height = 2;
        image.Bits = bits;
        image.Palette = palette;
        image.PaletteSize = 2;
        image.Pixels = pixels;
        image.Stride = static_cast<uint32_t>(pixmapStride(static_cast<uint32_t>(bits), 3));
        image.Size = image.Stride * 2;
        fakeClearDraws();
        Paper.PixmapDraw(image, 1, 2, 6, 4, 0, 0, 3, 2, false);
        EXPECT_THAT(fakeDraws(), ElementsAre("bitmap 1 of pixels 3x2 at 1,2,7,6 from 0,0,3,2 opacity 1"))
            << bits;
    }
    Paper.EndDraw();
}

TEST_F(CanvasTargetTest, AnImageWithAlphaSaysSo)
{
    Paper.TargetCreate(nullptr);
    Paper.BeginDraw();
    pixmapDyn image;
    pixmap source;
    constexpr uint8_t pixels[16] = {};
    source.Width = 2;
    source.Height = 2;
    source.Bits = 32;
    source.Pixels = pixels;
    source.Size = sizeof pixels;
    source.Stride = 8;
    fakeClearDraws();
    Paper.PixmapDraw(source, 0, 0, 2, 2, 1, 0, 1, 2, true);
    EXPECT_THAT(fakeDraws(), ElementsAre("bitmap 1 of pixels 2x2 alpha at 0,0,2,2 from 1,0,2,2 opacity 1"));

    fakeClearDraws();
    source.Size = 15;  // a row too short
    Paper.PixmapDraw(source, 0, 0, 2, 2, 0, 0, 2, 2, true);
    Paper.PixmapDraw(image, 0, 0, 2, 2, 0, 0, 2, 2, true);
    EXPECT_THAT(fakeDraws(), IsEmpty()) << "a damaged image and an empty one";
    Paper.EndDraw();
}

TEST_F(CanvasTargetTest, AnImageThatTellsMorePixelsThanItHasIsNotDrawn)
{
    Paper.TargetCreate(nullptr);
    Paper.BeginDraw();
    constexpr uint8_t pixels[16] = {};
    pixmap image;
    image.Bits = 32;
    image.Pixels = pixels;
    image.Size = sizeof pixels;
    fakeClearDraws();
    for (const uint32_t side : {3U, 0x8000'0000U, 0xFFFF'FFFFU}) {
        image.Width = side;
        image.Height = side;
        Paper.PixmapDraw(image, 0, 0, 2, 2, 0, 0, 2, 2, false);
    }
    image.Width = 2;
    image.Height = 2;
    image.Pixels = nullptr;
    Paper.PixmapDraw(image, 0, 0, 2, 2, 0, 0, 2, 2, false);
    EXPECT_THAT(fakeDraws(), IsEmpty());
    Paper.EndDraw();
}

}  // namespace
