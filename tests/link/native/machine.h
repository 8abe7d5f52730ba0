// What this process holds of the machine, where the machine tells.
#pragma once

#include <algorithm>
#include <chrono>
#include <cstddef>
#include <filesystem>
#include <iterator>

// How many entries a folder has; 0 where there is no such folder. A program for another system that finds one
// all the same is not told of itself there.
inline size_t entriesOf(const char* folder)
{
    if (std::filesystem::path::preferred_separator != '/')
        return 0;
    std::error_code error;
    const std::filesystem::directory_iterator entries(folder, error);
    return error ? 0 : static_cast<size_t>(std::distance(begin(entries), end(entries)));
}

inline size_t openDescriptors()
{
    return entriesOf("/proc/self/fd");
}

inline size_t livingThreads()
{
    return entriesOf("/proc/self/task");
}

// How long something takes, in milliseconds.
template <class Action>
int64_t msOf(const Action& action)
{
    const auto begin = std::chrono::steady_clock::now();
    action();
    const auto spent = std::chrono::steady_clock::now() - begin;
    return std::chrono::duration_cast<std::chrono::milliseconds>(spent).count();
}

// The least that rounds take which tell their milliseconds, of as many as it needs to stay within the limit
// and at most three: a busy machine holds one up, a fault all.
template <class Round>
int64_t leastOf(int64_t limitMs, const Round& round)
{
    constexpr int Most = 3;
    int64_t least = round();
    for (int count = 1; count < Most && least > limitMs; count++)
        least = std::min<int64_t>(least, round());
    return least;
}
