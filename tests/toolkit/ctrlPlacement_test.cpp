#include "foundations/settings/settingsReg.h"
#include "foundations/settings/settingsText.h"
#include "tests/toolkit/toolkitTest.h"

using testing::ElementsAre;

namespace {

constexpr uint8_t sizedFrame = frameClosable | frameMaximise | frameMinimise | frameResize;

class ctrlPlacementTest : public toolkitTest
{
protected:
    void SetUp() override
    {
        toolkitTest::SetUp();
        Store.Root = "Software\\Test";
        Window = Made();
    }

    static ctrlWindow* Made(uint8_t frame = sizedFrame)
    {
        auto* window = new ctrlWindow(nullptr, 100, 200, 300, 150, ctrlFramed);
        window->FrameStyle(frame, 0);
        return window;
    }

    void Put(const char* key, int32_t value) { Store.SetInt32(key, &value, 1); }
    int32_t Stored(const char* key)
    {
        int32_t value = -99;
        Store.GetInt32(key, &value, 1);
        return value;
    }
    bool StoredMaximised()
    {
        bool value = false;
        Store.GetBool("Window - Maximized", &value, 1);
        return value;
    }
    void PutNew(int32_t x, int32_t y, int32_t width, int32_t height)
    {
        Put("Window - Position - Horizontal", x);
        Put("Window - Position - Vertical", y);
        Put("Window - Size - Horizontal", width);
        Put("Window - Size - Vertical", height);
    }
    void PutOld(int32_t x, int32_t y, int32_t width, int32_t height)
    {
        Put("Left window coordinate", x);
        Put("Top window coordinate", y);
        Put("Horizontal window size", width);
        Put("Vertical window size", height);
    }
    std::vector<int32_t> StoredFrame()
    {
        return {Stored("Window - Position - Horizontal"), Stored("Window - Position - Vertical"),
                Stored("Window - Size - Horizontal"), Stored("Window - Size - Vertical")};
    }
    static std::vector<int32_t> Place(const ctrlWindow* window)
    {
        return {window->X(), window->Y(), static_cast<int32_t>(window->Width()),
                static_cast<int32_t>(window->Height())};
    }
    void Maximise()
    {
        fakeUserMaximises(Window->Handle());
        Toolkit().PumpPending();
        ASSERT_TRUE(Window->HasState(stateMaximised));
    }

