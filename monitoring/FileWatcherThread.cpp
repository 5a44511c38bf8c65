#include "monitoring/FileWatcherThreadInternal.h"

#include "messaging/ThreadStartInternal.h"

#include <process.h>

namespace QuonFileEventServer_details
{
namespace
{

// Whoever writes gets time to finish before the file is looked at.
constexpr DWORD kSettlingMilliseconds = 500;
constexpr DWORD kStopMilliseconds = 10000;

using StartBlock = ThreadStart<FileWatcherThread>;

}  // namespace

bool FileWatcherThread::Start()
{
    if (m_thread != nullptr || m_threadId != 0)
    {
        return false;
    }
    StartBlock block = {::CreateEventW(nullptr, TRUE, FALSE, nullptr), this};
    if (block.started == nullptr)
    {
        return false;
    }
    m_thread = reinterpret_cast<HANDLE>(
        ::_beginthreadex(nullptr, 0, &FileWatcherThread::ThreadProc, &block, CREATE_SUSPENDED, &m_threadId));
    const bool isResumed = m_thread != nullptr && ::ResumeThread(m_thread) != static_cast<DWORD>(-1);
    if (isResumed)
    {
        ::WaitForSingleObject(block.started, INFINITE);
    }
    else if (m_thread != nullptr)
    {
        ::TerminateThread(m_thread, static_cast<DWORD>(-1));
    }
    ::CloseHandle(block.started);
    if (!isResumed)
    {
        Forget();
    }
    return isResumed;
}

void FileWatcherThread::Stop()
{
    if (!IsRunning())
    {
        return;
    }
    PostToThread(m_threadId, WM_QUIT, 0);
    if (::WaitForSingleObject(m_thread, kStopMilliseconds) == WAIT_TIMEOUT)
    {
        ::TerminateThread(m_thread, 0);
    }
    Forget();
}

void FileWatcherThread::Forget()
{
    if (m_thread != nullptr)
    {
        ::CloseHandle(m_thread);
    }
    m_thread = nullptr;
    m_threadId = 0;
}

unsigned __stdcall FileWatcherThread::ThreadProc(void* startBlock)
{
    const StartBlock block = StartBlock::Copy(startBlock);
    // Makes the thread's message queue: from here on no posted message is lost.
    MSG message;
    ::PeekMessageW(&message, nullptr, 0, 0, PM_NOREMOVE);
    ::SetEvent(block.started);
    try
    {
        block.owner->Run();
    }
    catch (CException* error)
    {
        error->Delete();
    }
    catch (...)
    {
        // Ends the thread like a wish to stop does: requests cannot be posted to it any more, and their senders see it.
    }
    return 0;
}

void FileWatcherThread::Run()
{
    bool continues = true;
    while (continues)
    {
        continues = m_folders.Handles().empty() ? PumpMessages() : WaitForFolders();
    }
}

bool FileWatcherThread::WaitForFolders()
{
    const std::vector<HANDLE>& handles = m_folders.Handles();
    const auto count = static_cast<DWORD>(handles.size());
    // Fails at once when there are more than kQuonMaxWatchedFolders, and is repeated.
    const DWORD result = ::MsgWaitForMultipleObjectsEx(count, handles.data(), INFINITE, QS_ALLINPUT, 0);
    if (result == count)
    {
        return PumpMessages();
    }
    TakeSignal(result);
    return true;
}

// Until no message is left: the wait above reports only messages that nobody has looked at. One that came together with
// another would stay queued until the next wake-up.
bool FileWatcherThread::PumpMessages()
{
    MSG message;
    do
    {
        if (::GetMessageW(&message, nullptr, 0, 0) < 1)
        {
            return false;
        }
        Dispatch(message);
        // Between two messages, so that a long row of them does not keep the folders waiting.
        const std::vector<HANDLE>& handles = m_folders.Handles();
        if (!handles.empty())
        {
            TakeSignal(::WaitForMultipleObjectsEx(static_cast<DWORD>(handles.size()), handles.data(), FALSE, 0, FALSE));
        }
    } while (::PeekMessageW(&message, nullptr, 0, 0, PM_NOREMOVE) != FALSE);
    return true;
}

// The folder is checked later, in its turn among the messages. The notification is armed again before that: what
// changes meanwhile signals anew.
void FileWatcherThread::TakeSignal(DWORD waitResult)
{
    const std::vector<HANDLE>& handles = m_folders.Handles();
    if (waitResult < handles.size())
    {
        const HANDLE notification = handles[waitResult];
        ::FindNextChangeNotification(notification);
        PostToThread(m_threadId, kFolderSignaled, reinterpret_cast<LPARAM>(notification));
    }
}

void FileWatcherThread::Dispatch(const MSG& message)
{
    if (message.lParam == 0)
    {
        return;
    }
    switch (message.message)
    {
        case kAdd:
            m_folders.Add(reinterpret_cast<FileSubscription*>(message.lParam));
            break;
        case kRemove:
            m_folders.Remove(message.lParam);
            break;
        case kFolderSignaled:
            ::Sleep(kSettlingMilliseconds);
            m_folders.Check(reinterpret_cast<HANDLE>(message.lParam));
            break;
        default:
            break;
    }
}

}  // namespace QuonFileEventServer_details
