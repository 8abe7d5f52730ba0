#include "toolkit/ctrlList.h"

#include "tests/toolkit/controlTest.h"
#include "toolkit/ctrlSlider.h"

using testing::ElementsAre;
using testing::HasSubstr;

namespace {

class ctrlListTest : public controlTest
{
protected:
    // Ten rows of 20 pixels each, in a list that shows `shown` of them.
    ctrlListSel* List(uint32_t shown = 10, uint32_t flags = 0)
    {
        auto* list = new ctrlListSel(Main, 0, 0, 10, 10, flags);
        for (int i = 0; i < 10; ++i)
            list->RowAdd("row " + std::to_string(i));
        list->RowHeight(20);
        list->OnClick = Count(Clicks);
        return Placed(list, 10, 10, 100, shown * 20 + 2);
    }
    static ctrlSlider* Bar(const ctrlListSel* list) { return static_cast<ctrlSlider*>(list->FirstChild()); }
    static std::vector<std::string> Texts(ctrlListSel* list)
    {
        list->Invalidate(true);
        return Drawn({"text"});
    }

    int Clicks = 0;
};

TEST_F(ctrlListTest, TheSelectionFollowsItsText)
{
    ctrlListSel* list = List();
    list->Selected = 3;
    list->RowAdd("another");
    EXPECT_EQ(list->Selected, 3U);
    list->Rows[1] = "row 3";
    list->RowsAdd({"x", "y"});
    EXPECT_EQ(list->Selected, 1U) << "the first that equals it";
    EXPECT_EQ(list->RowFind("y"), 12U);
    EXPECT_EQ(list->RowFind("nothing"), list->Rows.size());
}

TEST_F(ctrlListTest, RowsThatFitNeedNoScrollBar)
{
    ctrlListSel* list = List(10);
    EXPECT_EQ(Bar(list), nullptr);
    EXPECT_EQ(Texts(list).size(), 10U);
    list->RowAdd("one more");
    Toolkit().PumpPending();
    ASSERT_NE(Bar(list), nullptr);
    EXPECT_EQ(Bar(list)->Width(), 14U);
    list->Rows.resize(2);
    list->Invalidate(true);
    Toolkit().PumpPending();
    EXPECT_EQ(Bar(list), nullptr);
}

TEST_F(ctrlListTest, OpensWithTheSelectedRowInTheMiddle)
{
    auto* list = new ctrlListSel(Main, 0, 0, 100, 82, 0);
    for (int i = 0; i < 30; ++i)
        list->RowAdd(std::to_string(i));
    list->RowHeight(20);
    list->Selected = 17;
    Placed(list, 0, 0, 100, 82);
    EXPECT_EQ(Bar(list)->Value, -15);
    EXPECT_THAT(Texts(list), ElementsAre(HasSubstr("\"15\""), HasSubstr("\"16\""), HasSubstr("\"17\""),
                                         HasSubstr("\"18\"")));
    EXPECT_EQ(Bar(list)->Minimum, -26);
}

TEST_F(ctrlListTest, APressSelectsAndTheReleaseClicks)
{
    ctrlListSel* list = List();
    MoveTo(list, 30, 50);
    EXPECT_TRUE(list->CaptureHeld());
    Press();
    EXPECT_EQ(list->Selected, 2U);
    EXPECT_EQ(Clicks, 0);
    Release();
    EXPECT_EQ(Clicks, 1);
    MoveTo(list, 30, 300);
    EXPECT_FALSE(list->CaptureHeld());
    fakeMouseRelease();
    Toolkit().PumpPending();
    EXPECT_EQ(Clicks, 1);
}

TEST_F(ctrlListTest, SeveralRowsCanBeChecked)
{
    ctrlListSel* list = List();
    list->StyleSet(styleListMany);
    Click(list, 30, 10);
    Click(list, 30, 50);
    EXPECT_TRUE(list->IsChecked(0));
    EXPECT_FALSE(list->IsChecked(1));
    EXPECT_TRUE(list->IsChecked(2));
    EXPECT_EQ(list->CheckCount(), 2U);
    Click(list, 31, 10);
    EXPECT_FALSE(list->IsChecked(0));
    EXPECT_EQ(list->CheckCount(), 1U);
    EXPECT_EQ(Clicks, 3);
}

TEST_F(ctrlListTest, ARowThatWasPutThereByHandCanBeChecked)
{
    auto* list = new ctrlListSel(Main, 0, 0, 10, 10, 0);
    list->StyleSet(styleListMany);
    list->Rows = {"by", "hand"};
    list->RowHeight(20);
    Placed(list, 10, 10, 100, 42);
    Click(list, 30, 30);
    EXPECT_TRUE(list->IsChecked(1));
    EXPECT_EQ(list->CheckCount(), 1U);
}

TEST_F(ctrlListTest, RowsAreMarkedByTheirState)
{
    ctrlListSel* list = List();
    list->Selected = 1;
    MoveTo(list, 30, 10);
    list->Invalidate(true);
    const auto fills = Drawn({"fill"});
    EXPECT_THAT(fills, testing::Contains(HasSubstr("2,21,98,41 604800/1"))) << "selected";
    EXPECT_THAT(fills, testing::Contains(HasSubstr("2,1,98,21 302400/1"))) << "hot";
}

TEST_F(ctrlListTest, AHandlerDrawsRows)
{
    ctrlListSel* list = List();
    list->Selected = 4;
    std::vector<bool> filled;
    list->OnRowDraw = [&filled](uint64_t row, const rect&, bool fill) {
        filled.push_back(fill);
        return row != 2;
    };
    EXPECT_THAT(Texts(list), ElementsAre(HasSubstr("row 2")));
    EXPECT_EQ(filled,
              std::vector<bool>({false, false, false, false, true, false, false, false, false, false}));
}

TEST_F(ctrlListTest, TheWheelScrolls)
{
    ctrlListSel* list = List(4);
    MoveTo(list, 30, 30);
    Wheel(-240);
    EXPECT_EQ(Bar(list)->Value, -2);
    EXPECT_THAT(Texts(list).front(), HasSubstr("row 2"));
    Wheel(1200);
    EXPECT_EQ(Bar(list)->Value, 0);
}

TEST_F(ctrlListTest, TheScrollBarIsDraggedThroughTheListThatHasTheMouse)
{
    ctrlListSel* list = List(4);
    const int32_t x = Bar(list)->X() + 7;
    MoveTo(list, x, 24);
    Press();
    MoveTo(list, x, 500);
    EXPECT_EQ(Bar(list)->Value, -6);
    MoveTo(list, 500, -500);
    EXPECT_EQ(Bar(list)->Value, 0);
    Release();
    EXPECT_EQ(Clicks, 0);
    Click(list, 30, 30);
    EXPECT_EQ(list->Selected, 1U);
}

TEST_F(ctrlListTest, APressOutsideAPopupChoosesNothing)
{
    ctrlListSel* popup = List(10, uint32_t{ctrlFloating} | ctrlListPopup | ctrlCaptureKeep);
    EXPECT_TRUE(popup->CaptureHeld());
    popup->Selected = 2;
    MoveTo(popup, 500, 500);
    EXPECT_TRUE(popup->CaptureHeld());
    Press();
    EXPECT_EQ(popup->Selected, ctrlList::None);
    EXPECT_EQ(Clicks, 1);
    ctrlListSel* plain = List();
    plain->Selected = 2;
    MoveTo(plain, 500, 200);
    Press();
    EXPECT_EQ(plain->Selected, 2U);
}

TEST_F(ctrlListTest, TheHandlerMayDestroyTheList)
{
    ctrlListSel* list = List();
    const ctrlLife life(list);
    list->OnClick = [list] { list->Destroy(); };
    Click(list, 30, 30);
    EXPECT_FALSE(life);
}

TEST_F(ctrlListTest, StaysWholeAtAnySize)
{
    for (const uint32_t size : {1U, 2U, 3U, 15U, 16U, 17U}) {
        ctrlListSel* list = List();
        list->RowHeight(0);
        Placed(list, 0, 0, size, size);
        MoveTo(list, 1, 1);
        Press();
        Release();
        list->Destroy();
    }
}

}  // namespace
