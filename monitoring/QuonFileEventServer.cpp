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
        const QuonFileEventId newId = IdOf(subscription.get());
        // Before it is posted: a watch without an identifier in the table could not be removed any more.
        m_subscribers.Add(newId, sink);
        if (!PostToThread(m_watcher.ThreadId(), kAdd, static_cast<LPARAM>(newId)))
        {
            const DWORD error = ::GetLastError();
            m_subscribers.Erase(newId);
            return ToFailure(error);
        }
        // Posted, the record is the watcher's.
        static_cast<void>(subscription.release());
        *id = newId;
        return S_OK;
    });
}

// Null when there is no memory.
std::unique_ptr<FileSubscription> QuonFileEventServerImpl::MakeSubscription(const wchar_t* path, DWORD mask)
{
    return Guarded(std::unique_ptr<FileSubscription>(), [this, path, mask] {
        auto subscription = std::make_unique<FileSubscription>(path, mask);
        // Each record that is kept takes one reserved address away from the allocator.
        while (m_subscribers.KeepWhenReserved(subscription))
        {
            subscription = std::make_unique<FileSubscription>(path, mask);
        }
        return subscription;
    });
}

HRESULT QuonFileEventServerImpl::Unsubscribe(QuonFileEventId id)
{
    return Guarded(E_FAIL, [this, id] {
        const bool isPosted =
            m_watcher.IsRunning() && PostToThread(m_watcher.ThreadId(), kRemove, static_cast<LPARAM>(id));
        // Without a window there is no acknowledgement, nor an event.
        if (isPosted && m_window->GetWindow() != nullptr)
        {
            m_subscribers.Reserve(id);
        }
        else
        {
            m_subscribers.Erase(id);
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
    Guarded(0, [&] {
        switch (message->message)
        {
            case kChanged:
                CallForEachBit(id, message->wParam);
                break;
            case kRemove:
                m_subscribers.Release(id);
                break;
            default:
                CallSink(id, *message);
                break;
        }
        return 0;
    });
}

void QuonFileEventServerImpl::CallSink(QuonFileEventId id, const WndMsgRecord& message) const
{
    const FileSubscribers::Subscriber* const subscriber = m_subscribers.Find(id);
    QuonFileEventSink* const sink = subscriber != nullptr ? subscriber->sink : nullptr;
    if (sink == nullptr)
    {
        return;
    }
    switch (message.message)
    {
        case kReserved1:
            sink->OnReservedEvent1(&id);
            break;
        case kReserved2:
            sink->OnReservedEvent2(&id);
            break;
        case kWatchFailed:
        {
            const auto error = static_cast<DWORD>(message.wParam);
            sink->OnWatchFailed(&id, &error);
            break;
        }
        default:
            break;
    }
}

void QuonFileEventServerImpl::CallForEachBit(QuonFileEventId id, WPARAM changes) const
{
    FileSubscribers::Serial serial = 0;
    for (const ChangeNotice& change : kChangeNotices)
    {
        if ((changes & change.bit) == 0)
        {
            continue;
        }
        // In the call for the bit before, a sink may have unsubscribed, and be gone. It may even have run a message
        // loop and subscribed again, which can yield the same identifier: the rest of this event is not for that one.
        const FileSubscribers::Subscriber* const subscriber = m_subscribers.Find(id);
        if (subscriber == nullptr || subscriber->sink == nullptr || (serial != 0 && subscriber->serial != serial))
        {
            return;
        }
        serial = subscriber->serial;
        (subscriber->sink->*change.notice)(&id);
    }
}

QuonFileEventServer* GetFileEventServer()
{
    // Asks for the window server in its constructor, which is therefore destroyed later.
    static QuonFileEventServerImpl server;
    return &server;
}
