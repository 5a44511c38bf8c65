/// @file
/// What a server thread calls when a handle is signalled.
#pragma once

#include <afx.h>

#include "module/Export.h"

#include <cstdint>

/// Serves one waitable handle on a QuonServerThread. Allocated with `new`: at its end the server thread deletes the
/// handlers whose handles are signalled then.
class QUON_API QuonServerEventHandler
{
public:
    /// @param owner a value of the caller's, only stored
    explicit QuonServerEventHandler(std::uintptr_t owner);
    QuonServerEventHandler(const QuonServerEventHandler&);
    QuonServerEventHandler& operator=(const QuonServerEventHandler&);
    virtual ~QuonServerEventHandler();

    /// Replaces the owner value.
    virtual void SetOwner(std::uintptr_t owner);
    /// @return the waitable handle that this handler serves; the same at every call while it is registered
    virtual HANDLE GetHandle() = 0;
    /// Called on the server thread when the handle is signalled or abandoned. A handle that stays signalled calls again
    /// at once.
    virtual void OnSignaled() = 0;
    /// Called on the server thread at its end, after the last OnSignaled. Does nothing by default.
    virtual void OnClose();

protected:
    std::uintptr_t m_owner;
};

/// A handler that serves a socket.
class QUON_API QuonSocket : public QuonServerEventHandler
{
public:
    /// @param owner as for QuonServerEventHandler
    explicit QuonSocket(std::uintptr_t owner);
    QuonSocket(const QuonSocket&);
    QuonSocket& operator=(const QuonSocket&);
    ~QuonSocket() override;

    /// @return the socket; the library never asks
    virtual std::uintptr_t GetSocket() = 0;
};
