#include "platform/linux/screen/windowClipboard.h"

#include "foundations/text/utfConvert.h"
#include "platform/clock.h"

#include <algorithm>
#include <utility>

namespace {

constexpr size_t LongestPiece = size_t{256} << 10;
constexpr size_t LongestText = size_t{256} << 20;
constexpr int64_t PatienceNs = 10'000'000'000;
constexpr size_t RequestOverhead = 64;

}  // namespace

std::string windowTextFromLatin(std::string_view latin)
{
    std::string text;
    for (const char byte : latin) {
        char bytes[4];
        text.append(bytes, utfEncode(static_cast<unsigned char>(byte), bytes));
    }
    return text;
}

std::string windowTextToLatin(std::string_view text)
{
    constexpr char16_t last = 0xFF;
    std::u16string units;
    utfAppend16From8(units, text.data(), text.size());
    std::string latin;
    for (const char16_t unit : units)
        latin += unit <= last ? static_cast<char>(unit) : '?';
    return latin;
}

void windowClipboard::Open(windowDisplay& display)
{
    Display = &display;
    Window_ = xcb_generate_id(display.Connection);
    const uint32_t mask = XCB_EVENT_MASK_PROPERTY_CHANGE;
    xcb_create_window(display.Connection, XCB_COPY_FROM_PARENT, Window_, display.Screen->root, -1, -1, 1, 1,
                      0, XCB_WINDOW_CLASS_INPUT_ONLY, XCB_COPY_FROM_PARENT, XCB_CW_EVENT_MASK, &mask);
}

bool windowClipboard::Offer(std::string_view text, uint32_t time)
{
    Text = text;
    Since = time;
    const xcb_atom_t clipboard = Display->Atom(atomClipboard);
    xcb_set_selection_owner(Display->Connection, Window_, clipboard, time);
    const xcbReply<xcb_get_selection_owner_reply_t> owner(xcb_get_selection_owner_reply(
        Display->Connection, xcb_get_selection_owner(Display->Connection, clipboard), nullptr));
    Offers = owner && owner->owner == Window_;
    return Offers;
}

void windowClipboard::Ask(windowAtom form, uint32_t time)
{
    Arrived.clear();
    State = answer::Waiting;
    const xcb_atom_t property = Display->Atom(atomTransfer);
    xcb_delete_property(Display->Connection, Window_, property);
    // The text of old has no name of its own among ours.
    const xcb_atom_t target = form == atomCount ? xcb_atom_t{XCB_ATOM_STRING} : Display->Atom(form);
    xcb_convert_selection(Display->Connection, Window_, Display->Atom(atomClipboard), target, property, time);
    xcb_flush(Display->Connection);
}

std::string windowClipboard::TakeAnswer()
{
    State = answer::None;
    std::string text = std::exchange(Arrived, {});
    return IsLatin ? windowTextFromLatin(text) : text;
}

bool windowClipboard::Heed(const xcb_generic_event_t& event)
{
    switch (event.response_type & 0x7F) {
    case XCB_SELECTION_REQUEST:
        Give(reinterpret_cast<const xcb_selection_request_event_t&>(event));
        return true;
    case XCB_SELECTION_NOTIFY:
        Receive(reinterpret_cast<const xcb_selection_notify_event_t&>(event));
        return true;
    case XCB_SELECTION_CLEAR:
        Offers = false;
        Text.clear();
        return true;
    case XCB_PROPERTY_NOTIFY: {
        const auto& change = reinterpret_cast<const xcb_property_notify_event_t&>(event);
        if (change.state == XCB_PROPERTY_DELETE && SendMore(change))
            return true;
        if (change.window != Window_)
            return false;
        if (change.state == XCB_PROPERTY_NEW_VALUE && change.atom == Display->Atom(atomTransfer))
            ReceiveMore();
        return true;
    }
    default:
        return false;
    }
}

void windowClipboard::Give(const xcb_selection_request_event_t& request)
{
    DropForgotten();
    const xcb_atom_t property = request.property == XCB_ATOM_NONE ? request.target : request.property;
    xcb_selection_notify_event_t reply{};
    reply.response_type = XCB_SELECTION_NOTIFY;
    reply.time = request.time;
    reply.requestor = request.requestor;
    reply.selection = request.selection;
    reply.target = request.target;
    const bool isOurs = Offers && request.selection == Display->Atom(atomClipboard);
    reply.property = isOurs && Write(request, property) ? property : xcb_atom_t{XCB_ATOM_NONE};
    xcb_send_event(Display->Connection, 0, request.requestor, XCB_EVENT_MASK_NO_EVENT,
                   reinterpret_cast<const char*>(&reply));
    xcb_flush(Display->Connection);
}

