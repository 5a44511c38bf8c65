/// @file
/// What the window's thread and the watcher thread send each other.
#pragma once

#include <afx.h>

#include "paths/QuonPath.h"

#include <cstdint>

namespace QuonFileEventServer_details
{

/// The numbers of the messages between the two threads. Callers see those to the window.
enum MessageNumber : UINT
{
    kChanged = 0x8800,        ///< To the window: change bits and identifier.
    kAdd = 0x8801,            ///< To the watcher: the record of a subscription.
    kReserved1 = 0x8802,      ///< To the window; never posted here.
    kRemove = 0x8804,         ///< To the watcher: the record. To the window: the identifier of what was removed.
    kReserved2 = 0x8805,      ///< To the window; never posted here.
    kWatchFailed = 0x8806,    ///< To the window: error code and identifier.
    kFolderSignaled = 0x8807  ///< The watcher to itself: a notification handle.
};

/// One subscription; its address is the identifier. Made by the caller's thread, then the watcher's alone.
struct FileSubscription
{
    /// Throws when there is no memory.
    FileSubscription(const wchar_t* watchedPath, DWORD watchedMask) : path(watchedPath, 0), mask(watchedMask) {}

    QuonPath path;                            ///< As the caller gave it, in a buffer that no other thread shares.
    WIN32_FILE_ATTRIBUTE_DATA baseline = {};  ///< What was last seen, or reported.
    HANDLE notification = nullptr;            ///< Of the folder; null until the watch is set up and when that failed.
    DWORD mask;                               ///< The caller's.
};

/// Returns the identifier of a record.
inline std::uintptr_t IdOf(const FileSubscription* subscription)
{
    return reinterpret_cast<std::uintptr_t>(subscription);
}

/// Posts a message to a thread's queue.
/// @return false on failure, with the last error set: ERROR_INVALID_THREAD_ID when the identifier is 0
inline bool PostToThread(DWORD threadId, UINT message, LPARAM lParam)
{
    if (threadId == 0)
    {
        ::SetLastError(ERROR_INVALID_THREAD_ID);
        return false;
    }
    return ::PostThreadMessageW(threadId, message, 0, lParam) != FALSE;
}

}  // namespace QuonFileEventServer_details
