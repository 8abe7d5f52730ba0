// A person who presses everything: random mouse, keys, text, clipboard, sizes and failures over the sheets
// of the gallery, on the scripted platform.
#include "tests/toolkit/storm/storm.h"
#include "tests/toolkit/toolkitTest.h"
#include "tools/gallery/gallery.h"

#include <array>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <vector>

namespace {

constexpr unsigned stepsPerRound = 2000;
constexpr long usualSeconds = 60;

long seconds()
{
    const char* asked = std::getenv("SKY_STORM_SECONDS");
    return asked ? std::strtol(asked, nullptr, 10) : usualSeconds;
}

constexpr uint32_t keys[] = {keyTab,  keyTab,  keyEnter, keyEscape, keyLeft,   keyRight,   keyUp,
                             keyDown, keyHome, keyEnd,   keyInsert, keyDelete, keyShift,   keyControl,
                             8,       32,      33,       34,        keyDelete, keyControl, keyShift};

// Letters of every length, digits and marks that edits mean something by, and what no edit should show.
constexpr const char* texts[] = {"0",    "1", "7", "9",  "-",    ".", ",",    "k",    "M",    "u",
                                 "g",    "N", "S", "e",  "w",    " ", "\x01", "\x03", "\x16", "\x18",
                                 "\x7F", "ü", "Ω", "東", "🛰", "é", "\t",   "\b",   "\r",   "-1e9"};

constexpr const char* clips[] = {
    "",           "47.5",        "-12",  "two\r\nlines\t and a tab",
    "\xFF\xC3(",  "ü東🛰Ω", "1e99", "99999999999999999999",
    "12:34:56.7", "12/06/2024",  "NaN",  "a much longer text than any of the fields has room for"};

class galleryStorm : public toolkitTest
{
protected:
    void Round(unsigned seed, void (*sheets)(ctrlWindow*), bool still);

private:
    unsigned Below(size_t most) { return static_cast<unsigned>(Random() % most); }
    template <class list>
    const auto& OneOf(const list& all)
    {
        return all[Below(std::size(all))];
    }

    // Over a control rather than between them.
    void MoveSomewhere()
    {
        std::vector<const ctrlWindow*> all;
        for (const ctrlWindow* window : Toolkit().WindowList())
            Collect(window, all);
        const ctrlWindow* target = OneOf(all);
        int32_t x = static_cast<int32_t>(Below(target->Width() + 4)) - 2;
        int32_t y = static_cast<int32_t>(Below(target->Height() + 4)) - 2;
        for (const ctrlWindow* at = target; at; at = at->Handle() ? nullptr : at->Parent()) {
            x += at->X();
            y += at->Y();
        }
        fakeMouseMove(x, y);
    }
    static void Collect(const ctrlWindow* window, std::vector<const ctrlWindow*>& all)
    {
        all.push_back(window);
        for (const ctrlWindow* child = window->FirstChild(); child; child = child->NextSibling())
            Collect(child, all);
    }

    void UseMouse();
    void UseKeys();
    void UseFrame();
    void Step();
    void ExpectStillness();

