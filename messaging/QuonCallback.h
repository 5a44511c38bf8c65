/// @file
/// The one-operation callback and its implementation that signals an event.
#pragma once

#include <afx.h>

#include "module/Export.h"

/// Something to be told that has happened. The message queue calls one when a message arrives.
class QUON_API QuonCallback
{
public:
    QuonCallback();
    QuonCallback(const QuonCallback&);
    QuonCallback& operator=(const QuonCallback&);
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
    QuonHEVENTCallback(const QuonHEVENTCallback&);
    QuonHEVENTCallback& operator=(const QuonHEVENTCallback&);
    ~QuonHEVENTCallback() override;

    /// @return the result of PulseEvent or SetEvent
    BOOL Invoke() override;

private:
    bool m_pulse;
    HANDLE m_event;
};
