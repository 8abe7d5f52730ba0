// The system's error codes as files mean them.
#pragma once

#include "platform/file.h"

// Any thread. Success has no place here.
fileStatus fileStatusOf(unsigned long error);
