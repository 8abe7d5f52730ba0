#include "platform/linux/screen/windowBackend.h"
#include "platform/linux/screen/windowMonitors.h"

#include <algorithm>
#include <atomic>

namespace {

constexpr uint32_t HeardEvents =
    XCB_EVENT_MASK_KEY_PRESS | XCB_EVENT_MASK_KEY_RELEASE | XCB_EVENT_MASK_BUTTON_PRESS |
    XCB_EVENT_MASK_BUTTON_RELEASE | XCB_EVENT_MASK_POINTER_MOTION | XCB_EVENT_MASK_ENTER_WINDOW |
    XCB_EVENT_MASK_LEAVE_WINDOW | XCB_EVENT_MASK_EXPOSURE | XCB_EVENT_MASK_STRUCTURE_NOTIFY |
    XCB_EVENT_MASK_FOCUS_CHANGE | XCB_EVENT_MASK_PROPERTY_CHANGE;

// All that are alive, for those who know windows by their number alone. On the interface thread. A chain of
// plain pointers, for it must outlive whatever static object a system belongs to.
windowBackend* Alive = nullptr;

windowRecord* findAnywhere(windowId window, windowBackend*& owner)
{
    for (owner = Alive; owner != nullptr; owner = owner->Next) {
        if (windowRecord* const record = owner->Find(window))
            return record;
    }
    return nullptr;
}

windowId nextId()
{
    static std::atomic<windowId> last{0};
    return ++last;
}

}  // namespace

std::unique_ptr<windowSystem> windowSystemMake(std::string_view className, windowReceiver receiver)
{
    return std::make_unique<windowBackend>(className, receiver);
}

bool windowSurfaceOf(windowId window, windowSurface& surface)
{
    windowBackend* owner = nullptr;
    const windowRecord* const record = findAnywhere(window, owner);
    if (record == nullptr)
        return false;
    const windowDisplay& display = owner->Screen();
    surface = {display.Connection,         record->Window, display.Visual,
               display.Screen->root_depth, display.Shm,    display.Life};
    return true;
}

void windowOnExpose(windowId window, windowExposed exposed, void* context)
{
    windowBackend* owner = nullptr;
    windowRecord* const record = findAnywhere(window, owner);
    if (record == nullptr)
        return;
    record->Exposed = exposed;
    record->ExposedContext = context;
}

windowBackend::windowBackend(std::string_view className, windowReceiver receiver)
    : ClassName(className), Receiver(receiver)
{
    Next = Alive;
    Alive = this;
}

windowBackend::~windowBackend()
{
    windowBackend** link = &Alive;
    while (*link != this)
        link = &(*link)->Next;
    *link = Next;
    Queue.Close();
    if (!Display.IsOpen())
        return;
    EndGrab();
    for (const auto& entry : Records)
        xcb_destroy_window(Display.Connection, entry.second->Window);
    // Closing the connection would leave them on the screen for a moment.
    const xcbReply<xcb_get_input_focus_reply_t> done(
        xcb_get_input_focus_reply(Display.Connection, xcb_get_input_focus(Display.Connection), nullptr));
}

windowId windowBackend::Create(const windowCreate& create, uint32_t& error)
{
    if (!Open(error))
        return 0;
    auto made = std::make_unique<windowRecord>();
    windowRecord& record = *made;
    record.Id = nextId();
    record.Owner = Find(create.Owner) == nullptr ? 0 : create.Owner;
    record.Style = create.Style;
    record.StyleExtended = create.StyleExtended;
    record.PerMonitor = create.PerMonitor;
    record.IsMenu = (create.Style & stylePopup) != 0 && record.Owner != 0;
    record.Order = ++LastOrder;
    MakeWindow(record);
    const windowId id = record.Id;
    {
        const std::lock_guard lock(RecordsMutex);
        if (Interface == std::thread::id())
            Interface = std::this_thread::get_id();
        Natives.emplace(record.Window, id);
        Records.emplace(id, std::move(made));
    }
    Queue.Admit(id);
    DescribeWindow(record);
    SetTitle(id, "Untitled");
    xcb_flush(Display.Connection);
    if (Display.IsLost()) {
        error = static_cast<uint32_t>(xcb_connection_has_error(Display.Connection));
        EndWindow(id);
        return 0;
    }
    return Tell(id, msgCreate, 0, 0) ? id : 0;
}

