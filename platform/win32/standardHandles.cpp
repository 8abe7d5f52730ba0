#include "platform/win32/standardHandles.h"

// The child gets copies: the streams themselves stay as they are, so that a process started elsewhere at the
// same moment sees no difference.

standardHandles::standardHandles()
{
    Inherit(STD_INPUT_HANDLE, Input);
    Inherit(STD_OUTPUT_HANDLE, Output);
    Inherit(STD_ERROR_HANDLE, Error);
    if (Count > 0)
        MakeList();
}

standardHandles::~standardHandles()
{
    if (List != nullptr)
        DeleteProcThreadAttributeList(List);
    for (size_t at = 0; at < Count; ++at)
        CloseHandle(Inherited[at]);
}

void standardHandles::Inherit(DWORD which, HANDLE& stream)
{
    const HANDLE own = GetStdHandle(which);
    if (own == nullptr || own == INVALID_HANDLE_VALUE)
        return;
    if (DuplicateHandle(GetCurrentProcess(), own, GetCurrentProcess(), &stream, 0, TRUE,
                        DUPLICATE_SAME_ACCESS) == FALSE) {
        stream = nullptr;
        return;
    }
    Inherited[Count++] = stream;
}

void standardHandles::MakeList()
{
    SIZE_T bytes = 0;
    InitializeProcThreadAttributeList(nullptr, 1, 0, &bytes);
    ListRoom = std::make_unique<char[]>(bytes);
    const LPPROC_THREAD_ATTRIBUTE_LIST list = reinterpret_cast<LPPROC_THREAD_ATTRIBUTE_LIST>(ListRoom.get());
    if (InitializeProcThreadAttributeList(list, 1, 0, &bytes) == FALSE)
        return;
    if (UpdateProcThreadAttribute(list, 0, PROC_THREAD_ATTRIBUTE_HANDLE_LIST, Inherited.data(),
                                  Count * sizeof(HANDLE), nullptr, nullptr) == FALSE) {
        DeleteProcThreadAttributeList(list);
        return;
    }
    List = list;
}

void standardHandles::AddTo(STARTUPINFOEXW& startup) const
{
    if (List == nullptr)
        return;
    startup.lpAttributeList = List;
    startup.StartupInfo.dwFlags |= STARTF_USESTDHANDLES;
    startup.StartupInfo.hStdInput = Input;
    startup.StartupInfo.hStdOutput = Output;
    startup.StartupInfo.hStdError = Error;
}
