#include "foundations/thread/thrSpin.h"

#include "platform/word.h"

namespace {

constexpr uint32_t Free = 0;
constexpr uint32_t Taken = 1;

}  // namespace

void thrSpin::Lock()
{
    while (Word.exchange(Taken) != Free) {
        while (Word.load() != Free)
            wordWait(Word, Taken);
    }
}

void thrSpin::Unlock()
{
    // From the exchange on another thread may hold the lock, and even end it: only the address is used then.
    Word.exchange(Free);
    wordWake(Word);
}
