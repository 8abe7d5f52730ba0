#include "tests/fakes/core.h"
#include "tests/fakes/desk.h"
#include "tests/fakes/fakeWindows.h"

#include "foundations/text/utfConvert.h"

#include <array>

// The user, who has a mouse, a keyboard and a finger.

namespace {

using fakes::desk;
using fakes::deskMessage;
using fakes::deskQueue;

struct buttonRow {
    uint32_t Key;  // its bit among the keys
    uint32_t Down;
    uint32_t Up;
    uint32_t Double;
};

// By fakeButton.
constexpr std::array<buttonRow, 3> Buttons{{
    {keysLeft, msgLeftDown, msgLeftUp, msgLeftDouble},
    {keysRight, msgRightDown, msgRightUp, msgRightDouble},
    {keysMiddle, msgMiddleDown, msgMiddleUp, msgMiddleDouble},
}};

constexpr uint32_t AnyButton = keysLeft | keysRight | keysMiddle;

const buttonRow& rowOf(fakeButton button)
{
    return Buttons[static_cast<size_t>(button)];
}

bool isIn(const windowEdges& area, int32_t x, int32_t y)
{
    return x >= area.Left && x < area.Right && y >= area.Top && y < area.Bottom;
}

// The topmost window at the mouse; 0 for none.
windowId windowUnder(const desk& desk)
{
    for (auto each = desk->Order.rbegin(); each != desk->Order.rend(); ++each) {
        const fakes::window* candidate = desk.Find(*each);
        const bool isShown = candidate->Visible && candidate->State != sizedMinimised;
        if (isShown && isIn(candidate->Frame, desk->MouseX, desk->MouseY))
            return *each;
    }
    return 0;
}

// Who hears the mouse; 0 for nobody.
windowId mouseTarget()
{
    const desk desk;
    const windowId under = windowUnder(desk);
    const fakes::window* holder = desk.Find(desk->Capture);
    const bool holds =
        holder && (under != 0 || (desk->Keys & AnyButton) != 0 || (holder->Style & stylePopup) != 0);
    const windowId target = holds ? desk->Capture : under;
    const fakes::window* found = desk.Find(target);
    if (!found || !found->Enabled)
        return 0;
    // What lies on its frame is not told as a mouse message.
    return holds || isIn(fakes::deskClient(*found), desk->MouseX, desk->MouseY) ? target : 0;
}

std::optional<windowMessage> mouseMessage(windowId target, uint32_t number)
{
    if (target == 0)
        return std::nullopt;
    windowMessage message = deskMessage(target, number);
    const desk desk;
    const fakes::window* found = desk.Find(target);
    if (!found)
        return std::nullopt;
    const windowEdges client = fakes::deskClient(*found);
    message.First = desk->Keys;
    message.Second = windowPoint(desk->MouseX - client.Left, desk->MouseY - client.Top);
    return message;
}

// Whoever is pressed becomes active; in place of a disabled window, the enabled one that it owns.
void activatePressed()
{
    constexpr int64_t DoNotActivate = 3;
    constexpr uint64_t ByClick = 2;
    windowId pressed = 0;
    {
        const desk desk;
        pressed = desk->Capture == 0 ? windowUnder(desk) : 0;
        const fakes::window* found = desk.Find(pressed);
        for (auto each = desk->Order.rbegin(); found && !found->Enabled && each != desk->Order.rend();
             ++each) {
            const fakes::window* other = desk.Find(*each);
            if (other->Made.Owner == pressed && other->Visible && other->Enabled) {
                pressed = *each;
                break;
            }
        }
        if (pressed == desk->Active)
            return;
    }
    if (pressed != 0 && fakes::deskTell(pressed, msgMouseActivate) != DoNotActivate)
        fakes::deskActivate(pressed, ByClick);
}

std::optional<windowMessage> press(fakeButton button, uint32_t number)
{
    activatePressed();
    desk()->Keys |= rowOf(button).Key;
    return mouseMessage(mouseTarget(), number);
}

std::optional<windowMessage> release(fakeButton button)
{
    // The holder hears the release of the last button too, wherever the mouse is.
    const windowId target = mouseTarget();
    desk()->Keys &= ~rowOf(button).Key;
    return mouseMessage(target, rowOf(button).Up);
}

std::optional<windowMessage> wheel(int32_t turn)
{
    std::optional<windowMessage> message = mouseMessage(mouseTarget(), msgMouseWheel);
    if (message) {
        message->First |= static_cast<uint64_t>(static_cast<uint16_t>(turn)) << 16;
        message->Second = windowPoint(message->ScreenX, message->ScreenY);
    }
    return message;
}

void setModifier(uint32_t key, bool isDown)
{
    const uint32_t bit = key == keyShift     ? uint32_t{keysShift}
                         : key == keyControl ? uint32_t{keysControl}
                                             : 0;
    const desk desk;
    desk->Keys = isDown ? desk->Keys | bit : desk->Keys & ~bit;
}

std::optional<windowMessage> keyMessage(uint32_t number, uint32_t key)
{
    windowId focus = 0;
    {
        const desk desk;
        focus = desk->Focus;
        const fakes::window* found = desk.Find(focus);
        if (!found || !found->Enabled)
            return std::nullopt;
    }
    return deskMessage(focus, number, key);
}

std::optional<windowMessage> pressKey(uint32_t key, const std::u16string& characters)
{
    setModifier(key, true);
    std::optional<windowMessage> message = keyMessage(msgKeyDown, key);
    if (message && !characters.empty()) {
        const desk desk;
        message->Second = ++desk->LastCharacters;
        desk->Characters[message->Second] = characters;
    }
    return message;
}

std::u16string wide(std::string_view text)
{
    std::u16string units;
    utfAppend16From8(units, text.data(), text.size());
    return units;
}

// The key that has a character on it; others come from a key without a number of its own.
uint32_t keyOf(char16_t unit)
{
    constexpr uint32_t NoKey = 231;
    if (unit >= u'a' && unit <= u'z')
        return static_cast<uint32_t>(unit - u'a' + u'A');
    const bool isItself = unit == u' ' || unit == keyEnter || unit == keyTab || unit == keyBackspace ||
                          unit == keyEscape || (unit >= u'0' && unit <= u'9') ||
                          (unit >= u'A' && unit <= u'Z');
    return isItself ? unit : NoKey;
}

}  // namespace

