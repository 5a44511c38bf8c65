#include "monitoring/QuonFileEventServerInternal.h"

#include <memory>
#include <new>

using namespace QuonFileEventServer_details;

QuonFileEventSink::QuonFileEventSink() = default;
QuonFileEventSink::QuonFileEventSink(const QuonFileEventSink&) = default;
QuonFileEventSink& QuonFileEventSink::operator=(const QuonFileEventSink&) = default;
QuonFileEventSink::~QuonFileEventSink() = default;

QuonFileEventServer::QuonFileEventServer() = default;
QuonFileEventServer::~QuonFileEventServer() = default;

namespace
{

using Notice = void (QuonFileEventSink::*)(const QuonFileEventId*);

struct ChangeNotice
{
    DWORD bit;
    Notice notice;
};

// In the order in which one event calls them.
constexpr ChangeNotice kChangeNotices[] = {
    {FILE_NOTIFY_CHANGE_FILE_NAME, &QuonFileEventSink::OnFileNameChanged},
    {FILE_NOTIFY_CHANGE_DIR_NAME, &QuonFileEventSink::OnFolderNameChanged},
    {FILE_NOTIFY_CHANGE_ATTRIBUTES, &QuonFileEventSink::OnAttributesChanged},
    {FILE_NOTIFY_CHANGE_SIZE, &QuonFileEventSink::OnSizeChanged},
    {FILE_NOTIFY_CHANGE_LAST_WRITE, &QuonFileEventSink::OnLastWriteChanged},
    {FILE_NOTIFY_CHANGE_LAST_ACCESS, &QuonFileEventSink::OnLastAccessChanged},
};

// Runs `work`; whatever it throws becomes `failure`. The framework throws pointers, which somebody must delete.
template <typename Result, typename Work>
Result Guarded(Result failure, const Work& work)
{
    try
    {
        return work();
    }
    catch (CException* error)
    {
        error->Delete();
    }
    catch (...)
    {
        // Nothing is known of it.
    }
    return failure;
}

// Null when there is no memory.
std::unique_ptr<FileSubscription> MakeSubscription(const wchar_t* path, DWORD mask)
{
    return Guarded(std::unique_ptr<FileSubscription>(),
                   [path, mask] { return std::make_unique<FileSubscription>(path, mask); });
}

HRESULT ToFailure(DWORD error)
{
    return error != 0 ? HRESULT_FROM_WIN32(error) : E_FAIL;
}

}  // namespace

QuonFileEventServerImpl::QuonFileEventServerImpl() : m_window(QuonWndMsgServer::GetWndMsgServer()), m_watcher(m_window)
{
    Guarded(false, [this] { return m_watcher.IsRunning() || (RegisterMessages() && m_watcher.Start()); });
}

QuonFileEventServerImpl::~QuonFileEventServerImpl()
{
    QuonFileEventServerImpl::Shutdown();
}

bool QuonFileEventServerImpl::RegisterMessages()
{
    if (m_window == nullptr)
    {
        return false;
    }
    for (UINT index = 0; index < kMessageCount; ++index)
    {
        const UINT message = kChanged + index;
        if (FAILED(m_window->AddCallback(&message, &m_cookies[index], this)))
        {
            return false;
        }
    }
    return true;
}

void QuonFileEventServerImpl::UnregisterMessages()
{
    for (UINT& cookie : m_cookies)
    {
        if (cookie != 0)
        {
            // The window server takes the one value for message number and cookie, which differ as a rule: then this
            // fails, and the callback stays registered until the process ends.
            m_window->RemoveCallback(&cookie);
            cookie = 0;
        }
    }
}

HRESULT QuonFileEventServerImpl::Subscribe(const wchar_t* path, DWORD mask, QuonFileEventSink* sink,
                                           QuonFileEventId* id)
{
    return Guarded(E_FAIL, [&] {
        if (!m_watcher.IsRunning())
        {
            return E_FAIL;
        }
        std::unique_ptr<FileSubscription> subscription = MakeSubscription(path, mask);
        if (subscription == nullptr)
        {
            return E_OUTOFMEMORY;
        }
        if (!PostToThread(m_watcher.ThreadId(), kAdd, reinterpret_cast<LPARAM>(subscription.get())))
        {
            return ToFailure(::GetLastError());
        }
        // Posted, the record is the watcher's: only its address is of use here.
        const auto newId = reinterpret_cast<QuonFileEventId>(subscription.release());
        m_sinks[newId] = sink;
        *id = newId;
        return S_OK;
    });
}

HRESULT QuonFileEventServerImpl::Unsubscribe(QuonFileEventId id)
{
    return Guarded(E_FAIL, [this, id] {
        m_sinks.erase(id);
        if (m_watcher.IsRunning())
        {
            PostToThread(m_watcher.ThreadId(), kRemove, static_cast<LPARAM>(id));
        }
        return S_OK;
    });
}

void QuonFileEventServerImpl::Shutdown()
{
    m_watcher.Stop();
    UnregisterMessages();
}

void QuonFileEventServerImpl::OnMessage(const WndMsgRecord* message)
{
    const auto id = static_cast<QuonFileEventId>(message->lParam);
    QuonFileEventSink* const sink = FindSink(id);
    if (sink == nullptr)
    {
        return;
    }
    Guarded(0, [&] {
        switch (message->message)
        {
            case kChanged:
                CallForEachBit(id, message->wParam);
                break;
            case kReserved1:
                sink->OnReservedEvent1(&id);
                break;
            case kReserved2:
                sink->OnReservedEvent2(&id);
                break;
            case kWatchFailed:
            {
                const auto error = static_cast<DWORD>(message->wParam);
                sink->OnWatchFailed(&id, &error);
                break;
            }
            default:
                break;
        }
        return 0;
    });
}

void QuonFileEventServerImpl::CallForEachBit(QuonFileEventId id, WPARAM changes) const
{
    for (const ChangeNotice& change : kChangeNotices)
    {
        if ((changes & change.bit) == 0)
        {
            continue;
        }
        // Looked up anew for each bit: a sink may unsubscribe, and be gone, in the call for the bit before.
        QuonFileEventSink* const sink = FindSink(id);
        if (sink == nullptr)
        {
            return;
        }
        (sink->*change.notice)(&id);
    }
}

QuonFileEventSink* QuonFileEventServerImpl::FindSink(QuonFileEventId id) const
{
    const auto found = m_sinks.find(id);
    return found != m_sinks.end() ? found->second : nullptr;
}

QuonFileEventServer* GetFileEventServer()
{
    // Asks for the window server in its constructor, which is therefore destroyed later.
    static QuonFileEventServerImpl server;
    return &server;
}
