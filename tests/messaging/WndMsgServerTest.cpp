// Registering and dispatching. The server lives as long as the process and most registrations cannot be removed: each
// test uses message numbers of its own, and its callbacks stand on its stack.
#include "messaging/QuonWndMsgServer.h"

#include "messaging/MessagingTestSupport.h"
#include "base/QuonEllipsis.h"
#include "helpers/AllocationCounter.h"
#include "helpers/FailingAllocation.h"
#include "helpers/ImportPatch.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>
#include <iterator>
#include <memory>
#include <string>
#include <thread>
#include <tuple>
#include <utility>
#include <vector>

using namespace quon_test;
using testing::ElementsAre;
using testing::IsEmpty;

namespace
{

static_assert(sizeof(WndMsgRecord) == 48);
static_assert(offsetof(WndMsgRecord, window) == 0 && offsetof(WndMsgRecord, message) == 8);
static_assert(offsetof(WndMsgRecord, wParam) == 16 && offsetof(WndMsgRecord, lParam) == 24);
static_assert(offsetof(WndMsgRecord, unused1) == 32 && offsetof(WndMsgRecord, unused2) == 40);

constexpr UINT kFirstOwnMessage = WM_APP + 0x1000;
constexpr UINT kMessageThatOnlyRaisesCookies = WM_APP + 0x800;
constexpr LRESULT kDefaultResult = 4711;

using Arguments = std::tuple<HWND, UINT, WPARAM, LPARAM>;

std::vector<std::string> calls;
std::vector<Arguments> defaultCalls;

LRESULT WINAPI RecordingDefWindowProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam)
{
    calls.push_back("default");
    defaultCalls.emplace_back(window, message, wParam, lParam);
    return kDefaultResult;
}

class Recorder : public QuonWndMsgServer::Callback
{
public:
    explicit Recorder(std::string name, bool throws = false) : m_name(std::move(name)), m_throws(throws) {}

    void OnMessage(const WndMsgRecord* message) override
    {
        calls.push_back(m_name);
        m_records.push_back(*message);
        m_threads.push_back(::GetCurrentThreadId());
        if (m_throws)
        {
            throw QuonEllipsis();
        }
    }

    const std::vector<WndMsgRecord>& Records() const { return m_records; }
    const std::vector<DWORD>& Threads() const { return m_threads; }

private:
    std::string m_name;
    bool m_throws;
    std::vector<WndMsgRecord> m_records;
    std::vector<DWORD> m_threads;
};

class WndMsgServer : public testing::Test
{
protected:
    WndMsgServer() : m_server(QuonWndMsgServer::GetWndMsgServer())
    {
        calls.clear();
        defaultCalls.clear();
    }

    static UINT NewMessage() { return s_nextMessage++; }

    UINT Add(UINT message, QuonWndMsgServer::Callback& callback)
    {
        UINT cookie = 0;
        EXPECT_EQ(m_server->AddCallback(&message, &cookie, &callback), S_OK);
        return cookie;
    }

    HRESULT Remove(UINT value) { return m_server->RemoveCallback(&value); }

    /// @return a number above the system's own messages that is the cookie of the next registration
    UINT NextCookie()
    {
        UINT cookie = 0;
        do
        {
            cookie = Add(kMessageThatOnlyRaisesCookies, m_unused);
        } while (cookie < WM_USER);
        return cookie + 1;
    }

    QuonWndMsgServer* m_server;

private:
    static inline UINT s_nextMessage = kFirstOwnMessage;
    // Registered for a message that nobody sends.
    static inline Recorder m_unused{"unused"};
};

class WndMsgServerDispatch : public WndMsgServer
{
private:
    ImportPatch<decltype(&::DefWindowProcW)> m_default{kLibrary, "DefWindowProcW", &RecordingDefWindowProc};
};