bool windowClipboard::Write(const xcb_selection_request_event_t& request, xcb_atom_t property)
{
    const xcb_atom_t target = request.target;
    const xcb_atom_t utf8 = Display->Atom(atomUtf8);
    const xcb_atom_t plain = Display->Atom(atomTextPlain);
    if (target == Display->Atom(atomTargets)) {
        const uint32_t forms[] = {target, Display->Atom(atomTimestamp), utf8, plain, XCB_ATOM_STRING};
        Display->SetWords(request.requestor, property, XCB_ATOM_ATOM, forms);
    } else if (target == Display->Atom(atomTimestamp)) {
        const uint32_t since[] = {Since};
        Display->SetWords(request.requestor, property, XCB_ATOM_INTEGER, since);
    } else if (target == utf8 || target == plain) {
        Send(request.requestor, property, target, Text);
    } else if (target == XCB_ATOM_STRING) {
        Send(request.requestor, property, target, windowTextToLatin(Text));
    } else {
        return false;
    }
    return true;
}

void windowClipboard::Send(xcb_window_t to, xcb_atom_t property, xcb_atom_t type, std::string text)
{
    if (text.size() <= PieceLimit()) {
        Display->SetText(to, property, type, text);
        return;
    }
    const uint32_t heed = XCB_EVENT_MASK_PROPERTY_CHANGE;
    xcb_change_window_attributes(Display->Connection, to, XCB_CW_EVENT_MASK, &heed);
    const uint32_t size[] = {static_cast<uint32_t>(text.size())};
    Display->SetWords(to, property, Display->Atom(atomIncremental), size);
    Transfers.push_back({to, property, type, std::move(text), 0, clockSteadyNs()});
}

// The receiver takes a piece away when it wants the next; an empty one ends the text.
bool windowClipboard::SendMore(const xcb_property_notify_event_t& event)
{
    const auto found = std::find_if(Transfers.begin(), Transfers.end(), [&](const transfer& each) {
        return each.To == event.window && each.Property == event.atom;
    });
    if (found == Transfers.end())
        return false;
    const std::string_view piece = std::string_view(found->Text).substr(found->Sent, PieceLimit());
    Display->SetText(found->To, found->Property, found->Type, piece);
    found->Sent += piece.size();
    found->HeardNs = clockSteadyNs();
    if (piece.empty()) {
        const uint32_t nothing = XCB_EVENT_MASK_NO_EVENT;
        xcb_change_window_attributes(Display->Connection, found->To, XCB_CW_EVENT_MASK, &nothing);
        Transfers.erase(found);
    }
    xcb_flush(Display->Connection);
    return true;
}

void windowClipboard::DropForgotten()
{
    const int64_t now = clockSteadyNs();
    std::erase_if(Transfers, [now](const transfer& each) { return now - each.HeardNs > PatienceNs; });
}

void windowClipboard::Receive(const xcb_selection_notify_event_t& event)
{
    if (event.requestor != Window_ || State != answer::Waiting)
        return;
    if (event.property == XCB_ATOM_NONE) {
        State = answer::Refused;
        return;
    }
    IsLatin = event.target == XCB_ATOM_STRING;
    const xcbReply<xcb_get_property_reply_t> type(xcb_get_property_reply(
        Display->Connection,
        xcb_get_property(Display->Connection, 0, Window_, event.property, XCB_GET_PROPERTY_TYPE_ANY, 0, 0),
        nullptr));
    const bool isPieces = type && type->type == Display->Atom(atomIncremental);
    if (!isPieces)
        Arrived = Display->Text(Window_, event.property);
    State = isPieces ? answer::Pieces : answer::Complete;
    ++Pieces;
    // That it is gone asks for the first piece.
    xcb_delete_property(Display->Connection, Window_, event.property);
    xcb_flush(Display->Connection);
}

void windowClipboard::ReceiveMore()
{
    if (State != answer::Pieces)
        return;
    const xcb_atom_t property = Display->Atom(atomTransfer);
    const std::string piece = Display->Text(Window_, property);
    xcb_delete_property(Display->Connection, Window_, property);
    xcb_flush(Display->Connection);
    ++Pieces;
    if (piece.empty())
        State = answer::Complete;
    else if (Arrived.size() + piece.size() > LongestText)
        State = answer::Refused;
    else
        Arrived += piece;
}

size_t windowClipboard::PieceLimit() const
{
    const size_t longest = size_t{xcb_get_maximum_request_length(Display->Connection)} * 4;
    return std::min(LongestPiece, longest - RequestOverhead);
}
