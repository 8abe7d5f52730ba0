#include "tests/platform/screen/screenInput.h"

#include "foundations/text/utfConvert.h"
#include "tests/fakes/fakeWindows.h"
#include "tests/fakes/fakes.h"

#include <string>

namespace {

fakeButton buttonOf(screenButton button)
{
    switch (button) {
    case screenButton::Middle:
        return fakeButton::Middle;
    case screenButton::Right:
        return fakeButton::Right;
    case screenButton::Left:
        break;
    }
    return fakeButton::Left;
}

// The first press or the second one of a double click: the same button, and no move between.
struct pressed {
    bool Any = false;
    screenButton Button = screenButton::Left;
};
pressed LastPress;
bool ShiftIsDown = false;
bool ControlIsDown = false;

// What the key makes on the keyboard of these tests.
std::string charactersOf(uint32_t key)
{
    const bool isLetter = key >= 'A' && key <= 'Z';
    if (isLetter && ControlIsDown)
        return std::string(1, static_cast<char>(key - 'A' + 1));
    if (isLetter)
        return std::string(1, static_cast<char>(ShiftIsDown ? key : key - 'A' + 'a'));
    const bool isItself = (key >= '0' && key <= '9') || key == keySpace || key == keyBackspace ||
                          key == keyTab || key == keyEnter || key == keyEscape;
    return isItself ? std::string(1, static_cast<char>(key)) : std::string();
}

}  // namespace

void screenReset()
{
    fakeReset();
    LastPress = {};
    ShiftIsDown = false;
    ControlIsDown = false;
    fakeMouseMove(1279, 1023);
}

void screenMove(int32_t x, int32_t y)
{
    LastPress.Any = false;
    fakeMouseMove(x, y);
}

void screenPress(screenButton button)
{
    const bool isSecond = LastPress.Any && LastPress.Button == button;
    LastPress = {!isSecond, button};
    if (isSecond)
        fakeMouseDouble(buttonOf(button));
    else
        fakeMousePress(buttonOf(button));
}

void screenRelease(screenButton button)
{
    fakeMouseRelease(buttonOf(button));
}

void screenWheel(int32_t notches)
{
    constexpr int32_t Notch = 120;
    fakeMouseWheel(notches * Notch);
}

void screenKeyDown(uint32_t key)
{
    ShiftIsDown = ShiftIsDown || key == keyShift;
    ControlIsDown = ControlIsDown || key == keyControl;
    fakeKeyDown(key, charactersOf(key));
}

void screenKeyUp(uint32_t key)
{
    ShiftIsDown = ShiftIsDown && key != keyShift;
    ControlIsDown = ControlIsDown && key != keyControl;
    fakeKeyUp(key);
}

void screenType(char32_t character)
{
    char bytes[4];
    fakeType(std::string_view(bytes, utfEncode(character, bytes)));
}

bool screenKeepsFramesAboveOwners()
{
    return true;
}
