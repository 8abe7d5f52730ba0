// Makes gestures and clicks of fingers on one window. Knows nothing of the display.
#pragma once

#include "platform/window.h"

#include <cstdint>
#include <vector>

struct windowTouch {
    enum class phase : uint8_t {
        Begin,
        Move,
        End
    };
    phase Phase = phase::Begin;
    uint32_t Finger = 0;
    uint32_t Time = 0;  // milliseconds
    int32_t X = 0;      // on the screen
    int32_t Y = 0;
};

struct windowTouched {
    enum class kind : uint8_t {
        Gesture,
        LeftClick,  // one finger came down and went up again
        RightClick  // the same, after a while
    };
    kind Kind = kind::Gesture;
    windowGesture Gesture;  // of a click: where it was
};

class windowTouches
{
public:
    static constexpr int32_t PanPixels = 8;  // a finger never lies quite still
    static constexpr uint32_t PressMs = 500;

    // What the touch means, appended.
    void Feed(const windowTouch& touch, std::vector<windowTouched>& meant);

private:
    struct finger {
        uint32_t Id;
        int32_t X, Y;
    };

    void Begin(const windowTouch& touch, std::vector<windowTouched>& meant);
    void Move(const windowTouch& touch, std::vector<windowTouched>& meant);
    void End(const windowTouch& touch, std::vector<windowTouched>& meant);
    void Emit(windowGestureKind kind, bool first, std::vector<windowTouched>& meant) const;
    void Centre();

    std::vector<finger> Fingers;
    uint32_t Gesture = 0;
    uint32_t BegunTime = 0;
    int32_t BegunX = 0, BegunY = 0;
    int32_t X = 0, Y = 0;  // the fingers' middle
    bool Pans = false;
    bool WasAlone = false;  // only one finger took part
};
