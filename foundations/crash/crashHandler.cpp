#include "foundations/crash/crashHandler.h"

#include "foundations/crash/crashFile.h"
#include "foundations/crash/crashFilter.h"
#include "foundations/crash/crashReport.h"
#include "platform/debug.h"
#include "platform/thread.h"

#include <atomic>
#include <cstdlib>
#include <cstring>
#include <exception>

constinit char AppVersion[64] = {};
constinit bool ReportAll = false;

namespace {

// How long a thread that has reported leaves the others to finish theirs: its end is the end of the process.
constexpr int LongestWait = 5000;  // ms
constexpr int Beat = 5;            // ms

// How many threads are writing at this moment.
constinit std::atomic<int> Writing{0};

void AwaitOthers()
{
    for (int waited = 0; Writing.load() > 0 && waited < LongestWait; waited += Beat)
        threadSleep(Beat);
}

// Has the file written, and tells the user where it is.
template <class content>
void WriteFile(content write)
{
    ++Writing;
    crashFile file;
    const bool open = file.IsOpen();
    if (open)
        write(file);
    file.Close();
    --Writing;
    crashTell(open ? crashWritten : crashNotWritten, file.Path());
}

void Report(const crashEvent& event)
{
    crashRecord record;
    if (!crashRecordOf(event, 0, record) || !crashCounts(record, crashProgram(), ReportAll))
        return;
    WriteFile([&](crashFile& file) { crashReport(file, event); });
    AwaitOthers();
}

// Where everything lies in memory, on a system that tells it in a file.
void WriteMap(crashFile& file)
{
    const intptr_t map = crashFileOpen("/proc/self/maps");
    if (map == crashNoFile)
        return;
    char bytes[1024];
    while (const size_t count = crashFileRead(map, bytes, sizeof bytes))
        file.Text({bytes, count});
    crashFileClose(map);
}

void WriteUncaught(crashFile& file, const char* what)
{
    char processor[crashProcessorRoom];
    crashProcessor(processor);
    file.Text("System information:\r\n  CPU: ");
    file.Text(processor);
    file.Text("\r\n\r\nMemory map\n");
    WriteMap(file);
    file.Text(crashLineEnd);
    file.Text(crashSeparatorLine);
    file.Text(what);
    file.Text(crashLineEnd);
}

// For an exception that nobody catches. One that tells nothing about itself leaves as it came, which ends the
// process by the library's own road.
void Terminate()
{
    const std::exception_ptr current = std::current_exception();
    if (!current)
        std::abort();
    try {
        std::rethrow_exception(current);
    } catch (const std::exception& exception) {
        WriteFile([&](crashFile& file) { WriteUncaught(file, exception.what()); });
    }
    // The breakpoint's report shows the threads; the end is then the one that the library had in mind.
    crashBreak();
    crashUnwatch();
    AwaitOthers();
    std::abort();
}

}  // namespace

crashHandler::crashHandler(const char* version)
{
    if (version != nullptr)
        std::strncpy(AppVersion, version, sizeof AppVersion - 1);
    Watching = !debugAttached();
    if (Watching)
        crashWatch(Report);
    std::set_terminate(Terminate);
}

crashHandler::~crashHandler()
{
    if (Watching)
        crashUnwatch();
}
