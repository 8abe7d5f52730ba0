#include "tests/platform/screen/drawCanvas.h"

// Clips, and what stays from one Begin to the next.

namespace {

class drawClips : public drawPixelTest
{
};
DRAW_ON_ALL_CANVASES(drawClips);

constexpr drawRect Everything = {-50, -50, 100, 100};

void expectBox(const inkBox& ink, int left, int top, int right, int bottom)
{
    EXPECT_EQ(ink.Left, left);
    EXPECT_EQ(ink.Top, top);
    EXPECT_EQ(ink.Right, right);
    EXPECT_EQ(ink.Bottom, bottom);
}

TEST_P(drawClips, CutsEverythingToTheClip)
{
    drawCanvas canvas(GetParam(), 30, 30);
    const std::unique_ptr<drawBrush> brush = canvas.Brush(Red);
    const drawPoint lines[] = {{30, 0}, {30, 30}, {0, 30}};
    const std::vector<uint32_t> pixels(30 * 30, 0xFFFF0000);
    const std::unique_ptr<drawBitmap> bitmap = canvas->MakeBitmap(pixels, 30, 30, true);
    const std::shared_ptr<drawTextFormat> format = drawTestFormat(40);
    const std::unique_ptr<drawTextLayout> text = drawTestText("MMM", *format);
    canvas->PushClip({5, 6, 20, 18});
    canvas.Fill(Everything, Red);
    canvas->FillEllipse({15, 15}, 20, 20, brush.get());
    canvas->DrawLine({0, 10}, {30, 10}, brush.get(), {4, false});
    canvas->DrawFigure({{0, 0}, lines, {}, true, true}, brush.get(), {9, false});
    canvas->FillFigure({{0, 0}, lines, {}, true, true}, brush.get());
    canvas->DrawBitmap(bitmap.get(), {0, 0, 30, 30}, 1, {0, 0, 30, 30});
    canvas->DrawBitmap(bitmap.get(), {0, 0, 30, 30}, 0.5f, {0, 0, 30, 30});
    canvas->DrawLayout({0, 0}, text.get(), brush.get());
    canvas->PopClip();
    canvas.Finish();
    expectBox(canvas.Ink(), 5, 6, 20, 18);
}

TEST_P(drawClips, CutsAClipToTheOneBefore)
{
    drawCanvas canvas(GetParam(), 30, 30);
    canvas->PushClip({5, 5, 20, 20});
    canvas->PushClip({10, 0, 30, 15});
    canvas.Fill(Everything, Red);
    canvas->PopClip();
    canvas->PopClip();
    canvas.Finish();
    expectBox(canvas.Ink(), 10, 5, 20, 15);
}

TEST_P(drawClips, GoesBackToTheOuterClip)
{
    drawCanvas canvas(GetParam(), 30, 30);
    canvas->PushClip({5, 5, 20, 20});
    canvas->PushClip({10, 10, 12, 12});
    canvas->PopClip();
    canvas.Fill(Everything, Red);
    canvas->PopClip();
    canvas.Fill({25, 25, 26, 26}, Blue);
    canvas.Finish();
    expectBox(canvas.Ink({0, 0, 24, 24}), 5, 5, 20, 20);
    EXPECT_EQ(canvas.At(25, 25), Blue);
}

TEST_P(drawClips, LeavesNothingBetweenClipsThatDoNotMeet)
{
    DRAW_NEEDS(drawAbility::EmptyClips);
    drawCanvas canvas(GetParam(), 30, 30);
    canvas->PushClip({5, 5, 10, 10});
    canvas->PushClip({15, 15, 20, 20});
    canvas.Fill(Everything, Red);
    canvas->PopClip();
    canvas->PopClip();
    canvas.Finish();
    EXPECT_TRUE(canvas.Ink().IsEmpty());
}

TEST_P(drawClips, LeavesNothingOfAClipWithoutWidth)
{
    drawCanvas canvas(GetParam(), 30, 30);
    canvas->PushClip({8, 8, 8, 20});
    canvas.Fill(Everything, Red);
    canvas->PopClip();
    canvas.Finish();
    EXPECT_TRUE(canvas.Ink().IsEmpty());
}

TEST_P(drawClips, MovesAClipWithTheMatrixOfItsPush)
{
    drawCanvas canvas(GetParam(), 30, 30);
    canvas->SetTransform({1, 0, 0, 1, 10, 5});
    canvas->PushClip({0, 0, 5, 5});
    canvas->SetTransform({});
    canvas.Fill(Everything, Red);
    canvas->PopClip();
    canvas.Finish();
    expectBox(canvas.Ink(), 10, 5, 15, 10);
}

TEST_P(drawClips, KeepsTheMatrixThroughAPop)
{
    drawCanvas canvas(GetParam(), 30, 30);
    canvas->PushClip({0, 0, 20, 20});
    canvas->SetTransform({1, 0, 0, 1, 10, 5});
    canvas->PopClip();
    canvas.Fill({0, 0, 5, 5}, Red);
    canvas->SetTransform({});
    canvas.Finish();
    expectBox(canvas.Ink(), 10, 5, 15, 10);
}

TEST_P(drawClips, KeepsWhatIsNotDrawnOver)
{
    drawCanvas canvas(GetParam(), 30, 30);
    canvas.Fill({0, 0, 10, 10}, Red);
    canvas.Fill({10, 0, 20, 10}, Green);
    canvas.Finish();
    canvas.Resume();
    canvas.Fill({15, 0, 30, 10}, Blue);
    canvas.Finish();
    EXPECT_EQ(canvas.At(5, 5), Red);
    EXPECT_EQ(canvas.At(12, 5), Green);
    EXPECT_EQ(canvas.At(17, 5), Blue);
    EXPECT_EQ(canvas.At(5, 20), Black);
}

}  // namespace
