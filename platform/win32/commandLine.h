// The one text in which the system hands a program all its arguments.
#pragma once

#include <optional>
#include <string>
#include <vector>

// Arguments (UTF-8, the program's own file first) quoted so that the program's run-time library takes them
// apart into the same again. Nothing when that cannot be had: no argument at all, a quote in the file's name,
// a NUL, text that is not UTF-8, or a line that is longer than the system takes.
std::optional<std::u16string> commandLineOf(const std::vector<std::string>& arguments);

// Whether the system would hand this file to its shell, which takes arguments apart by rules of its own.
bool commandLineRunsShell(const std::u16string& program);
