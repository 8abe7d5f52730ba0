// A handle of the system that closes itself.
#pragma once

#include <utility>
#include <windows.h>

class systemHandle
{
public:
    explicit systemHandle(HANDLE value = nullptr) : Value(value) {}
    ~systemHandle()
    {
        if (IsOpen())
            CloseHandle(Value);
    }
    systemHandle(systemHandle&& other) noexcept : Value(std::exchange(other.Value, nullptr)) {}
    systemHandle& operator=(systemHandle&& other) noexcept
    {
        std::swap(Value, other.Value);
        return *this;
    }
    systemHandle(const systemHandle&) = delete;
    systemHandle& operator=(const systemHandle&) = delete;

    // Some functions give null when there is none, others the invalid handle.
    bool IsOpen() const { return Value != nullptr && Value != INVALID_HANDLE_VALUE; }
    HANDLE Get() const { return Value; }

private:
    HANDLE Value;
};
