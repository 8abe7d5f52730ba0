// What the crash report asks of the operating system.
//
// All of it may be called while the program is already broken, inside its own crash: nothing here allocates
// from the program's heaps or takes one of its locks, texts go into buffers that the caller has on its stack,
// and only calls that the system allows in that state are made. Any thread, several at once, unless a
// function says otherwise.
//
// Exceptions have the codes, flags and parameters that Windows gives them (NTSTATUS, EXCEPTION_RECORD);
// another system translates its own. Registers are those of a 64-bit x86 processor, and are left out on any
// other.
#pragma once

#include <cstddef>
#include <cstdint>

// --- Exceptions

constexpr uint32_t crashAccessViolation = 0xC0000005;  // parameters: 0 read, 1 write, 8 execute; the address
constexpr uint32_t crashInPageError = 0xC0000006;      // the same two, and the cause as the system numbers it
constexpr uint32_t crashBreakpointMet = 0x80000003;
constexpr uint32_t crashStackOverflow = 0xC00000FD;
// What the processor does not raise but the system's library does; the codes are of our own.
constexpr uint32_t crashAborted = 0xE0000006;
constexpr uint32_t crashBadSystemCall = 0xE000001F;

constexpr unsigned crashParametersMost = 15;

struct crashRecord {
    uint32_t Code = 0;
    uint32_t Flags = 0;    // 1 when the program cannot go on from it
    uint64_t Address = 0;  // of the instruction
    uint32_t ParameterCount = 0;
    uint64_t Parameters[crashParametersMost] = {};
};

// An exception as the system tells it, valid while it is handled.
struct crashEvent;

// The exception itself (0) or the one from which it was chained (1 and up). False when there is none.
bool crashRecordOf(const crashEvent& event, unsigned index, crashRecord& record);

// --- Where a thread stands

constexpr unsigned crashFramesMost = 256;

struct crashContext {
    // Which groups of registers are known.
    bool HasIntegers = false;
    bool HasSegments = false;
    bool HasDebug = false;
    bool HasControl = false;
    bool HasVectors = false;

    uint64_t Integers[15] = {};  // RAX RBX RCX RDX RSI RDI RBP R8 to R15
    uint16_t Segments[4] = {};   // DS ES FS GS
    uint64_t Debug[6] = {};      // DR0 to DR3, DR6, DR7
    uint64_t StackPointer = 0;
    uint64_t ProgramCounter = 0;
    uint32_t ProcessorFlags = 0;
    uint16_t CodeSegment = 0;
    uint16_t StackSegment = 0;
    struct {
        uint64_t High = 0;
        uint64_t Low = 0;
    } Vectors[16];  // XMM0 to XMM15

    // The calls that led here, innermost first, each as the address at which it goes on. A longer chain is
    // cut.
    uint32_t FrameCount = 0;
    uint64_t Frames[crashFramesMost] = {};
};

// Where the exception happened. Between crashSymbolsStart and crashSymbolsEnd, or the calls are missing.
void crashContextOf(const crashEvent& event, crashContext& context);

// Where another thread stands at this moment; it is not stopped, and may be elsewhere at once. False when the
// thread has gone or does not answer within 100 ms. The same time as for crashContextOf.
bool crashThreadContext(uint32_t thread, crashContext& context);

// --- Watching

using crashReporter = void (*)(const crashEvent& event);

// Has `reporter` called for each exception before the program ends by it, on the thread that met it; when it
// returns the exception takes the course that it takes without us. The system's own dialogs about a crash
// stay away. Once, until crashUnwatch, which does nothing when nobody watches.
void crashWatch(crashReporter reporter);
void crashUnwatch();

// Executes a breakpoint that the reporter gets to see. Without a debugger it returns then, also when nobody
// watches.
void crashBreak();

// Runs `step(argument)`. False, with the exception, when the step met one: what it did until then stays done,
// no object of it is destroyed, and the reporter does not hear of it. Only while something is reported.
bool crashGuarded(void (*step)(void* argument), void* argument, crashRecord& fault);

