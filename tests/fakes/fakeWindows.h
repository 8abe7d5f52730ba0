// The screen of the fake platform: windows without pixels, a user whom tests play, and what was asked of the
// system. The rules of fakes.h hold here too; fakeReset forgets all windows and puts everything here back.
//
// Windows are numbered 1, 2, 3 and so on. Recorded calls are named after the operation and begin with the
// window: "windowCreate 1 style 0x80000 extended 0x40004 owner 0", "windowPlace 1 92,69,708,608 flags 52"
// (the frame's edges), "windowShow 1 5", "windowPost 1 16", "windowSetTitle 1 Text". Pure questions (Object,
// Style, FrameOf, ClientArea, Focus, Capture, DPI, work areas, GestureRead) and Peek, Wait and Dispatch are
// not recorded, but fakeOnCall and fakeFail work on them: "windowWait" that fails is a system that is gone.
//
// The frame of a window that is no popup is 8 wider on the left, the right and below, and 31 above, times
// DPI / 96. A call from another thread that belongs to the interface thread ends the test program, and so
// does a Wait for which nothing comes in ten seconds.
#pragma once

#include "platform/window.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

// --- What there is

struct fakeWindow {
    std::string Title;
    uint32_t Style = 0;
    uint32_t StyleExtended = 0;
    windowId Owner = 0;
    windowEdges Frame{};
    windowEdges Client{};
    windowExtent Least{};
    windowExtent Most{};
    bool Visible = false;
    bool Enabled = true;
    bool Topmost = false;
    bool Minimised = false;
    bool Maximised = false;
    bool PaintAsked = false;
};

std::optional<fakeWindow> fakeWindowOf(windowId window);
std::vector<windowId> fakeWindows();  // from the bottom to the top
windowId fakeWindowActive();

size_t fakeQueueLength();  // of what was posted and what the user did

// The code that a Create which fails tells.
constexpr uint32_t fakeCreateError = 1158;

// --- The user. All of it waits in the queue, behind what was posted before, and happens when its turn comes:
// the window that a press goes to is the one that is under the mouse then.

enum class fakeButton : uint8_t {
    Left,
    Right,
    Middle,
};

// Points are on the screen. Who holds the capture hears the mouse anywhere, as long as a button is down or it
// is a popup; otherwise the topmost window at the point does, unless it is disabled.
void fakeMouseMove(int32_t x, int32_t y);
void fakeMousePress(fakeButton button = fakeButton::Left);
void fakeMouseDouble(fakeButton button = fakeButton::Left);  // the second press of a double click
void fakeMouseRelease(fakeButton button = fakeButton::Left);
void fakeMouseClick(int32_t x, int32_t y, fakeButton button = fakeButton::Left);  // moves, presses, releases
void fakeMouseWheel(int32_t turn);  // in 120ths of a notch, away from the user positive

// Keys go to the window that has the focus. The characters follow when the message is dispatched.
void fakeKeyDown(uint32_t key, std::string_view characters = {});
void fakeKeyUp(uint32_t key);
void fakeKeyPress(uint32_t key, std::string_view characters = {});  // down and up
void fakeChar(uint32_t unit);                                       // a msgChar alone
void fakeType(std::string_view text);                               // a key press for each character

void fakeGesture(const windowGesture& gesture);  // to the window at its point, if that asked for gestures
size_t fakeGesturesOpen();                       // told and not closed yet

// What the user does with a frame. A disabled window's cannot be reached.
void fakeUserCloses(windowId window);
void fakeUserMinimises(windowId window);
void fakeUserMaximises(windowId window);
void fakeUserRestores(windowId window);
void fakeUserMoves(windowId window, int32_t x, int32_t y);                            // the frame
void fakeUserResizes(windowId window, uint64_t edge, int32_t width, int32_t height);  // the same
void fakeUserActivates(windowId window);
void fakeUserLeaves();  // for a window of another program

// --- The system

// What DPI gives for windows that follow their monitor. The first comes by the queue, to one window; the
// second holds for windows created from now on, 96 after a reset.
void fakeWindowDPI(windowId window, uint32_t dpi);
void fakeScreenDPI(uint32_t dpi);

// The work areas of all monitors; the first one is the desktop's. One of 1920 by 1040 after a reset.
void fakeMonitors(const std::vector<windowArea>& areas);

// From now on there is no display: Create, Peek and Wait fail.
void fakeDisplayLost();

// Tells the program to end, when what was posted before has been taken.
void fakeProgramEnds();

cursorId fakeCursor();                                      // the one set last
size_t fakeCursorsMade();                                   // and not destroyed
const windowCursorShape* fakeCursorShape(cursorId cursor);  // of one that was made; null otherwise

void fakeClipboard(std::optional<std::string> text);  // what another program put there
std::optional<std::string> fakeClipboardText();

// Title and text of each.
std::vector<std::pair<std::string, std::string>> fakeAlerts();