TEST_F(WndMsgServer, IsOneAndHasAHiddenWindowOfTheFirstThread)
{
    EXPECT_EQ(QuonWndMsgServer::GetWndMsgServer(), m_server);
    const HWND window = m_server->GetWindow();
    ASSERT_TRUE(::IsWindow(window));
    DWORD process = 0;
    EXPECT_EQ(::GetWindowThreadProcessId(window, &process), ::GetCurrentThreadId());
    EXPECT_EQ(process, ::GetCurrentProcessId());
    EXPECT_FALSE(::IsWindowVisible(window));
    wchar_t name[100] = {};
    ::GetClassNameW(window, name, 100);
    EXPECT_STREQ(name, L"QuonWnd59A9E57ED6664f9e943F19730E161AEE");
    EXPECT_EQ(::GetWindowTextLengthW(window), 0);
}

TEST_F(WndMsgServerDispatch, CallsEachCallbackInTheOrderOfRegistrationThenTheDefault)
{
    const UINT message = NewMessage();
    Recorder first("first");
    Recorder second("second");
    Recorder third("third");
    Add(message, second);
    Add(message, first);
    Add(message, third);
    EXPECT_EQ(m_server->SendToWindow(message, 12, -34), kDefaultResult);
    EXPECT_THAT(calls, ElementsAre("second", "first", "third", "default"));
    EXPECT_THAT(defaultCalls, ElementsAre(Arguments(m_server->GetWindow(), message, 12, -34)));
    ASSERT_EQ(first.Records().size(), 1u);
    const WndMsgRecord& record = first.Records()[0];
    EXPECT_EQ(record.window, m_server->GetWindow());
    EXPECT_EQ(record.message, message);
    EXPECT_EQ(record.wParam, 12u);
    EXPECT_EQ(record.lParam, -34);
    EXPECT_EQ(record.unused1, 0u);
    EXPECT_EQ(record.unused2, 0u);
}

TEST_F(WndMsgServerDispatch, SendsWhatNobodyRegisteredForStraightToTheDefault)
{
    const UINT registered = NewMessage();
    const UINT other = NewMessage();
    Recorder recorder("recorder");
    Add(registered, recorder);
    EXPECT_EQ(m_server->SendToWindow(other, 1, 2), kDefaultResult);
    EXPECT_THAT(calls, ElementsAre("default"));
    EXPECT_THAT(defaultCalls, ElementsAre(Arguments(m_server->GetWindow(), other, 1, 2)));
}

TEST_F(WndMsgServerDispatch, CallsACallbackOnceForEachOfItsRegistrations)
{
    const UINT message = NewMessage();
    Recorder twice("twice");
    Recorder between("between");
    Add(message, twice);
    Add(message, between);
    Add(message, twice);
    m_server->SendToWindow(message, 0, 0);
    EXPECT_THAT(calls, ElementsAre("twice", "between", "twice", "default"));
}

TEST_F(WndMsgServerDispatch, GoesOnAfterACallbackThatThrowsEllipsis)
{
    const UINT message = NewMessage();
    Recorder first("first", true);
    Recorder second("second");
    Recorder third("third", true);
    Add(message, first);
    Add(message, second);
    Add(message, third);
    EXPECT_EQ(m_server->SendToWindow(message, 0, 0), kDefaultResult);
    EXPECT_THAT(calls, ElementsAre("first", "second", "third", "default"));
}

TEST_F(WndMsgServerDispatch, PassesTheWholeWidthOfTheArguments)
{
    const UINT message = NewMessage();
    Recorder recorder("recorder");
    Add(message, recorder);
    const std::pair<WPARAM, LPARAM> rows[] = {
        {0, 0}, {~WPARAM{0}, -1}, {0x123456789abcdef0, 0x7fffffffffffffff}, {1, -0x7fffffffffffffff - 1}};
    for (const auto& [wParam, lParam] : rows)
    {
        SCOPED_TRACE(testing::Message() << wParam << ", " << lParam);
        m_server->SendToWindow(message, wParam, lParam);
        EXPECT_EQ(recorder.Records().back().wParam, wParam);
        EXPECT_EQ(recorder.Records().back().lParam, lParam);
    }
}

