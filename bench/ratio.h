// Benchmarks as ratios: what is measured runs in turns with what it is compared with, in one process, and
// medians are compared, so that a busy machine slows both alike.
//
// A program of this kind links ratio.cpp, which has its `main`, and defines ratioGroups:
//
//     void ratioGroups()
//     {
//         ratioGroup("utfInt d").Measure(appendInt).Against("snprintf", printInt).Against("to_chars", chars);
//     }
//
// It prints one line for each group, "utfInt d: 0.40 x snprintf (1.20 x to_chars), 18.2 ns": the time of what
// is measured, divided by the time of the others. Below 1 is faster. The functions are loops over
// benchmark::State, as Google Benchmark knows them, and its options work on the command line; `--quick` only
// shows that they run.
#pragma once

#include <benchmark/benchmark.h>

#include <functional>
#include <string>

using ratioFunction = std::function<void(benchmark::State&)>;

class ratioGroup
{
public:
    explicit ratioGroup(std::string name) : Name(std::move(name)) {}

    // From here on in this chain: each function runs in so many threads at once, and the clock on the wall
    // counts instead of the time of the processor.
    ratioGroup& Threads(int count);

    ratioGroup& Measure(const ratioFunction& function);

    // The first one is the reference; more are named in brackets.
    ratioGroup& Against(const std::string& other, const ratioFunction& function);

private:
    void Register(const std::string& function, const ratioFunction& body);

    std::string Name;
    int ThreadCount = 1;
};

// An option of one program: a static object, given on the command line as "--name VALUE".
class ratioOption
{
public:
    explicit ratioOption(std::string name);

    // Empty when it was not given. From ratioGroups on.
    const std::string& Value() const { return Given; }

private:
    friend int main(int, char**);

    std::string Name;
    std::string Given;
};

// Defined by each program: registers its groups.
void ratioGroups();
