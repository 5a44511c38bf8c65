/// @file
/// The thread that watches folders for the file event server.
#pragma once

#include <afx.h>

#include "monitoring/WatchedFoldersInternal.h"

namespace QuonFileEventServer_details
{

/// One background thread with a message queue. Everything but the thread itself is called on the window's thread.
class FileWatcherThread
{
public:
    /// There is no thread before Start.
    /// @param window where the findings go; not owned, may be null
    explicit FileWatcherThread(QuonWndMsgServer* window) : m_folders(window) {}
    FileWatcherThread(const FileWatcherThread&) = delete;
    FileWatcherThread& operator=(const FileWatcherThread&) = delete;
    /// Stop has been called before.
    ~FileWatcherThread() = default;

    /// Starts the thread and returns once it has a message queue.
    /// @return false when there is a thread already, or none could be had
    bool Start();
    /// Ends the thread, within ten seconds or by force.
    void Stop();

    bool IsRunning() const { return m_thread != nullptr && m_threadId != 0; }
    /// 0 while there is no thread.
    DWORD ThreadId() const { return m_threadId; }

private:
    static unsigned __stdcall ThreadProc(void* startBlock);

    void Forget();
    void Run();
    // Both return false when the thread shall end.
    bool WaitForFolders();
    bool PumpMessages();
    void Dispatch(const MSG& message);
    void TakeSignal(DWORD waitResult);

    HANDLE m_thread = nullptr;
    unsigned m_threadId = 0;
    WatchedFolders m_folders;  // the thread's alone
};

}  // namespace QuonFileEventServer_details
