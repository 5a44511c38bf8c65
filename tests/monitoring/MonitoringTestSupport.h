// What the tests of the file event server share: a sink and a journal of window messages that remember, and a pump.
#pragma once

#include "messaging/QuonWndMsgServer.h"
#include "monitoring/QuonFileEventServer.h"

#include "messaging/MessagingTestSupport.h"
#include "helpers/ImportPatch.h"

#include <process.h>

#include <functional>
#include <string>
#include <vector>

namespace quon_test
{

template <typename Function>
using Patch = ImportPatch<Function>;

// The message numbers, as other modules know them.
constexpr UINT kMsgChanged = 0x8800;
constexpr UINT kMsgAdd = 0x8801;
constexpr UINT kMsgReserved1 = 0x8802;
constexpr UINT kMsgRemove = 0x8804;
constexpr UINT kMsgReserved2 = 0x8805;
constexpr UINT kMsgWatchFailed = 0x8806;
constexpr UINT kMsgFolderSignaled = 0x8807;

/// Remembers its calls: what was called, and for which subscription.
class RecordingSink final : public QuonFileEventSink
{
public:
    void OnFileNameChanged(const QuonFileEventId* id) override { Note("file name", *id); }
    void OnFolderNameChanged(const QuonFileEventId* id) override { Note("folder name", *id); }
    void OnAttributesChanged(const QuonFileEventId* id) override { Note("attributes", *id); }
    void OnSizeChanged(const QuonFileEventId* id) override { Note("size", *id); }
    void OnLastWriteChanged(const QuonFileEventId* id) override { Note("last write", *id); }
    void OnLastAccessChanged(const QuonFileEventId* id) override { Note("last access", *id); }
    void OnWatchFailed(const QuonFileEventId* id, const DWORD* error) override
    {
        Note("failed " + std::to_string(*error), *id);
    }
    void OnReservedEvent1(const QuonFileEventId* id) override { Note("reserved 1", *id); }
    void OnReservedEvent2(const QuonFileEventId* id) override { Note("reserved 2", *id); }

    std::vector<std::string> calls;
    std::vector<QuonFileEventId> ids;
    /// Called after each note.
    std::function<void()> then;

private:
    void Note(const std::string& call, QuonFileEventId id)
    {
        calls.push_back(call);
        ids.push_back(id);
        if (then)
        {
            then();
        }
    }
};

/// Dispatches this thread's messages until the predicate holds.
/// @return whether it did, within the limit
template <typename Predicate>
bool PumpUntil(const Predicate& isDone, DWORD limitMilliseconds = kPatience)
{
    const ULONGLONG start = ::GetTickCount64();
    for (;;)
    {
        MSG message;
        while (::PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE))
        {
            ::DispatchMessageW(&message);
        }
        if (isDone())
        {
            return true;
        }
        if (::GetTickCount64() - start > limitMilliseconds)
        {
            return false;
        }
        ::MsgWaitForMultipleObjectsEx(0, nullptr, 10, QS_ALLINPUT, MWMO_INPUTAVAILABLE);
    }
}

/// Dispatches this thread's messages for a while. Nothing follows from what has not happened until then.
inline void PumpFor(DWORD milliseconds)
{
    PumpUntil([] { return false; }, milliseconds);
}

/// A window message as the server's callback sees it.
struct WindowMessage
{
    UINT number;
    WPARAM wParam;
    LPARAM lParam;

    bool operator==(const WindowMessage& other) const
    {
        return number == other.number && wParam == other.wParam && lParam == other.lParam;
    }
};

/// Remembers the messages that it is registered for. Lives until the process ends, as a registration does.
class WindowJournal : public QuonWndMsgServer::Callback
{
public:
    explicit WindowJournal(const std::vector<UINT>& numbers)
    {
        for (const UINT number : numbers)
        {
            UINT cookie = 0;
            QuonWndMsgServer::GetWndMsgServer()->AddCallback(&number, &cookie, this);
            lastCookie = cookie;
        }
    }

    void OnMessage(const WndMsgRecord* message) override
    {
        messages.push_back({static_cast<UINT>(message->message), message->wParam, message->lParam});
    }

    size_t Count(const WindowMessage& wanted) const
    {
        size_t count = 0;
        for (const WindowMessage& message : messages)
        {
            count += message == wanted ? 1u : 0u;
        }
        return count;
    }

    std::vector<WindowMessage> messages;
    UINT lastCookie = 0;
};

/// The watcher thread, as the library started it.
struct WatcherThread
{
    HANDLE handle = nullptr;  ///< Of our own.
    unsigned id = 0;
    unsigned stackSize = 99;
    unsigned flags = 99;
};

inline WatcherThread& TheWatcherThread()
{
    static WatcherThread thread;
    return thread;
}

inline std::uintptr_t __cdecl RecordingBeginThread(void* security, unsigned stackSize,
                                                   unsigned(__stdcall* routine)(void*), void* argument, unsigned flags,
                                                   unsigned* id)
{
    const std::uintptr_t thread = ::_beginthreadex(security, stackSize, routine, argument, flags, id);
    WatcherThread& record = TheWatcherThread();
    ::DuplicateHandle(::GetCurrentProcess(), reinterpret_cast<HANDLE>(thread), ::GetCurrentProcess(), &record.handle, 0,
                      FALSE, DUPLICATE_SAME_ACCESS);
    record.id = *id;
    record.stackSize = stackSize;
    record.flags = flags;
    return thread;
}

/// The server; the first call makes TheWatcherThread known.
inline QuonFileEventServer* TheServer()
{
    const Patch<decltype(&::_beginthreadex)> patch(kLibrary, "_beginthreadex", &RecordingBeginThread);
    return GetFileEventServer();
}

/// What the server's callback posts to the window; begun after the server, and so told after it.
inline WindowJournal& TheWindowJournal()
{
    TheServer();
    static WindowJournal* const journal = new WindowJournal({kMsgChanged, kMsgRemove, kMsgWatchFailed});
    return *journal;
}

inline LRESULT SendEvent(UINT number, WPARAM wParam, QuonFileEventId id)
{
    return QuonWndMsgServer::GetWndMsgServer()->SendToWindow(number, wParam, static_cast<LPARAM>(id));
}

}  // namespace quon_test
