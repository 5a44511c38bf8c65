#include "messaging/QuonCallback.h"

#include "messaging/MessagingTestSupport.h"
#include "helpers/ImportPatch.h"

#include <gtest/gtest.h>

#include <vector>

using namespace quon_test;

namespace
{

struct Signalled
{
    HANDLE event;
    bool pulsed;
};

std::vector<Signalled> signalled;
BOOL nextResult = TRUE;

BOOL WINAPI RecordingSetEvent(HANDLE event)
{
    signalled.push_back({event, false});
    return nextResult;
}

BOOL WINAPI RecordingPulseEvent(HANDLE event)
{
    signalled.push_back({event, true});
    return nextResult;
}

TEST(HEventCallback, SetsOrPulsesAndReturnsTheSystemsResult)
{
    const ImportPatch<decltype(&::SetEvent)> set(kLibrary, "SetEvent", &RecordingSetEvent);
    const ImportPatch<decltype(&::PulseEvent)> pulse(kLibrary, "PulseEvent", &RecordingPulseEvent);
    const Event event;
    for (const bool pulsed : {false, true})
    {
        for (const BOOL result : {TRUE, FALSE, 7})
        {
            SCOPED_TRACE(testing::Message() << "pulse " << pulsed << ", result " << result);
            signalled.clear();
            nextResult = result;
            QuonHEVENTCallback callback(event.Handle(), pulsed);
            QuonCallback& asBase = callback;
            EXPECT_EQ(asBase.Invoke(), result);
            ASSERT_EQ(signalled.size(), 1u);
            EXPECT_EQ(signalled[0].event, event.Handle());
            EXPECT_EQ(signalled[0].pulsed, pulsed);
        }
    }
}

TEST(HEventCallback, WithoutPulseLeavesAManualResetEventSignalled)
{
    const Event event;
    QuonHEVENTCallback callback(event.Handle(), false);
    EXPECT_TRUE(callback.Invoke());
    EXPECT_TRUE(event.IsSet());
    EXPECT_TRUE(event.IsSet());
}

TEST(HEventCallback, WithPulseLeavesTheEventUnsignalled)
{
    const Event event;
    QuonHEVENTCallback callback(event.Handle(), true);
    event.Set();
    EXPECT_TRUE(callback.Invoke());
    EXPECT_FALSE(event.IsSet());
}

struct Waiter
{
    HANDLE event;
    DWORD result;
};

DWORD WINAPI WaitForEvent(void* argument)
{
    auto* waiter = static_cast<Waiter*>(argument);
    waiter->result = ::WaitForSingleObject(waiter->event, kPatience);
    return 0;
}

TEST(HEventCallback, WithPulseReleasesTheThreadsThatWait)
{
    const Event event;
    QuonHEVENTCallback callback(event.Handle(), true);
    Waiter waiter = {event.Handle(), WAIT_FAILED};
    const HANDLE thread = ::CreateThread(nullptr, 0, &WaitForEvent, &waiter, 0, nullptr);
    // Nobody can see whether the other thread waits already: pulse until it has ended, released or out of patience.
    DWORD ended = WAIT_TIMEOUT;
    while (ended == WAIT_TIMEOUT)
    {
        EXPECT_TRUE(callback.Invoke());
        ended = ::WaitForSingleObject(thread, 10);
    }
    EXPECT_EQ(ended, WAIT_OBJECT_0);
    EXPECT_EQ(waiter.result, WAIT_OBJECT_0);
    EXPECT_FALSE(event.IsSet());
    ::CloseHandle(thread);
}

TEST(HEventCallback, DoesNotOwnTheEvent)
{
    const Event event;
    {
        const QuonHEVENTCallback callback(event.Handle(), false);
        const QuonHEVENTCallback copy(callback);
    }
    event.Set();
    EXPECT_TRUE(event.IsSet());
}

TEST(HEventCallback, CopiesSignalTheSameEventInTheSameWay)
{
    const Event first;
    const Event second;
    const QuonHEVENTCallback original(first.Handle(), false);
    QuonHEVENTCallback copy(original);
    EXPECT_TRUE(copy.Invoke());
    EXPECT_TRUE(first.IsSet());
    first.Reset();
    QuonHEVENTCallback assigned(second.Handle(), true);
    assigned = original;
    EXPECT_TRUE(assigned.Invoke());
    EXPECT_TRUE(first.IsSet());
    EXPECT_FALSE(second.IsSet());
}

TEST(HEventCallback, FailsForAHandleThatIsNone)
{
    QuonHEVENTCallback set(nullptr, false);
    QuonHEVENTCallback pulse(nullptr, true);
    EXPECT_FALSE(set.Invoke());
    EXPECT_FALSE(pulse.Invoke());
}

TEST(HEventCallback, KeepsItsLayout)
{
    const Event event;
    const QuonHEVENTCallback callback(event.Handle(), true);
    EXPECT_EQ(sizeof(QuonCallback), sizeof(void*));
    EXPECT_EQ(sizeof(callback), 24u);
    EXPECT_TRUE(FieldAt<bool>(callback, 8));
    EXPECT_EQ(FieldAt<HANDLE>(callback, 16), event.Handle());
#if !defined(_MSC_VER)
    EXPECT_EQ(SlotOf(&QuonCallback::Invoke), 2u);
#endif
}

}  // namespace