// Gives the calling thread what a report needs even when its stack is used up. An object that lives on the
// thread's own stack for as long as the thread runs. The first thread has it from crashWatch. Not inside a
// crash: it allocates.
class crashThreadStack
{
public:
    crashThreadStack();
    ~crashThreadStack();
    crashThreadStack(const crashThreadStack&) = delete;
    crashThreadStack& operator=(const crashThreadStack&) = delete;

private:
    void* Memory = nullptr;
    void* Former = nullptr;
    size_t FormerBytes = 0;
};

// --- The program and its parts

struct crashRange {
    uint64_t Base = 0;
    uint64_t Size = 0;

    bool Has(uint64_t address) const { return address - Base < Size; }
};

// Where the program's own file is loaded. Empty when the system does not tell.
crashRange crashProgram();

constexpr unsigned crashModulesMost = 256;
constexpr unsigned crashThreadsMost = 256;

struct crashModule {
    crashRange Range;
    char Name[64] = {};  // of the file, without its folder; cut to the room
};

struct crashThread {
    uint32_t Id = 0;        // as threadId() gives it
    uint32_t Priority = 0;  // as the system counts it
};

// All files that are loaded as code and all threads, as far as there is room, in the system's own order.
struct crashSnapshot {
    unsigned ModuleCount = 0;
    unsigned ThreadCount = 0;
    crashModule Modules[crashModulesMost];
    crashThread Threads[crashThreadsMost];
};

// 0, or the system's number for why there is none; the snapshot is then empty.
uint32_t crashSnapshotTake(crashSnapshot& snapshot);

// The whole path of a module's file, closed by NUL and cut to the room: its length, 0 when it is not known.
size_t crashModulePath(const crashModule& module, char* target, size_t room);

// The version that a file bears. False when it bears none.
bool crashFileVersion(const char* path, uint16_t (&version)[4]);

// --- Symbols

struct crashSymbol {
    char Name[512] = {};  // cut to the room
    uint64_t Displacement = 0;
};

struct crashLine {
    char File[512] = {};  // cut to the room
    uint32_t Line = 0;
    uint32_t Displacement = 0;
};

// What names addresses. False when there is nothing that could; the end is called only after a true start.
bool crashSymbolsStart();
void crashSymbolsEnd();

// The function that an address lies in, and its line in the sources. False when not known.
bool crashSymbolAt(const crashSnapshot& snapshot, uint64_t address, crashSymbol& symbol);
bool crashLineAt(uint64_t address, crashLine& line);

// --- Surroundings

// The room of every path here, with its closing NUL.
constexpr size_t crashPathRoom = 4096;

// The system's name for a report, closed by NUL and cut to the room; empty when it is not known.
void crashSystemName(char* target, size_t room);

// The user's folder for documents, closed by NUL, without a separator at its end unless it is the root: its
// length. 0 when there is none, or when it is `room` - 1 bytes or longer.
size_t crashDocuments(char* target, size_t room);

// What separates folders in a path.
char crashSeparator();

// The path of the program's file, closed by NUL: its length. 0 when it is not known or too long.
size_t crashProgramPath(char* target, size_t room);

struct crashTime {
    uint16_t Year = 0;  // full, 2026
    uint8_t Month = 0, Day = 0, Hour = 0, Minute = 0, Second = 0;
};

// Now, in UTC.
crashTime crashNow();

// --- Files

constexpr intptr_t crashNoFile = -1;

// A new file that only this process writes; one of that name is emptied. crashNoFile when it cannot be made.
intptr_t crashFileCreate(const char* path);

// Writes all bytes, without a buffer, or gives false.
bool crashFileWrite(intptr_t file, const char* bytes, size_t count);

// An existing file to read, crashNoFile when there is none; and its next bytes, 0 at the end.
intptr_t crashFileOpen(const char* path);
size_t crashFileRead(intptr_t file, char* target, size_t room);

void crashFileClose(intptr_t file);

// --- The user

// The two captions under which a crash is told.
constexpr char crashWritten[] = "Exception report written to file";
constexpr char crashNotWritten[] = "Could not create exception report file!";

// Shows one of them with a text to the user, and waits until it is read. Where only a healthy program can
// show something, the text goes where debugWrite() shows its own, and after crashTellByProgram() also to a
// new run of this program, which finds it in the words that it is started with and must show it and end.
// Neither is for other systems: there crashMessageOf is false.
void crashTell(const char* caption, const char* text);
void crashTellByProgram();
bool crashMessageOf(int count, char** words, const char*& caption, const char*& text);
