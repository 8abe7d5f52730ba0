#include "toolkit/ctrlSplit.h"

#include "tests/toolkit/controlTest.h"

#include <thread>

using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;

namespace {

class ctrlSplitTest : public controlTest
{
protected:
    ctrlSplit* Split(size_t children, uint32_t style = styleSplitColumns, uint32_t width = 308)
    {
        auto* split = Placed(new ctrlSplit(Main, 0, 0, 10, 10, style), 0, 0, width, 100);
        for (size_t i = 0; i < children; ++i)
            split->Add(i, nullptr);
        return split;
    }
    static std::vector<std::pair<int32_t, uint32_t>> Across(const ctrlSplit* split)
    {
        std::vector<std::pair<int32_t, uint32_t>> places;
        for (const ctrlWindow* child = split->FirstChild(); child; child = child->NextSibling())
            places.emplace_back(child->X(), child->Width());
        return places;
    }
    static uint32_t TotalOf(const ctrlSplit* split)
    {
        uint32_t total = 0;
        for (const auto& [x, width] : Across(split))
            total += width;
        return total;
    }
};

TEST_F(ctrlSplitTest, OneChildHasTheWholeArea)
{
    const ctrlSplit* split = Split(1);
    EXPECT_THAT(Across(split), ElementsAre(std::pair(0, 308U)));
    EXPECT_EQ(split->FirstChild()->Height(), 100U);
    const ctrlSplit* rows = Split(1, 0);
    EXPECT_EQ(rows->FirstChild()->Height(), 100U);
    EXPECT_EQ(rows->FirstChild()->Width(), 308U);
}

TEST_F(ctrlSplitTest, WithoutChildrenItIsPlainGround)
{
    ctrlSplit* split = Split(0);
    split->SetBackColour(0x0000FF);
    EXPECT_THAT(Drawn({"fill"}), Contains(HasSubstr("0,0,308,100 FF0000/1")));
}

TEST_F(ctrlSplitTest, TheRoomIsSharedAndKeptThroughResizing)
{
    ctrlSplit* split = Split(3);
    EXPECT_EQ(split->Count, 3U);
    EXPECT_EQ(TotalOf(split), 300U);
    split->Resize(608, 50);
    EXPECT_EQ(TotalOf(split), 600U);
    split->Resize(1, 1);
    split->Resize(308, 100);
    EXPECT_EQ(TotalOf(split), 300U);
    EXPECT_EQ(split->FirstChild()->Height(), 100U);
}

TEST_F(ctrlSplitTest, ANewcomerGetsAnEqualPart)
{
    EXPECT_THAT(Across(Split(2, styleSplitColumns, 204)),
                ElementsAre(std::pair(0, 100U), std::pair(104, 100U)));
}

TEST_F(ctrlSplitTest, AChildKeepsItsLimitsAndTheOthersTakeTheRest)
{
    ctrlSplit* split = Split(3);
    split->FirstChild()->WidthRange(40, 40);
    split->FirstChild()->NextSibling()->WidthRange(0, 60);
    split->Resize(908, 100);
    const auto places = Across(split);
    EXPECT_EQ(places[0].second, 40U);
    EXPECT_EQ(places[1].second, 60U);
    EXPECT_EQ(places[2].second, 800U);
}

TEST_F(ctrlSplitTest, AHiddenChildGivesItsRoomAway)
{
    ctrlSplit* split = Split(3);
    split->FirstChild()->NextSibling()->Hide();
    Toolkit().PumpPending();
    const auto places = Across(split);
    EXPECT_EQ(places[0].second + places[2].second, 304U);
}

TEST_F(ctrlSplitTest, AGapIsDraggedWithinTheLimits)
{
    ctrlSplit* split = Split(2, styleSplitColumns, 204);
    const auto before = Across(split);
    const auto edge = static_cast<int32_t>(before[0].second);
    MoveTo(split, edge + 1, 50);
    EXPECT_EQ(Toolkit().CursorId, cursorSizeLeftRight);
    Press();
    MoveTo(split, edge + 21, 50);
    EXPECT_EQ(Across(split)[0].second, before[0].second + 20);
    EXPECT_EQ(TotalOf(split), 200U);
    split->FirstChild()->NextSibling()->WidthRange(30, 0);
    MoveTo(split, 1000, 50);
    EXPECT_EQ(Across(split)[1].second, 30U);
    MoveTo(split, -1000, 50);
    EXPECT_EQ(Across(split)[0].second, 1U);
    Release();
    EXPECT_EQ(split->Drag, ctrlSplit::None);
    EXPECT_EQ(Toolkit().Windows().Capture(), 0U);
    MoveTo(split, 150, 50);
    EXPECT_EQ(Across(split)[0].second, 1U);
}

TEST_F(ctrlSplitTest, RowsAreDraggedUpAndDown)
{
    ctrlSplit* split = Split(2, 0);
    const auto edge = static_cast<int32_t>(split->FirstChild()->Height());
    MoveTo(split, 50, edge + 2);
    EXPECT_EQ(Toolkit().CursorId, cursorSizeUpDown);
    Press();
    MoveTo(split, 50, edge - 1);
    Release();
    EXPECT_EQ(split->FirstChild()->Height(), static_cast<uint32_t>(edge - 3));
}

TEST_F(ctrlSplitTest, AChildMayGoWhileItsGapIsDragged)
{
    ctrlSplit* split = Split(2, styleSplitColumns, 204);
    MoveTo(split, static_cast<int32_t>(Across(split)[0].second) + 1, 50);
    Press();
    split->FirstChild()->Destroy();
    MoveTo(split, 50, 50);
    Release();
    EXPECT_THAT(Across(split), ElementsAre(std::pair(0, 204U)));
}

TEST_F(ctrlSplitTest, ChildrenComeFromAnyThread)
{
    ctrlSplit* split = Split(0);
    std::atomic<bool> done{false};
    std::jthread adder([&] {
        for (size_t i = 0; i < 5; ++i)
            split->Add(0, nullptr);
        done = true;
    });
    EXPECT_TRUE(await([&done] {
        Toolkit().PumpPending();
        return done.load();
    }));
    EXPECT_EQ(split->Count, 5U);
    EXPECT_EQ(TotalOf(split), 308U - 16U);
}

}  // namespace
