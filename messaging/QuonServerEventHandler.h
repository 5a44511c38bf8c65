/// @file
/// What a server thread calls when a handle is signalled.
#pragma once

#include <afx.h>

#include "base/Export.h"

#include <cstdint>

/// Serves one waitable handle on a QuonServerThread. Allocated with `new`: at its end the server thread deletes the
/// handlers whose handles are signalled then.
class QUON_API QuonServerEventHandler
{
public:
    /// @param owner a value of the caller's, only stored
    explicit QuonServerEventHandler(std::uintptr_t owner);
    /// Copies the owner value.
    QuonServerEventHandler(const QuonServerEventHandler&);
    /// Copies the owner value.
    QuonServerEventHandler& operator=(const QuonServerEventHandler&);
    /// Runs on the server thread when that thread deletes the handler.
    virtual ~QuonServerEventHandler();

    /// Replaces the owner value.
    virtual void SetOwner(std::uintptr_t owner);
    /// @return the waitable handle that this handler serves; the same at every call while it is registered
    virtual HANDLE GetHandle() = 0;
    /// Called on the server thread when the handle is signalled or abandoned. A handle that stays signalled calls again
    /// at once, and until it is not signalled any more the thread runs no procedure call: neither AddHandler nor
    /// RemoveHandler takes effect. To stop being called without resetting the handle, call DoRemoveHandler of the
    /// server thread from here.
    virtual void OnSignaled() = 0;
    /// Called on the server thread at its end, after the last OnSignaled. Does nothing by default.
    virtual void OnClose();

protected:
    std::uintptr_t m_owner;  ///< The caller's value.
};

/// A handler that serves a socket.
class QUON_API QuonSocket : public QuonServerEventHandler
{
public:
    /// @param owner as for QuonServerEventHandler
    explicit QuonSocket(std::uintptr_t owner);
    /// Copies the owner value.
    QuonSocket(const QuonSocket&);
    /// Copies the owner value.
    QuonSocket& operator=(const QuonSocket&);
    /// Closes nothing: the socket is the derived class's.
    ~QuonSocket() override;

    /// @return the socket; the library never asks
    virtual std::uintptr_t GetSocket() = 0;
};
