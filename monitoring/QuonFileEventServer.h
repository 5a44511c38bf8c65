/// @file
/// Tells subscribers that files and folders have changed.
#pragma once

#include <afx.h>

#include "base/Export.h"

#include <cstdint>

/// Names a subscription. Nothing is promised about its value, but that it is not 0; it may be given out again once the
/// subscription was removed and no event of it is on its way.
using QuonFileEventId = std::uintptr_t;

/// The maximum number of folders that can be watched at a time: the system waits for 64 objects, one of which is the
/// watcher's message queue.
constexpr unsigned kQuonMaxWatchedFolders = 63;

/// What a subscriber implements. All operations are called on the thread that owns the window of the window message
/// server, out of its message loop. Whatever they throw is swallowed, and the rest of the event with it. They may
/// subscribe and unsubscribe, their own subscription included.
class QUON_API QuonFileEventSink
{
public:
    /// Has nothing to set up.
    QuonFileEventSink();
    /// Has nothing to copy.
    QuonFileEventSink(const QuonFileEventSink&);
    /// Has nothing to copy.
    QuonFileEventSink& operator=(const QuonFileEventSink&);

    // The order is that of the table which other modules were built against.

    /// Something in the folder has changed and the file is there (FILE_NOTIFY_CHANGE_FILE_NAME). Also called when it
    /// was another file that changed.
    /// @param id the subscription, valid during the call; so for all of them
    virtual void OnFileNameChanged(const QuonFileEventId* id) = 0;
    /// Something in the folder has changed and the file is there (FILE_NOTIFY_CHANGE_DIR_NAME).
    virtual void OnFolderNameChanged(const QuonFileEventId* id) = 0;
    /// Something in the folder has changed and the file is there (FILE_NOTIFY_CHANGE_ATTRIBUTES).
    virtual void OnAttributesChanged(const QuonFileEventId* id) = 0;
    /// The size is another one than it was when last reported (FILE_NOTIFY_CHANGE_SIZE).
    virtual void OnSizeChanged(const QuonFileEventId* id) = 0;
    /// The time of the last write is later than it was when last reported (FILE_NOTIFY_CHANGE_LAST_WRITE).
    virtual void OnLastWriteChanged(const QuonFileEventId* id) = 0;
    /// The time of the last access is later than it was when last reported (FILE_NOTIFY_CHANGE_LAST_ACCESS).
    virtual void OnLastAccessChanged(const QuonFileEventId* id) = 0;
    /// The folder cannot be watched: nothing will be reported for this subscription.
    /// @param error the system's error code, valid during the call
    virtual void OnWatchFailed(const QuonFileEventId* id, const DWORD* error) = 0;
    /// Window message 0x8802, which the library never posts.
    virtual void OnReservedEvent1(const QuonFileEventId* id) = 0;
    /// Window message 0x8805, which the library never posts.
    virtual void OnReservedEvent2(const QuonFileEventId* id) = 0;

protected:
    /// Sinks are their implementers': the library never deletes one.
    // NOLINTNEXTLINE(performance-trivially-destructible): out of line, like every special member of an exported class
    ~QuonFileEventSink();
};

/// The process's watcher of files and folders. One background thread watches the folders; what it finds reaches the
/// sinks as window messages, through the message loop of the thread that owns the window message server's window. All
/// operations belong on that thread: there is no lock.
///
/// A change is reported some 500 ms after it happened, so that whoever writes can finish. Files are compared with what
/// was last reported, so several changes in a row may be reported as one.
///
/// Each signal of a folder costs the one thread these 500 ms: ten folders that change at once are reported over five
/// seconds. A folder that changes at least every 500 ms delays all others, and the folders that were added after it may
/// not be reported at all until it pauses.
class QUON_API QuonFileEventServer
{
public:
    /// For the one implementation: callers use GetFileEventServer.
    QuonFileEventServer();
    /// There is one server.
    QuonFileEventServer(const QuonFileEventServer&) = delete;
    /// There is one server.
    QuonFileEventServer& operator=(const QuonFileEventServer&) = delete;

    // The order is that of the table which other modules were built against.

    /// Watches a file, or a folder's own entry in itself. Returns at once: whether the folder can be watched is known
    /// later, and told by QuonFileEventSink::OnWatchFailed when it cannot.
    ///
    /// Subscriptions whose paths are in the same folder share one notification of the system, made for the mask of the
    /// first of them. With more than kQuonMaxWatchedFolders folders the watcher cannot wait any more: it uses up a
    /// processor, reports nothing and carries out no further request. Subscribe and Unsubscribe still return S_OK, no
    /// sink is called after Unsubscribe, and Shutdown ends the thread by force after its ten seconds.
    /// @param path a full path, copied; not null
    /// @param mask FILE_NOTIFY_CHANGE_FILE_NAME (0x1), _DIR_NAME (0x2), _ATTRIBUTES (0x4), _SIZE (0x8), _LAST_WRITE
    /// (0x10), _LAST_ACCESS (0x20); other bits are passed to the system and are never reported
    /// @param sink not owned; must live until the subscription is removed. Null is allowed and hears nothing.
    /// @param id receives the identifier; not null. Left alone on failure.
    /// @return S_OK; E_FAIL when the server does not run; E_OUTOFMEMORY; a Windows error as HRESULT when the request
    /// could not be posted to the watcher
    virtual HRESULT Subscribe(const wchar_t* path, DWORD mask, QuonFileEventSink* sink, QuonFileEventId* id) = 0;

    /// Removes a subscription. Its sink is not called any more, not even for events that are on their way.
    /// @param id given out by Subscribe; one that is unknown, or removed already, is ignored; a removed one may name a
    /// later subscription by then
    /// @return S_OK, also when the server does not run or the identifier is unknown; E_FAIL when something was thrown
    virtual HRESULT Unsubscribe(QuonFileEventId id) = 0;

    /// Callers never delete the server.
    virtual ~QuonFileEventServer();

    /// Ends the watcher thread and waits for that up to ten seconds; after them the thread is terminated. For good: a
    /// server that was shut down is not started again. Must be called before the library is unloaded with FreeLibrary.
    virtual void Shutdown() = 0;
};

/// The one server of the process. The first call creates it and starts its watcher thread, and with it the window
/// message server when there is none yet; it belongs on the thread that will run the message loop, and never into a
/// DllMain. The server is destroyed at process exit.
/// @return the server, never null
QUON_API QuonFileEventServer* GetFileEventServer();
