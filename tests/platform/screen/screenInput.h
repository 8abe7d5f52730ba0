// A user for the suites of windows: what is done here takes the way that a real mouse and keyboard take, so
// it reaches the program some time later, through the queue. Each system defines these functions once.
#pragma once

#include "platform/windowMessages.h"

#include <cstdint>

enum class screenButton : uint8_t {
    Left,
    Middle,
    Right,
};

// Everything as it is before any test: no button and no key down, the mouse in the bottom right corner.
void screenReset();

void screenMove(int32_t x, int32_t y);  // on the screen
void screenPress(screenButton button);
void screenRelease(screenButton button);
void screenWheel(int32_t notches);  // away from the user positive

void screenKeyDown(uint32_t key);  // a virtual key
void screenKeyUp(uint32_t key);

// Whatever keys a keyboard needs to make this character. A system without such a keyboard finds one.
void screenType(char32_t character);

// Whether an owned window that has a frame stays above its owner as popups do.
bool screenKeepsFramesAboveOwners();
