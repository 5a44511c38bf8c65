/// @file
/// A queue of messages that are delivered to one thread by asynchronous procedure calls.
#pragma once

#include <afx.h>
#include <afxtempl.h>

#include "base/Export.h"
#include "messaging/QuonServerResult.h"

class QuonCallback;

/// Base of everything that is posted to a message queue.
class QUON_API QuonMessage
{
public:
    /// Has nothing to set up.
    QuonMessage();
    /// Has nothing to copy.
    QuonMessage(const QuonMessage&);
    /// Has nothing to copy.
    QuonMessage& operator=(const QuonMessage&);
    /// Called by the consumer, which owns what GetNext gave it.
    virtual ~QuonMessage() = 0;
};

/// A queue owned by one consumer thread. Any thread posts; a message is appended on the consumer thread the next time
/// that thread waits alertably, or looks into the queue. Messages of one producer arrive in the order of their posting.
class QUON_API QuonMessageQueue
{
public:
    /// @param callback told on the consumer thread of each message that arrived; may be null, not owned
    /// @param thread the consumer, a handle with the right to queue procedure calls, kept as it is; null for the
    /// calling thread, of which the queue then makes itself a handle that it never closes
    QuonMessageQueue(QuonCallback* callback, HANDLE thread);
    /// Messages on their way point to the queue.
    QuonMessageQueue(const QuonMessageQueue&) = delete;
    /// Messages on their way point to the queue.
    QuonMessageQueue& operator=(const QuonMessageQueue&) = delete;

    /// Messages still in the queue are not deleted. No message may be on its way any more.
    virtual ~QuonMessageQueue();

    /// Delivers what was posted, and looks at the first message. On the consumer thread only.
    /// @param message receives the first message, which stays in the queue; null when there is none
    /// @return kQuonServerOk, kQuonServerQueueEmpty, or kQuonServerQueueClosed when the queue is empty and closed
    virtual QuonServerResult PeekNext(QuonMessage** message);

    /// Delivers what was posted, and takes the first message out. On the consumer thread only.
    /// @param message receives the message, which is then the caller's to delete; null when there is none
    /// @return as for PeekNext
    virtual QuonServerResult GetNext(QuonMessage** message);

    /// Sends a message to the consumer thread. May be called on any thread.
    /// @param message the queue's once it has arrived
    /// @return kQuonServerOk; kQuonServerNullMessage; kQuonServerOutOfMemory; kQuonServerRefused when it could not be
    /// queued. The message stays the caller's unless the result is kQuonServerOk.
    virtual QuonServerResult Post(QuonMessage* message);

    /// Marks the queue closed, at once and on the calling thread. Messages already in it, and messages posted later,
    /// are still delivered.
    /// @return kQuonServerRefused, always
    virtual QuonServerResult Close();

    /// @return the callback given to the constructor
    QuonCallback* GetCallback() const;

    /// Carries Post to the consumer thread: appends the message and calls the callback.
    /// @param workBlock what Post allocated; freed
    static void CALLBACK PostApc(ULONG_PTR workBlock);
    /// Closes a queue on its consumer thread and calls its callback.
    /// @param workBlock a block from the global operator new that begins with a pointer to the queue; freed
    static void CALLBACK CloseApc(ULONG_PTR workBlock);

private:
    // In this order: other modules were built against this layout.
    CList<QuonMessage*, QuonMessage*> m_queue;
    HANDLE m_thread;
    bool m_closed;
    QuonCallback* m_callback;
};
