// What is kept of a window in bits, and the kinds of what it is told and of how it looks.
#pragma once

#include <cstdint>

// Creation flags.
enum : uint32_t {
    ctrlMeasure = 1,       // stores the preferred size when it paints
    ctrlPerMonitor = 2,    // native: follows the monitor's DPI
    ctrlStyleRepaint = 4,  // style bits from 128 up repaint it when they change
    ctrlCaptureKeep = 8,   // takes the capture that a descendant lets go
    ctrlKeep = 16,         // closing hides it, and the end of a modal run does not delete it
    ctrlFloating = 32,     // a native window although it has a parent
    ctrlTool = 64,         // a tool window
    ctrlFramed = 128,      // native: with a frame and a system menu
};

// Style bits; 128 and up belong to subclasses.
enum : uint32_t {
    styleAlwaysOnTop = 1,
    styleFocusable = 2,
    styleFollowWidth = 4,  // the width changes with the parent's
    styleFollowHeight = 8,
    styleFollowX = 16,  // x changes with the parent's width
    styleFollowY = 32,
    styleMaximiseFirst = 64,  // at the first show
};

// Frame bits.
enum : uint8_t {
    frameClosable = 1,
    frameMaximise = 2,
    frameMaximiseToo = 4,  // a second bit for the same box
    frameMinimise = 8,
    frameSpare = 16,  // without effect
    frameResize = 32,
};

// State bits; 0x8000 and up belong to subclasses.
enum : uint32_t {
    stateChildren = 1,
    stateClosing = 2,  // nothing may paint or invalidate any more
    stateDirty = 4,
    stateDirtyBelow = 8,
    stateLayout = 16,
    stateNeverShown = 32,
    stateInMessage = 64,
    stateMaximised = 128,
    stateMinimised = 256,
    stateFresh = 512,  // the target is new and holds nothing
    statePainting = 0x800,
    statePaintAsked = 0x1000,
    stateModal = 0x2000,
    stateVisible = 0x4000,
};

// Codes of Notify.
enum : unsigned {
    notifyTab = 0,
    notifyClick = 1,
    notifyPainted = 2,
    notifyRightClick = 3,
    notifyResized = 4,
    notifyOpening = 5,      // a combo box is about to show its rows
    notifyPageChanged = 9,  // another page of a ctrlPage is shown
};

enum class KeyEv : uint8_t {
    Char = 0,
    Down = 1,
    Up = 2
};

enum class MouseEv : uint8_t {
    Move = 0,
    Wheel = 1,
    LeftDown = 2,
    LeftUp = 3,
    LeftDouble = 4,
    MiddleDown = 5,
    MiddleUp = 6,
    MiddleDouble = 7,
    RightDown = 8,
    RightUp = 9,
    RightDouble = 10,
};

// How a control's border is drawn.
enum class ctrlBorder : uint8_t {
    None = 0,
    Flat = 1,
    Raised = 2,
    Sunken = 3,
    Etched = 4,
    Ridged = 5
};
