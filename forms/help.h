// The manual.
#pragma once

#include <string>

class ctrlWindow;

// Opens a file of the manual, UTF-8: one named by its whole path, or one that stands beside the program; with
// a null file that of the program's own name, ending in ".chm". False, with no word to the user, when there
// is no such file or nothing to read it with. The window is not asked: the manual stands alone, and stays
// when the window goes. Interface thread.
bool Help(const char* file, ctrlWindow* window);

// The path of such a file for a program at this path. Separators are "/" and "\" alike.
std::string helpPath(const std::string& program, const char* file);
