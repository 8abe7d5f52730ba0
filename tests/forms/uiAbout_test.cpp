#include "tests/forms/aboutTest.h"

using testing::IsEmpty;

namespace {

using uiAboutTest = aboutTest;

TEST_F(uiAboutTest, TheLinkOpensItsAddressAndClosesTheForm)
{
    uiAbout* about = About();
    const ctrlLife life(about);
    fakeOnCall("windowWait", 1, [] { Click(Link); });
    EXPECT_EQ(about->Modal(true), -1);
    EXPECT_FALSE(life);
    EXPECT_EQ(fakeCallCount("shell"), 1U);
    EXPECT_EQ(fakeCallCount("shellOpen https://skyreckoning.example"), 1U);
}

TEST_F(uiAboutTest, TheMailButtonWritesToItsOwnTextAndClosesTheForm)
{
    uiAbout* about = About();
    const ctrlLife life(about);
    fakeOnCall("windowWait", 1, [] { Click(Mail); });
    EXPECT_EQ(about->Modal(true), -1);
    EXPECT_FALSE(life);
    EXPECT_EQ(fakeCallCount("shell"), 1U);
    EXPECT_EQ(fakeCallCount("shellOpen mailto:hello@skyreckoning.example"), 1U);
}

TEST_F(uiAboutTest, AFailureToOpenIsIgnored)
{
    fakeFail("shellOpen");
    uiAbout* about = About();
    fakeOnCall("windowWait", 1, [] { Click(Link); });
    EXPECT_EQ(about->Modal(true), -1);
    EXPECT_THAT(fakeAlerts(), IsEmpty());
}

TEST_F(uiAboutTest, ClosingTheFrameOpensNothing)
{
    Look(About(), [] {});
    EXPECT_EQ(fakeCallCount("shell"), 0U);
}

TEST_F(uiAboutTest, KeysAndClicksElsewhereLeaveItOpen)
{
    Look(About(), [] {
        for (const uint32_t key : {keyTab, keyEscape, keyEnter})
            fakeKeyPress(key, std::string(1, static_cast<char>(key)));
        Click(Title);
        fakeMouseClick(Box()->X() + 2, Box()->Y() + 2);
        Toolkit().PumpPending();
        EXPECT_EQ(Box()->ModalResult(), 0);
    });
    EXPECT_EQ(fakeCallCount("shell"), 0U);
}

TEST_F(uiAboutTest, GoesWithAnOwnerThatIsDestroyed)
{
    uiAbout* about = About();
    const ctrlLife life(about);
    fakeOnCall("windowWait", 1, [this] { Main->Destroy(); });
    EXPECT_EQ(about->Modal(true), -1);
    Toolkit().PumpPending();
    EXPECT_FALSE(life);
    EXPECT_FALSE(Toolkit().HasWindows());
}

TEST_F(uiAboutTest, AnOwnerThatIsClosingWaitsForItsEnd)
{
    new ctrlForm(nullptr, 0);
    const ctrlLife life(Main);
    Main->Destroy();
    Look(About(), [&life] { EXPECT_TRUE(life); });
    Toolkit().PumpPending();
    EXPECT_FALSE(life);
}

TEST_F(uiAboutTest, TakesTextsThatAreMissingOrBroken)
{
    Look(new uiAbout(Main, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr), [] {
        EXPECT_EQ(Column().at(Version)->Name(), "Version ");
        EXPECT_GT(Box()->Height(), 0U);
    });
    const std::string endless(100'000, 'x');
    Look(new uiAbout(nullptr, "\xFF\xFE", endless.c_str(), "\xC3", "-x", "\n", "a\nb\nc"),
         [] { EXPECT_LE(Box()->Width(), 16384U); });
}

}  // namespace
