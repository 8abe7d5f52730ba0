// What the desktop opens for us: web pages, mail, files, the manual.
#pragma once

#include <algorithm>
#include <string>
#include <string_view>

// Whether a target may be handed to the desktop at all: it is not empty, holds no control character, NUL
// included, and does not begin with "-", which would make it an option of whatever opens it.
inline bool shellTargetIsValid(std::string_view target)
{
    constexpr unsigned char firstPrintable = 0x20;
    constexpr unsigned char deleteCharacter = 0x7F;
    return !target.empty() && target.front() != '-' &&
           std::none_of(target.begin(), target.end(), [](char byte) {
               const auto code = static_cast<unsigned char>(byte);
               return code < firstPrintable || code == deleteCharacter;
           });
}

// Lets the desktop open a web address, a "mailto:" address or a file, UTF-8, with the program that the user
// has for it. That program lives on by itself: nobody waits for it, and it outlives this one. False when the
// target is not valid or nothing could be started; true does not promise that the user sees something. Blocks
// for as long as the system takes to start a program. Any thread.
bool shellOpen(const std::string& target);

// Opens the manual, given as its compiled file, ending in ".chm", UTF-8. A system that has no reader for such
// files opens the manual's pages instead: help/index.html beside the file, else
// share/doc/skyreckoning/help/index.html beside its folder. Another ending is a page itself. False when there
// is no such file, or nothing to read it with; a reader that once could not be loaded is not tried again.
// Interface thread.
bool shellHelp(const std::string& path);
