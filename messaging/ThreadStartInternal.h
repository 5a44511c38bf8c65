/// @file
/// The handshake between a thread that starts another and the one that is started.
#pragma once

#include <afx.h>

/// What a new thread is handed. It is in the frame of the starter, which waits for `started` before it returns: the
/// thread copies it before it sets the event.
template <typename Owner>
struct ThreadStart
{
    HANDLE started;  ///< An event; the starter's.
    Owner* owner;    ///< The object that the thread works for.

    /// @param argument the argument of the thread's start routine
    static ThreadStart Copy(const void* argument) { return *static_cast<const ThreadStart*>(argument); }
};
