// A worker's thread: joined from any thread, and never by itself.
#pragma once

#include <atomic>
#include <cstdint>
#include <functional>
#include <mutex>
#include <thread>

class linkThread
{
public:
    linkThread() = default;
    ~linkThread();
    linkThread(const linkThread&) = delete;
    linkThread& operator=(const linkThread&) = delete;

    // Runs `body` on a new thread that people see under `name` (at most 15 letters); a running one is joined
    // first. A thread that cannot be started is a fatal fault of the program.
    void Start(const char* name, std::function<void()> body);

    // Waits until the thread has ended, if there is one. From the thread itself it does nothing.
    void Join();

    // Whether the caller is the thread.
    bool IsCaller() const;

private:
    std::mutex Mutex;  // guards Thread
    std::thread Thread;
    std::atomic<uint64_t> Id{0};  // of the running thread; 0 when there is none
};
