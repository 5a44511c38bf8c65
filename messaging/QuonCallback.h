/// @file
/// The one-operation callback and its implementation that signals an event.
#pragma once

#include <afx.h>

#include "base/Export.h"

/// Something to be told that has happened. The message queue calls one when a message arrives.
class QUON_API QuonCallback
{
public:
    /// Has nothing to set up.
    QuonCallback();
    /// Has nothing to copy.
    QuonCallback(const QuonCallback&);
    /// Has nothing to copy.
    QuonCallback& operator=(const QuonCallback&);
    /// Whoever allocated the callback deletes it: the library owns none.
    virtual ~QuonCallback();

    /// Called on the thread that the caller of the callback names.
    /// @return nonzero on success
    virtual BOOL Invoke() = 0;
};

/// A callback that signals a Win32 event.
class QUON_API QuonHEVENTCallback : public QuonCallback
{
public:
    /// @param event the event to signal; not owned, never closed
    /// @param pulse true to release only the threads that wait at that moment (PulseEvent), false to set the event
    QuonHEVENTCallback(HANDLE event, bool pulse);
    /// A second callback for the same event.
    QuonHEVENTCallback(const QuonHEVENTCallback&);
    /// Takes over the other's event and way of signalling it.
    QuonHEVENTCallback& operator=(const QuonHEVENTCallback&);
    /// Leaves the event open.
    ~QuonHEVENTCallback() override;

    /// Signals the event.
    /// @return the result of PulseEvent or SetEvent
    BOOL Invoke() override;

private:
    // In this order: other modules were built against this layout.
    bool m_pulse;
    HANDLE m_event;
};
