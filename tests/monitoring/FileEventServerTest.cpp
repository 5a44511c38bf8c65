// Subscribing and unsubscribing, as callers see it.
#include "monitoring/FakeFolders.h"

#include "helpers/FailingAllocation.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using namespace quon_test;
using testing::ElementsAre;
using testing::IsEmpty;

namespace
{

// What the library posted to threads; the messages go on their way unless an error is set.
struct PostedMessage
{
    DWORD thread;
    UINT number;
    WPARAM wParam;
    LPARAM lParam;
};

std::vector<PostedMessage> posted;
bool isPostingBroken = false;
DWORD postingError = 0;

BOOL WINAPI RecordingPostThreadMessage(DWORD thread, UINT number, WPARAM wParam, LPARAM lParam)
{
    // The watcher's own messages are not looked at here.
    if (thread == TheWatcherThread().id && ::GetCurrentThreadId() != thread)
    {
        posted.push_back({thread, number, wParam, lParam});
    }
    if (isPostingBroken)
    {
        ::SetLastError(postingError);
        return FALSE;
    }
    return ::PostThreadMessageW(thread, number, wParam, lParam);
}

class FileEventServer : public testing::Test
{
protected:
    FileEventServer()
    {
        posted.clear();
        isPostingBroken = false;
    }