    std::mt19937 Random;
    windowId Form = 0;
};

void galleryStorm::UseMouse()
{
    switch (Below(9)) {
    case 0:
    case 1:
        MoveSomewhere();
        break;
    case 2:
        fakeMousePress();
        break;
    case 3:
        fakeMouseRelease();
        break;
    case 4:
    case 5:
        fakeMousePress();
        fakeMouseRelease();
        break;
    case 6:
        fakeMousePress();
        fakeMouseRelease();
        fakeMouseDouble();
        fakeMouseRelease();
        break;
    case 7:
        fakeMouseWheel(static_cast<int32_t>(Below(7)) * 60 - 180);
        break;
    default:
        fakeMousePress(fakeButton::Right);
        fakeMouseRelease(fakeButton::Right);
        break;
    }
}

void galleryStorm::UseKeys()
{
    switch (Below(5)) {
    case 0:
        fakeKeyDown(OneOf(keys));
        break;
    case 1:
        fakeKeyUp(OneOf(keys));
        break;
    case 2:
        fakeKeyPress(OneOf(keys));
        break;
    case 3:
        fakeType(OneOf(texts));
        break;
    default:
        fakeClipboard(OneOf(clips));
        fakeKeyDown(keyShift);
        fakeKeyPress(keyInsert);
        fakeKeyUp(keyShift);
        break;
    }
}

void galleryStorm::UseFrame()
{
    constexpr std::array<uint32_t, 4> dpis{96, 120, 144, 192};
    switch (Below(9)) {
    case 0:
        fakeUserMinimises(Form);
        break;
    case 1:
        fakeUserMaximises(Form);
        break;
    case 2:
    case 3:
        fakeUserRestores(Form);
        break;
    case 4:
        fakeUserResizes(Form, 8, static_cast<int32_t>(Below(1500)), static_cast<int32_t>(Below(900)));
        break;
    case 5:
        fakeWindowDPI(Form, OneOf(dpis));
        break;
    case 6:
        fakeUserLeaves();
        break;
    case 7:
        fakeUserActivates(Form);
        break;
    default:
        fakeEndGives(drawTargetLost);
        break;
    }
}

void galleryStorm::Step()
{
    constexpr unsigned away = 20;  // steps, about, until a form that was put away is wanted again
    if (Below(away) == 0) {
        fakeUserRestores(Form);
        fakeUserActivates(Form);
    }
    switch (Below(12)) {
    case 0:
        Toolkit().Timer.Signal();
        break;
    case 1:
        fakeClockMove(static_cast<int64_t>(Below(100)) * 10'000'000);
        break;
    case 2:
        Below(8) == 0 ? UseFrame() : UseMouse();
        break;
    case 3:
    case 4:
    case 5:
        UseKeys();
        break;
    default:
        UseMouse();
        break;
    }
    if (Below(3) != 0)
        Toolkit().PumpPending();
    fakeClearCalls();
    fakeClearDraws();
}

// With nobody at it and nothing that comes, nothing is drawn.
void galleryStorm::ExpectStillness()
{
    fakeMouseRelease();
    fakeUserRestores(Form);
    fakeUserActivates(Form);
    fakeMouseMove(-50, -50);
    fakeUserLeaves();
    for (int i = 0; i < 10; ++i) {
        fakeClockMove(100'000'000);
        Toolkit().PumpPending();
    }
    Toolkit().TimerStop();
    Toolkit().PumpPending();
    EXPECT_THAT(Drawn(), testing::IsEmpty());
}

void galleryStorm::Round(unsigned seed, void (*sheets)(ctrlWindow*), bool still)
{
    SCOPED_TRACE("seed " + std::to_string(seed) + (still ? ", still" : ""));
    Random.seed(seed);
    galleryStill(still);
    auto* form = new ctrlWindow(nullptr, 60, 60, 1000, 562, ctrlFramed | ctrlPerMonitor);
    form->FrameStyle(frameMaximise | frameMinimise | frameResize, 0);
    Form = form->Handle();
    sheets(form);
    form->Show();
    Toolkit().PumpPending();
    for (unsigned step = 0; step < stepsPerRound; ++step) {
        Step();
        ASSERT_NO_FATAL_FAILURE(storm::Check()) << step;
    }
    if (still)
        ExpectStillness();
    while (Toolkit().HasWindows())
        delete Toolkit().WindowList().front();
    fakeReset();
    Forget();
}

TEST_F(galleryStorm, EveryControlStandsThroughAnything)
{
    void (*const sheets[])(ctrlWindow*) = {galleryControls, galleryEdits, galleryGraphs};
    unsigned told = 0;
    galleryListener([&told](const std::string&) { ++told; });
    const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(seconds());
    unsigned rounds = 0;
    for (; rounds < 3 || std::chrono::steady_clock::now() < end; ++rounds) {
        Round(rounds + 1, sheets[rounds % std::size(sheets)], rounds / std::size(sheets) % 2 == 0);
        if (HasFatalFailure())
            break;
    }
    galleryListener({});
    galleryStill(false);
    EXPECT_GT(told, 10 * rounds) << "the storm met something";
    std::printf("%u rounds of %u steps, %u events told\n", rounds, stepsPerRound, told);
}

}  // namespace
