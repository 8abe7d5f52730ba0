// The program's own file and its libraries, as the system's map of the process shows them.
#include "platform/crash.h"
#include "platform/linux/crashEvent.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <string_view>

#include <fcntl.h>
#include <unistd.h>

extern "C" {
// Where the linker put the program's first byte, and the one behind its last.
extern const char __executable_start;
extern const char _end;
}

namespace {

// A line of /proc/self/maps: a stretch of memory and the file that it comes from.
//   7f2c1a000000-7f2c1a022000 r-xp 00000000 08:01 1234   /usr/lib/libc.so.6
struct stretch {
    uint64_t Begin = 0, End = 0;
    bool Runs = false;      // holds code
    std::string_view Path;  // empty for memory without a file
};

uint64_t TakeHex(std::string_view& text)
{
    uint64_t value = 0;
    while (!text.empty()) {
        const char letter = text.front();
        const bool digit = letter >= '0' && letter <= '9';
        if (!digit && (letter < 'a' || letter > 'f'))
            break;
        value = value << 4 | static_cast<uint64_t>(digit ? letter - '0' : letter - 'a' + 10);
        text.remove_prefix(1);
    }
    return value;
}

stretch StretchOf(std::string_view line)
{
    stretch found;
    found.Begin = TakeHex(line);
    line.remove_prefix(std::min<size_t>(line.size(), 1));
    found.End = TakeHex(line);
    constexpr size_t RunsAt = 3;
    found.Runs = line.size() > RunsAt && line[RunsAt] == 'x';
    const size_t path = line.find('/');
    if (path != std::string_view::npos)
        found.Path = line.substr(path);
    return found;
}

// Gives the lines of the map, each until the next is asked for. A line is never longer than its room: the
// system bounds a path to 4096 bytes.
class mapReader
{
public:
    mapReader() : File(open("/proc/self/maps", O_RDONLY | O_CLOEXEC)), Error(File < 0 ? errno : 0) {}
    ~mapReader()
    {
        if (File >= 0)
            close(File);
    }
    mapReader(const mapReader&) = delete;
    mapReader& operator=(const mapReader&) = delete;

    int Failure() const { return Error; }

    bool Next(stretch& next)
    {
        const std::string_view held(Bytes + At, Held - At);
        size_t end = held.find('\n');
        if (end == std::string_view::npos) {
            Refill();
            end = std::string_view(Bytes, Held).find('\n');
            if (end == std::string_view::npos)
                return false;
        }
        next = StretchOf({Bytes + At, end});
        At += end + 1;
        return true;
    }

private:
    void Refill()
    {
        std::memmove(Bytes, Bytes + At, Held - At);
        Held -= At;
        At = 0;
        ssize_t size = 0;
        while (File >= 0 && Held < sizeof Bytes && (size = read(File, Bytes + Held, sizeof Bytes - Held)) > 0)
            Held += static_cast<size_t>(size);
    }

    int File;
    int Error;
    char Bytes[8192];
    size_t At = 0, Held = 0;
};

void Copy(std::string_view text, char* target, size_t room)
{
    const size_t length = std::min(text.size(), room - 1);
    std::copy_n(text.begin(), length, target);
    target[length] = '\0';
}

// The stretches of one file follow each other; those of a module are the ones of a file that also holds code.
class moduleMaker
{
public:
    explicit moduleMaker(crashSnapshot& snapshot) : Snapshot(snapshot) {}

    void Add(const stretch& next)
    {
        if (next.Path.empty())
            return;
        const bool more = Open && next.Path == std::string_view(Path);
        if (!more)
            Begin(next);
        Made.Range.Size = next.End - Made.Range.Base;
        Runs = Runs || next.Runs;
    }

    void Finish()
    {
        if (Open && Runs && Snapshot.ModuleCount < crashModulesMost)
            Snapshot.Modules[Snapshot.ModuleCount++] = Made;
        Open = false;
    }

private:
    void Begin(const stretch& first)
    {
        Finish();
        Open = true;
        Runs = false;
        Made = {};
        Made.Range.Base = first.Begin;
        Copy(first.Path, Path, sizeof Path);
        Copy(first.Path.substr(first.Path.rfind('/') + 1), Made.Name, sizeof Made.Name);
    }

    crashSnapshot& Snapshot;
    crashModule Made;
    char Path[crashPathRoom];
    bool Open = false;
    bool Runs = false;
};

}  // namespace

crashRange crashProgram()
{
    const auto begin = reinterpret_cast<uint64_t>(&__executable_start);
    return {begin, reinterpret_cast<uint64_t>(&_end) - begin};
}

uint32_t crashSnapshotTake(crashSnapshot& snapshot)
{
    snapshot.ModuleCount = 0;
    snapshot.ThreadCount = 0;
    mapReader map;
    if (map.Failure() != 0)
        return static_cast<uint32_t>(map.Failure());
    moduleMaker maker(snapshot);
    stretch next;
    while (map.Next(next))
        maker.Add(next);
    maker.Finish();
    return crashReadThreads(snapshot);
}

size_t crashModulePath(const crashModule& module, char* target, size_t room)
{
    mapReader map;
    stretch next;
    while (map.Next(next)) {
        if (next.Begin != module.Range.Base || next.Path.empty())
            continue;
        Copy(next.Path, target, room);
        return std::strlen(target);
    }
    target[0] = '\0';
    return 0;
}

// Files of this system have none.
bool crashFileVersion(const char*, uint16_t (&)[4])
{
    return false;
}
