// The clipboard's text, for the program.
#include "platform/linux/screen/windowBackend.h"

std::optional<std::string> windowBackend::ClipboardText(windowId window)
{
    if (Find(window) == nullptr || Display.IsLost())
        return std::nullopt;
    if (Clipboard.IsOffering())
        return Clipboard.Offered();
    constexpr int64_t patienceMs = 1000;
    using answer = windowClipboard::answer;
    // The last stands for the text of old.
    for (const windowAtom form : {atomUtf8, atomTextPlain, atomCount}) {
        Clipboard.Ask(form, ServerTime());
        for (bool hopes = true; hopes;) {
            const size_t received = Clipboard.Received();
            hopes = AwaitEvents(patienceMs, [&] {
                return Clipboard.Answer() == answer::Complete || Clipboard.Answer() == answer::Refused ||
                       Clipboard.Received() != received;
            });
            if (Clipboard.Answer() == answer::Complete)
                return Clipboard.TakeAnswer();
            hopes = hopes && Clipboard.Answer() == answer::Pieces;
        }
        const bool isSilent = Clipboard.Answer() != answer::Refused;
        Clipboard.TakeAnswer();
        if (isSilent)
            break;
    }
    return std::nullopt;
}

bool windowBackend::SetClipboardText(windowId window, std::string_view text)
{
    return Find(window) != nullptr && !Display.IsLost() && Clipboard.Offer(text, ServerTime());
}

// Requests that carry the time of now could overtake later ones that carry a true one.
uint32_t windowBackend::ServerTime()
{
    const uint64_t before = TimesHeard;
    const xcb_window_t window = Clipboard.Window();
    const xcb_atom_t property = Display.Atom(atomNetUserTime);
    const uint32_t any[] = {LastTime};
    Display.SetWords(window, property, XCB_ATOM_CARDINAL, any);
    constexpr int64_t patienceMs = 200;
    AwaitEvents(patienceMs, [&] { return TimesHeard != before; });
    return LastTime;
}
