#include "forms/help.h"

#include "forms/arguments.h"
#include "platform/process.h"
#include "platform/shell.h"

#include <string_view>

namespace {

constexpr char ownExtension[] = ".chm";

bool isSlash(char letter)
{
    return letter == '/' || letter == '\\';
}

bool beginsWithDrive(std::string_view path)
{
    constexpr size_t length = 2;
    if (path.size() < length || path[1] != ':')
        return false;
    return (path[0] >= 'A' && path[0] <= 'Z') || (path[0] >= 'a' && path[0] <= 'z');
}

bool isWhole(std::string_view path)
{
    return beginsWithDrive(path) || (!path.empty() && isSlash(path.front()));
}

// Where the last component of a path begins.
size_t nameOf(std::string_view path)
{
    const size_t slash = path.find_last_of("/\\");
    if (slash != std::string_view::npos)
        return slash + 1;
    constexpr size_t drive = 2;
    return beginsWithDrive(path) ? drive : 0;
}

std::string withoutExtension(const std::string& path)
{
    const size_t dot = path.rfind('.');
    const bool hasExtension = dot != std::string::npos && dot >= nameOf(path) && dot + 1 < path.size();
    return hasExtension ? path.substr(0, dot) : path;
}

// A shell that found the program among others may have told its mere name.
std::string programPath()
{
    std::string first = arguments().empty() ? std::string() : arguments().front();
    if (isWhole(first))
        return first;
    std::string found = processPath();
    return found.empty() ? first : found;
}

}  // namespace

std::string helpPath(const std::string& program, const char* file)
{
    if (!file)
        return withoutExtension(program) + ownExtension;
    return isWhole(file) ? file : program.substr(0, nameOf(program)) + file;
}

bool Help(const char* file, ctrlWindow*)
{
    return shellHelp(helpPath(programPath(), file));
}
