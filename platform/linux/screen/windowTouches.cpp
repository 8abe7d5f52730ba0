#include "platform/linux/screen/windowTouches.h"

#include <algorithm>
#include <cstdlib>

void windowTouches::Feed(const windowTouch& touch, std::vector<windowTouched>& meant)
{
    switch (touch.Phase) {
    case windowTouch::phase::Begin:
        return Begin(touch, meant);
    case windowTouch::phase::Move:
        return Move(touch, meant);
    case windowTouch::phase::End:
        return End(touch, meant);
    }
}

void windowTouches::Begin(const windowTouch& touch, std::vector<windowTouched>& meant)
{
    std::erase_if(Fingers, [&](const finger& known) { return known.Id == touch.Finger; });
    const bool isFirst = Fingers.empty();
    Fingers.push_back({touch.Finger, touch.X, touch.Y});
    Centre();
    WasAlone = isFirst;
    BegunX = X;
    BegunY = Y;
    if (!isFirst)
        return;
    ++Gesture;
    Pans = false;
    BegunTime = touch.Time;
    Emit(windowGestureKind::Begin, true, meant);
}

void windowTouches::Move(const windowTouch& touch, std::vector<windowTouched>& meant)
{
    const auto moved = std::find_if(Fingers.begin(), Fingers.end(),
                                    [&](const finger& known) { return known.Id == touch.Finger; });
    if (moved == Fingers.end() || (moved->X == touch.X && moved->Y == touch.Y))
        return;
    moved->X = touch.X;
    moved->Y = touch.Y;
    Centre();
    if (!Pans && std::abs(X - BegunX) < PanPixels && std::abs(Y - BegunY) < PanPixels)
        return;
    const bool isFirst = !Pans;
    Pans = true;
    if (isFirst) {
        // What is dragged is what lay under the finger when it came down.
        std::swap(X, BegunX);
        std::swap(Y, BegunY);
        Emit(windowGestureKind::Pan, true, meant);
        std::swap(X, BegunX);
        std::swap(Y, BegunY);
    }
    Emit(windowGestureKind::Pan, false, meant);
}

void windowTouches::End(const windowTouch& touch, std::vector<windowTouched>& meant)
{
    if (std::erase_if(Fingers, [&](const finger& known) { return known.Id == touch.Finger; }) == 0)
        return;
    if (!Fingers.empty()) {
        // The middle jumps to the fingers that stay; the jump is no movement.
        Centre();
        BegunX = X;
        BegunY = Y;
        return;
    }
    Emit(windowGestureKind::End, true, meant);
    if (Pans || !WasAlone)
        return;
    const bool isLong = touch.Time - BegunTime >= PressMs;
    windowTouched click{isLong ? windowTouched::kind::RightClick : windowTouched::kind::LeftClick, {}};
    click.Gesture.X = BegunX;
    click.Gesture.Y = BegunY;
    meant.push_back(click);
}

void windowTouches::Emit(windowGestureKind kind, bool first, std::vector<windowTouched>& meant) const
{
    meant.push_back({windowTouched::kind::Gesture, {kind, first, Gesture, X, Y}});
}

void windowTouches::Centre()
{
    int64_t x = 0;
    int64_t y = 0;
    for (const finger& one : Fingers) {
        x += one.X;
        y += one.Y;
    }
    const auto count = static_cast<int64_t>(Fingers.size());
    X = static_cast<int32_t>(x / count);
    Y = static_cast<int32_t>(y / count);
}
