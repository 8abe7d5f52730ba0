// The connection to the display server, and short ways to ask and tell it something.
#pragma once

#include "platform/linux/screen/windowAtoms.h"

#include <xcb/xcb.h>

#include <cstdint>
#include <cstdlib>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <vector>

struct xcbFree {
    void operator()(void* block) const { std::free(block); }
};

// What the server answered; null when it refused or is gone.
template <typename reply>
using xcbReply = std::unique_ptr<reply, xcbFree>;

class windowDisplay
{
public:
    windowDisplay() = default;
    ~windowDisplay();
    windowDisplay(const windowDisplay&) = delete;
    windowDisplay& operator=(const windowDisplay&) = delete;

    // Does nothing when it is open already. On failure `error` is not 0.
    bool Open(uint32_t& error);
    bool IsOpen() const { return Connection != nullptr; }
    bool IsLost() const { return Connection != nullptr && xcb_connection_has_error(Connection) != 0; }

    // Whether a window manager runs now.
    bool HasManager() const;

    // Whether the window manager says that it knows this.
    bool ManagerKnows(windowAtom atom) const;

    void SetWords(xcb_window_t window, xcb_atom_t property, xcb_atom_t type,
                  std::span<const uint32_t> words) const;
    void SetText(xcb_window_t window, xcb_atom_t property, xcb_atom_t type, std::string_view text) const;

    // Empty when there is no such property of 32-bit values, or of bytes.
    std::vector<uint32_t> Words(xcb_window_t window, xcb_atom_t property) const;
    std::string Text(xcb_window_t window, xcb_atom_t property) const;

    // Asks the window manager for something about a window; up to five words.
    void AskManager(xcb_window_t window, windowAtom type, std::span<const uint32_t> words) const;

    xcb_atom_t Atom(windowAtom atom) const { return Atoms[atom]; }

    xcb_connection_t* Connection = nullptr;
    xcb_screen_t* Screen = nullptr;
    xcb_visualtype_t* Visual = nullptr;
    bool Shm = false;
    const std::shared_ptr<const void> Life = std::make_shared<char>();  // as long as this is

private:
    void FindVisual();
    void TryShm();

    xcb_atom_t Atoms[atomCount] = {};
};
