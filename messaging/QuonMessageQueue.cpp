#include "messaging/QuonMessageQueue.h"

#include "base/MemoryInternal.h"
#include "messaging/QuonCallback.h"

#include <memory>

QuonMessage::QuonMessage() = default;
QuonMessage::QuonMessage(const QuonMessage&) = default;
QuonMessage& QuonMessage::operator=(const QuonMessage&) = default;
QuonMessage::~QuonMessage() = default;

namespace
{

constexpr DWORD kRightToQueueCalls = THREAD_SET_CONTEXT;

// What travels to the consumer thread with a procedure call: the queue and the message, as two pointers.
struct PostWork
{
    QuonMessageQueue* queue;
    QuonMessage* message;
};
static_assert(sizeof(PostWork) == 16, "two pointers");

HANDLE MakeHandleOfCallingThread()
{
    HANDLE thread = nullptr;
    ::DuplicateHandle(::GetCurrentProcess(), ::GetCurrentThread(), ::GetCurrentProcess(), &thread, kRightToQueueCalls,
                      FALSE, 0);
    return thread;
}

// Runs the calls pending for this thread, which append to the list and may close the queue; both are read afterwards.
QuonServerResult Deliver(const CList<QuonMessage*, QuonMessage*>& queue, const bool& closed, QuonMessage** message)
{
    ::SleepEx(0, TRUE);
    *message = nullptr;
    if (!queue.IsEmpty())
    {
        return kQuonServerOk;
    }
    return closed ? kQuonServerQueueClosed : kQuonServerQueueEmpty;
}

}  // namespace

QuonMessageQueue::QuonMessageQueue(QuonCallback* callback, HANDLE thread)
    : m_queue(10),
      m_thread(thread != nullptr ? thread : MakeHandleOfCallingThread()),
      m_closed(false),
      m_callback(callback)
{
}

QuonMessageQueue::~QuonMessageQueue() = default;

QuonServerResult QuonMessageQueue::PeekNext(QuonMessage** message)
{
    const QuonServerResult result = Deliver(m_queue, m_closed, message);
    if (result == kQuonServerOk)
    {
        *message = m_queue.GetHead();
    }
    return result;
}

QuonServerResult QuonMessageQueue::GetNext(QuonMessage** message)
{
    const QuonServerResult result = Deliver(m_queue, m_closed, message);
    if (result == kQuonServerOk)
    {
        *message = m_queue.RemoveHead();
    }
    return result;
}

QuonServerResult QuonMessageQueue::Post(QuonMessage* message)
{
    if (message == nullptr)
    {
        return kQuonServerNullMessage;
    }
    std::unique_ptr<PostWork> work = MakeInMemory<PostWork>(PostWork{this, message});
    if (work == nullptr)
    {
        return kQuonServerOutOfMemory;
    }
    // From here on the block is the consumer's. One that could not be queued is not freed.
    return ::QueueUserAPC(&QuonMessageQueue::PostApc, m_thread, reinterpret_cast<ULONG_PTR>(work.release())) != 0
               ? kQuonServerOk
               : kQuonServerRefused;
}

QuonServerResult QuonMessageQueue::Close()
{
    m_closed = true;
    return kQuonServerRefused;
}

QuonCallback* QuonMessageQueue::GetCallback() const
{
    return m_callback;
}

void CALLBACK QuonMessageQueue::PostApc(ULONG_PTR workBlock)
{
    const std::unique_ptr<PostWork> work(reinterpret_cast<PostWork*>(workBlock));
    QuonMessageQueue* const queue = work->queue;
    queue->m_queue.AddTail(work->message);
    if (queue->m_callback != nullptr)
    {
        queue->m_callback->Invoke();
    }
}

void CALLBACK QuonMessageQueue::CloseApc(ULONG_PTR workBlock)
{
    // Only the first field is known of this block, not its size.
    void* const block = reinterpret_cast<void*>(workBlock);
    QuonMessageQueue* const queue = *static_cast<QuonMessageQueue**>(block);
    queue->m_closed = true;
    if (queue->m_callback != nullptr)
    {
        queue->m_callback->Invoke();
    }
    ::operator delete(block);
}
