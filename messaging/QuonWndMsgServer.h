/// @file
/// Routes window messages of one hidden window to registered callbacks.
#pragma once

#include <afx.h>

#include "base/Export.h"

/// A window message as the callbacks see it.
struct WndMsgRecord
{
    HWND window;               ///< The hidden window.
    unsigned __int64 message;  ///< The message number, a UINT.
    WPARAM wParam;             ///< As sent.
    LPARAM lParam;             ///< As sent.
    unsigned __int64 unused1;  ///< 0.
    unsigned __int64 unused2;  ///< 0.
};

/// The process's window message server. Used on one thread, the one that first called GetWndMsgServer: its message loop
/// dispatches the callbacks. There is no lock.
///
/// A callback may change the registrations, its own included, and may send further messages to the window. A callback
/// that is removed is not called any more, not even by a dispatch that is under way. One that is added for the message
/// being dispatched is called last in that dispatch.
struct QUON_API QuonWndMsgServer
{
    /// Something that observes window messages.
    struct QUON_API Callback
    {
        /// Has nothing to set up.
        Callback();
        /// Has nothing to copy.
        Callback(const Callback&);
        /// Has nothing to copy.
        Callback& operator=(const Callback&);

        /// Called for each message that the callback is registered for, on the window's thread, before the system's
        /// default handling. A QuonEllipsis that it throws is swallowed.
        /// @param message not owned, valid during the call
        virtual void OnMessage(const WndMsgRecord* message) = 0;
        // Behind OnMessage, which callers expect in the first place of the table.
        /// Whoever allocated the callback deletes it: the server owns none.
        virtual ~Callback();
    };

    /// For the one implementation: callers use GetWndMsgServer.
    QuonWndMsgServer();
    /// There is one server.
    QuonWndMsgServer(const QuonWndMsgServer&) = delete;
    /// There is one server.
    QuonWndMsgServer& operator=(const QuonWndMsgServer&) = delete;
    /// Destroys the window; the callbacks are not touched. Callers never delete the server.
    virtual ~QuonWndMsgServer();

    /// Registers a callback, after those that the message has already. On the window's thread, also from a callback.
    /// @param message the message number
    /// @param cookie receives the registration's cookie: 1 for the first, then one more each time
    /// @param callback not owned
    /// @return S_OK; E_POINTER for a null callback, which uses up no cookie; E_FAIL when there is no memory
    virtual HRESULT AddCallback(const UINT* message, UINT* cookie, Callback* callback) = 0;

    /// Removes a registration. The value is used twice, as message number and as cookie, so only a registration whose
    /// cookie equals its message number can be removed. On the window's thread, also from a callback. Afterwards the
    /// callback is not called any more and may be deleted.
    /// @param value the message number and cookie
    /// @return S_OK; E_INVALIDARG for 0; E_FAIL when there is no such registration
    virtual HRESULT RemoveCallback(const UINT* value) = 0;

    /// @return the hidden window, null when it could not be created
    virtual HWND GetWindow() = 0;

    /// Posts a message to the hidden window and returns at once. May be called on any thread.
    /// @return the result of PostMessageW. Without a window that reaches the calling thread's own
    /// queue.
    virtual BOOL PostToWindow(UINT message, WPARAM wParam, LPARAM lParam) = 0;

    /// Sends a message to the hidden window and waits until its thread has processed it. May be called on any thread.
    /// @return the result of SendMessageW to the hidden window
    virtual LRESULT SendToWindow(UINT message, WPARAM wParam, LPARAM lParam) = 0;

    /// The one server of the process, created with its window on the first call, on the calling thread, and destroyed
    /// at process exit. The first call must not race with another one.
    /// @return the server; null only after its destruction
    static QuonWndMsgServer* GetWndMsgServer();
};