TEST_F(WndMsgServer, PostsToTheQueueOfTheWindowsThread)
{
    const UINT message = NewMessage();
    Recorder recorder("recorder");
    Add(message, recorder);
    EXPECT_TRUE(m_server->PostToWindow(message, 5, 6));
    EXPECT_THAT(recorder.Records(), IsEmpty());
    MSG posted = {};
    ASSERT_TRUE(::PeekMessageW(&posted, m_server->GetWindow(), message, message, PM_REMOVE));
    EXPECT_THAT(recorder.Records(), IsEmpty());
    ::DispatchMessageW(&posted);
    ASSERT_EQ(recorder.Records().size(), 1u);
    EXPECT_EQ(recorder.Records()[0].wParam, 5u);
    EXPECT_EQ(recorder.Records()[0].lParam, 6);
}

TEST_F(WndMsgServer, CallsOnTheWindowsThreadWhatAnotherThreadSends)
{
    const UINT message = NewMessage();
    Recorder recorder("recorder");
    Add(message, recorder);
    const Event sent;
    std::thread sender([&] {
        m_server->SendToWindow(message, 1, 0);
        sent.Set();
    });
    // The message is there, and its sender waits until this thread looks for messages.
    const HANDLE handle = sent.Handle();
    EXPECT_EQ(::MsgWaitForMultipleObjectsEx(1, &handle, kPatience, QS_SENDMESSAGE, MWMO_INPUTAVAILABLE),
              WAIT_OBJECT_0 + 1);
    EXPECT_FALSE(sent.IsSet());
    EXPECT_THAT(recorder.Records(), IsEmpty());
    while (::MsgWaitForMultipleObjects(1, &handle, FALSE, kPatience, QS_SENDMESSAGE) == WAIT_OBJECT_0 + 1)
    {
        MSG ignored = {};
        ::PeekMessageW(&ignored, nullptr, 0, 0, PM_NOREMOVE);
    }
    EXPECT_TRUE(sent.IsSet());
    sender.join();
    EXPECT_THAT(recorder.Threads(), ElementsAre(::GetCurrentThreadId()));
}

TEST_F(WndMsgServer, CountsItsCookiesUp)
{
    Recorder recorder("recorder");
    const UINT first = Add(NewMessage(), recorder);
    EXPECT_EQ(Add(NewMessage(), recorder), first + 1);
    EXPECT_EQ(Add(NewMessage(), recorder), first + 2);
}

TEST_F(WndMsgServer, RefusesANullCallbackWithoutUsingUpACookie)
{
    Recorder recorder("recorder");
    const UINT before = Add(NewMessage(), recorder);
    const UINT message = NewMessage();
    UINT cookie = 99;
    EXPECT_EQ(m_server->AddCallback(&message, &cookie, nullptr), static_cast<HRESULT>(0x80004003));
    EXPECT_EQ(cookie, 99u);
    EXPECT_EQ(Add(NewMessage(), recorder), before + 1);
}

TEST_F(WndMsgServer, RemovesOnlyByAValueThatIsMessageAndCookie)
{
    EXPECT_EQ(Remove(0), static_cast<HRESULT>(0x80070057));
    EXPECT_EQ(Remove(0xfffffff0), static_cast<HRESULT>(0x80004005));

    const UINT message = NewMessage();
    Recorder recorder("recorder");
    const UINT cookie = Add(message, recorder);
    ASSERT_NE(cookie, message);
    EXPECT_EQ(Remove(message), static_cast<HRESULT>(0x80004005));
    EXPECT_EQ(Remove(cookie), static_cast<HRESULT>(0x80004005));
    m_server->SendToWindow(message, 0, 0);
    EXPECT_EQ(recorder.Records().size(), 1u);

    const UINT both = NextCookie();
    Recorder removable("removable");
    ASSERT_EQ(Add(both, removable), both);
    m_server->SendToWindow(both, 0, 0);
    EXPECT_EQ(Remove(both), S_OK);
    m_server->SendToWindow(both, 0, 0);
    EXPECT_EQ(removable.Records().size(), 1u);
    EXPECT_EQ(Remove(both), static_cast<HRESULT>(0x80004005));
}

TEST_F(WndMsgServerDispatch, KeepsTheOtherRegistrationsOfTheMessageInOrder)
{
    Recorder before("before");
    Recorder middle("middle");
    Recorder after("after");
    const UINT message = NextCookie() + 1;
    EXPECT_EQ(Add(message, before), message - 1);
    EXPECT_EQ(Add(message, middle), message);
    EXPECT_EQ(Add(message, after), message + 1);
    EXPECT_EQ(Remove(message), S_OK);
    m_server->SendToWindow(message, 0, 0);
    EXPECT_THAT(calls, ElementsAre("before", "after", "default"));
    EXPECT_EQ(Remove(message), E_FAIL);
}

