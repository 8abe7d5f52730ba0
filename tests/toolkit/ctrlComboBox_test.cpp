#include "toolkit/ctrlComboBox.h"

#include "tests/toolkit/controlTest.h"
#include "toolkit/ctrlSlider.h"

namespace {

class ctrlComboBoxTest : public controlTest
{
protected:
    ctrlComboBox* Combo(int rows, int32_t y = 10, uint32_t flags = 0)
    {
        auto* combo = new ctrlComboBox(Main, flags);
        for (int i = 0; i < rows; ++i)
            combo->ComboAdd("row " + std::to_string(i));
        combo->OnChange = Count(Changes);
        combo->RowHeight(20);
        return Placed(combo, 10, y, 120, 22);
    }
    static ctrlListSel* Popup()
    {
        const auto windows = Toolkit().WindowList();
        return windows.size() < 2 ? nullptr : static_cast<ctrlListSel*>(windows.back());
    }
    static ctrlListSel* OpenBy(const ctrlComboBox* combo)
    {
        MoveTo(Main0(combo), 300, 200);
        Click(combo, 5, 5);
        return Popup();
    }
    static const ctrlWindow* Main0(const ctrlComboBox* combo) { return combo->Parent(); }

    int Changes = 0;
};

TEST_F(ctrlComboBoxTest, AClickOpensItsRowsAndAnotherChooses)
{
    ctrlComboBox* combo = Combo(3);
    ctrlListSel* popup = OpenBy(combo);
    ASSERT_NE(popup, nullptr);
    EXPECT_TRUE(combo->Opened());
    EXPECT_EQ(popup->X(), MainX + 10);
    EXPECT_EQ(popup->Y(), MainY + 32);
    EXPECT_EQ(popup->Height(), 62U);
    EXPECT_EQ(popup->Width(), 120U);
    EXPECT_EQ(popup->FirstChild(), nullptr) << "all rows fit";
    Click(popup, 20, 30);
    EXPECT_EQ(combo->Selected, 1U);
    EXPECT_EQ(combo->Name(), "row 1");
    EXPECT_EQ(Changes, 1);
    EXPECT_FALSE(combo->Opened());
    EXPECT_EQ(Popup(), nullptr);
}

TEST_F(ctrlComboBoxTest, WithoutRowsItDoesNotOpen)
{
    ctrlComboBox* combo = Combo(0);
    int asked = 0;
    combo->OnNotify = [&asked](unsigned code) {
        asked += code == notifyOpening ? 1 : 0;
        return false;
    };
    EXPECT_EQ(OpenBy(combo), nullptr);
    EXPECT_EQ(asked, 1);
    EXPECT_FALSE(combo->Opened());
}

TEST_F(ctrlComboBoxTest, ManyRowsOpenWithTheSelectedOneInTheMiddle)
{
    ctrlComboBox* combo = Combo(20);
    combo->ComboIndex(12);
    ctrlListSel* popup = OpenBy(combo);
    ASSERT_NE(popup, nullptr);
    EXPECT_EQ(popup->Height(), 162U);
    auto* bar = static_cast<ctrlSlider*>(popup->FirstChild());
    ASSERT_NE(bar, nullptr);
    EXPECT_EQ(bar->Value, -8);
    EXPECT_EQ(bar->Width(), 20U) << "as wide as the field is high inside";
}

TEST_F(ctrlComboBoxTest, NearTheBottomItOpensUpward)
{
    fakeMonitors({{0, 0, 800, 400}});
    ctrlComboBox* combo = Combo(3, 250);
    ctrlListSel* popup = OpenBy(combo);
    ASSERT_NE(popup, nullptr);
    EXPECT_EQ(popup->Y(), MainY + 250 - 62);
}

TEST_F(ctrlComboBoxTest, WhereItJustFitsItOpensDownward)
{
    ctrlComboBox* combo = Combo(3, 250);
    for (const bool fits : {true, false}) {
        fakeMonitors({{0, 0, 800, MainY + 250 + 22 + 62 - (fits ? 0 : 1)}});
        ctrlListSel* popup = OpenBy(combo);
        ASSERT_NE(popup, nullptr);
        EXPECT_EQ(popup->Y(), MainY + 250 + (fits ? 22 : -62));
        Click(popup, 20, 30);
    }
}

TEST_F(ctrlComboBoxTest, APressOutsideClosesItAndKeepsTheChoice)
{
    ctrlComboBox* combo = Combo(3);
    combo->ComboIndex(2);
    ctrlListSel* popup = OpenBy(combo);
    ASSERT_NE(popup, nullptr);
    Click(popup, 300, -60);
    EXPECT_EQ(Popup(), nullptr);
    EXPECT_EQ(combo->Selected, 2U);
    EXPECT_EQ(combo->Name(), "row 2");
    EXPECT_EQ(Changes, 0);
}

TEST_F(ctrlComboBoxTest, TheSameRowAgainIsNoChange)
{
    ctrlComboBox* combo = Combo(3);
    combo->ComboIndex(1);
    ctrlListSel* popup = OpenBy(combo);
    Click(popup, 20, 30);
    EXPECT_EQ(Changes, 0);
    EXPECT_FALSE(combo->Opened());
}

TEST_F(ctrlComboBoxTest, HalfANotchOfTheWheelIsRemembered)
{
    ctrlComboBox* combo = Combo(5);
    combo->ComboIndex(2);
    MoveTo(combo, 5, 5);
    Wheel(-60);
    EXPECT_EQ(combo->Selected, 2U);
    Wheel(-60);
    EXPECT_EQ(combo->Selected, 3U);
    EXPECT_EQ(combo->Name(), "row 3");
    Wheel(-1200);
    EXPECT_EQ(combo->Selected, 4U);
    Wheel(240);
    EXPECT_EQ(combo->Selected, 2U);
    Wheel(1200);
    EXPECT_EQ(combo->Selected, 0U);
    Wheel(120);
    EXPECT_EQ(Changes, 4);
    combo->ComboIndex(ctrlList::None);
    EXPECT_EQ(combo->Name(), "");
    Wheel(120);
    EXPECT_EQ(combo->Selected, 3U) << "from the last row";
}

TEST_F(ctrlComboBoxTest, TheSelectionStaysOnItsTextAfterSorting)
{
    auto* combo = new ctrlComboBox(Main, 0);
    combo->StyleSet(styleComboSorted);
    combo->ComboAdd("m");
    combo->ComboSelect("m", 0);
    combo->ComboAdd("a");
    combo->ComboAdd("z");
    EXPECT_EQ(combo->Rows, std::vector<std::string>({"a", "m", "z"}));
    EXPECT_EQ(combo->Selected, 1U);
    combo->ComboSelect("nothing", 2);
    EXPECT_EQ(combo->Name(), "z");
    combo->ComboClear();
    EXPECT_EQ(combo->Name(), "");
    EXPECT_TRUE(combo->Rows.empty());
}

TEST_F(ctrlComboBoxTest, AddingARowClosesThePopup)
{
    ctrlComboBox* combo = Combo(3);
    ASSERT_NE(OpenBy(combo), nullptr);
    combo->ComboAdd("more");
    Toolkit().PumpPending();
    EXPECT_FALSE(combo->Opened());
    EXPECT_EQ(Popup(), nullptr);
}

TEST_F(ctrlComboBoxTest, ItMayGoWhileItIsOpen)
{
    ctrlComboBox* combo = Combo(3);
    ASSERT_NE(OpenBy(combo), nullptr);
    combo->Destroy();
    Toolkit().PumpPending();
    EXPECT_EQ(Toolkit().WindowList().size(), 1U);
    combo = Combo(3);
    combo->OnChange = [combo] { combo->Destroy(); };
    const ctrlLife life(combo);
    ctrlListSel* popup = OpenBy(combo);
    ASSERT_NE(popup, nullptr);
    Click(popup, 20, 30);
    EXPECT_FALSE(life);
    EXPECT_EQ(Toolkit().WindowList().size(), 1U);
}

TEST_F(ctrlComboBoxTest, MeasuresItsWidestRow)
{
    ctrlComboBox* combo = Combo(2, 10, ctrlMeasure);
    const uint32_t before = combo->PreferredWidth();
    combo->ComboAdd("a row that is longer");
    Toolkit().PumpPending();
    EXPECT_EQ(combo->PreferredWidth(), before + 82);
}

TEST_F(ctrlComboBoxTest, ADynamicOneAsksForItsRowsWhenItOpens)
{
    std::vector<std::string> ports = {"one", "two"};
    auto* combo = new ctrlComboBoxDynamic(Main, 0, [&ports] { return ports; });
    EXPECT_EQ(combo->Width(), 50U);
    EXPECT_EQ(combo->Rows, ports);
    Placed(static_cast<ctrlComboBox*>(combo), 10, 10, 80, 20);
    combo->ComboSelect("two", 0);
    ports = {"zero", "one", "two"};
    ctrlListSel* popup = OpenBy(combo);
    ASSERT_NE(popup, nullptr);
    EXPECT_EQ(popup->Rows, ports);
    EXPECT_EQ(combo->Selected, 2U) << "it follows its text";
}

}  // namespace
