// A file system and its change notifications that tests command.
#pragma once

#include "monitoring/MonitoringTestSupport.h"

#include <map>
#include <mutex>

namespace quon_test
{

/// While it lives, what the library's watcher asks the system for is answered from here, and written down in order. One
/// at a time; no subscription may outlive it.
class FakeFolders
{
public:
    FakeFolders() { s_active = this; }
    ~FakeFolders()
    {
        const std::lock_guard<std::mutex> lock(s_mutex);
        s_active = nullptr;
    }
    FakeFolders(const FakeFolders&) = delete;
    FakeFolders& operator=(const FakeFolders&) = delete;

    static constexpr DWORD kBarrierError = 12345;
    static constexpr wchar_t kBarrierPath[] = L"barrier";

    void SetFile(const std::wstring& path, const WIN32_FILE_ATTRIBUTE_DATA& data)
    {
        const std::lock_guard<std::mutex> lock(s_mutex);
        m_files[path] = data;
    }

    void SetFile(const std::wstring& path) { SetFile(path, {}); }

    void SetFolder(const std::wstring& path)
    {
        WIN32_FILE_ATTRIBUTE_DATA data = {};
        data.dwFileAttributes = FILE_ATTRIBUTE_DIRECTORY | FILE_ATTRIBUTE_HIDDEN;
        SetFile(path, data);
    }

    void RemoveFile(const std::wstring& path)
    {
        const std::lock_guard<std::mutex> lock(s_mutex);
        m_files.erase(path);
    }

    /// Lets watching of a folder fail.
    void SetError(const std::wstring& folder, DWORD error)
    {
        const std::lock_guard<std::mutex> lock(s_mutex);
        m_errors[folder] = error;
    }

    /// The notification of a folder, null when it is not watched.
    HANDLE Notification(const std::wstring& folder) const
    {
        const std::lock_guard<std::mutex> lock(s_mutex);
        for (const auto& [handle, path] : m_open)
        {
            if (path == folder)
            {
                return handle;
            }
        }
        return nullptr;
    }

    void Signal(const std::wstring& folder) const { ::SetEvent(Notification(folder)); }

    size_t OpenCount() const
    {
        const std::lock_guard<std::mutex> lock(s_mutex);
        return m_open.size();
    }

    /// What was called since the last time that this was asked.
    std::vector<std::string> TakeCalls()
    {
        const std::lock_guard<std::mutex> lock(s_mutex);
        return std::move(m_calls);
    }

    /// The folders of the last wait, in order.
    std::vector<std::wstring> LastWait() const
    {
        const std::lock_guard<std::mutex> lock(s_mutex);
        return m_lastWait;
    }

    bool wereWaitArgumentsRight = true;

    /// So many waits will fail.
    void FailWaits(int count)
    {
        const std::lock_guard<std::mutex> lock(s_mutex);
        m_failingWaits = count;
    }

    int FailingWaitsLeft() const
    {
        const std::lock_guard<std::mutex> lock(s_mutex);
        return m_failingWaits;
    }

    /// Called whenever a file's attributes are read, on the watcher thread.
    std::function<void(const std::wstring&)> onRead;

private:
    static std::string Narrow(const std::wstring& text) { return std::string(text.begin(), text.end()); }

    static BOOL WINAPI ReadAttributes(const wchar_t* path, GET_FILEEX_INFO_LEVELS level, void* data)
    {
        if (s_active->onRead)
        {
            s_active->onRead(path);
        }
        const std::lock_guard<std::mutex> lock(s_mutex);
        if (std::wstring(path) != kBarrierPath)
        {
            s_active->m_calls.push_back((level == GetFileExInfoStandard ? "read " : "read something of ") +
                                        Narrow(path));
        }
        const auto found = s_active->m_files.find(path);
        if (found == s_active->m_files.end())
        {
            ::SetLastError(ERROR_FILE_NOT_FOUND);
            return FALSE;
        }
        *static_cast<WIN32_FILE_ATTRIBUTE_DATA*>(data) = found->second;
        return TRUE;
    }

    static HANDLE WINAPI FindFirst(const wchar_t* folder, BOOL subtree, DWORD mask)
    {
        const std::lock_guard<std::mutex> lock(s_mutex);
        if (std::wstring(folder) == kBarrierPath)
        {
            ::SetLastError(kBarrierError);
            return INVALID_HANDLE_VALUE;
        }
        s_active->m_calls.push_back("watch " + Narrow(folder) + ' ' + std::to_string(subtree) + ' ' +
                                    std::to_string(mask));
        const auto error = s_active->m_errors.find(folder);
        if (error != s_active->m_errors.end())
        {
            ::SetLastError(error->second);
            return INVALID_HANDLE_VALUE;
        }
        const HANDLE event = ::CreateEventW(nullptr, TRUE, FALSE, nullptr);
        s_active->m_open[event] = folder;
        return event;
    }

    static BOOL WINAPI FindNext(HANDLE notification)
    {
        const std::lock_guard<std::mutex> lock(s_mutex);
        s_active->m_calls.push_back("next " + Narrow(s_active->m_open[notification]));
        return ::ResetEvent(notification);
    }