TEST_F(WndMsgServer, ForgetsTheMessageWithItsLastCallback)
{
    Recorder recorder("recorder");
    // The map's table may grow with one registration, and stays so.
    UINT message = NextCookie();
    Add(message, recorder);
    EXPECT_EQ(Remove(message), S_OK);
    message = NextCookie();
    const AllocationCounter counter;
    Add(message, recorder);
    EXPECT_GT(counter.GetLiveCount(), 0u);
    EXPECT_EQ(Remove(message), S_OK);
    EXPECT_EQ(counter.GetLiveCount(), 0u);
}

TEST_F(WndMsgServerDispatch, FailsWithoutMemoryAndRegistersNothing)
{
    Recorder recorder("recorder");
    int failures = 0;
    for (bool failed = true; failed; ++failures)
    {
        SCOPED_TRACE(failures);
        const UINT message = NewMessage();
        const UINT before = NextCookie();
        UINT cookie = 99;
        HRESULT result = S_OK;
        {
            const FailingAllocation failing(failures);
            result = m_server->AddCallback(&message, &cookie, &recorder);
            failed = failing.Failed();
        }
        calls.clear();
        m_server->SendToWindow(message, 0, 0);
        if (failed)
        {
            EXPECT_EQ(result, static_cast<HRESULT>(0x80004005));
            EXPECT_EQ(cookie, 99u);
            EXPECT_THAT(calls, ElementsAre("default"));
        }
        else
        {
            EXPECT_EQ(result, S_OK);
            EXPECT_EQ(cookie, before);
            EXPECT_THAT(calls, ElementsAre("recorder", "default"));
        }
        // A registration that failed has used up its cookie all the same.
        EXPECT_EQ(NextCookie(), before + 2);
    }
    // The list's entry and the map's.
    EXPECT_GE(failures, 3);
}

void* __cdecl ThrowingMalloc(std::size_t)
{
    AfxThrowMemoryException();
}

// With the real framework `new` itself throws so.
TEST_F(WndMsgServerDispatch, FailsAlsoWhenTheAllocatorThrowsTheFrameworksException)
{
    Recorder recorder("recorder");
    const UINT message = NewMessage();
    UINT cookie = 99;
    HRESULT result = S_OK;
    {
        const ImportPatch<void*(__cdecl*)(std::size_t)> malloc{kLibrary, "malloc", &ThrowingMalloc};
        result = m_server->AddCallback(&message, &cookie, &recorder);
    }
    EXPECT_EQ(result, E_FAIL);
    EXPECT_EQ(cookie, 99u);
    m_server->SendToWindow(message, 0, 0);
    EXPECT_THAT(calls, ElementsAre("default"));
}

// Callbacks that change the registrations while their message is being dispatched. A registration can be removed only
// where its cookie is its message number, so each message here has several removable ones: their callbacks are on the
// heap and are deleted as soon as they are removed, so that a walk which still touched one would touch freed memory.
class WndMsgServerReentrance : public WndMsgServerDispatch
{
protected:
    class Acting : public QuonWndMsgServer::Callback
    {
    public:
        Acting(std::string name, std::function<void()> act) : m_name(std::move(name)), m_act(std::move(act)) {}
        void OnMessage(const WndMsgRecord*) override
        {
            calls.push_back(m_name);
            // It may be deleted in what it does.
            const std::function<void()> act = m_act;
            act();
        }

    private:
        std::string m_name;
        std::function<void()> m_act;
    };

    Acting* Make(
        std::string name, std::function<void()> act = [] {})
    {
        m_callbacks.push_back(std::make_unique<Acting>(std::move(name), std::move(act)));
        return m_callbacks.back().get();
    }

    // Registers "before", a removable callback, and "after" for one message, which is returned.
    UINT AddThree(Acting* before, Acting* middle, Acting* after)
    {
        const UINT number = NextCookie() + 1;
        EXPECT_EQ(Add(number, *before), number - 1);
        EXPECT_EQ(Add(number, *middle), number);
        EXPECT_EQ(Add(number, *after), number + 1);
        return number;
    }

