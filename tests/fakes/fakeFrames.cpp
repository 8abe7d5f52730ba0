#include "tests/fakes/core.h"
#include "tests/fakes/desk.h"
#include "tests/fakes/fakeWindows.h"

#include <algorithm>

// What users and systems do with windows from outside, and what tests see of them.

namespace {

using fakes::desk;
using fakes::deskQueue;
using fakes::deskTell;

bool isReachable(windowId id)
{
    const desk desk;
    const fakes::window* found = desk.Find(id);
    return found && found->Visible && found->Enabled;
}

void queueCommand(windowId id, uint64_t command)
{
    deskQueue([=]() -> std::optional<windowMessage> {
        if (!isReachable(id))
            return std::nullopt;
        return fakes::deskMessage(id, msgSysCommand, command);
    });
}

// A step of the user's that ends in no message of its own.
template <typename step>
void queueStep(step&& run)
{
    deskQueue([=]() -> std::optional<windowMessage> {
        run();
        return std::nullopt;
    });
}

windowEdges frameNow(windowId id)
{
    const desk desk;
    const fakes::window* found = desk.Find(id);
    return found ? found->Frame : windowEdges{};
}

// Lets whoever hears of the drag change the frame, then puts the window there.
void drag(windowId id, uint32_t number, uint64_t first, windowEdges frame)
{
    deskTell(id, msgEnterSizeMove);
    deskTell(id, number, first, reinterpret_cast<intptr_t>(&frame));
    fakes::deskPlace(id, frame, placeKeepOrder | placeNoActivate);
    deskTell(id, msgExitSizeMove);
}

bool isOneOf(uint64_t edge, std::initializer_list<uint64_t> edges)
{
    return std::find(edges.begin(), edges.end(), edge) != edges.end();
}

windowEdges resized(windowEdges frame, uint64_t edge, int32_t width, int32_t height)
{
    if (isOneOf(edge, {edgeLeft, edgeTopLeft, edgeBottomLeft}))
        frame.Left = frame.Right - width;
    else
        frame.Right = frame.Left + width;
    if (isOneOf(edge, {edgeTop, edgeTopLeft, edgeTopRight}))
        frame.Top = frame.Bottom - height;
    else
        frame.Bottom = frame.Top + height;
    return frame;
}

void changeDPI(windowId id, uint32_t dpi)
{
    windowEdges frame{};
    windowExtent size{};
    {
        const desk desk;
        fakes::window* found = desk.Find(id);
        if (!found || !found->Made.PerMonitor || found->DPI == dpi)
            return;
        frame = found->Frame;
        const auto rescaled = [&](int32_t pixels) {
            return static_cast<int32_t>(int64_t{pixels} * dpi / found->DPI);
        };
        size = {rescaled(frame.Right - frame.Left), rescaled(frame.Bottom - frame.Top)};
    }
    const windowExtent usual = size;
    if (deskTell(id, msgScaledSize, dpi, reinterpret_cast<intptr_t>(&size)) == 0)
        size = usual;
    {
        const desk desk;
        if (fakes::window* found = desk.Find(id))
            found->DPI = dpi;
    }
    frame.Right = frame.Left + size.Width;
    frame.Bottom = frame.Top + size.Height;
    deskTell(id, msgDPIChanged, dpi | dpi << 16, reinterpret_cast<intptr_t>(&frame));
}

void leave()
{
    const windowId holder = desk()->Capture;
    if (holder != 0)
        deskTell(holder, msgCancelMode);
    fakes::deskActivate(0);
}

}  // namespace

std::optional<fakeWindow> fakeWindowOf(windowId window)
{
    const desk desk;
    const fakes::window* found = desk.Find(window);
    if (!found)
        return std::nullopt;
    return fakeWindow{.Title = found->Title,
                      .Style = found->Style,
                      .StyleExtended = found->Made.StyleExtended,
                      .Owner = found->Made.Owner,
                      .Frame = found->Frame,
                      .Client = fakes::deskClient(*found),
                      .Least = found->Least,
                      .Most = found->Most,
                      .Visible = found->Visible,
                      .Enabled = found->Enabled,
                      .Topmost = found->Topmost,
                      .Minimised = found->State == sizedMinimised,
                      .Maximised = found->State == sizedMaximised,
                      .PaintAsked = found->PaintAsked};
}

std::vector<windowId> fakeWindows()
{
    return desk()->Order;
}

windowId fakeWindowActive()
{
    return desk()->Active;
}

size_t fakeQueueLength()
{
    return desk()->Queue.size();
}

void fakeUserCloses(windowId window)
{
    queueCommand(window, commandClose);
}

void fakeUserMinimises(windowId window)
{
    queueCommand(window, commandMinimise);
}

void fakeUserMaximises(windowId window)
{
    queueCommand(window, commandMaximise);
}

void fakeUserRestores(windowId window)
{
    queueCommand(window, commandRestore);
}

void fakeUserMoves(windowId window, int32_t x, int32_t y)
{
    queueStep([=] {
        if (!isReachable(window))
            return;
        windowEdges frame = frameNow(window);
        frame = {x, y, x + frame.Right - frame.Left, y + frame.Bottom - frame.Top};
        drag(window, msgMoving, 0, frame);
    });
}

void fakeUserResizes(windowId window, uint64_t edge, int32_t width, int32_t height)
{
    queueStep([=] {
        if (isReachable(window))
            drag(window, msgSizing, edge, resized(frameNow(window), edge, width, height));
    });
}

void fakeUserActivates(windowId window)
{
    queueStep([=] {
        if (isReachable(window))
            fakes::deskActivate(window);
    });
}

void fakeUserLeaves()
{
    queueStep(leave);
}

void fakeWindowDPI(windowId window, uint32_t dpi)
{
    queueStep([=] { changeDPI(window, dpi); });
}

void fakeScreenDPI(uint32_t dpi)
{
    desk()->DPI = dpi;
}

void fakeDisplayLost()
{
    const desk desk;
    desk->Lost = true;
    fakes::deskChanged().notify_all();
}

void fakeProgramEnds()
{
    queueStep([] { desk()->Ended = true; });
}
