// The program's icon, for systems whose program files have none.
#pragma once

#include "platform/window.h"

windowIconShape programIcon();