    FakeWatch watch;
    Patch<decltype(&::PostThreadMessageW)> patch{kLibrary, "PostThreadMessageW", &RecordingPostThreadMessage};
};

TEST_F(FileEventServer, PostsSubscriptionsToTheWatcher)
{
    QuonFileEventId id = 0;
    ASSERT_EQ(watch.server->Subscribe(L"c:\\d\\f", 0x18, &watch.sink, &id), S_OK);
    ASSERT_EQ(posted.size(), 1u);
    EXPECT_EQ(posted[0].number, kMsgAdd);
    EXPECT_EQ(posted[0].wParam, 0u);
    EXPECT_EQ(posted[0].lParam, static_cast<LPARAM>(id));

    EXPECT_EQ(watch.server->Unsubscribe(id), S_OK);
    ASSERT_EQ(posted.size(), 2u);
    EXPECT_EQ(posted[1].number, kMsgRemove);
    EXPECT_EQ(posted[1].wParam, 0u);
    EXPECT_EQ(posted[1].lParam, static_cast<LPARAM>(id));
}

TEST_F(FileEventServer, GivesEachSubscriptionItsOwnIdentifier)
{
    const QuonFileEventId first = watch.Subscribe(L"c:\\d\\f", 0x1);
    const QuonFileEventId second = watch.Subscribe(L"c:\\d\\f", 0x1);
    EXPECT_NE(first, 0u);
    EXPECT_NE(second, 0u);
    EXPECT_NE(first, second);
}

// The caller may change its path as soon as Subscribe has returned.
TEST_F(FileEventServer, CopiesThePath)
{
    const Event go;
    watch.folders.onRead = [&go](const std::wstring&) { go.Wait(); };
    wchar_t path[] = L"c:\\one";
    watch.Subscribe(path, 0x1);
    path[3] = L'X';
    go.Set();
    EXPECT_TRUE(watch.Barrier());
    watch.folders.onRead = nullptr;
    EXPECT_THAT(watch.folders.TakeCalls(), ElementsAre("read c:\\one", "watch c:\\one 0 1"));
}

TEST_F(FileEventServer, TakesANullPathForAnEmptyOne)
{
    watch.Subscribe(nullptr, 0x1);
    EXPECT_TRUE(watch.Barrier());
    EXPECT_THAT(watch.folders.TakeCalls(), ElementsAre("read ", "watch  0 1"));
}

TEST_F(FileEventServer, ReturnsTheErrorOfPosting)
{
    isPostingBroken = true;
    for (const auto& [error, expected] :
         {std::pair<DWORD, HRESULT>{ERROR_NOT_ENOUGH_QUOTA, HRESULT_FROM_WIN32(ERROR_NOT_ENOUGH_QUOTA)},
          {ERROR_INVALID_THREAD_ID, HRESULT_FROM_WIN32(ERROR_INVALID_THREAD_ID)},
          {0, E_FAIL}})
    {
        SCOPED_TRACE(error);
        postingError = error;
        posted.clear();
        QuonFileEventId id = 77;
        EXPECT_EQ(watch.server->Subscribe(L"c:\\d\\f", 0x1, &watch.sink, &id), expected);
        EXPECT_EQ(id, 77u);
        // Nothing is known of what was not posted.
        ASSERT_EQ(posted.size(), 1u);
        SendEvent(kMsgChanged, 0x1, static_cast<QuonFileEventId>(posted[0].lParam));
        EXPECT_THAT(watch.sink.calls, IsEmpty());
    }
    isPostingBroken = false;
}

TEST_F(FileEventServer, ForgetsASubscriptionThoughPostingFails)
{
    const QuonFileEventId id = watch.Subscribe(L"c:\\d\\f", 0x1);
    isPostingBroken = true;
    EXPECT_EQ(watch.server->Unsubscribe(id), S_OK);
    isPostingBroken = false;
    SendEvent(kMsgChanged, 0x1, id);
    EXPECT_THAT(watch.sink.calls, IsEmpty());
}

TEST_F(FileEventServer, TakesAnUnknownNullIdentifier)
{
    EXPECT_EQ(watch.server->Unsubscribe(0), S_OK);
    EXPECT_TRUE(watch.Barrier());
}

// The request is posted whether or not the server knows the identifier; the watcher reads only what it knows to be a
// record.
TEST_F(FileEventServer, PostsEachUnsubscriptionAndTheWatcherIgnoresWhatItDoesNotKnow)
{
    const QuonFileEventId id = watch.Subscribe(L"c:\\d\\f", 0x1);
    EXPECT_TRUE(watch.Barrier());
    const std::vector<std::uintptr_t> readable(100, ~std::uintptr_t{0});
    const QuonFileEventId unknown[] = {
        1, 0x10, id + 1, id + sizeof(void*), reinterpret_cast<std::uintptr_t>(readable.data()), ~std::uintptr_t{0}};
    for (const QuonFileEventId other : unknown)
    {
        SCOPED_TRACE(other);
        posted.clear();
        EXPECT_EQ(watch.server->Unsubscribe(other), S_OK);
        ASSERT_EQ(posted.size(), 1u);
        EXPECT_EQ(posted[0].number, kMsgRemove);
        EXPECT_EQ(posted[0].lParam, static_cast<LPARAM>(other));
        EXPECT_TRUE(watch.Barrier());
        EXPECT_EQ(watch.journal.Count({kMsgRemove, 0, static_cast<LPARAM>(other)}), 0u);
    }
    EXPECT_NE(watch.folders.Notification(L"c:\\d\\f"), nullptr);
}

TEST_F(FileEventServer, RemovesASubscriptionOnceThoughItIsUnsubscribedTwice)
{
    const QuonFileEventId id = watch.Subscribe(L"c:\\d\\f", 0x1);
    const QuonFileEventId other = watch.Subscribe(L"c:\\d\\f", 0x1);
    EXPECT_EQ(watch.Unsubscribe(id), S_OK);
    EXPECT_EQ(watch.Unsubscribe(id), S_OK);
    EXPECT_TRUE(watch.Barrier());
    EXPECT_EQ(watch.Unsubscribe(id), S_OK);
    EXPECT_TRUE(watch.Barrier());
    EXPECT_EQ(watch.journal.Count({kMsgRemove, 0, static_cast<LPARAM>(id)}), 1u);
    SendEvent(kMsgChanged, 0x1, other);
    EXPECT_THAT(watch.sink.ids, ElementsAre(other));
}

TEST_F(FileEventServer, TellsThatMemoryIsShort)
{
    EXPECT_TRUE(watch.Barrier());
    posted.clear();
    // First the record, then its path.
    for (const int successes : {0, 1})
    {
        SCOPED_TRACE(successes);
        QuonFileEventId id = 77;
        HRESULT result = S_OK;
        bool hasFailed = false;
        {
            const FailingAllocation failing(successes);
            result = watch.server->Subscribe(L"c:\\d\\f", 0x1, &watch.sink, &id);
            hasFailed = failing.Failed();
        }
        EXPECT_TRUE(hasFailed);
        EXPECT_EQ(result, E_OUTOFMEMORY);
        EXPECT_EQ(id, 77u);
    }
    EXPECT_THAT(posted, IsEmpty());
}

// What nobody could unsubscribe is not watched in the first place.
TEST_F(FileEventServer, PostsNothingWhenTheSinkCannotBeRemembered)
{
    EXPECT_TRUE(watch.Barrier());
    posted.clear();
    const Event held;
    const Event go;
    watch.folders.onRead = [&](const std::wstring&) {
        held.Set();
        go.Wait();
    };
    // The watcher allocates, too, and must not get the failure: it is held in its work for another subscription.
    watch.Subscribe(L"c:\\other", 0x1);
    EXPECT_TRUE(held.Wait());
    QuonFileEventId id = 77;
    HRESULT result = S_OK;
    bool hasFailed = false;
    {
        // After the record and its path.
        const FailingAllocation failing(2);
        result = watch.server->Subscribe(L"c:\\d\\f", 0x1, &watch.sink, &id);
        hasFailed = failing.Failed();
    }
    go.Set();
    EXPECT_TRUE(hasFailed);
    EXPECT_EQ(result, E_FAIL);
    EXPECT_EQ(id, 77u);
    EXPECT_EQ(posted.size(), 1u);
    EXPECT_TRUE(watch.Barrier());
    watch.folders.onRead = nullptr;
    EXPECT_EQ(watch.folders.OpenCount(), 1u);
    EXPECT_EQ(watch.folders.Notification(L"c:\\d\\f"), nullptr);
}

}  // namespace
