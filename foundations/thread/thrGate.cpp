#include "foundations/thread/thrGate.h"

#include "platform/word.h"

namespace {

constexpr uint32_t Shut = 0;
constexpr uint32_t Open = 1;

}  // namespace

void thrGate::Wake()
{
    Word.exchange(Open);
    wordWake(Word);
}

void thrGate::Sleep()
{
    while (Word.load() == Shut)
        wordWait(Word, Shut);
    Word.exchange(Shut);
}
