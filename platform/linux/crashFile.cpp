// The report's file, and what its name is made of.
#include "platform/crash.h"

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <string_view>

#include <fcntl.h>
#include <sys/stat.h>
#include <sys/utsname.h>
#include <unistd.h>

namespace {

// A path in room of the caller's; empty as soon as something did not fit.
class pathText
{
public:
    pathText(char* target, size_t room) : Target(target), Room(room) { Target[0] = '\0'; }

    void Add(std::string_view text)
    {
        Full = Full || text.size() >= Room - Length;
        if (Full)
            return;
        std::copy(text.begin(), text.end(), Target + Length);
        Length += text.size();
        Target[Length] = '\0';
    }

    void Clear()
    {
        Full = false;
        Length = 0;
        Target[0] = '\0';
    }

    // The root alone keeps its own.
    void DropSeparators()
    {
        while (Length > 1 && Target[Length - 1] == crashSeparator())
            Target[--Length] = '\0';
    }

    size_t Taken() const { return Full ? 0 : Length; }

private:
    char* Target;
    size_t Room;
    size_t Length = 0;
    bool Full = false;
};

std::string_view Variable(const char* name)
{
    const char* const value = std::getenv(name);
    return value != nullptr ? value : "";
}

bool IsFolder(const char* path)
{
    struct stat facts = {};
    return stat(path, &facts) == 0 && S_ISDIR(facts.st_mode);
}

// The start of a file, for what is short. Its length.
size_t ReadStart(const char* path, char* target, size_t room)
{
    const intptr_t file = crashFileOpen(path);
    if (file == crashNoFile)
        return 0;
    size_t length = 0;
    while (const size_t count = crashFileRead(file, target + length, room - length))
        length += count;
    crashFileClose(file);
    return length;
}

// The value of XDG_DOCUMENTS_DIR="..." in the list of the user's folders, still with its "$HOME" and its
// backslashes.
std::string_view DocumentsIn(std::string_view list)
{
    constexpr std::string_view Name = "XDG_DOCUMENTS_DIR=\"";
    while (!list.empty()) {
        const size_t end = std::min(list.find('\n'), list.size());
        std::string_view line = list.substr(0, end);
        list.remove_prefix(std::min(end + 1, list.size()));
        line.remove_prefix(std::min(line.find_first_not_of(" \t"), line.size()));
        if (line.substr(0, Name.size()) != Name)
            continue;
        line.remove_prefix(Name.size());
        return line.substr(0, line.rfind('"'));
    }
    return {};
}

void AddFolder(pathText& path, std::string_view value)
{
    constexpr std::string_view Home = "$HOME";
    if (value.substr(0, Home.size()) == Home) {
        path.Add(Variable("HOME"));
        value.remove_prefix(Home.size());
    } else if (value.empty() || value.front() != '/') {
        return;
    }
    for (size_t i = 0; i < value.size(); ++i) {
        if (value[i] == '\\' && i + 1 < value.size())
            ++i;
        path.Add(value.substr(i, 1));
    }
}

// The list of the user's folders, as the desktop keeps it.
size_t ReadFolders(char* target, size_t room)
{
    char name[crashPathRoom];
    pathText path(name, sizeof name);
    const std::string_view configuration = Variable("XDG_CONFIG_HOME");
    path.Add(configuration.empty() ? Variable("HOME") : configuration);
    path.Add(configuration.empty() ? "/.config/user-dirs.dirs" : "/user-dirs.dirs");
    return ReadStart(name, target, room);
}

}  // namespace

void crashSystemName(char* target, size_t room)
{
    pathText text(target, room);
    utsname facts = {};
    if (uname(&facts) != 0)
        return;
    text.Add(facts.sysname);
    text.Add(" ");
    text.Add(facts.release);
}

size_t crashDocuments(char* target, size_t room)
{
    pathText path(target, room);
    char list[2 * crashPathRoom];
    AddFolder(path, DocumentsIn({list, ReadFolders(list, sizeof list)}));
    if (path.Taken() == 0 || !IsFolder(target)) {
        path.Clear();
        path.Add(Variable("HOME"));
    }
    path.DropSeparators();
    return path.Taken();
}

char crashSeparator()
{
    return '/';
}

size_t crashProgramPath(char* target, size_t room)
{
    const ssize_t length = readlink("/proc/self/exe", target, room);
    if (length <= 0 || static_cast<size_t>(length) >= room)
        return 0;
    target[length] = '\0';
    return static_cast<size_t>(length);
}

crashTime crashNow()
{
    constexpr int64_t SecondsOfDay = 86400;
    timespec now = {};
    clock_gettime(CLOCK_REALTIME, &now);
    const int64_t seconds = std::max<int64_t>(now.tv_sec, 0);

    // Days since 1970 to a date of years that begin in March, so that the day that comes and goes is their
    // last (H. Hinnant, "chrono-Compatible Low-Level Date Algorithms").
    const int64_t days = seconds / SecondsOfDay + 719468;
    const int64_t era = days / 146097;
    const int64_t dayOfEra = days % 146097;
    const int64_t yearOfEra = (dayOfEra - dayOfEra / 1460 + dayOfEra / 36524 - dayOfEra / 146096) / 365;
    const int64_t dayOfYear = dayOfEra - (365 * yearOfEra + yearOfEra / 4 - yearOfEra / 100);
    const int64_t monthFromMarch = (5 * dayOfYear + 2) / 153;
    const int64_t month = monthFromMarch < 10 ? monthFromMarch + 3 : monthFromMarch - 9;

    crashTime time;
    time.Year = static_cast<uint16_t>(yearOfEra + era * 400 + (month <= 2 ? 1 : 0));
    time.Month = static_cast<uint8_t>(month);
    time.Day = static_cast<uint8_t>(dayOfYear - (153 * monthFromMarch + 2) / 5 + 1);
    const int64_t second = seconds % SecondsOfDay;
    time.Hour = static_cast<uint8_t>(second / 3600);
    time.Minute = static_cast<uint8_t>(second / 60 % 60);
    time.Second = static_cast<uint8_t>(second % 60);
    return time;
}

intptr_t crashFileCreate(const char* path)
{
    // Pieces of the program's memory are in it, so it is for its user alone.
    constexpr mode_t ForUserAlone = S_IRUSR | S_IWUSR;
    return open(path, O_RDWR | O_CREAT | O_TRUNC | O_CLOEXEC, ForUserAlone);
}

bool crashFileWrite(intptr_t file, const char* bytes, size_t count)
{
    while (count > 0) {
        const ssize_t done = write(static_cast<int>(file), bytes, count);
        if (done < 0 && errno == EINTR)
            continue;
        if (done <= 0)
            return false;
        bytes += done;
        count -= static_cast<size_t>(done);
    }
    return true;
}

intptr_t crashFileOpen(const char* path)
{
    return open(path, O_RDONLY | O_CLOEXEC);
}

size_t crashFileRead(intptr_t file, char* target, size_t room)
{
    ssize_t count = 0;
    do {
        count = read(static_cast<int>(file), target, room);
    } while (count < 0 && errno == EINTR);
    return count > 0 ? static_cast<size_t>(count) : 0;
}

void crashFileClose(intptr_t file)
{
    close(static_cast<int>(file));
}
