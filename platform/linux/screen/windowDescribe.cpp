// What the window manager and other programs are told of a window: its kind, frame, title and icon.
#include "platform/linux/screen/windowBackend.h"
#include "platform/linux/screen/windowHints.h"

#include <unistd.h>

void windowBackend::DescribeWindow(const windowRecord& record)
{
    constexpr uint32_t inputHint = 1;
    const bool isDialog = record.Owner != 0 && !record.IsMenu;
    const bool isTool = (record.StyleExtended & styleTool) != 0;
    const windowAtom type = record.IsMenu ? atomNetTypePopup
                            : isTool      ? atomNetTypeUtility
                            : isDialog    ? atomNetTypeDialog
                                          : atomNetTypeNormal;
    const uint32_t types[] = {Display.Atom(type)};
    Display.SetWords(record.Window, Display.Atom(atomNetType), XCB_ATOM_ATOM, types);
    const uint32_t protocols[] = {Display.Atom(atomDeleteWindow), Display.Atom(atomPing)};
    Display.SetWords(record.Window, Display.Atom(atomProtocols), XCB_ATOM_ATOM, protocols);
    const uint32_t process[] = {static_cast<uint32_t>(getpid())};
    Display.SetWords(record.Window, Display.Atom(atomNetPid), XCB_ATOM_CARDINAL, process);
    const uint32_t hints[] = {inputHint, 1, 0, 0, 0, 0, 0, 0, 0};
    Display.SetWords(record.Window, XCB_ATOM_WM_HINTS, XCB_ATOM_WM_HINTS, hints);

    char host[256] = {};
    if (gethostname(host, sizeof host - 1) == 0)
        Display.SetText(record.Window, XCB_ATOM_WM_CLIENT_MACHINE, XCB_ATOM_STRING, host);
    // Two texts with their ends: this window's name and the program's.
    const std::string names = ClassName + '\0' + ClassName + '\0';
    Display.SetText(record.Window, XCB_ATOM_WM_CLASS, XCB_ATOM_STRING, names);

    if (windowRecord* const owner = ManagedOf(Find(record.Owner))) {
        const uint32_t transient[] = {owner->Window};
        Display.SetWords(record.Window, XCB_ATOM_WM_TRANSIENT_FOR, XCB_ATOM_WINDOW, transient);
    }
    Display.SetWords(record.Window, Display.Atom(atomMotifHints), Display.Atom(atomMotifHints),
                     windowHintsOfFrame(record.Style));
}

uint32_t windowBackend::Style(windowId window)
{
    const windowRecord* const record = Find(window);
    return record == nullptr ? 0 : record->Style;
}

void windowBackend::SetStyle(windowId window, uint32_t style)
{
    windowRecord* const record = Find(window);
    if (record == nullptr || record->Style == style)
        return;
    record->Style = style;
    SetSizeHints(*record);
    Display.SetWords(record->Window, Display.Atom(atomMotifHints), Display.Atom(atomMotifHints),
                     windowHintsOfFrame(style));
    xcb_flush(Display.Connection);
}

void windowBackend::SetSizeRange(windowId window, const windowExtent& least, const windowExtent& most)
{
    windowRecord* const record = Find(window);
    if (record == nullptr)
        return;
    record->Least = least;
    record->Most = most;
    SetSizeHints(*record);
    xcb_flush(Display.Connection);
}

void windowBackend::SetTitle(windowId window, std::string_view title)
{
    const windowRecord* const record = Find(window);
    if (record == nullptr)
        return;
    const xcb_atom_t utf8 = Display.Atom(atomUtf8);
    Display.SetText(record->Window, Display.Atom(atomNetName), utf8, title);
    Display.SetText(record->Window, Display.Atom(atomNetIconName), utf8, title);
    // For window managers that know no other.
    Display.SetText(record->Window, XCB_ATOM_WM_NAME, XCB_ATOM_STRING, windowTextToLatin(title));
    xcb_flush(Display.Connection);
}

// Frames are the window manager's.
windowEdges windowBackend::FrameOf(windowId /*window*/, const windowEdges& client, uint32_t /*dpi*/)
{
    return client;
}

iconId windowBackend::ProgramIcon()
{
    return 0;
}

iconId windowBackend::MakeIcon(const windowIconShape& shape)
{
    if (!shape.IsValid())
        return 0;
    Icons[++LastIcon] = shape;
    return LastIcon;
}

void windowBackend::DestroyIcon(iconId icon)
{
    Icons.erase(icon);
}

void windowBackend::SetIcon(windowId window, iconId icon)
{
    const windowRecord* const record = Find(window);
    if (record == nullptr)
        return;
    const auto found = Icons.find(icon);
    if (found == Icons.end()) {
        xcb_delete_property(Display.Connection, record->Window, Display.Atom(atomNetIcon));
    } else {
        const windowIconShape& shape = found->second;
        std::vector<uint32_t> words = {shape.Width, shape.Height};
        words.insert(words.end(), shape.Pixels.begin(), shape.Pixels.end());
        xcb_change_property(Display.Connection, XCB_PROP_MODE_REPLACE, record->Window,
                            Display.Atom(atomNetIcon), XCB_ATOM_CARDINAL, 32,
                            static_cast<uint32_t>(words.size()), words.data());
    }
    xcb_flush(Display.Connection);
}
