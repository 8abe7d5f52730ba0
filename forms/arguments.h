// What the program was started with: its own path, and words that it does not ask for.
//
// Set once at the very start, before there is a second thread; read from any thread.
#pragma once

#include <string>
#include <string_view>
#include <vector>

// Takes a command line apart, UTF-8. Blanks and tabs stand between arguments, but for those between double
// quotes. An argument in one pair of quotes loses that pair; other quotes stay as they are, and one that is
// never closed reaches to the end.
std::vector<std::string> argumentsSplit(std::string_view commandLine);

// Keeps the program's arguments; replaces those that were kept before.
void argumentsKeep(std::vector<std::string> arguments);

// Those that were kept. The first is the program's path as its starter wrote it: maybe a mere name.
const std::vector<std::string>& arguments();