bool windowBackend::Open(uint32_t& error)
{
    const bool isFirst = !Display.IsOpen();
    if (!Display.Open(error))
        return false;
    if (!isFirst)
        return true;
    Keys.Open(Display.Connection);
    Cursors.Open(Display.Connection, Display.Screen);
    Clipboard.Open(Display);
    OpenTouch();
    const uint32_t heed = XCB_EVENT_MASK_PROPERTY_CHANGE;
    xcb_change_window_attributes(Display.Connection, Display.Screen->root, XCB_CW_EVENT_MASK, &heed);
    DesktopDPI = windowDesktopDPI(Display);
    return true;
}

void windowBackend::MakeWindow(windowRecord& record)
{
    record.Window = xcb_generate_id(Display.Connection);
    // No background, so that nothing flashes; what was drawn stays in its corner while the size changes.
    const uint32_t values[] = {XCB_BACK_PIXMAP_NONE, XCB_GRAVITY_NORTH_WEST, record.IsMenu ? 1u : 0u,
                               HeardEvents};
    xcb_create_window(Display.Connection, XCB_COPY_FROM_PARENT, record.Window, Display.Screen->root, 0, 0, 1,
                      1, 0, XCB_WINDOW_CLASS_INPUT_OUTPUT, Display.Screen->root_visual,
                      XCB_CW_BACK_PIXMAP | XCB_CW_BIT_GRAVITY | XCB_CW_OVERRIDE_REDIRECT | XCB_CW_EVENT_MASK,
                      values);
}

void windowBackend::Destroy(windowId window)
{
    windowRecord* record = Find(window);
    if (record == nullptr || record->Dying)
        return;
    record->Dying = true;
    for (const windowId owned : OwnedBy(window))
        Destroy(owned);
    Hide(window);
    if (Captured == window)
        DropCapture(0);
    if (FocusTold == window)
        TellFocus(0);
    EndWindow(window);
}

// Nothing is told any more.
void windowBackend::EndWindow(windowId window)
{
    Queue.Forget(window);
    std::unique_ptr<windowRecord> ended;
    {
        const std::lock_guard lock(RecordsMutex);
        const auto found = Records.find(window);
        if (found == Records.end())
            return;
        ended = std::move(found->second);
        Records.erase(found);
        Natives.erase(ended->Window);
    }
    for (windowId* const reference : {&FocusTold, &FocusHeld, &Captured, &MouseWindow, &KeyWindow}) {
        if (*reference == window)
            *reference = 0;
    }
    xcb_destroy_window(Display.Connection, ended->Window);
    xcb_flush(Display.Connection);
    UpdateModal();
}

windowRecord* windowBackend::Find(windowId window)
{
    const auto found = Records.find(window);
    return found == Records.end() ? nullptr : found->second.get();
}

windowRecord* windowBackend::FindNative(xcb_window_t window)
{
    const auto found = Natives.find(window);
    return found == Natives.end() ? nullptr : Find(found->second);
}

// The window itself or the owner, near or far, that the window manager knows.
windowRecord* windowBackend::ManagedOf(windowRecord* record)
{
    while (record != nullptr && record->IsMenu)
        record = Find(record->Owner);
    return record;
}

std::vector<windowId> windowBackend::OwnedBy(windowId owner) const
{
    std::vector<windowId> owned;
    for (const auto& [id, record] : Records) {
        if (record->Owner == owner)
            owned.push_back(id);
    }
    return owned;
}

void* windowBackend::Object(windowId window)
{
    const std::lock_guard lock(RecordsMutex);
    const windowRecord* const record = Find(window);
    return record == nullptr ? nullptr : record->Object.load();
}

void windowBackend::SetObject(windowId window, void* object)
{
    if (windowRecord* const record = Find(window))
        record->Object = object;
}