    settingsReg Store;
    ctrlWindow* Window = nullptr;
};

TEST_F(ctrlPlacementTest, AnEmptyStoreLeavesTheWindowWhereItIs)
{
    Window->PlacementLoad(Store);
    EXPECT_THAT(Place(Window), ElementsAre(100, 200, 300, 150));
    EXPECT_FALSE(Window->HasStyle(styleMaximiseFirst));
    Window->Show();
    Window->PlacementLoad(Store);
    EXPECT_THAT(Place(Window), ElementsAre(100, 200, 300, 150));
}

TEST_F(ctrlPlacementTest, WhatWasSavedComesBack)
{
    Window->Show();
    Window->Move(40, 50, 500, 400);
    Window->PlacementSave(Store);
    EXPECT_THAT(StoredFrame(), ElementsAre(40, 50, 500, 400));
    EXPECT_FALSE(StoredMaximised());
    ctrlWindow* another = Made();
    another->PlacementLoad(Store);
    EXPECT_THAT(Place(another), ElementsAre(40, 50, 500, 400));
}

TEST_F(ctrlPlacementTest, OldKeysAreReadAndNewOnesOverrideThem)
{
    PutOld(1, 40, 310, 160);
    Window->PlacementLoad(Store);
    EXPECT_THAT(Place(Window), ElementsAre(1, 40, 310, 160));
    PutNew(2, 50, 320, 170);
    Window->PlacementLoad(Store);
    EXPECT_THAT(Place(Window), ElementsAre(2, 50, 320, 170));
}

TEST_F(ctrlPlacementTest, SavingWritesNewKeysAlone)
{
    Window->PlacementSave(Store);
    EXPECT_THAT(StoredFrame(), ElementsAre(100, 200, 300, 150));
    for (const char* old : {"Left window coordinate", "Top window coordinate", "Horizontal window size",
                            "Vertical window size", "Window status"})
        EXPECT_EQ(Stored(old), -99) << old;
}

TEST_F(ctrlPlacementTest, MinusOneIsAPlaceButNoSize)
{
    PutNew(-1, -2, -1, -2);
    Window->PlacementLoad(Store);
    EXPECT_THAT(Place(Window), ElementsAre(-1, -2, 300, 150));
}

TEST_F(ctrlPlacementTest, AFrameThatCannotBeSizedKeepsItsSizeAndItsState)
{
    ctrlWindow* fixed = Made(frameClosable | frameMinimise);
    PutNew(2, 50, 320, 170);
    const bool maximised = true;
    Store.SetBool("Window - Maximized", &maximised, 1);
    fixed->PlacementLoad(Store);
    EXPECT_THAT(Place(fixed), ElementsAre(2, 50, 300, 150));
    EXPECT_FALSE(fixed->HasStyle(styleMaximiseFirst));
    Store.DeleteAll();
    fixed->PlacementSave(Store);
    EXPECT_THAT(StoredFrame(), ElementsAre(2, 50, -99, -99));
    EXPECT_FALSE(StoredMaximised());
}

TEST_F(ctrlPlacementTest, AResizableFrameWithoutABoxHasASizeButIsNeverMaximised)
{
    ctrlWindow* resizable = Made(frameResize);
    PutNew(2, 50, 320, 170);
    const bool maximised = true;
    Store.SetBool("Window - Maximized", &maximised, 1);
    resizable->PlacementLoad(Store);
    EXPECT_THAT(Place(resizable), ElementsAre(2, 50, 320, 170));
    EXPECT_FALSE(resizable->HasStyle(styleMaximiseFirst));
}

TEST_F(ctrlPlacementTest, BeforeTheFirstShowAMaximisedFrameWaitsForIt)
{
    PutNew(2, 50, 320, 170);
    const bool maximised = true;
    Store.SetBool("Window - Maximized", &maximised, 1);
    Window->PlacementLoad(Store);
    EXPECT_THAT(Place(Window), ElementsAre(2, 50, 320, 170));
    EXPECT_TRUE(Window->HasStyle(styleMaximiseFirst));
    EXPECT_FALSE(Window->HasState(stateMaximised));
    Window->Show();
    EXPECT_TRUE(Window->HasState(stateMaximised));

    Store.DeleteAll();
    Window->PlacementSave(Store);
    EXPECT_THAT(StoredFrame(), ElementsAre(2, 50, 320, 170)) << "the frame to come back to";
    EXPECT_TRUE(StoredMaximised());
}

TEST_F(ctrlPlacementTest, TheOldStatusIsABitOfANumberThatTheNewOneOverrides)
{
    Put("Window status", 0x20 | 3);
    Window->PlacementLoad(Store);
    EXPECT_TRUE(Window->HasStyle(styleMaximiseFirst));

    ctrlWindow* another = Made();
    Put("Window status", 0x1F);
    another->PlacementLoad(Store);
    EXPECT_FALSE(another->HasStyle(styleMaximiseFirst));

    Put("Window status", 0x20);
    const bool maximised = false;
    Store.SetBool("Window - Maximized", &maximised, 1);
    another->PlacementLoad(Store);
    EXPECT_FALSE(another->HasStyle(styleMaximiseFirst));
}

TEST_F(ctrlPlacementTest, AMaximisedWindowSavesTheFrameThatItComesBackTo)
{
    Window->Show();
    Maximise();
    Window->PlacementSave(Store);
    EXPECT_THAT(StoredFrame(), ElementsAre(100, 200, 300, 150));
    EXPECT_TRUE(StoredMaximised());
}

TEST_F(ctrlPlacementTest, OfAMaximisedWindowTheFrameToComeBackToIsLoaded)
{
    Window->Show();
    Maximise();
    PutNew(2, 50, 320, 170);
    Window->PlacementLoad(Store);
    EXPECT_TRUE(Window->HasState(stateMaximised));
    EXPECT_EQ(Window->Width(), 1920U);
    Store.DeleteAll();
    Window->PlacementSave(Store);
    EXPECT_THAT(StoredFrame(), ElementsAre(2, 50, 320, 170));
}

TEST_F(ctrlPlacementTest, AMaximisedWindowIsRestoredWhereTheStoreSaysSo)
{
    Window->Show();
    Maximise();
    const bool maximised = false;
    Store.SetBool("Window - Maximized", &maximised, 1);
    Window->PlacementLoad(Store);
    EXPECT_FALSE(Window->HasState(stateMaximised));
}

TEST_F(ctrlPlacementTest, AShownWindowIsMovedAndMaximised)
{
    Window->Show();
    PutNew(2, 50, 320, 170);
    const bool maximised = true;
    Store.SetBool("Window - Maximized", &maximised, 1);
    Window->PlacementLoad(Store);
    EXPECT_TRUE(Window->HasState(stateMaximised));
    Store.DeleteAll();
    Window->PlacementSave(Store);
    EXPECT_THAT(StoredFrame(), ElementsAre(2, 50, 320, 170));
}

TEST_F(ctrlPlacementTest, MinimisingKeepsThePlaceToComeBackTo)
{
    Window->Show();
    fakeUserMinimises(Window->Handle());
    Toolkit().PumpPending();
    fakeUserMaximises(Window->Handle());
    Toolkit().PumpPending();
    fakeUserRestores(Window->Handle());
    Toolkit().PumpPending();
    Window->PlacementSave(Store);
    EXPECT_THAT(StoredFrame(), ElementsAre(100, 200, 300, 150));
}

TEST_F(ctrlPlacementTest, APlaceOffEveryMonitorIsLeftAtTheFirstShow)
{
    PutNew(9000, 9000, 320, 170);
    Window->PlacementLoad(Store);
    EXPECT_EQ(Window->X(), 9000);
    Window->Show();
    EXPECT_THAT(Place(Window), ElementsAre(800, 435, 320, 170));
}

TEST_F(ctrlPlacementTest, APlaceThatIsNoneOnAnyScreenEndsInTheMiddleOfOne)
{
    for (const int32_t far : {INT32_MAX, INT32_MIN + 1}) {
        ctrlWindow* window = Made();
        PutNew(far, far, INT32_MAX, 170);
        window->PlacementLoad(Store);
        EXPECT_THAT(window->Width(), testing::AllOf(testing::Gt(16'000U), testing::Le(16'384U)));
        PutNew(far, far, 320, 170);
        window->PlacementLoad(Store);
        window->Show();
        EXPECT_THAT(Place(window), ElementsAre(800, 435, 320, 170));
    }
}

TEST_F(ctrlPlacementTest, AFileKeepsAFrameToo)
{
    settingsText file;
    file.Root = "/settings.txt";
    file.settings::Section = "Main";
    Window->Move(40, 50, 500, 400);
    Window->PlacementSave(file);
    ctrlWindow* another = Made();
    another->PlacementLoad(file);
    EXPECT_THAT(Place(another), ElementsAre(40, 50, 500, 400));
    EXPECT_EQ(file.OpenCount, 0U);
    EXPECT_THAT(fakeFileBytes(u"/settings.txt"), testing::HasSubstr("Window - Size - Horizontal"));
}

TEST_F(ctrlPlacementTest, EveryOpenIsClosed)
{
    Window->PlacementSave(Store);
    Window->PlacementLoad(Store);
    EXPECT_EQ(Store.OpenCount, 0U);
    EXPECT_EQ(fakeRegistryHandles(), 0U);
}

}  // namespace
