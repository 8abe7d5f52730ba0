#include "toolkit/ctrlLabel.h"

#include "tests/toolkit/controlTest.h"

using testing::ElementsAre;
using testing::HasSubstr;

namespace {

// A character of the fake is 5.5 pixels wide.
class ctrlLabelTest : public controlTest
{
protected:
    ctrlLabel* Label(const std::string& text, uint32_t width, unsigned textFlags = textLeft)
    {
        return Placed(new ctrlLabel(Main, text, textFlags, ctrlMeasure), 0, 0, width, 60);
    }
    std::vector<std::string> Texts(ctrlLabel* label)
    {
        label->Invalidate(true);
        return Drawn({"text"});
    }
};

TEST_F(ctrlLabelTest, HasTheColoursOfTheTheme)
{
    ctrlLabel* label = Label("A", 40);
    const std::pair<colour, const char*> rows[] = {
        {colourDefault, "FFC000/1"}, {labelFace, "FFFFFF/1"}, {labelHighlight, "FFC000/1"},
        {labelSecond, "00FFFF/1"},   {0x0000FF, "FF0000/1"},
    };
    for (const auto& [given, shown] : rows) {
        label->TextColour(given);
        EXPECT_THAT(Texts(label), ElementsAre(HasSubstr(shown))) << given;
    }
    Main->SetBackColour(0x123456);
    EXPECT_EQ(label->BackColour(), 0x123456) << "that of its parent";
}

TEST_F(ctrlLabelTest, BreaksBetweenWords)
{
    ctrlLabel* label = Label("one two three   four  ", 60);
    EXPECT_THAT(Texts(label), ElementsAre(HasSubstr("\"one two three   four  \"")));
    label->StyleSet(styleLabelWrap);
    EXPECT_THAT(Texts(label), ElementsAre(HasSubstr("\"one two\nthree  \nfour\"")));
    label->Caption("one two  ");
    EXPECT_THAT(Texts(label), ElementsAre(HasSubstr("\"one two\"")));
}

TEST_F(ctrlLabelTest, AWordThatIsTooLongStandsAloneOnItsLine)
{
    ctrlLabel* label = Label("a incomprehensibilities b", 60);
    label->StyleSet(styleLabelWrap);
    EXPECT_THAT(Texts(label), ElementsAre(HasSubstr("\"a\nincomprehensibilities\nb\"")));
    label->Caption("incomprehensibilities");
    EXPECT_THAT(Texts(label), ElementsAre(HasSubstr("\"incomprehensibilities\"")));
    label->Caption("      ");
    EXPECT_TRUE(Texts(label).empty());
}

TEST_F(ctrlLabelTest, MeasuresWhatItDrew)
{
    ctrlLabel* label = Label("four", 40);
    EXPECT_EQ(label->PreferredWidth(), 22U);
    EXPECT_EQ(label->PreferredHeight(), 17U);
    ctrlLabel* thick = Label("four", 40, textLeft | textThick);
    EXPECT_EQ(thick->PreferredWidth(), 24U);
    EXPECT_EQ(thick->PreferredHeight(), 19U);
    label->BorderStyle(ctrlBorder::Flat);
    Toolkit().PumpPending();
    EXPECT_EQ(label->PreferredWidth(), 24U);
}

}  // namespace