    // Removes a registration and deletes its callback.
    void RemoveAndDelete(UINT value, QuonWndMsgServer::Callback* callback)
    {
        EXPECT_EQ(Remove(value), S_OK);
        std::erase_if(m_callbacks, [callback](const auto& candidate) { return candidate.get() == callback; });
        EXPECT_EQ(Remove(value), E_FAIL);
    }

    void SendTwice()
    {
        m_server->SendToWindow(message, 0, 0);
        calls.push_back("-");
        m_server->SendToWindow(message, 0, 0);
    }

    UINT message = 0;
    Acting* removable = nullptr;

private:
    // Those that stay registered must stay alive.
    static inline std::vector<std::unique_ptr<Acting>> m_callbacks;
};

TEST_F(WndMsgServerReentrance, CallbackMayRemoveItself)
{
    removable = Make("itself", [this] { RemoveAndDelete(message, removable); });
    message = AddThree(Make("before"), removable, Make("after"));
    SendTwice();
    EXPECT_THAT(calls, ElementsAre("before", "itself", "after", "default", "-", "before", "after", "default"));
}

TEST_F(WndMsgServerReentrance, CallbackMayRemoveTheNextOne)
{
    const auto removeNext = [this] {
        if (removable != nullptr)
        {
            RemoveAndDelete(message, std::exchange(removable, nullptr));
        }
    };
    removable = Make("next");
    message = AddThree(Make("before", removeNext), removable, Make("after"));
    SendTwice();
    EXPECT_THAT(calls, ElementsAre("before", "after", "default", "-", "before", "after", "default"));
}

TEST_F(WndMsgServerReentrance, CallbackMayRemoveOneBeforeIt)
{
    const auto removePrevious = [this] {
        if (removable != nullptr)
        {
            RemoveAndDelete(message, std::exchange(removable, nullptr));
        }
    };
    removable = Make("previous");
    message = AddThree(Make("before"), removable, Make("after", removePrevious));
    SendTwice();
    EXPECT_THAT(calls, ElementsAre("before", "previous", "after", "default", "-", "before", "after", "default"));
}

TEST_F(WndMsgServerReentrance, CallbackMayRemoveTheOnlyOneWhichIsItself)
{
    removable = Make("only", [this] { RemoveAndDelete(message, removable); });
    message = NextCookie();
    ASSERT_EQ(Add(message, *removable), message);
    SendTwice();
    EXPECT_THAT(calls, ElementsAre("only", "default", "-", "default"));
}

TEST_F(WndMsgServerReentrance, EmptyListGoesWithTheDispatchThatEmptiedIt)
{
    // The map's table may grow with one registration, and stays so.
    message = NextCookie();
    Recorder recorder("recorder");
    Add(message, recorder);
    ASSERT_EQ(Remove(message), S_OK);
    message = NextCookie();
    removable = Make("only", [this] { EXPECT_EQ(Remove(message), S_OK); });
    const AllocationCounter counter;
    ASSERT_EQ(Add(message, *removable), message);
    EXPECT_GT(counter.GetLiveCount(), 0u);
    m_server->SendToWindow(message, 0, 0);
    EXPECT_EQ(counter.GetLiveCount(), 0u);
}

TEST_F(WndMsgServerReentrance, CallbackMayRemoveItselfAndAddItselfAgain)
{
    // Its new cookie is not its message number, so it comes again, at the end, and stays.
    removable = Make("again", [this] {
        if (Remove(message) == S_OK)
        {
            Add(message, *removable);
        }
    });
    message = AddThree(Make("before"), removable, Make("after"));
    SendTwice();
    EXPECT_THAT(
        calls, ElementsAre("before", "again", "after", "again", "default", "-", "before", "after", "again", "default"));
}

TEST_F(WndMsgServerReentrance, CallbackThatIsAddedIsCalledInTheSameDispatch)
{
    Acting* const added = Make("added");
    bool hasAdded = false;
    message = NewMessage();
    Add(message, *Make("adder", [&] {
            if (!std::exchange(hasAdded, true))
            {
                Add(message, *added);
            }
        }));
    SendTwice();
    EXPECT_THAT(calls, ElementsAre("adder", "added", "default", "-", "adder", "added", "default"));
}