void fakeMouseMove(int32_t x, int32_t y)
{
    deskQueue([=] {
        {
            const desk desk;
            desk->MouseX = x;
            desk->MouseY = y;
        }
        return mouseMessage(mouseTarget(), msgMouseMove);
    });
}

void fakeMousePress(fakeButton button)
{
    deskQueue([=] { return press(button, rowOf(button).Down); });
}

void fakeMouseDouble(fakeButton button)
{
    deskQueue([=] { return press(button, rowOf(button).Double); });
}

void fakeMouseRelease(fakeButton button)
{
    deskQueue([=] { return release(button); });
}

void fakeMouseClick(int32_t x, int32_t y, fakeButton button)
{
    fakeMouseMove(x, y);
    fakeMousePress(button);
    fakeMouseRelease(button);
}

void fakeMouseWheel(int32_t turn)
{
    deskQueue([=] { return wheel(turn); });
}

void fakeKeyDown(uint32_t key, std::string_view characters)
{
    deskQueue([key, units = wide(characters)] { return pressKey(key, units); });
}

void fakeKeyUp(uint32_t key)
{
    deskQueue([=] {
        setModifier(key, false);
        return keyMessage(msgKeyUp, key);
    });
}

void fakeKeyPress(uint32_t key, std::string_view characters)
{
    fakeKeyDown(key, characters);
    fakeKeyUp(key);
}

void fakeChar(uint32_t unit)
{
    deskQueue([=] { return keyMessage(msgChar, unit); });
}

void fakeType(std::string_view text)
{
    const std::u16string units = wide(text);
    for (size_t at = 0; at < units.size();) {
        const bool isPair = units[at] >= 0xD800 && units[at] < 0xDC00 && at + 1 < units.size();
        const std::u16string one = units.substr(at, isPair ? 2 : 1);
        const uint32_t key = keyOf(one.front());
        deskQueue([=] { return pressKey(key, one); });
        fakeKeyUp(key);
        at += one.size();
    }
}

void fakeGesture(const windowGesture& gesture)
{
    deskQueue([=]() -> std::optional<windowMessage> {
        windowId target = 0;
        int64_t number = 0;
        {
            const desk desk;
            desk->MouseX = gesture.X;
            desk->MouseY = gesture.Y;
            target = windowUnder(desk);
            const fakes::window* found = desk.Find(target);
            if (!found || !found->Enabled || !found->GesturesAsked)
                return std::nullopt;
            number = ++desk->LastGesture;
            desk->Gestures[number] = gesture;
        }
        return deskMessage(target, msgGesture, static_cast<uint64_t>(gesture.Kind), number);
    });
}