    static BOOL WINAPI FindClose(HANDLE notification)
    {
        const std::lock_guard<std::mutex> lock(s_mutex);
        s_active->m_calls.push_back("close " + Narrow(s_active->m_open[notification]));
        s_active->m_open.erase(notification);
        return ::CloseHandle(notification);
    }

    // Nobody waits in these tests.
    static void WINAPI Sleep(DWORD milliseconds)
    {
        const std::lock_guard<std::mutex> lock(s_mutex);
        s_active->m_calls.push_back("sleep " + std::to_string(milliseconds));
    }

    static DWORD WINAPI Wait(DWORD count, const HANDLE* handles, DWORD limit, DWORD wakeMask, DWORD flags)
    {
        {
            const std::lock_guard<std::mutex> lock(s_mutex);
            if (s_active != nullptr)
            {
                s_active->m_lastWait.clear();
                for (DWORD index = 0; index < count; ++index)
                {
                    s_active->m_lastWait.push_back(s_active->m_open[handles[index]]);
                }
                if (count == 0 || limit != INFINITE || wakeMask != QS_ALLINPUT || flags != 0)
                {
                    s_active->wereWaitArgumentsRight = false;
                }
                if (s_active->m_failingWaits > 0)
                {
                    --s_active->m_failingWaits;
                    return WAIT_FAILED;
                }
            }
        }
        return ::MsgWaitForMultipleObjectsEx(count, handles, limit, wakeMask, flags);
    }

    static inline FakeFolders* s_active = nullptr;
    static inline std::mutex s_mutex;

    std::map<std::wstring, WIN32_FILE_ATTRIBUTE_DATA> m_files;
    std::map<std::wstring, DWORD> m_errors;
    std::map<HANDLE, std::wstring> m_open;
    std::vector<std::string> m_calls;
    std::vector<std::wstring> m_lastWait;
    int m_failingWaits = 0;

    Patch<decltype(&::GetFileAttributesExW)> m_read{kLibrary, "GetFileAttributesExW", &ReadAttributes};
    Patch<decltype(&::FindFirstChangeNotificationW)> m_first{kLibrary, "FindFirstChangeNotificationW", &FindFirst};
    Patch<decltype(&::FindNextChangeNotification)> m_next{kLibrary, "FindNextChangeNotification", &FindNext};
    Patch<decltype(&::FindCloseChangeNotification)> m_close{kLibrary, "FindCloseChangeNotification", &FindClose};
    Patch<decltype(&::Sleep)> m_sleep{kLibrary, "Sleep", &FakeFolders::Sleep};
    Patch<decltype(&::MsgWaitForMultipleObjectsEx)> m_wait{kLibrary, "MsgWaitForMultipleObjectsEx", &Wait};
};

/// A watcher over fake folders, and the means to wait for it.
class FakeWatch
{
public:
    FakeWatch() : server(TheServer()), journal(TheWindowJournal()) {}

    ~FakeWatch()
    {
        for (const QuonFileEventId id : std::vector<QuonFileEventId>(m_live))
        {
            Unsubscribe(id);
        }
        Barrier();
        journal.messages.clear();
    }
    FakeWatch(const FakeWatch&) = delete;
    FakeWatch& operator=(const FakeWatch&) = delete;

    /// 0 when that failed.
    QuonFileEventId Subscribe(const wchar_t* path, DWORD mask)
    {
        QuonFileEventId id = 0;
        if (server->Subscribe(path, mask, &sink, &id) == S_OK)
        {
            m_live.push_back(id);
        }
        return id;
    }

    HRESULT Unsubscribe(QuonFileEventId id)
    {
        std::erase(m_live, id);
        return server->Unsubscribe(id);
    }

    /// Returns when the watcher has done, and the window has heard of, all that was posted to it before.
    bool Barrier()
    {
        RecordingSink waiting;
        QuonFileEventId id = 0;
        server->Subscribe(FakeFolders::kBarrierPath, 0, &waiting, &id);
        const bool isDone = PumpUntil([&waiting] { return !waiting.calls.empty(); });
        // Its record is lost, as that of every failed watch.
        server->Unsubscribe(id);
        // Only its own message: the record may have got the address, and so the identifier, of one that was just freed.
        std::erase_if(journal.messages, [id](const WindowMessage& message) {
            return message == WindowMessage{kMsgWatchFailed, FakeFolders::kBarrierError, static_cast<LPARAM>(id)};
        });
        return isDone;
    }

    /// Posts what the watcher posts to itself when a folder's notification is signalled.
    bool Check(const std::wstring& folder)
    {
        ::PostThreadMessageW(TheWatcherThread().id, kMsgFolderSignaled, 0,
                             reinterpret_cast<LPARAM>(folders.Notification(folder)));
        return Barrier();
    }

    QuonFileEventServer* server;
    WindowJournal& journal;
    FakeFolders folders;
    RecordingSink sink;

private:
    std::vector<QuonFileEventId> m_live;
};

}  // namespace quon_test
