// The three standard streams, made ready for a child to inherit and nothing beside them.
#pragma once

#include <array>
#include <memory>
#include <windows.h>

class standardHandles
{
public:
    standardHandles();
    ~standardHandles();
    standardHandles(const standardHandles&) = delete;
    standardHandles& operator=(const standardHandles&) = delete;

    // Whether there is a list of streams to inherit. Without one the child gets none: a child that inherits
    // without a list inherits everything.
    bool Any() const { return List != nullptr; }

    // Names the streams in `startup`, which must not outlive this object.
    void AddTo(STARTUPINFOEXW& startup) const;

private:
    void Inherit(DWORD which, HANDLE& stream);
    void MakeList();

    HANDLE Input = nullptr;
    HANDLE Output = nullptr;
    HANDLE Error = nullptr;
    std::array<HANDLE, 3> Inherited = {};
    size_t Count = 0;
    std::unique_ptr<char[]> ListRoom;
    LPPROC_THREAD_ATTRIBUTE_LIST List = nullptr;
};
