// The clipboard: gives this program's text to others and takes theirs, in pieces where it is long.
#pragma once

#include "platform/linux/screen/windowDisplay.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

// The first byte of the target is the first of Unicode too.
std::string windowTextFromLatin(std::string_view latin);

// What has no place in that code becomes a question mark.
std::string windowTextToLatin(std::string_view text);

class windowClipboard
{
public:
    // What became of a text that was asked for.
    enum class answer : uint8_t {
        None,
        Waiting,
        Pieces,  // it is coming
        Refused,
        Complete,
    };

    // Makes a window of its own, for which others send their text.
    void Open(windowDisplay& display);
    xcb_window_t Window() const { return Window_; }

    // Offers a text from a time of the server's on; false when somebody else was faster.
    bool Offer(std::string_view text, uint32_t time);
    bool IsOffering() const { return Offers; }
    const std::string& Offered() const { return Text; }

    // Asks for somebody's text. The answer comes by events; Received counts its pieces.
    void Ask(windowAtom form, uint32_t time);
    answer Answer() const { return State; }
    size_t Received() const { return Pieces; }
    std::string TakeAnswer();

    // True when the event was about the clipboard.
    bool Heed(const xcb_generic_event_t& event);

private:
    // A long text on its way to somebody.
    struct transfer {
        xcb_window_t To;
        xcb_atom_t Property;
        xcb_atom_t Type;
        std::string Text;
        size_t Sent;
        int64_t HeardNs;
    };

    void Give(const xcb_selection_request_event_t& request);
    bool Write(const xcb_selection_request_event_t& request, xcb_atom_t property);
    void Send(xcb_window_t to, xcb_atom_t property, xcb_atom_t type, std::string text);
    bool SendMore(const xcb_property_notify_event_t& event);
    void DropForgotten();
    void Receive(const xcb_selection_notify_event_t& event);
    void ReceiveMore();
    size_t PieceLimit() const;

    windowDisplay* Display = nullptr;
    xcb_window_t Window_ = 0;
    std::string Text;
    uint32_t Since = 0;
    bool Offers = false;
    std::vector<transfer> Transfers;

    answer State = answer::None;
    bool IsLatin = false;
    size_t Pieces = 0;
    std::string Arrived;
};
