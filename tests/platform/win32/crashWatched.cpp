#include "tests/platform/win32/crashWatched.h"

#include <malloc.h>

namespace {

std::vector<crashRecord> Noted;
void (*volatile NoFunction)() = nullptr;

void Note(const crashEvent& event)
{
    crashRecord record;
    for (unsigned index = 0; crashRecordOf(event, index, record); ++index)
        Noted.push_back(record);
}

LONG CALLBACK Resume(EXCEPTION_POINTERS* pointers)
{
    const bool ours = pointers->ExceptionRecord->ExceptionCode == OwnCode;
    return ours ? EXCEPTION_CONTINUE_EXECUTION : EXCEPTION_CONTINUE_SEARCH;
}

}  // namespace

watched::watched() : watched(Note) {}

watched::watched(crashReporter reporter)
{
    Noted.clear();
    crashWatch(reporter);
}

watched::~watched()
{
    crashUnwatch();
}

const std::vector<crashRecord>& watched::Seen() const
{
    return Noted;
}

resuming::resuming() : Handler(AddVectoredExceptionHandler(0, Resume)) {}

resuming::~resuming()
{
    RemoveVectoredExceptionHandler(Handler);
}

void KeepStackForReport()
{
    _resetstkoflw();
}

void CallNowhere()
{
    NoFunction();
}
