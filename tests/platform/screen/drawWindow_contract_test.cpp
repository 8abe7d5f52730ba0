#include "tests/platform/screen/drawCanvas.h"
#include "tests/platform/screen/windowTest.h"

// What a window shows of what is drawn on it.

namespace {

constexpr windowEdges Client = {120, 140, 320, 260};
constexpr uint32_t Width = 200;
constexpr uint32_t Height = 120;
constexpr drawRect Whole = {0, 0, Width, Height};

constexpr drawColour FullRed = {1, 0, 0, 1};
constexpr drawColour FullBlue = {0, 0, 1, 1};

class drawOnWindow : public windowTest
{
protected:
    void SetUp() override
    {
        if (!drawContractHasPixels())
            GTEST_SKIP() << "nothing is drawn here";
        DRAW_NEEDS(drawAbility::ScreenPixels);
        windowTest::SetUp();
        Window = OpenAt(Client, stylePopup);
        Target = MakeTarget(Window);
        ASSERT_NE(Target, nullptr);
        Answer = [this](const windowMessage& message) { return Paint(message); };
    }

    void TearDown() override
    {
        Target.reset();
        windowTest::TearDown();
    }

    static std::unique_ptr<drawTarget> MakeTarget(windowId window)
    {
        uint32_t error = 0;
        std::unique_ptr<drawTarget> target =
            drawContractSystem().MakeWindowTarget(window, Width, Height, true, error);
        if (!target)
            target = drawContractSystem().MakeWindowTarget(window, Width, Height, false, error);
        EXPECT_NE(target, nullptr) << "error " << error;
        return target;
    }

    std::optional<int64_t> Paint(const windowMessage& message)
    {
        if (message.Number != msgPaint || message.Window != Window)
            return std::nullopt;
        Repeat();
        System->PaintDone(Window);
        return 0;
    }

    // Where the system does not keep what a window shows, or loses it while the window comes up, the end of a
    // paint without drawing shows it again. Elsewhere that changes nothing.
    void Repeat()
    {
        if (!Target || IsDrawing)
            return;
        Begin();
        End();
    }

    void Begin()
    {
        IsDrawing = true;
        Target->SetDPI(96, 96);
        Target->SetTransform({});
        Target->Begin();
    }

    void End()
    {
        EXPECT_EQ(Target->End(), 0u);
        IsDrawing = false;
    }

    void Fill(const drawRect& rect, const drawColour& colour)
    {
        Begin();
        Target->FillRectangle(rect, Target->MakeBrush(colour).get());
        End();
    }

    // Of the window's client area.
    static std::optional<uint32_t> Shown(int x, int y)
    {
        return drawContractScreen(Client.Left + x, Client.Top + y);
    }

    testing::AssertionResult Shows(int x, int y, uint32_t colour)
    {
        const auto isThere = [&] {
            if (Shown(x, y) == colour)
                return true;
            Repeat();
            return false;
        };
        if (Until(isThere))
            return testing::AssertionSuccess();
        return testing::AssertionFailure()
               << std::hex << Shown(x, y).value_or(0xDEAD0000) << " at " << std::dec << x << ',' << y;
    }

