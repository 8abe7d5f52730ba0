#include "toolkit/ctrlPage.h"

#include "tests/toolkit/controlTest.h"
#include "toolkit/ctrlButton.h"

using testing::ElementsAre;
using testing::HasSubstr;

namespace {

class ctrlPageTest : public controlTest
{
protected:
    ctrlPage* Pages(uint64_t count, uint32_t style = stylePageSelect)
    {
        auto* pages = new ctrlPage(Main, 0, 0, 300, 200, count, style);
        pages->OnNotify = [this](unsigned code) {
            Changes += code == notifyPageChanged ? 1 : 0;
            return false;
        };
        return Placed(pages, 0, 0, 300, 200);
    }
    static bool IsShown(const ctrlPage* pages, uint64_t index)
    {
        return pages->Page(index)->HasState(stateVisible);
    }

    int Changes = 0;
};

TEST_F(ctrlPageTest, WithoutPagesTheStripIsEmpty)
{
    ctrlPage* pages = Pages(0);
    EXPECT_EQ(pages->Current, ctrlPage::None);
    EXPECT_TRUE(pages->TabBoxes.empty());
    EXPECT_EQ(fakeDrawCount("text"), 0U);
    Click(pages, 5, 5);
    pages->SetCurrent(0);
    EXPECT_EQ(pages->Current, ctrlPage::None);
    pages->RemovePage(0);
    EXPECT_EQ(Changes, 0);
}

TEST_F(ctrlPageTest, OneOfItsPagesIsShownAndFillsTheRest)
{
    ctrlPage* pages = Pages(3);
    EXPECT_EQ(pages->PageCount, 3U);
    EXPECT_EQ(pages->Current, 0U);
    EXPECT_TRUE(IsShown(pages, 0));
    EXPECT_FALSE(IsShown(pages, 1));
    pages->SetCurrent(2);
    EXPECT_FALSE(IsShown(pages, 0));
    EXPECT_TRUE(IsShown(pages, 2));
    EXPECT_EQ(Changes, 1);
    pages->SetCurrent(2);
    EXPECT_EQ(Changes, 1);
    const ctrlWindow* page = pages->Page(2);
    EXPECT_EQ(page->Width(), 300U);
    EXPECT_EQ(page->Y() + static_cast<int32_t>(page->Height()), 200);
    pages->Resize(250, 120);
    EXPECT_EQ(page->Width(), 250U);
    EXPECT_EQ(page->Y() + static_cast<int32_t>(page->Height()), 120);
}

TEST_F(ctrlPageTest, PagesStandBelowTheTabsAtEveryScale)
{
    fakeScreenDPI(192);
    auto* form = new ctrlWindow(nullptr, 0, 0, 600, 400, ctrlPerMonitor);
    auto* pages = new ctrlPage(form, 0, 0, 300, 200, 2, stylePageSelect | stylePageClose);
    pages->Page(0)->Caption("PPS");
    pages->Show();
    form->Show();
    Toolkit().PumpPending();
    const int32_t doubled = pages->Page(0)->Y();
    EXPECT_EQ(doubled, pages->TabBoxes[0].Bottom);
    fakeWindowDPI(form->Handle(), 96);
    Toolkit().PumpPending();
    EXPECT_EQ(pages->Page(0)->Y(), pages->TabBoxes[0].Bottom);
    EXPECT_NEAR(pages->Page(0)->Y(), doubled / 2, 2);
    EXPECT_EQ(pages->CloseButtons[0]->Width(), 14U);
    EXPECT_THAT(Drawn(), testing::IsEmpty()) << "it is at rest";
}

TEST_F(ctrlPageTest, APressOnATabShowsItsPage)
{
    ctrlPage* pages = Pages(0);
    auto* own = new ctrlWindow(pages, 0);
    pages->AddPage(0, nullptr, "First");
    pages->AddPage(1, own, "Second page");
    EXPECT_EQ(pages->Page(1), own);
    EXPECT_THAT(Drawn({"text"}), ElementsAre(HasSubstr("First"), HasSubstr("Second page")));
    ASSERT_EQ(pages->TabBoxes.size(), 2U);
    EXPECT_GT(pages->TabBoxes[1].Width(), pages->TabBoxes[0].Width());
    Click(pages, pages->TabBoxes[1].Left + 2, 5);
    EXPECT_EQ(pages->Current, 1U);
    Click(pages, 290, 5);
    EXPECT_EQ(pages->Current, 1U) << "beside the tabs";
    pages->StyleClear(stylePageSelect);
    Click(pages, 5, 5);
    EXPECT_EQ(pages->Current, 1U);
}

TEST_F(ctrlPageTest, APageThatIsInsertedBeforeLeavesTheViewAsItIs)
{
    ctrlPage* pages = Pages(2);
    pages->SetCurrent(1);
    const ctrlWindow* shown = pages->Page(1);
    pages->AddPage(0, nullptr, "New");
    EXPECT_EQ(pages->Current, 2U);
    EXPECT_EQ(pages->Page(2), shown);
    EXPECT_TRUE(shown->HasState(stateVisible));
    pages->AddPage(100, nullptr, "Last");
    EXPECT_EQ(pages->Page(3)->Name(), "Last");
    EXPECT_EQ(pages->Page(4), nullptr);
}

TEST_F(ctrlPageTest, AClosedPageGoesAndItsNeighbourIsShown)
{
    ctrlPage* pages = Pages(3, stylePageSelect | stylePageClose);
    ASSERT_EQ(pages->CloseButtons.size(), 3U);
    const ctrlLife life(pages->Page(0));
    const ctrlButton* button = pages->CloseButtons[0];
    Click(button, 3, 3);
    EXPECT_FALSE(life);
    EXPECT_EQ(pages->PageCount, 2U);
    EXPECT_EQ(pages->Current, 0U);
    EXPECT_TRUE(IsShown(pages, 0));
    EXPECT_EQ(pages->CloseButtons.size(), 2U);
    pages->RemovePage(1);
    pages->RemovePage(0);
    EXPECT_EQ(pages->Current, ctrlPage::None);
    Toolkit().PumpPending();
    EXPECT_TRUE(pages->TabBoxes.empty());
}

TEST_F(ctrlPageTest, AHandlerDecidesWhatClosingMeans)
{
    ctrlPage* pages = Pages(2, stylePageClose);
    uint64_t closed = 77;
    pages->OnClose = [&closed](uint64_t index) { closed = index; };
    Click(pages->CloseButtons[1], 3, 3);
    EXPECT_EQ(closed, 1U);
    EXPECT_EQ(pages->PageCount, 2U);
}

TEST_F(ctrlPageTest, TabsThatDoNotFitBecomeNarrower)
{
    ctrlPage* pages = Pages(40);
    ASSERT_EQ(pages->TabBoxes.size(), 40U);
    EXPECT_EQ(pages->TabBoxes.back().Right, 300);
    for (size_t i = 1; i < 40; ++i)
        EXPECT_EQ(pages->TabBoxes[i].Left, pages->TabBoxes[i - 1].Right);
    pages->Resize(1, 1);
    Toolkit().PumpPending();
}

TEST_F(ctrlPageTest, APageMayDestroyItself)
{
    ctrlPage* pages = Pages(2);
    pages->SetCurrent(1);
    pages->Page(1)->Destroy();
    pages->Invalidate(true);
    Toolkit().PumpPending();
    EXPECT_EQ(pages->PageCount, 1U);
    EXPECT_EQ(pages->Current, ctrlPage::None);
    pages->SetCurrent(0);
    EXPECT_TRUE(IsShown(pages, 0));
}

TEST_F(ctrlPageTest, APageMayDestroyItselfBeforeTheNextSize)
{
    ctrlPage* pages = Pages(2);
    pages->Page(1)->Destroy();
    pages->Resize(250, 120);
    EXPECT_EQ(pages->PageCount, 1U);
    EXPECT_EQ(pages->Page(0)->Width(), 250U);
}

}  // namespace
