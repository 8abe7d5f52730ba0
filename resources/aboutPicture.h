// Made by skypack from about.png; not to be edited.
#pragma once

#include "toolkit/pixmap.h"

extern const pixmap aboutPicture;
