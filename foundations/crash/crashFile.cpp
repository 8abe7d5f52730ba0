#include "foundations/crash/crashFile.h"

#include <algorithm>
#include <atomic>

namespace {

constexpr std::string_view Ending = "_ExceptInfo.txt";
constexpr unsigned NumbersInName = 1000;

std::atomic<unsigned> Reports{0};

// A text in room that somebody else owns.
class roomText
{
public:
    explicit roomText(std::span<char> room) : Room(room) {}

    // The whole text, or nothing and false.
    bool Add(std::string_view text)
    {
        if (text.size() > Left())
            return false;
        std::copy(text.begin(), text.end(), Room.begin() + static_cast<ptrdiff_t>(Length));
        Length += text.size();
        return true;
    }

    bool AddNumber(unsigned value, size_t digits)
    {
        char text[8];
        for (size_t i = digits; i > 0; --i, value /= 10)
            text[i - 1] = static_cast<char>('0' + value % 10);
        return Add({text, digits});
    }

    void AddCut(std::string_view text) { Add(text.substr(0, Left())); }

    std::string_view Text() const { return {Room.data(), Length}; }

    void Close() { Room[Length] = '\0'; }

private:
    size_t Left() const { return Room.size() - 1 - Length; }

    std::span<char> Room;
    size_t Length = 0;
};

bool AddTime(roomText& path, const crashTime& time)
{
    char room[16];
    roomText digits({room, sizeof room});
    digits.AddNumber(time.Year, 4);
    digits.AddNumber(time.Month, 2);
    digits.AddNumber(time.Day, 2);
    digits.AddNumber(time.Hour, 2);
    digits.AddNumber(time.Minute, 2);
    digits.AddNumber(time.Second, 2);
    return path.Add(digits.Text());
}

// The file's name without its folder and its last extension.
std::string_view ProgramIn(std::string_view path)
{
    const size_t folder = path.rfind(crashSeparator());
    std::string_view name = folder == std::string_view::npos ? path : path.substr(folder + 1);
    name = name.substr(0, name.rfind('.'));
    return name.empty() ? "Unknown" : name;
}

}  // namespace

void crashPath(std::span<char> target, std::string_view folder, char separator, std::string_view program,
               const crashTime& time, unsigned number)
{
    roomText path(target);
    path.Add(folder);
    path.Add({&separator, 1});
    if (path.Add(program) && path.Add("_") && AddTime(path, time) && path.Add("_"))
        path.AddNumber(number % NumbersInName, 3);
    path.AddCut(Ending);
    path.Close();
}

crashFile::crashFile()
{
    char folder[crashPathRoom];
    char program[crashPathRoom];
    const std::string_view documents(folder, crashDocuments(folder, sizeof folder));
    const std::string_view own(program, crashProgramPath(program, sizeof program));
    crashPath(Name, documents, crashSeparator(), ProgramIn(own), crashNow(), Reports.fetch_add(1));
    File = crashFileCreate(Name);
}

crashFile::~crashFile()
{
    Close();
}

void crashFile::Close()
{
    if (IsOpen())
        crashFileClose(File);
    File = crashNoFile;
}

bool crashFile::Write(const char* bytes, size_t count)
{
    return IsOpen() && crashFileWrite(File, bytes, count);
}

void crashDump(crashFile& file, std::string_view title, uint64_t address, unsigned words)
{
    file.Dump(title, address, words);
}
