/// @file
/// The folders that the watcher thread watches, and their subscriptions.
#pragma once

#include <afx.h>

#include "messaging/QuonWndMsgServer.h"
#include "monitoring/FileSubscriptionInternal.h"

#include <list>
#include <map>
#include <set>
#include <string>
#include <vector>

namespace QuonFileEventServer_details
{

/// Compares what was read of a file with the subscription's baseline, which takes over what is reported.
/// @return the change bits to report; none when nothing is
DWORD FindChanges(FileSubscription& subscription, const WIN32_FILE_ATTRIBUTE_DATA& now);

/// The notifications of the system and their subscriptions. Used on the watcher thread alone.
///
/// Notifications are closed, and records freed, when a subscription is removed and at no other time.
class WatchedFolders
{
public:
    /// @param window where the findings go; not owned, may be null
    explicit WatchedFolders(QuonWndMsgServer* window) : m_window(window) {}
    WatchedFolders(const WatchedFolders&) = delete;
    WatchedFolders& operator=(const WatchedFolders&) = delete;

    /// Takes the baseline and watches the subscription's folder. From here on the record is ours.
    void Add(FileSubscription* subscription);
    /// Posts the changes of all subscriptions of the folder whose notification this is.
    void Check(HANDLE notification) const;
    /// Removes and frees a subscription, and its folder with the last one of it. An identifier that is not a record's
    /// is ignored: it is read only when it is known to be one.
    /// @param id the subscription's address; a number, because it may be anything
    void Remove(LPARAM id);

    /// The notifications in the order in which their folders were added.
    const std::vector<HANDLE>& Handles() const { return m_handles; }

private:
    struct Folder
    {
        HANDLE notification;
        DWORD mask;  // that of the first subscription
        std::list<FileSubscription*> subscriptions;
        QuonPath path;
    };

    void AddFolder(const QuonPath& path, FileSubscription* subscription);
    void RemoveFolder(std::map<HANDLE, Folder>::iterator folder);
    void Post(UINT message, DWORD value, LPARAM id) const;

    QuonWndMsgServer* m_window;
    std::set<LPARAM> m_records;  // the identifiers of all records that exist, also of those that cannot be watched
    std::map<std::wstring, HANDLE> m_handleOfPath;
    std::map<HANDLE, Folder> m_folders;
    std::vector<HANDLE> m_handles;
};

}  // namespace QuonFileEventServer_details
