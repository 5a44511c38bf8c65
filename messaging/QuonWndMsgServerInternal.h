/// @file
/// The window message server itself.
#pragma once

#include <afx.h>

#include "messaging/QuonWndMsgServer.h"

#include <list>
#include <unordered_map>

namespace QuonWndMsgServer_details
{

/// A callback and the cookie that it was given.
struct Registration
{
    QuonWndMsgServer::Callback* callback;  ///< Not owned. Null once removed while a message was being dispatched.
    UINT cookie;
};

/// Registrations in the order in which they were made.
using Registrations = std::list<Registration>;

/// The one implementation of the server: a hidden window and the registrations of each message number.
class QuonWndMsgServerImpl : public QuonWndMsgServer
{
public:
    QuonWndMsgServerImpl();
    QuonWndMsgServerImpl(const QuonWndMsgServerImpl&) = delete;
    QuonWndMsgServerImpl& operator=(const QuonWndMsgServerImpl&) = delete;
    ~QuonWndMsgServerImpl() override;

    HRESULT AddCallback(const UINT* message, UINT* cookie, Callback* callback) override;
    HRESULT RemoveCallback(const UINT* value) override;
    HWND GetWindow() override;
    BOOL PostToWindow(UINT message, WPARAM wParam, LPARAM lParam) override;
    LRESULT SendToWindow(UINT message, WPARAM wParam, LPARAM lParam) override;

    /// Calls the callbacks of the message in the order of their registration. They may add and remove registrations,
    /// and send messages to the window.
    void Dispatch(HWND window, UINT message, WPARAM wParam, LPARAM lParam);

private:
    class Walk;

    bool CreateHiddenWindow();
    void DestroyHiddenWindow();
    void EraseRemoved();

    HWND m_window = nullptr;
    ATOM m_classAtom = 0;
    HINSTANCE m_instance = nullptr;
    std::unordered_map<UINT, Registrations> m_registrations;
    UINT m_lastCookie = 0;
};

}  // namespace QuonWndMsgServer_details
