/// @file
/// Ways to send a message to a thread, each with the same two operations: Post, from any thread, and Take, on the
/// thread that made the mailbox. A message is made with `new` by who posts it and deleted by who takes it.
#pragma once

#include <afx.h>

#include "messaging/QuonCallback.h"
#include "messaging/QuonMessageQueue.h"

#include <winsock2.h>
#include <concurrentqueue/concurrentqueue.h>

#include <asio.hpp>
#include <deque>

namespace quon_benchmark
{

/// What is sent.
struct Letter : QuonMessage
{
    explicit Letter(int number) : value(number) {}
    int value;
};

/// The library's queue. Its callback tells of each message that was delivered, so that its reader waits only when there
/// is none.
class QuonMailbox
{
public:
    void Post(Letter* letter) { m_queue.Post(letter); }

    Letter* Take()
    {
        while (m_delivered.count == 0)
        {
            ::SleepEx(INFINITE, TRUE);
        }
        QuonMessage* message = nullptr;
        m_queue.GetNext(&message);
        --m_delivered.count;
        return static_cast<Letter*>(message);
    }

private:
    struct Delivered final : QuonCallback
    {
        BOOL Invoke() override
        {
            ++count;
            return TRUE;
        }

        int count = 0;
    };

    Delivered m_delivered;
    QuonMessageQueue m_queue{&m_delivered, nullptr};
};

/// A procedure call of the system for each message, which appends it to a list. Whether what was posted is delivered
/// before each message is taken, as the library's queue promises, or only when there is none left.
template <bool deliverEachTime>
class ApcMailbox
{
public:
    ApcMailbox()
    {
        ::DuplicateHandle(::GetCurrentProcess(), ::GetCurrentThread(), ::GetCurrentProcess(), &m_thread,
                          THREAD_SET_CONTEXT, FALSE, 0);
    }
    ~ApcMailbox() { ::CloseHandle(m_thread); }
    ApcMailbox(const ApcMailbox&) = delete;
    ApcMailbox& operator=(const ApcMailbox&) = delete;

    void Post(Letter* letter)
    {
        ::QueueUserAPC(&Deliver, m_thread, reinterpret_cast<ULONG_PTR>(new Delivery{this, letter}));
    }

    Letter* Take()
    {
        if (deliverEachTime)
        {
            ::SleepEx(0, TRUE);
        }
        while (m_letters.empty())
        {
            ::SleepEx(INFINITE, TRUE);
        }
        Letter* const letter = m_letters.front();
        m_letters.pop_front();
        return letter;
    }

private:
    struct Delivery
    {
        ApcMailbox* mailbox;
        Letter* letter;
    };

    static void CALLBACK Deliver(ULONG_PTR parameter)
    {
        auto* const delivery = reinterpret_cast<Delivery*>(parameter);
        delivery->mailbox->m_letters.push_back(delivery->letter);
        delete delivery;
    }

    HANDLE m_thread = nullptr;
    std::deque<Letter*> m_letters;
};

/// A lock-free queue and an event that wakes its reader.
class LockFreeMailbox
{
public:
    LockFreeMailbox() : m_event(::CreateEventW(nullptr, FALSE, FALSE, nullptr)) {}
    ~LockFreeMailbox() { ::CloseHandle(m_event); }
    LockFreeMailbox(const LockFreeMailbox&) = delete;
    LockFreeMailbox& operator=(const LockFreeMailbox&) = delete;

    void Post(Letter* letter)
    {
        m_letters.enqueue(letter);
        ::SetEvent(m_event);
    }

    Letter* Take()
    {
        Letter* letter = nullptr;
        while (!m_letters.try_dequeue(letter))
        {
            ::WaitForSingleObject(m_event, INFINITE);
        }
        return letter;
    }

private:
    HANDLE m_event;
    moodycamel::ConcurrentQueue<Letter*> m_letters;
};

/// An event loop.
class AsioMailbox
{
public:
    void Post(Letter* letter)
    {
        asio::post(m_context, [this, letter] { m_letters.push_back(letter); });
    }

    Letter* Take()
    {
        while (m_letters.empty())
        {
            m_context.run_one();
        }
        Letter* const letter = m_letters.front();
        m_letters.pop_front();
        return letter;
    }

private:
    asio::io_context m_context;
    asio::executor_work_guard<asio::io_context::executor_type> m_work = asio::make_work_guard(m_context);
    std::deque<Letter*> m_letters;
};

}  // namespace quon_benchmark
