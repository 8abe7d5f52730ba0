#include "tests/fakes/core.h"
#include "tests/fakes/desk.h"
#include "tests/fakes/windowSystem.h"

#include <algorithm>

// Where windows are, how large, in which order and state.

namespace fakes {

namespace {

constexpr int32_t MinimisedAt = -32000;

bool isThere(windowId id)
{
    const desk desk;
    return desk.Find(id) != nullptr;
}

int32_t widthOf(const windowEdges& edges)
{
    return edges.Right - edges.Left;
}
int32_t heightOf(const windowEdges& edges)
{
    return edges.Bottom - edges.Top;
}

// Stores a frame and a state, and tells what that changed of the client area.
void settle(windowId id, const windowEdges& frame, uint64_t state)
{
    windowEdges before{};
    windowEdges after{};
    bool stateChanged = false;
    {
        const desk desk;
        window* found = desk.Find(id);
        if (!found)
            return;
        before = deskClient(*found);
        stateChanged = found->State != state;
        found->Frame = frame;
        found->State = state;
        if (state == sizedRestored)
            found->Restored = frame;
        after = deskClient(*found);
    }
    if (before.Left != after.Left || before.Top != after.Top)
        deskTell(id, msgMove, 0, windowPoint(after.Left, after.Top));
    if (stateChanged || widthOf(before) != widthOf(after) || heightOf(before) != heightOf(after))
        deskTell(id, msgSize, state, windowPoint(widthOf(after), heightOf(after)));
}

// The frame of a maximised window: its borders lie outside of the monitor, and who is asked may limit it.
windowEdges maximisedFrame(windowId id)
{
    windowSizeLimits limits{};
    windowArea area;
    {
        const desk desk;
        const window* found = desk.Find(id);
        if (!found)
            return {};
        area = desk->Monitors.empty() ? windowArea{} : desk->Monitors.front();
        for (const windowArea& monitor : desk->Monitors) {
            if (found->Frame.Left >= monitor.Left && found->Frame.Left < monitor.Right &&
                found->Frame.Top >= monitor.Top && found->Frame.Top < monitor.Bottom)
                area = monitor;
        }
        const windowEdges outer =
            deskFrame(*found, {area.Left, area.Top, area.Right, area.Bottom}, found->DPI);
        const int32_t border = area.Left - outer.Left;
        limits.MaximisedPlace = {-border, -border};
        limits.MaximisedSize = {area.Right - area.Left + 2 * border, area.Bottom - area.Top + 2 * border};
        limits.MaximumTrack = {16384, 16384};
    }
    deskTell(id, msgSizeLimits, 0, reinterpret_cast<intptr_t>(&limits));
    const int32_t left = area.Left + limits.MaximisedPlace.Width;
    const int32_t top = area.Top + limits.MaximisedPlace.Height;
    return {left, top, left + std::min(limits.MaximisedSize.Width, limits.MaximumTrack.Width),
            top + std::min(limits.MaximisedSize.Height, limits.MaximumTrack.Height)};
}

void minimise(windowId id)
{
    windowEdges frame{};
    {
        const desk desk;
        window* found = desk.Find(id);
        if (!found || found->State == sizedMinimised)
            return;
        found->Before = found->State;
        frame = {MinimisedAt, MinimisedAt, MinimisedAt + widthOf(found->Frame),
                 MinimisedAt + heightOf(found->Frame)};
    }
    settle(id, frame, sizedMinimised);
    deskActivateNext(id);
}

void maximise(windowId id)
{
    {
        const desk desk;
        window* found = desk.Find(id);
        if (!found || found->State == sizedMaximised)
            return;
        if (found->State == sizedMinimised)
            found->Frame = found->Restored;
    }
    settle(id, maximisedFrame(id), sizedMaximised);
}

void restore(windowId id)
{
    windowEdges frame{};
    bool toMaximised = false;
    {
        const desk desk;
        const window* found = desk.Find(id);
        if (!found || found->State == sizedRestored)
            return;
        frame = found->Restored;
        toMaximised = found->State == sizedMinimised && found->Before == sizedMaximised;
    }
    if (toMaximised)
        maximise(id);
    else
        settle(id, frame, sizedRestored);
}

void hide(windowId id)
{
    {
        const desk desk;
        const window* found = desk.Find(id);
        if (!found || !found->Visible)
            return;
    }
    deskTell(id, msgShowWindow, 0);
    {
        const desk desk;
        if (window* found = desk.Find(id))
            found->Visible = false;
    }
    deskActivateNext(id);
}

// What was hidden has nothing to show yet, so it is asked to paint.
void uncover(windowId id)
{
    {
        const desk desk;
        const window* found = desk.Find(id);
        if (!found || found->Visible)
            return;
    }
    deskTell(id, msgShowWindow, 1);
    const desk desk;
    if (window* found = desk.Find(id)) {
        found->Visible = true;
        found->PaintAsked = true;
    }
}

std::string edgesText(const windowEdges& edges)
{
    return std::to_string(edges.Left) + ',' + std::to_string(edges.Top) + ',' + std::to_string(edges.Right) +
           ',' + std::to_string(edges.Bottom);
}

std::string orderText(windowOrder order)
{
    if (order == windowOrder::Keep)
        return {};
    return order == windowOrder::Topmost ? " topmost" : " notTopmost";
}

}  // namespace

void deskRaise(windowId id)
{
    const desk desk;
    const window* found = desk.Find(id);
    if (!found)
        return;
    std::erase(desk->Order, id);
    desk->Order.push_back(id);
    // What it owns stays above it, and the topmost above all.
    std::stable_sort(desk->Order.begin(), desk->Order.end(), [&](windowId one, windowId other) {
        return desk.Layer(one, id) < desk.Layer(other, id);
    });
}

bool deskPlace(windowId id, const windowEdges& frame, uint32_t flags)
{
    windowPlacing placing{.Window = id,
                          .After = 0,
                          .X = frame.Left,
                          .Y = frame.Top,
                          .Width = widthOf(frame),
                          .Height = heightOf(frame),
                          .Flags = flags};
    deskTell(id, msgPosChanging, 0, reinterpret_cast<intptr_t>(&placing));
    windowEdges now{};
    uint64_t state = sizedRestored;
    {
        const desk desk;
        const window* found = desk.Find(id);
        if (!found)
            return false;
        now = found->Frame;
        state = found->State;
    }
    constexpr int32_t Largest = 16384;
    const bool moves = (placing.Flags & placeKeepPosition) == 0;
    const bool sizes = (placing.Flags & placeKeepSize) == 0;
    const int32_t left = moves ? placing.X : now.Left;
    const int32_t top = moves ? placing.Y : now.Top;
    const int32_t width = sizes ? std::clamp(placing.Width, 0, Largest) : widthOf(now);
    const int32_t height = sizes ? std::clamp(placing.Height, 0, Largest) : heightOf(now);
    settle(id, {left, top, left + width, top + height}, state);
    return true;
}

void deskShow(windowId id, windowShow how)
{
    if (!isThere(id))
        return;
    if (how == windowShow::Hide)
        return hide(id);
    uncover(id);
    if (how == windowShow::Minimise)
        return minimise(id);
    if (how == windowShow::Maximise)
        maximise(id);
    if (how == windowShow::Restore)
        restore(id);
    deskRaise(id);
    if (how != windowShow::NoActivate)
        deskActivate(id);
}

bool scriptedWindows::Place(windowId id, windowOrder order, const windowEdges& frame, uint32_t flags)
{
    const std::string arguments = edgesText(frame) + " flags " + std::to_string(flags) + orderText(order);
    if (!windowEnter("windowPlace", id, arguments) || !deskPlace(id, frame, flags))
        return false;
    if (order != windowOrder::Keep && (flags & placeKeepOrder) == 0) {
        {
            const desk desk;
            if (window* found = desk.Find(id))
                found->Topmost = order == windowOrder::Topmost;
        }
        deskRaise(id);
    }
    if ((flags & placeNoActivate) == 0)
        deskActivate(id);
    return true;
}

windowEdges scriptedWindows::FrameOf(windowId id, const windowEdges& client, uint32_t dpi)
{
    deskRequireInterface();
    const desk desk;
    const window* found = desk.Find(id);
    return found ? deskFrame(*found, client, dpi) : client;
}

bool scriptedWindows::ClientArea(windowId id, windowEdges& area)
{
    deskRequireInterface();
    const desk desk;
    const window* found = desk.Find(id);
    if (!found)
        return false;
    area = deskClient(*found);
    return true;
}

void scriptedWindows::Show(windowId id, windowShow how)
{
    if (windowEnter("windowShow", id, std::to_string(static_cast<unsigned>(how))))
        deskShow(id, how);
}

void scriptedWindows::Raise(windowId id)
{
    if (!windowEnter("windowRaise", id) || !isThere(id))
        return;
    deskRaise(id);
    deskActivate(id);
}

}  // namespace fakes
