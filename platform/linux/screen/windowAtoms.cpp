#include "platform/linux/screen/windowAtoms.h"

#include <cstdint>
#include <cstdlib>
#include <iterator>
#include <string_view>

namespace {

// In the order of windowAtom.
constexpr std::string_view Names[] = {
    "WM_PROTOCOLS",
    "WM_DELETE_WINDOW",
    "_NET_WM_PING",
    "WM_STATE",
    "WM_CHANGE_STATE",
    "_NET_SUPPORTED",
    "_NET_WM_NAME",
    "_NET_WM_ICON_NAME",
    "_NET_WM_ICON",
    "_NET_WM_PID",
    "_NET_WM_WINDOW_TYPE",
    "_NET_WM_WINDOW_TYPE_NORMAL",
    "_NET_WM_WINDOW_TYPE_DIALOG",
    "_NET_WM_WINDOW_TYPE_UTILITY",
    "_NET_WM_WINDOW_TYPE_POPUP_MENU",
    "_NET_WM_STATE",
    "_NET_WM_STATE_ABOVE",
    "_NET_WM_STATE_MODAL",
    "_NET_WM_STATE_MAXIMIZED_HORZ",
    "_NET_WM_STATE_MAXIMIZED_VERT",
    "_NET_WM_STATE_SKIP_TASKBAR",
    "_NET_WM_STATE_SKIP_PAGER",
    "_NET_ACTIVE_WINDOW",
    "_NET_WM_USER_TIME",
    "_NET_WORKAREA",
    "_NET_CURRENT_DESKTOP",
    "_NET_FRAME_EXTENTS",
    "_MOTIF_WM_HINTS",
    "UTF8_STRING",
    "CLIPBOARD",
    "TARGETS",
    "TIMESTAMP",
    "INCR",
    "text/plain;charset=utf-8",
    "_SKYRECKONING_TRANSFER",
};
static_assert(std::size(Names) == atomCount);

}  // namespace

bool windowAtomsIntern(xcb_connection_t* connection, xcb_atom_t (&atoms)[atomCount])
{
    xcb_intern_atom_cookie_t asked[atomCount];
    for (size_t n = 0; n < atomCount; ++n)
        asked[n] = xcb_intern_atom(connection, 0, static_cast<uint16_t>(Names[n].size()), Names[n].data());
    bool complete = true;
    for (size_t n = 0; n < atomCount; ++n) {
        xcb_intern_atom_reply_t* const reply = xcb_intern_atom_reply(connection, asked[n], nullptr);
        atoms[n] = reply == nullptr ? xcb_atom_t{XCB_ATOM_NONE} : reply->atom;
        complete = complete && reply != nullptr;
        std::free(reply);
    }
    return complete;
}
