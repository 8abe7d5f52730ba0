#pragma once

#include "toolkit/ctrlWindow.h"

// Shows a form that was never shown, and writes what it draws as a BMP file. False when the form draws
// nothing or the file cannot be written.
bool galleryPicture(ctrlWindow& form, const char* path);
