// Messages from thread to thread: 10,000 at once, and one there and one back.
// asio brings the current sockets, which exclude the old ones of the full <windows.h>.
#define WIN32_LEAN_AND_MEAN
#include <afx.h>

#include "Mailboxes.h"

#include "BenchmarkSupport.h"

#include <benchmark/benchmark.h>

#include <future>
#include <memory>
#include <string>
#include <thread>

using namespace quon_benchmark;

namespace
{

// A letter of this value ends the partner; an odd one is answered, an even one only counted.
constexpr int kStop = -1;
constexpr int kCounted = 2;
constexpr int kAnswered = 3;

// A thread that takes what is sent to it, and answers to the mailbox of the thread that made it.
template <typename Mailbox>
class Partner
{
public:
    Partner()
    {
        std::promise<Mailbox*> ready;
        std::future<Mailbox*> theirs = ready.get_future();
        m_thread = std::thread([this, &ready] { Run(ready); });
        m_theirs = theirs.get();
    }
    ~Partner()
    {
        m_theirs->Post(new Letter(kStop));
        m_thread.join();
    }
    Partner(const Partner&) = delete;
    Partner& operator=(const Partner&) = delete;

    // Sends that many letters; the last one is answered.
    int Burst(int count)
    {
        for (int index = 1; index < count; ++index)
        {
            m_theirs->Post(new Letter(kCounted));
        }
        return Ask();
    }

    // Sends that many letters, each after the answer to the one before.
    int PingPong(int count)
    {
        int received = 0;
        for (int index = 0; index < count; ++index)
        {
            received += Ask();
        }
        return received;
    }

private:
    int Ask()
    {
        m_theirs->Post(new Letter(kAnswered));
        const std::unique_ptr<Letter> answer(m_ours.Take());
        return answer->value;
    }

    // An answer tells how many letters came since the last one.
    void Run(std::promise<Mailbox*>& ready)
    {
        Mailbox mailbox;
        ready.set_value(&mailbox);
        for (int received = 0;;)
        {
            const std::unique_ptr<Letter> letter(mailbox.Take());
            if (letter->value == kStop)
            {
                return;
            }
            ++received;
            if (letter->value == kAnswered)
            {
                m_ours.Post(new Letter(received));
                received = 0;
            }
        }
    }

    Mailbox m_ours;
    Mailbox* m_theirs = nullptr;
    std::thread m_thread;
};

template <typename Mailbox>
void AddContender(const Sizes& sizes, const std::string& contender)
{
    const auto partner = std::make_shared<Partner<Mailbox>>();
    Require(partner->Burst(100) == 100 && partner->PingPong(100) == 100, "letters by " + contender);
    for (const int size : sizes.UpTo(10000))
    {
        Add("burst", size, contender, [partner, size] { benchmark::DoNotOptimize(partner->Burst(size)); });
    }
    for (const int size : sizes.UpTo(2000))
    {
        Add("ping-pong", size, contender, [partner, size] { benchmark::DoNotOptimize(partner->PingPong(size)); });
    }
}

void AddContenders(const Sizes& sizes)
{
    AddContender<QuonMailbox>(sizes, "quon");
    AddContender<ApcMailbox<true>>(sizes, "limit: bare QueueUserAPC, SleepEx for each message");
    AddContender<ApcMailbox<false>>(sizes, "bare QueueUserAPC, SleepEx when there is none");
    AddContender<LockFreeMailbox>(sizes, "moodycamel::ConcurrentQueue 1.0.3 and an event");
    AddContender<AsioMailbox>(sizes, "asio::post 1.22.1");
}

}  // namespace

int main(int argc, char** argv)
{
    return Run(argc, argv, &AddContenders);
}
