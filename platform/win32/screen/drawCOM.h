// Objects of the system that count who holds them, and its codes of failure.
#pragma once

#include "platform/draw.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include <d2d1.h>
#include <dwrite.h>
#include <wincodec.h>

template <typename type>
class comPointer
{
public:
    comPointer() = default;
    comPointer(const comPointer& other) : Object(other.Object)
    {
        if (Object != nullptr)
            Object->AddRef();
    }
    comPointer(comPointer&& other) noexcept : Object(std::exchange(other.Object, nullptr)) {}

    // The same object as one of its base.
    template <typename derived>
    comPointer(const comPointer<derived>& other) : Object(other.Get())
    {
        if (Object != nullptr)
            Object->AddRef();
    }
    comPointer& operator=(comPointer other) noexcept
    {
        std::swap(Object, other.Object);
        return *this;
    }
    ~comPointer()
    {
        if (Object != nullptr)
            Object->Release();
    }

    type* Get() const { return Object; }
    type* operator->() const { return Object; }
    explicit operator bool() const { return Object != nullptr; }

    // Where a function puts what it makes. Only for a pointer that holds nothing.
    type** Put() { return &Object; }
    void** PutAny() { return reinterpret_cast<void**>(&Object); }

private:
    type* Object = nullptr;
};

inline uint32_t drawCode(HRESULT result)
{
    return result == S_OK ? 0 : static_cast<uint32_t>(result);
}

inline D2D1_POINT_2F drawNative(const drawPoint& point)
{
    return {point.X, point.Y};
}

inline D2D1_RECT_F drawNative(const drawRect& rect)
{
    return {rect.Left, rect.Top, rect.Right, rect.Bottom};
}
