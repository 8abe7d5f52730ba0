#include "tests/fakes/core.h"
#include "tests/fakes/desk.h"
#include "tests/fakes/fakeWindows.h"
#include "tests/fakes/windowSystem.h"

#include <algorithm>

// What stands beside the windows: cursors, monitors, gestures, the clipboard and the system's own box.

namespace fakes {

namespace {

int64_t overlap(const windowEdges& frame, const windowArea& area)
{
    const int64_t width = std::min(frame.Right, area.Right) - std::max(frame.Left, area.Left);
    const int64_t height = std::min(frame.Bottom, area.Bottom) - std::max(frame.Top, area.Top);
    return width > 0 && height > 0 ? width * height : 0;
}

bool contains(const windowArea& area, int32_t x, int32_t y)
{
    return x >= area.Left && x < area.Right && y >= area.Top && y < area.Bottom;
}

// Those that were made have higher numbers.
constexpr cursorId FirstMade = 100;

}  // namespace

cursorId scriptedWindows::SystemCursor(windowCursor which)
{
    const unsigned number = static_cast<unsigned>(which);
    deskRequireInterface();
    return enter("windowSystemCursor", std::to_string(number)).Scripted ? 0 : number + 1;
}

cursorId scriptedWindows::MakeCursor(const windowCursorShape& shape)
{
    deskRequireInterface();
    if (enter("windowMakeCursor", std::to_string(shape.HotX) + ',' + std::to_string(shape.HotY)).Scripted)
        return 0;
    const desk desk;
    desk->LastCursor = std::max(desk->LastCursor + 1, FirstMade);
    desk->Cursors[desk->LastCursor] = shape;
    return desk->LastCursor;
}

void scriptedWindows::DestroyCursor(cursorId cursor)
{
    if (!windowEnter("windowDestroyCursor", cursor))
        return;
    const desk desk;
    desk->Cursors.erase(cursor);
}

iconId scriptedWindows::ProgramIcon()
{
    return 0;
}

iconId scriptedWindows::MakeIcon(const windowIconShape& shape)
{
    const bool refused =
        enter("windowMakeIcon", std::to_string(shape.Width) + ',' + std::to_string(shape.Height)).Scripted;
    if (refused || !shape.IsValid())
        return 0;
    const desk desk;
    desk->Icons.insert(++desk->LastIcon);
    return desk->LastIcon;
}

void scriptedWindows::DestroyIcon(iconId icon)
{
    if (!windowEnter("windowDestroyIcon", icon))
        return;
    const desk desk;
    desk->Icons.erase(icon);
}

void scriptedWindows::SetIcon(windowId window, iconId icon)
{
    windowEnter("windowSetIcon", window, std::to_string(icon));
}

void scriptedWindows::SetCursor(cursorId cursor)
{
    if (!windowEnter("windowSetCursor", cursor))
        return;
    const desk desk;
    desk->Cursor = cursor;
}

bool scriptedWindows::WorkAreaOf(windowId id, windowArea& area)
{
    deskRequireInterface();
    if (ask("windowWorkAreaOf").Scripted)
        return false;
    const desk desk;
    const window* found = desk.Find(id);
    int64_t most = 0;
    for (const windowArea& monitor : desk->Monitors) {
        const int64_t here = found ? overlap(found->Frame, monitor) : 0;
        if (here > most) {
            most = here;
            area = monitor;
        }
    }
    return most > 0;
}

bool scriptedWindows::WorkAreaAt(int32_t x, int32_t y, windowArea& area)
{
    deskRequireInterface();
    if (ask("windowWorkAreaAt").Scripted)
        return false;
    const desk desk;
    for (const windowArea& monitor : desk->Monitors) {
        if (!contains(monitor, x, y))
            continue;
        area = monitor;
        return true;
    }
    return false;
}

windowArea scriptedWindows::DesktopWorkArea()
{
    const desk desk;
    return desk->Monitors.empty() ? windowArea{} : desk->Monitors.front();
}

void scriptedWindows::AskGestures(windowId id)
{
    if (!windowEnter("windowAskGestures", id))
        return;
    const desk desk;
    if (window* found = desk.Find(id))
        found->GesturesAsked = true;
}

bool scriptedWindows::GestureRead(int64_t second, windowGesture& gesture)
{
    deskRequireInterface();
    if (ask("windowGestureRead").Scripted)
        return false;
    const desk desk;
    const auto found = desk->Gestures.find(second);
    if (found == desk->Gestures.end())
        return false;
    gesture = found->second;
    return true;
}

void scriptedWindows::GestureClose(int64_t second)
{
    if (!windowEnter("windowGestureClose"))
        return;
    const desk desk;
    desk->Gestures.erase(second);
}

std::optional<std::string> scriptedWindows::ClipboardText(windowId window)
{
    if (!windowEnter("windowClipboardText", window))
        return std::nullopt;
    const desk desk;
    return desk->Clipboard;
}

bool scriptedWindows::SetClipboardText(windowId window, std::string_view text)
{
    if (!windowEnter("windowSetClipboardText", window, std::string(text)))
        return false;
    const desk desk;
    desk->Clipboard = text;
    return true;
}

void scriptedWindows::Alert(const std::string& title, const std::string& text)
{
    enter("windowAlert", title);
    const desk desk;
    desk->Alerts.emplace_back(title, text);
}

}  // namespace fakes

void fakeMonitors(const std::vector<windowArea>& areas)
{
    const fakes::desk desk;
    desk->Monitors = areas;
}

cursorId fakeCursor()
{
    return fakes::desk()->Cursor;
}

size_t fakeCursorsMade()
{
    return fakes::desk()->Cursors.size();
}

const windowCursorShape* fakeCursorShape(cursorId cursor)
{
    const fakes::desk desk;
    const auto found = desk->Cursors.find(cursor);
    return found == desk->Cursors.end() ? nullptr : &found->second;
}

size_t fakeGesturesOpen()
{
    return fakes::desk()->Gestures.size();
}

void fakeClipboard(std::optional<std::string> text)
{
    const fakes::desk desk;
    desk->Clipboard = std::move(text);
}

std::optional<std::string> fakeClipboardText()
{
    return fakes::desk()->Clipboard;
}

std::vector<std::pair<std::string, std::string>> fakeAlerts()
{
    return fakes::desk()->Alerts;
}
