// What stands on the buttons of message boxes.
#include "tests/forms/messageTest.h"

using testing::ElementsAre;

namespace {

class uiMessageLabelsTest : public messageTest
{
};

TEST_F(uiMessageLabelsTest, ComeFromTheLanguageFile)
{
    fakeFilePut(u"/language.txt",
                "\xEF\xBB\xBF[Main]\nOK=no\n[uiMessage]\r\nOK=Gut\nYes=\"J\\\"a\"\nAbort=Halt\n");
    uiMessage::LabelFile(u"/language.txt");
    Look(
        "Text",
        {Buttons::OK, Buttons::Yes, Buttons::No, Buttons::Cancel, Buttons::Abort, Buttons::Retry,
         Buttons::Ignore},
        [] { EXPECT_THAT(Labels(), ElementsAre("Gut", "J\"a", "No", "Cancel", "Halt", "Retry", "Ignore")); });
}

TEST_F(uiMessageLabelsTest, AreReadOnceForAllBoxes)
{
    fakeFilePut(u"/language.txt", "[uiMessage]\nOK=Gut\n");
    uiMessage::LabelFile(u"/language.txt");
    Look("Text", {}, [] { EXPECT_THAT(Labels(), ElementsAre("Gut")); });
    fakeFilePut(u"/language.txt", "[uiMessage]\nOK=Bien\n");
    Look("Text", {}, [] { EXPECT_THAT(Labels(), ElementsAre("Gut")); });
    uiMessage::LabelFile(u"/language.txt");
    Look("Text", {}, [] { EXPECT_THAT(Labels(), ElementsAre("Bien")); });
}

TEST_F(uiMessageLabelsTest, StandAtTheirDefaultsWithoutAFile)
{
    for (const char16_t* path : {u"", u"/none.txt", u"/"}) {
        uiMessage::LabelFile(path);
        Look("Text", {Buttons::Ignore}, [] { EXPECT_THAT(Labels(), ElementsAre("Ignore")); });
    }
    fakeFilePut(u"/language.txt", "[Other]\nIgnore=No\n");
    uiMessage::LabelFile(u"/language.txt");
    Look("Text", {Buttons::Ignore}, [] { EXPECT_THAT(Labels(), ElementsAre("Ignore")); });
}

TEST_F(uiMessageLabelsTest, AWideOneMakesAllButtonsWide)
{
    fakeFilePut(u"/language.txt", "[uiMessage]\nYes=A very long label\n");
    uiMessage::LabelFile(u"/language.txt");
    Look("Text", {Buttons::Yes, Buttons::No}, [] {
        for (const ctrlWindow* button : Row())
            EXPECT_EQ(button->Width(), 94 + 2 + 8U);
        EXPECT_EQ(Box()->Width(), 2 * 108 + 16U);
    });
}

TEST_F(uiMessageLabelsTest, HostileOnesStayWithinTheScreen)
{
    fakeFilePut(u"/language.txt",
                "[uiMessage]\nYes=" + std::string(100'000, 'x') + "\nNo=\xFF\xFE\nOK=\nAbort=\n");
    uiMessage::LabelFile(u"/language.txt");
    Look("Text", {Buttons::Yes, Buttons::No, Buttons::OK, Buttons::Abort}, [] { ExpectWithin(Work); });
}

}  // namespace