    windowId Window = 0;
    std::unique_ptr<drawTarget> Target;
    bool IsDrawing = false;
};

TEST_F(drawOnWindow, ShowsWhatWasDrawn)
{
    Fill(Whole, FullRed);
    Fill({50, 40, 60, 45}, FullBlue);
    EXPECT_TRUE(Shows(50, 40, Blue));
    EXPECT_TRUE(Shows(59, 44, Blue));
    for (const auto& [x, y] : {std::pair(0, 0), {199, 119}, {49, 40}, {50, 39}, {60, 44}, {59, 45}})
        EXPECT_TRUE(Shows(x, y, Red)) << x << ',' << y;
}

TEST_F(drawOnWindow, ShowsNothingBeforeTheEnd)
{
    Fill(Whole, FullRed);
    ASSERT_TRUE(Shows(5, 5, Red));
    Begin();
    Target->FillRectangle(Whole, Target->MakeBrush(FullBlue).get());
    Pump();
    EXPECT_EQ(Shown(5, 5), Red);
    End();
    EXPECT_TRUE(Shows(5, 5, Blue));
}

TEST_F(drawOnWindow, KeepsWhatIsNotDrawnOver)
{
    Fill(Whole, FullRed);
    for (int strip = 0; strip < 20; ++strip) {
        const float left = static_cast<float>(10 * strip);
        Fill({left, 0, left + 5, 10}, FullBlue);
    }
    EXPECT_TRUE(Shows(192, 5, Blue));
    EXPECT_TRUE(Shows(2, 5, Blue));
    EXPECT_TRUE(Shows(7, 5, Red));
    EXPECT_TRUE(Shows(197, 5, Red));
    EXPECT_TRUE(Shows(100, 100, Red));
}

// Each way of drawing alone, in a corner of its own: what it touched is shown, whatever that was.
TEST_F(drawOnWindow, ShowsEveryKindOfDrawing)
{
    Fill(Whole, FullRed);
    const std::unique_ptr<drawBrush> brush = Target->MakeBrush(FullBlue);
    const std::vector<uint32_t> pixels(64, 0xFF0000FF);
    const std::unique_ptr<drawBitmap> bitmap = Target->MakeBitmap(pixels, 8, 8, true);
    const drawPoint corner[] = {{70, 20}, {70, 30}, {60, 30}};
    const drawPoint curve[] = {{80, 30}, {90, 30}, {90, 20}};
    const std::function<void()> draws[] = {
        [&] {
            Target->DrawLine({10, 20}, {20, 20}, brush.get(), {6, false});
        },
        [&] {
            Target->DrawRectangle({30, 18, 50, 40}, brush.get(), {6, false});
        },
        [&] {
            Target->FillFigure({{60, 20}, corner, {}, true, true}, brush.get());
        },
        [&] {
            Target->DrawFigure({{80, 20}, {}, curve, true, false}, brush.get(), {6, false});
        },
        [&] {
            Target->FillEllipse({110, 25}, 8, 8, brush.get());
        },
        [&] {
            Target->DrawBitmap(bitmap.get(), {130, 20, 146, 36}, 1, {0, 0, 8, 8});
        },
        [&] {
            Target->SetTransform({1, 0, 0, 1, 160, 20});
            Target->FillRectangle({0, 0, 10, 10}, brush.get());
            Target->SetTransform({});
        },
        [&] {
            Target->PushClip({20, 70, 30, 80});
            Target->FillRectangle(Whole, brush.get());
            Target->PopClip();
        },
    };
    for (const std::function<void()>& draw : draws) {
        Begin();
        draw();
        End();
    }
    for (const auto& [x, y] :
         {std::pair(15, 20), {28, 30}, {65, 25}, {80, 23}, {110, 25}, {138, 28}, {165, 25}, {25, 75}})
        EXPECT_TRUE(Shows(x, y, Blue)) << x << ',' << y;
    for (const auto& [x, y] : {std::pair(15, 28), {40, 28}, {99, 25}, {15, 75}, {35, 75}})
        EXPECT_TRUE(Shows(x, y, Red)) << x << ',' << y;
}

TEST_F(drawOnWindow, ShowsTheContentOfACompatibleTarget)
{
    Fill(Whole, FullRed);
    uint32_t error = 0;
    const std::unique_ptr<drawTarget> child = Target->MakeCompatible(20, 20, error);
    ASSERT_NE(child, nullptr);
    const std::unique_ptr<drawBrush> brush = Target->MakeBrush(FullBlue);
    Begin();
    child->Begin();
    child->FillRectangle({5, 5, 15, 15}, brush.get());
    EXPECT_EQ(child->End(), 0u);
    Target->DrawBitmap(child->Content().get(), {100, 50, 120, 70}, 1, {0, 0, 20, 20});
    End();
    EXPECT_TRUE(Shows(110, 60, Blue));
    EXPECT_TRUE(Shows(102, 60, Red));
}

TEST_F(drawOnWindow, ShowsAgainWhatWasUncovered)
{
    Fill(Whole, FullRed);
    ASSERT_TRUE(Shows(100, 60, Red));
    const windowId cover = OpenAt({200, 180, 260, 240}, stylePopup, Window);
    std::unique_ptr<drawTarget> over = MakeTarget(cover);
    const auto isCovered = [&] {
        over->SetDPI(96, 96);
        over->Begin();
        over->FillRectangle(Whole, over->MakeBrush(FullBlue).get());
        EXPECT_EQ(over->End(), 0u);
        return Shown(100, 60) == Blue;
    };
    ASSERT_TRUE(Until(isCovered));
    over.reset();
    System->Destroy(cover);
    EXPECT_TRUE(Shows(100, 60, Red));
}

TEST_F(drawOnWindow, HasNoTargetOnceTheWindowIsGone)
{
    Fill(Whole, FullRed);
    System->Destroy(Window);
    for (const bool hardware : {true, false}) {
        uint32_t error = 0;
        EXPECT_EQ(drawContractSystem().MakeWindowTarget(Window, Width, Height, hardware, error), nullptr);
        EXPECT_NE(error, 0u);
    }
    // What was made before stays harmless.
    Begin();
    Target->FillRectangle(Whole, Target->MakeBrush(FullBlue).get());
    Target->End();
}

TEST_F(drawOnWindow, TakesANewTargetForANewSize)
{
    Fill(Whole, FullRed);
    Target.reset();
    Target = MakeTarget(Window);
    ASSERT_NE(Target, nullptr);
    Fill(Whole, FullBlue);
    EXPECT_TRUE(Shows(100, 60, Blue));
}

}  // namespace
