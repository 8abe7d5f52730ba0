#include "tests/toolkit/editTest.h"

#include "toolkit/ctrlEdit_Val.h"
#include "toolkit/ctrlList.h"

namespace {

class ctrlEdit_ValDropDownTest : public editTest
{
protected:
    // An integer field with an arrow, whose rows are 18 high.
    ctrlEdit_Val* Field(const std::vector<int64_t>& presets)
    {
        auto* field = new ctrlEdit_Val(Main, ctrlEditInteger);
        field->Width(100);
        field->EditStyleSet(styleSpinDrop);
        field->Presets(presets);
        field->Unit("V");
        return Placed(field);
    }

    // The popup; null when there is none.
    ctrlListSel* List() const
    {
        const std::vector<ctrlWindow*> windows = Toolkit().WindowList();
        return windows.size() < 2 ? nullptr : static_cast<ctrlListSel*>(windows.back());
    }
    static void Open() { Click(90); }
    static void Choose(const ctrlListSel& list, int32_t row)
    {
        fakeMouseMove(list.X() + 20, list.Y() + 1 + 18 * row + 9);
        Toolkit().PumpPending();
        fakeMousePress();
        fakeMouseRelease();
        Toolkit().PumpPending();
    }
};

TEST_F(ctrlEdit_ValDropDownTest, ThePresetsOpenBelowTheField)
{
    ctrlEdit_Val* field = Field({10, 20, 30});
    field->Value(20);
    Open();
    ASSERT_NE(List(), nullptr);
    EXPECT_EQ(List()->Rows, (std::vector<std::string>{"10 V", "20 V", "30 V"}));
    EXPECT_EQ(List()->Selected, 1U);
    EXPECT_EQ(List()->X(), WindowAt + EditAt);
    EXPECT_EQ(List()->Y(), WindowAt + EditAt + 20);
    EXPECT_EQ(List()->Height(), 3U * 18 + 2);
}

TEST_F(ctrlEdit_ValDropDownTest, NearTheScreensBottomTheyOpenAbove)
{
    Main->Move(100, 950, 400, 80);
    ctrlEdit_Val* field = Field({1, 2, 3, 4, 5, 6, 7, 8, 9, 10});
    int32_t x = 0, y = 0;
    windowArea area;
    ASSERT_TRUE(field->ScreenPoint(x, y, area));
    field->DoOnDropDown();
    ASSERT_NE(List(), nullptr);
    EXPECT_EQ(List()->Height(), 8U * 18 + 2) << "at most eight rows";
    EXPECT_EQ(List()->Y() + static_cast<int32_t>(List()->Height()), y);
}

TEST_F(ctrlEdit_ValDropDownTest, TheChosenPresetIsTakenAndToldOnce)
{
    ctrlEdit_Val* field = Field({10, 20, 30});
    Open();
    ASSERT_NE(List(), nullptr);
    Choose(*List(), 2);
    EXPECT_EQ(field->ValueGetI(), 30);
    EXPECT_EQ(Changes, 1);
    EXPECT_EQ(List(), nullptr);
}

TEST_F(ctrlEdit_ValDropDownTest, WithoutPresetsNothingOpens)
{
    Field({});
    Open();
    EXPECT_EQ(List(), nullptr);
}

TEST_F(ctrlEdit_ValDropDownTest, AnEditMayGoInTheChangeOfItsPreset)
{
    ctrlEdit_Val* field = Field({10, 20, 30});
    const ctrlLife life(field);
    field->OnChange = [field] { field->Destroy(); };
    Open();
    ASSERT_NE(List(), nullptr);
    Choose(*List(), 1);
    EXPECT_FALSE(life);
}

}  // namespace
