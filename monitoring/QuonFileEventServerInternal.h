/// @file
/// The file event server itself.
#pragma once

#include <afx.h>

#include "messaging/QuonWndMsgServer.h"
#include "monitoring/FileSubscribersInternal.h"
#include "monitoring/FileWatcherThreadInternal.h"
#include "monitoring/QuonFileEventServer.h"

#include <array>
#include <memory>

/// The one implementation of the server: the sinks of the subscriptions, and the thread that watches for them.
class QuonFileEventServerImpl : public QuonFileEventServer, public QuonWndMsgServer::Callback
{
public:
    QuonFileEventServerImpl();
    QuonFileEventServerImpl(const QuonFileEventServerImpl&) = delete;
    QuonFileEventServerImpl& operator=(const QuonFileEventServerImpl&) = delete;
    ~QuonFileEventServerImpl() override;

    HRESULT Subscribe(const wchar_t* path, DWORD mask, QuonFileEventSink* sink, QuonFileEventId* id) override;
    HRESULT Unsubscribe(QuonFileEventId id) override;
    void Shutdown() override;

    void OnMessage(const WndMsgRecord* message) override;

private:
    bool RegisterMessages();
    void UnregisterMessages();
    std::unique_ptr<QuonFileEventServer_details::FileSubscription> MakeSubscription(const wchar_t* path, DWORD mask);
    void CallSink(QuonFileEventId id, const WndMsgRecord& message) const;
    void CallForEachBit(QuonFileEventId id, WPARAM changes) const;

    // So many consecutive message numbers are registered, although few of them are used.
    static constexpr UINT kMessageCount = 0x8808;

    // Made before the rest and so destroyed after it.
    QuonWndMsgServer* const m_window;
    QuonFileEventServer_details::FileSubscribers m_subscribers;
    std::array<UINT, kMessageCount> m_cookies = {};  // 0: not registered
    QuonFileEventServer_details::FileWatcherThread m_watcher;
};
