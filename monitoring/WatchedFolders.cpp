#include "monitoring/WatchedFoldersInternal.h"

#include "base/LetterCaseInternal.h"

#include <algorithm>
#include <cstdint>

namespace QuonFileEventServer_details
{
namespace
{

// These are reported whenever the folder changes: nothing of the file tells whether it was the one.
constexpr DWORD kUncomparedBits =
    FILE_NOTIFY_CHANGE_FILE_NAME | FILE_NOTIFY_CHANGE_DIR_NAME | FILE_NOTIFY_CHANGE_ATTRIBUTES;

LPARAM MessageIdOf(const FileSubscription* subscription)
{
    return static_cast<LPARAM>(IdOf(subscription));
}

bool ReadAttributes(const QuonPath& path, WIN32_FILE_ATTRIBUTE_DATA& data)
{
    return ::GetFileAttributesExW(path, GetFileExInfoStandard, &data) != FALSE;
}

// Unsigned: a time beyond 2^63 is later than all below it.
std::uint64_t ToNumber(const FILETIME& time)
{
    return std::uint64_t{time.dwHighDateTime} << 32 | time.dwLowDateTime;
}

// An older time, as of a file that came back from a backup, is neither reported nor kept.
DWORD TakeLaterTime(DWORD bit, FILETIME& baseline, const FILETIME& now)
{
    if (ToNumber(now) <= ToNumber(baseline))
    {
        return 0;
    }
    baseline = now;
    return bit;
}

// The folder to watch for a path, which is the baseline's: of a file the folder that it lies in, with a separator
// behind it; a folder, or what cannot be read, as it was given. Lower case, because folders are told apart by text.
QuonPath FolderOf(const QuonPath& path, bool isFile)
{
    CString text(path);
    MakeLowerForUser(text);
    const QuonPath lowered(text, QuonPathBackslash);
    return isFile ? lowered.GetFolder() : lowered;
}

}  // namespace

DWORD FindChanges(FileSubscription& subscription, const WIN32_FILE_ATTRIBUTE_DATA& now)
{
    WIN32_FILE_ATTRIBUTE_DATA& baseline = subscription.baseline;
    DWORD changes = subscription.mask & kUncomparedBits;
    if ((subscription.mask & FILE_NOTIFY_CHANGE_SIZE) != 0 &&
        (now.nFileSizeHigh != baseline.nFileSizeHigh || now.nFileSizeLow != baseline.nFileSizeLow))
    {
        baseline.nFileSizeHigh = now.nFileSizeHigh;
        baseline.nFileSizeLow = now.nFileSizeLow;
        changes |= FILE_NOTIFY_CHANGE_SIZE;
    }
    if ((subscription.mask & FILE_NOTIFY_CHANGE_LAST_WRITE) != 0)
    {
        changes |= TakeLaterTime(FILE_NOTIFY_CHANGE_LAST_WRITE, baseline.ftLastWriteTime, now.ftLastWriteTime);
    }
    if ((subscription.mask & FILE_NOTIFY_CHANGE_LAST_ACCESS) != 0)
    {
        changes |= TakeLaterTime(FILE_NOTIFY_CHANGE_LAST_ACCESS, baseline.ftLastAccessTime, now.ftLastAccessTime);
    }
    return changes;
}

void WatchedFolders::Add(FileSubscription* subscription)
{
    m_records.insert(MessageIdOf(subscription));
    const bool isFile = ReadAttributes(subscription->path, subscription->baseline) &&
                        (subscription->baseline.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) == 0;
    const QuonPath path = FolderOf(subscription->path, isFile);
    const auto known = m_handleOfPath.find(static_cast<const wchar_t*>(path));
    if (known == m_handleOfPath.end())
    {
        AddFolder(path, subscription);
        return;
    }
    subscription->notification = known->second;
    std::list<FileSubscription*>& subscriptions = m_folders.at(known->second).subscriptions;
    if (std::find(subscriptions.begin(), subscriptions.end(), subscription) == subscriptions.end())
    {
        subscriptions.push_back(subscription);
    }
}

void WatchedFolders::AddFolder(const QuonPath& path, FileSubscription* subscription)
{
    const HANDLE notification = ::FindFirstChangeNotificationW(path, FALSE, subscription->mask);
    const DWORD error = ::GetLastError();
    if (notification == INVALID_HANDLE_VALUE)
    {
        // The record stays, for ever: its owner may still unsubscribe it.
        Post(kWatchFailed, error, MessageIdOf(subscription));
        return;
    }
    m_handleOfPath[static_cast<const wchar_t*>(path)] = notification;
    m_folders.insert({notification, Folder{notification, subscription->mask, {subscription}, path}});
    subscription->notification = notification;
    m_handles.push_back(notification);
}

void WatchedFolders::Check(HANDLE notification) const
{
    const auto folder = m_folders.find(notification);
    if (folder == m_folders.end())
    {
        return;
    }
    for (FileSubscription* const subscription : folder->second.subscriptions)
    {
        WIN32_FILE_ATTRIBUTE_DATA now = {};
        const DWORD changes = ReadAttributes(subscription->path, now) ? FindChanges(*subscription, now) : 0;
        if (changes != 0)
        {
            Post(kChanged, changes, MessageIdOf(subscription));
        }
    }
}

void WatchedFolders::Remove(LPARAM id)
{
    if (m_records.count(id) == 0)
    {
        return;
    }
    auto* const subscription = reinterpret_cast<FileSubscription*>(id);
    const auto folder = m_folders.find(subscription->notification);
    if (folder == m_folders.end())
    {
        return;
    }
    std::list<FileSubscription*>& subscriptions = folder->second.subscriptions;
    const auto entry = std::find(subscriptions.begin(), subscriptions.end(), subscription);
    if (entry == subscriptions.end())
    {
        return;
    }
    subscriptions.erase(entry);
    if (subscriptions.empty())
    {
        RemoveFolder(folder);
    }
    m_records.erase(id);
    delete subscription;
    Post(kRemove, 0, id);
}

void WatchedFolders::RemoveFolder(std::map<HANDLE, Folder>::iterator folder)
{
    const HANDLE notification = folder->first;
    const auto waiting = std::find(m_handles.begin(), m_handles.end(), notification);
    if (waiting == m_handles.end())
    {
        return;
    }
    m_handleOfPath.erase(static_cast<const wchar_t*>(folder->second.path));
    m_handles.erase(waiting);
    ::FindCloseChangeNotification(notification);
    m_folders.erase(folder);
}

void WatchedFolders::Post(UINT message, DWORD value, LPARAM id) const
{
    // Without a window the message would land in this thread's own queue, where it would mean something else.
    if (m_window != nullptr && m_window->GetWindow() != nullptr)
    {
        m_window->PostToWindow(message, value, id);
    }
}

}  // namespace QuonFileEventServer_details
