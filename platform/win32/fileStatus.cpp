#include "platform/win32/fileStatus.h"

#include <windows.h>

namespace {

// A code of the system that the compiler's headers lack.
constexpr DWORD errorDiskQuotaExceeded = 1295;

struct statusRow {
    DWORD Error;
    fileStatus Status;
};

constexpr statusRow Statuses[] = {
    {ERROR_FILE_NOT_FOUND, fileStatus::Missing},
    {ERROR_PATH_NOT_FOUND, fileStatus::Missing},
    {ERROR_INVALID_DRIVE, fileStatus::Missing},
    {ERROR_BAD_NETPATH, fileStatus::Missing},
    {ERROR_BAD_NET_NAME, fileStatus::Missing},
    {ERROR_INVALID_NAME, fileStatus::Missing},
    {ERROR_BAD_PATHNAME, fileStatus::Missing},
    {ERROR_FILENAME_EXCED_RANGE, fileStatus::Missing},
    {ERROR_DIRECTORY, fileStatus::Missing},
    {ERROR_FILE_EXISTS, fileStatus::Exists},
    {ERROR_ALREADY_EXISTS, fileStatus::Exists},
    {ERROR_SHARING_VIOLATION, fileStatus::Sharing},
    {ERROR_LOCK_VIOLATION, fileStatus::Sharing},
    {ERROR_DISK_FULL, fileStatus::DiskFull},
    {ERROR_HANDLE_DISK_FULL, fileStatus::DiskFull},
    {ERROR_NOT_ENOUGH_MEMORY, fileStatus::NoMemory},
    {ERROR_OUTOFMEMORY, fileStatus::NoMemory},
    {ERROR_NO_SYSTEM_RESOURCES, fileStatus::NoMemory},
    {ERROR_NONPAGED_SYSTEM_RESOURCES, fileStatus::NoMemory},
    {ERROR_PAGED_SYSTEM_RESOURCES, fileStatus::NoMemory},
    {ERROR_COMMITMENT_LIMIT, fileStatus::NoMemory},
    {errorDiskQuotaExceeded, fileStatus::NoQuota},
    {ERROR_NOT_ENOUGH_QUOTA, fileStatus::NoQuota},
    {ERROR_WORKING_SET_QUOTA, fileStatus::NoQuota},
    {ERROR_PAGEFILE_QUOTA, fileStatus::NoQuota},
};

}  // namespace

fileStatus fileStatusOf(unsigned long error)
{
    for (const statusRow& row : Statuses) {
        if (row.Error == error)
            return row.Status;
    }
    return fileStatus::Failed;
}
