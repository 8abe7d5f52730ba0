#include "platform/linux/screen/windowDisplay.h"

#include <algorithm>
#include <csignal>

#include <sys/ipc.h>
#include <sys/shm.h>
#include <xcb/shm.h>

namespace {

constexpr uint32_t NoScreen = XCB_CONN_CLOSED_INVALID_SCREEN;
constexpr uint32_t LongestProperty = 0x1FFFFFFF;  // in words

// The library writes to a server that has gone as it would to any other, and the signal that the system
// answers with would end the program before it could do so in order.
void outliveServer()
{
    struct sigaction now = {};
    if (sigaction(SIGPIPE, nullptr, &now) == 0 && now.sa_handler == SIG_DFL)
        signal(SIGPIPE, SIG_IGN);
}

}  // namespace

windowDisplay::~windowDisplay()
{
    if (Connection != nullptr)
        xcb_disconnect(Connection);
}

bool windowDisplay::Open(uint32_t& error)
{
    error = 0;
    if (Connection != nullptr) {
        error = static_cast<uint32_t>(xcb_connection_has_error(Connection));
        return error == 0;
    }
    outliveServer();
    int number = 0;
    xcb_connection_t* const connection = xcb_connect(nullptr, &number);
    error = static_cast<uint32_t>(xcb_connection_has_error(connection));
    xcb_screen_iterator_t screens{};
    if (error == 0) {
        screens = xcb_setup_roots_iterator(xcb_get_setup(connection));
        for (; number > 0 && screens.rem > 0; --number)
            xcb_screen_next(&screens);
        error = screens.rem > 0 ? 0 : NoScreen;
    }
    if (error != 0 || !windowAtomsIntern(connection, Atoms)) {
        error = error == 0 ? uint32_t{XCB_CONN_ERROR} : error;
        xcb_disconnect(connection);
        return false;
    }
    Connection = connection;
    Screen = screens.data;
    FindVisual();
    TryShm();
    return true;
}

// Only what manages windows may listen to their redirected requests.
bool windowDisplay::HasManager() const
{
    const xcbReply<xcb_get_window_attributes_reply_t> reply(xcb_get_window_attributes_reply(
        Connection, xcb_get_window_attributes(Connection, Screen->root), nullptr));
    return reply && (reply->all_event_masks & XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT) != 0;
}

bool windowDisplay::ManagerKnows(windowAtom atom) const
{
    const std::vector<uint32_t> known = Words(Screen->root, Atom(atomNetSupported));
    return std::find(known.begin(), known.end(), Atom(atom)) != known.end() && HasManager();
}

void windowDisplay::SetWords(xcb_window_t window, xcb_atom_t property, xcb_atom_t type,
                             std::span<const uint32_t> words) const
{
    xcb_change_property(Connection, XCB_PROP_MODE_REPLACE, window, property, type, 32,
                        static_cast<uint32_t>(words.size()), words.data());
}

void windowDisplay::SetText(xcb_window_t window, xcb_atom_t property, xcb_atom_t type,
                            std::string_view text) const
{
    xcb_change_property(Connection, XCB_PROP_MODE_REPLACE, window, property, type, 8,
                        static_cast<uint32_t>(text.size()), text.data());
}

std::vector<uint32_t> windowDisplay::Words(xcb_window_t window, xcb_atom_t property) const
{
    const xcbReply<xcb_get_property_reply_t> reply(xcb_get_property_reply(
        Connection,
        xcb_get_property(Connection, 0, window, property, XCB_GET_PROPERTY_TYPE_ANY, 0, LongestProperty),
        nullptr));
    if (!reply || reply->format != 32)
        return {};
    const auto* const words = static_cast<const uint32_t*>(xcb_get_property_value(reply.get()));
    return {words, words + reply->value_len};
}

std::string windowDisplay::Text(xcb_window_t window, xcb_atom_t property) const
{
    const xcbReply<xcb_get_property_reply_t> reply(xcb_get_property_reply(
        Connection,
        xcb_get_property(Connection, 0, window, property, XCB_GET_PROPERTY_TYPE_ANY, 0, LongestProperty),
        nullptr));
    if (!reply || reply->format != 8)
        return {};
    return {static_cast<const char*>(xcb_get_property_value(reply.get())), reply->value_len};
}

void windowDisplay::AskManager(xcb_window_t window, windowAtom type, std::span<const uint32_t> words) const
{
    xcb_client_message_event_t event{};
    event.response_type = XCB_CLIENT_MESSAGE;
    event.format = 32;
    event.window = window;
    event.type = Atom(type);
    std::copy_n(words.begin(), std::min<size_t>(words.size(), 5), event.data.data32);
    xcb_send_event(Connection, 0, Screen->root,
                   XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT | XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY,
                   reinterpret_cast<const char*>(&event));
}

void windowDisplay::FindVisual()
{
    for (auto depths = xcb_screen_allowed_depths_iterator(Screen); depths.rem > 0; xcb_depth_next(&depths)) {
        auto visuals = xcb_depth_visuals_iterator(depths.data);
        for (; visuals.rem > 0; xcb_visualtype_next(&visuals)) {
            if (visuals.data->visual_id == Screen->root_visual)
                Visual = visuals.data;
        }
    }
}

// A server on another machine has the extension too, and cannot read the memory: only trying tells.
void windowDisplay::TryShm()
{
    const xcb_query_extension_reply_t* const extension = xcb_get_extension_data(Connection, &xcb_shm_id);
    if (extension == nullptr || extension->present == 0)
        return;
    const int memory = shmget(IPC_PRIVATE, 4096, IPC_CREAT | 0600);
    if (memory < 0)
        return;
    void* const address = shmat(memory, nullptr, 0);
    const xcb_shm_seg_t segment = xcb_generate_id(Connection);
    const xcbReply<xcb_generic_error_t> refused(xcb_request_check(
        Connection, xcb_shm_attach_checked(Connection, segment, static_cast<uint32_t>(memory), 1)));
    Shm = !refused && xcb_connection_has_error(Connection) == 0;
    if (Shm)
        xcb_shm_detach(Connection, segment);
    if (address != reinterpret_cast<void*>(-1))
        shmdt(address);
    shmctl(memory, IPC_RMID, nullptr);
}