TEST_F(WndMsgServerReentrance, CallbackMayAddForManyOtherMessages)
{
    // So many that the map of messages is rebuilt.
    Acting* const other = Make("other");
    bool hasAdded = false;
    message = NewMessage();
    Add(message, *Make("adder", [&] {
            for (int count = 0; !hasAdded && count < 5000; ++count)
            {
                Add(NewMessage(), *other);
            }
            hasAdded = true;
        }));
    Add(message, *Make("after"));
    SendTwice();
    EXPECT_THAT(calls, ElementsAre("adder", "after", "default", "-", "adder", "after", "default"));
}

TEST_F(WndMsgServerReentrance, CallbackMaySendTheSameMessageAgain)
{
    bool isNested = false;
    const auto sendOnce = [&] {
        if (!std::exchange(isNested, true))
        {
            m_server->SendToWindow(message, 0, 0);
        }
    };
    message = NewMessage();
    Add(message, *Make("sender", sendOnce));
    Add(message, *Make("after"));
    m_server->SendToWindow(message, 0, 0);
    EXPECT_THAT(calls, ElementsAre("sender", "sender", "after", "default", "after", "default"));
}

TEST_F(WndMsgServerReentrance, NestedDispatchMayRemoveTheOneThatTheOuterIsAt)
{
    bool isNested = false;
    removable = Make("removable", [&] {
        if (!std::exchange(isNested, true))
        {
            m_server->SendToWindow(message, 0, 0);
            // The nested dispatch has ended, this one has not: its entry must still be in its place.
            RemoveAndDelete(message, removable);
            m_server->SendToWindow(message, 0, 0);
        }
    });
    message = AddThree(Make("before"), removable, Make("after"));
    m_server->SendToWindow(message, 0, 0);
    EXPECT_THAT(calls, ElementsAre("before", "removable",                      // the outer one
                                   "before", "removable", "after", "default",  // the first nested one
                                   "before", "after", "default",               // the second
                                   "after", "default"));
}

TEST_F(WndMsgServerReentrance, ExceptionThatPassesThroughEndsTheDispatchInOrder)
{
    bool throws = true;
    removable = Make("thrower", [&] {
        if (std::exchange(throws, false))
        {
            EXPECT_EQ(Remove(message), S_OK);
            throw 5;
        }
    });
    message = AddThree(Make("before"), removable, Make("after"));
    // Straight to the window procedure: on Windows, the system between here and there need not let exceptions through.
    const auto procedure = reinterpret_cast<WNDPROC>(::GetWindowLongPtrW(m_server->GetWindow(), GWLP_WNDPROC));
    EXPECT_THROW(procedure(m_server->GetWindow(), message, 0, 0), int);
    calls.clear();
    m_server->SendToWindow(message, 0, 0);
    EXPECT_THAT(calls, ElementsAre("before", "after", "default"));
    // Removal works at once again: a dispatch that was counted and never ended would put it off for ever.
    const UINT other = NextCookie();
    Recorder recorder("recorder");
    const AllocationCounter live;
    Add(other, recorder);
    EXPECT_EQ(Remove(other), S_OK);
    EXPECT_EQ(live.GetLiveCount(), 0u);
}

#if defined(__GNUC__)
TEST(WndMsgServerLayout, KeepsTheOrderOfItsVirtualFunctions)
{
    EXPECT_EQ(SlotOf(&QuonWndMsgServer::AddCallback), 2u);
    EXPECT_EQ(SlotOf(&QuonWndMsgServer::RemoveCallback), 3u);
    EXPECT_EQ(SlotOf(&QuonWndMsgServer::GetWindow), 4u);
    EXPECT_EQ(SlotOf(&QuonWndMsgServer::PostToWindow), 5u);
    EXPECT_EQ(SlotOf(&QuonWndMsgServer::SendToWindow), 6u);
    EXPECT_EQ(SlotOf(&QuonWndMsgServer::Callback::OnMessage), 0u);
}
#endif

}  // namespace
