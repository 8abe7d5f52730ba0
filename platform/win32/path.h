// Paths as the system takes them at any length.
#pragma once

#include <optional>
#include <string>

// The absolute form of a path, with the prefix that lifts the system's limit of 260 units where it is needed.
// Nothing for an empty path, for one that holds a NUL, and when the system cannot make sense of it. Any
// thread.
std::optional<std::u16string> pathForSystem(const std::u16string& path);
