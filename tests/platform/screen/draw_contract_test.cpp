#include "tests/platform/screen/drawCanvas.h"

// What is made, what is refused, and what nothing does. Runs on every platform.

namespace {

constexpr drawRect Unit = {0, 0, 1, 1};

struct surface {
    std::unique_ptr<drawImage> Image = drawContractSystem().MakeImage(16, 16);
    std::unique_ptr<drawTarget> Target = drawContractSystem().MakeImageTarget(*Image);
    surface() { SetUnits(*Target); }
    drawTarget* operator->() const { return Target.get(); }

    static void SetUnits(drawTarget& target)
    {
        target.SetDPI(96, 96);
        target.SetTransform({});
        target.SetGrayscaleText();
    }
};

// What no real system takes. A scripted one refuses when its script says so.
class drawRefusals : public testing::Test
{
protected:
    void SetUp() override
    {
        if (!drawContractHasPixels())
            GTEST_SKIP() << "a script decides what is refused here";
    }
};

TEST(draw, MakesEverythingThatIsDrawnWith)
{
    const surface target;
    ASSERT_NE(target.Target, nullptr);
    uint32_t error = 0;
    const uint32_t pixel = 0xFFFFFFFF;
    EXPECT_NE(target->MakeBrush({1, 1, 1, 1}), nullptr);
    EXPECT_NE(target->MakeBitmap(std::span(&pixel, 1), 1, 1, true), nullptr);
    EXPECT_NE(target->MakeBitmap(*target.Image), nullptr);
    const std::unique_ptr<drawTarget> compatible = target->MakeCompatible(8, 8, error);
    ASSERT_NE(compatible, nullptr);
    EXPECT_EQ(error, 0u);
    EXPECT_NE(compatible->Content(), nullptr);
    EXPECT_NE(drawTestText("text", *drawTestFormat(11)), nullptr);
}

TEST(draw, OnlyACompatibleTargetHasContent)
{
    const surface target;
    EXPECT_EQ(target->Content(), nullptr);
}

TEST(draw, DrawingWithNothingDoesNothing)
{
    const surface target;
    const drawPoint lines[] = {{4, 4}, {0, 8}};
    const drawFigure figure = {{0, 0}, lines, {}, true, true};
    const std::unique_ptr<drawTextLayout> text = drawTestText("text", *drawTestFormat(11));
    const std::unique_ptr<drawBrush> brush = target->MakeBrush({1, 1, 1, 1});
    target->Begin();
    target->DrawLine({0, 0}, {9, 9}, nullptr, {});
    target->DrawRectangle(Unit, nullptr, {});
    target->FillRectangle(Unit, nullptr);
    target->FillEllipse({5, 5}, 4, 4, nullptr);
    target->DrawFigure(figure, nullptr, {});
    target->FillFigure(figure, nullptr);
    target->DrawLayout({0, 0}, text.get(), nullptr);
    target->DrawLayout({0, 0}, nullptr, brush.get());
    target->DrawBitmap(nullptr, Unit, 1, Unit);
    EXPECT_EQ(target->End(), 0u);
    if (!drawContractHasPixels())
        return;
    std::vector<uint32_t> pixels(16 * 16);
    ASSERT_TRUE(target.Image->Read(pixels));
    for (const uint32_t pixel : pixels)
        EXPECT_EQ(pixel & 0xFFFFFF, Black);
}

TEST(draw, FiguresOfNothingAreHarmless)
{
    const surface target;
    const std::unique_ptr<drawBrush> brush = target->MakeBrush({1, 1, 1, 1});
    const drawPoint two[] = {{1, 1}, {2, 2}};
    target->Begin();
    for (const bool filled : {false, true}) {
        target->DrawFigure({{0, 0}, {}, {}, filled, filled}, brush.get(), {});
        target->FillFigure({{0, 0}, {}, {}, filled, filled}, brush.get());
        target->DrawFigure({{0, 0}, {}, two, filled, filled}, brush.get(), {});
        target->FillFigure({{0, 0}, std::span(two, 1), {}, filled, filled}, brush.get());
    }
    target->DrawFigure({{0, 0}, two, {}, false, false}, brush.get(), {0, false});
    target->FillRectangle({3, 3, 3, 3}, brush.get());
    target->FillEllipse({5, 5}, 0, 0, brush.get());
    EXPECT_EQ(target->End(), 0u);
}

TEST(draw, ABitmapNeedsAllItsPixels)
{
    const surface target;
    const std::vector<uint32_t> pixels(11, 0xFFFFFFFF);
    EXPECT_EQ(target->MakeBitmap(pixels, 4, 3, true), nullptr);
    EXPECT_EQ(target->MakeBitmap(pixels, 0, 3, true), nullptr);
    EXPECT_EQ(target->MakeBitmap(pixels, 4, 0, true), nullptr);
    EXPECT_EQ(target->MakeBitmap(pixels, 0x80000001, 0x80000000, true), nullptr);
    EXPECT_NE(target->MakeBitmap(pixels, 5, 2, true), nullptr);
}

TEST(draw, AnImageIsReadWholeOrNotAtAll)
{
    const std::unique_ptr<drawImage> image = drawContractSystem().MakeImage(4, 3);
    std::vector<uint32_t> pixels(12, 0x123456);
    EXPECT_FALSE(image->Read(std::span(pixels).first(11)));
    EXPECT_TRUE(image->Read(pixels));
    for (const uint32_t pixel : pixels)
        EXPECT_EQ(pixel, 0u);
}

TEST_F(drawRefusals, AnImageHasASize)
{
    EXPECT_EQ(drawContractSystem().MakeImage(0, 5), nullptr);
    EXPECT_EQ(drawContractSystem().MakeImage(5, 0), nullptr);
    EXPECT_EQ(drawContractSystem().MakeImage(1'000'000, 1'000'000), nullptr);
}

TEST_F(drawRefusals, ASurfaceThatIsTooLargeIsRefusedWithACode)
{
    const surface target;
    uint32_t error = 0;
    EXPECT_EQ(target->MakeCompatible(100'000, 100'000, error), nullptr);
    EXPECT_NE(error, 0u);
}

TEST_F(drawRefusals, AWindowThatIsGoneHasNoTarget)
{
    constexpr windowId Nowhere = 0x7FFF'1234;
    for (const bool hardware : {true, false}) {
        uint32_t error = 0;
        EXPECT_EQ(drawContractSystem().MakeWindowTarget(Nowhere, 10, 10, hardware, error), nullptr);
        EXPECT_NE(error, 0u);
    }
}

TEST(draw, WhatWasMadeMayOutliveItsMaker)
{
    std::unique_ptr<drawSystem> system = drawSystemMake();
    ASSERT_NE(system, nullptr);
    std::unique_ptr<drawImage> image = system->MakeImage(4, 4);
    std::unique_ptr<drawTarget> target = system->MakeImageTarget(*image);
    uint32_t error = 0;
    const std::unique_ptr<drawTarget> compatible = target->MakeCompatible(4, 4, error);
    const std::unique_ptr<drawBitmap> content = compatible->Content();
    const std::unique_ptr<drawBrush> brush = target->MakeBrush({1, 1, 1, 1});
    std::shared_ptr<drawTextFormat> format = system->MakeTextFormat("Open Sans", false, false, 11);
    const std::unique_ptr<drawTextLayout> text = system->MakeTextLayout("text", *format, 100, 100);
    surface::SetUnits(*target);
    target->Begin();
    target->DrawLayout({0, 0}, text.get(), brush.get());
    EXPECT_EQ(target->End(), 0u);
    image.reset();
    target.reset();
    format.reset();
    system.reset();
}

}  // namespace
