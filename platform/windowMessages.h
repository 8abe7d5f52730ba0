// What windows are told, in messages of fixed numbers, and what the numbers in them mean.
//
// A message has a number and two parameters. All backends send the same messages with the same parameters in
// the same order of events; those that only one system knows (a frame that is measured, a background to
// erase) may be missing on another.
#pragma once

#include <cstdint>

// A native window; 0 is none. It is never given out twice while the first owner lives.
using windowId = uint64_t;

struct windowMessage {
    windowId Window = 0;
    uint32_t Number = 0;  // a msg... constant
    uint64_t First = 0;
    int64_t Second = 0;

    // When it happened, in milliseconds of a clock of the system's own, and where the mouse then was on the
    // screen. The backend fills and reads them; others hand them on.
    uint32_t Time = 0;
    int32_t ScreenX = 0;
    int32_t ScreenY = 0;
};

// "Point" is x in the low 16 bits of Second and y in the next 16, both signed; the
// bits above are undefined, so read it with windowPointX and windowPointY.
enum : uint32_t {
    msgCreate = 1,
    msgMove = 3,      // Point: the client area's new place on the screen
    msgSize = 5,      // First: a windowSized; Second: width in the low, height in the next 16 bits
    msgActivate = 6,  // First: 0 in the low 16 bits when the window is no longer the active one
    msgSetFocus = 7,
    msgKillFocus = 8,
    msgEnable = 10,
    msgPaint = 15,  // comes only when nothing else waits
    msgClose = 16,
    msgPaintIcon = 19,  // Second and First as the system has them
    msgEraseBackground = 20,
    msgShowWindow = 24,  // First: 1 shown, 0 hidden
    msgCancelMode = 31,
    msgSetCursor = 32,
    msgMouseActivate = 33,
    msgChildActivate = 34,
    msgSizeLimits = 36,   // Second: a windowSizeLimits*, to be changed
    msgPosChanging = 70,  // Second: a windowPlacing*, to be changed
    msgPosChanged = 71,
    msgStyleChanging = 124,
    msgStyleChanged = 125,
    msgGetIcon = 127,
    msgFrameSize = 131,
    msgFrameHit = 132,  // Point on the screen; the result is a hit code
    msgFramePaint = 133,
    msgSyncPaint = 136,
    msgFrameMove = 160,       // First: the hit code
    msgFrameLeftDown = 161,   // First: the hit code
    msgKeyDown = 256,         // First: a virtual key (windowKey)
    msgKeyUp = 257,           // the same
    msgChar = 258,            // First: a UTF-16 unit
    msgSysCommand = 274,      // First: a windowCommand, its low four bits undefined
    msgGesture = 281,         // Second: a gesture, for windowSystem::GestureRead
    msgMouseMove = 512,       // First: windowKeys; Point in the client area, for all that follow
    msgLeftDown = 513,        //
    msgLeftUp = 514,          //
    msgLeftDouble = 515,      // in place of the second LeftDown
    msgRightDown = 516,       //
    msgRightUp = 517,         //
    msgRightDouble = 518,     //
    msgMiddleDown = 519,      //
    msgMiddleUp = 520,        //
    msgMiddleDouble = 521,    //
    msgMouseWheel = 522,      // First: windowKeys in the low 16 bits, the turn in the next 16, signed, in
                              // 120ths of a notch, away from the user positive; Point on the screen
    msgSizing = 532,          // First: a windowEdge; Second: a windowEdges* of the frame, to be changed
    msgCaptureChanged = 533,  // the capture went to another window or to none
    msgMoving = 534,          // Second: a windowEdges* of the frame, to be changed
    msgEnterSizeMove = 561,
    msgExitSizeMove = 562,
    msgDPIChanged = 736,
    msgScaledSize = 740,  // First: the new DPI; Second: a windowExtent*, to be changed
    msgApp = 0x8000,      // a posted or sent closure: the parameters are the toolkit's own
};

// msgSize, First.
enum : uint64_t {
    sizedRestored = 0,
    sizedMinimised = 1,
    sizedMaximised = 2,
};

// Bits of mouse messages, First: the buttons that are down after the event, and two keys.
enum : uint32_t {
    keysLeft = 1,
    keysRight = 2,
    keysShift = 4,
    keysControl = 8,
    keysMiddle = 16,
};

// msgSysCommand, First, after masking.
enum : uint64_t {
    commandMinimise = 0xF020,
    commandMaximise = 0xF030,
    commandClose = 0xF060,
    commandRestore = 0xF120,
};

// msgSizing, First: what is dragged.
enum : uint64_t {
    edgeLeft = 1,
    edgeRight = 2,
    edgeTop = 3,
    edgeTopLeft = 4,
    edgeTopRight = 5,
    edgeBottom = 6,
    edgeBottomLeft = 7,
    edgeBottomRight = 8,
};

// Where on a frame the mouse is.
enum : uint32_t {
    hitClient = 1,
    hitLeft = 10,
    hitRight = 11,
    hitTop = 12,
    hitTopLeft = 13,
    hitTopRight = 14,
    hitBottom = 15,
    hitBottomLeft = 16,
    hitBottomRight = 17,
};

// Virtual keys. Letters are their capitals and digits their digits in ASCII, with and without shift.
enum : uint32_t {
    keyBackspace = 8,
    keyTab = 9,
    keyEnter = 13,
    keyShift = 16,
    keyControl = 17,
    keyAlt = 18,
    keyPause = 19,
    keyCapsLock = 20,
    keyEscape = 27,
    keySpace = 32,
    keyPageUp = 33,
    keyPageDown = 34,
    keyEnd = 35,
    keyHome = 36,
    keyLeft = 37,
    keyUp = 38,
    keyRight = 39,
    keyDown = 40,
    keyPrintScreen = 44,
    keyInsert = 45,
    keyDelete = 46,
    keyMeta = 91,
    keyMenu = 93,
    keyNumpad0 = 96,  // to keyNumpad0 + 9
    keyMultiply = 106,
    keyAdd = 107,
    keySubtract = 109,
    keyDecimal = 110,
    keyDivide = 111,
    keyF1 = 112,  // to keyF1 + 23
    keyNumLock = 144,
    keyScrollLock = 145,
};

// All four below may be read and changed while the message is handled, and not after.

struct windowPlacing {
    windowId Window;
    windowId After;
    int32_t X, Y, Width, Height;  // of the frame
    uint32_t Flags;               // place... of window.h
};

struct windowEdges {
    int32_t Left, Top, Right, Bottom;  // right and bottom are just outside
};

struct windowExtent {
    int32_t Width, Height;
};

struct windowSizeLimits {
    windowExtent Reserved;
    windowExtent MaximisedSize;
    windowExtent MaximisedPlace;  // left and top
    windowExtent MinimumTrack;
    windowExtent MaximumTrack;
};

constexpr int64_t windowPoint(int32_t x, int32_t y)
{
    return int64_t{uint32_t{static_cast<uint16_t>(x)} | uint32_t{static_cast<uint16_t>(y)} << 16};
}
constexpr int32_t windowPointX(int64_t second)
{
    return static_cast<int16_t>(second & 0xFFFF);
}
constexpr int32_t windowPointY(int64_t second)
{
    return static_cast<int16_t>(second >> 16 & 0xFFFF);
}
