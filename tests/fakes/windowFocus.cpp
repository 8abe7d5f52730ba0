#include "tests/fakes/core.h"
#include "tests/fakes/desk.h"
#include "tests/fakes/windowSystem.h"

#include <utility>

// Which window is active, has the keys and has the mouse; and the end of a window, which passes them on.

namespace fakes {

namespace {

bool canBeActive(const window* window)
{
    return window && window->Visible && window->Enabled;
}

// Who comes after this window: its owner, else whoever is nearest to the user.
windowId nextActive(windowId instead)
{
    const desk desk;
    const window* before = desk.Find(instead);
    if (before && canBeActive(desk.Find(before->Made.Owner)))
        return before->Made.Owner;
    for (auto each = desk->Order.rbegin(); each != desk->Order.rend(); ++each) {
        const window* candidate = desk.Find(*each);
        if (*each != instead && canBeActive(candidate) && candidate->State != sizedMinimised)
            return *each;
    }
    return 0;
}

std::vector<windowId> ownedBy(windowId owner)
{
    const desk desk;
    std::vector<windowId> owned;
    for (const auto& [id, window] : desk->Windows) {
        if (window.Made.Owner == owner)
            owned.push_back(id);
    }
    return owned;
}

void disable(windowId id)
{
    deskTell(id, msgCancelMode);
    bool hadFocus = false;
    bool hadCapture = false;
    {
        const desk desk;
        if (window* found = desk.Find(id))
            found->Enabled = false;
        hadFocus = desk->Focus == id;
        hadCapture = desk->Capture == id;
    }
    if (hadFocus)
        deskFocus(0);
    if (hadCapture)
        deskCapture(0);
    deskTell(id, msgEnable, 0);
}

}  // namespace

void deskActivate(windowId id, uint64_t how)
{
    windowId before = 0;
    {
        const desk desk;
        if (id != 0 && !canBeActive(desk.Find(id)))
            return;
        before = std::exchange(desk->Active, id);
    }
    if (before != id) {
        deskRaise(id);
        deskTell(before, msgActivate, 0, static_cast<int64_t>(id));
        deskTell(id, msgActivate, how, static_cast<int64_t>(before));
    }
    const bool isStill = desk()->Active == id;
    if (isStill)
        deskFocus(id);
}

void deskActivateNext(windowId instead)
{
    const bool wasActive = desk()->Active == instead;
    if (wasActive)
        deskActivate(nextActive(instead));
}

void deskFocus(windowId id)
{
    windowId before = 0;
    {
        const desk desk;
        const window* found = desk.Find(id);
        const bool isFit = canBeActive(found) && found->State != sizedMinimised;
        if (desk->Focus == id || (id != 0 && !isFit))
            return;
        before = std::exchange(desk->Focus, id);
    }
    deskTell(before, msgKillFocus, id);
    const bool isStill = desk()->Focus == id;
    if (isStill)
        deskTell(id, msgSetFocus, before);
}

void deskCapture(windowId id)
{
    windowId before = 0;
    {
        const desk desk;
        if (id != 0 && !desk.Find(id))
            return;
        before = std::exchange(desk->Capture, id);
    }
    if (before != id)
        deskTell(before, msgCaptureChanged, 0, static_cast<int64_t>(id));
}

void deskDestroy(windowId id)
{
    {
        const desk desk;
        window* found = desk.Find(id);
        if (!found)
            return;
        found->Visible = false;
    }
    for (const windowId owned : ownedBy(id))
        deskDestroy(owned);
    const bool hadCapture = desk()->Capture == id;
    if (hadCapture)
        deskCapture(0);
    deskActivateNext(id);
    const desk desk;
    desk.Forget(id);
}

void scriptedWindows::Enable(windowId id, bool on)
{
    if (!windowEnter("windowEnable", id, on ? "on" : "off"))
        return;
    {
        const desk desk;
        window* found = desk.Find(id);
        if (!found || found->Enabled == on)
            return;
        found->Enabled = found->Enabled || on;
    }
    if (on)
        deskTell(id, msgEnable, 1);
    else
        disable(id);
}

void scriptedWindows::SetFocus(windowId id)
{
    if (windowEnter("windowSetFocus", id) && id != 0)
        deskActivate(id);
}

windowId scriptedWindows::Focus()
{
    deskRequireInterface();
    return desk()->Focus;
}

void scriptedWindows::SetCapture(windowId id)
{
    if (windowEnter("windowSetCapture", id) && id != 0)
        deskCapture(id);
}

void scriptedWindows::ReleaseCapture()
{
    if (windowEnter("windowReleaseCapture"))
        deskCapture(0);
}

windowId scriptedWindows::Capture()
{
    deskRequireInterface();
    return desk()->Capture;
}

}  // namespace fakes
