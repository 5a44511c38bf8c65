// What the watcher thread does with subscriptions and changes, over folders that the test makes up.
#include "monitoring/FakeFolders.h"

#include "helpers/OneFailure.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using namespace quon_test;
using testing::AnyOf;
using testing::Contains;
using testing::Each;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Not;
using testing::SizeIs;

namespace
{

FILETIME TimeOf(unsigned __int64 value)
{
    return {static_cast<DWORD>(value & 0xFFFFFFFF), static_cast<DWORD>(value >> 32)};
}

WIN32_FILE_ATTRIBUTE_DATA FileOf(unsigned __int64 size, unsigned __int64 written, unsigned __int64 accessed)
{
    WIN32_FILE_ATTRIBUTE_DATA data = {};
    data.dwFileAttributes = FILE_ATTRIBUTE_ARCHIVE;
    data.nFileSizeHigh = static_cast<DWORD>(size >> 32);
    data.nFileSizeLow = static_cast<DWORD>(size & 0xFFFFFFFF);
    data.ftLastWriteTime = TimeOf(written);
    data.ftLastAccessTime = TimeOf(accessed);
    return data;
}

class WatchedFolders : public testing::Test
{
protected:
    // What reached the window for a subscription since the last time that this was asked.
    std::vector<WindowMessage> TakeMessages(QuonFileEventId id)
    {
        std::vector<WindowMessage> messages;
        for (const WindowMessage& message : watch.journal.messages)
        {
            if (message.lParam == static_cast<LPARAM>(id))
            {
                messages.push_back(message);
            }
        }
        std::erase_if(watch.journal.messages,
                      [id](const WindowMessage& message) { return message.lParam == static_cast<LPARAM>(id); });
        return messages;
    }

    // The change bits that a check of the folder posts for a subscription; 0 when it posts nothing.
    DWORD BitsOfCheck(const std::wstring& folder, QuonFileEventId id)
    {
        EXPECT_TRUE(watch.Check(folder));
        const std::vector<WindowMessage> messages = TakeMessages(id);
        EXPECT_LE(messages.size(), 1u);
        if (messages.empty())
        {
            return 0;
        }
        EXPECT_EQ(messages[0].number, kMsgChanged);
        EXPECT_NE(messages[0].wParam, 0u);
        return static_cast<DWORD>(messages[0].wParam);
    }

    // The subscription that the test makes, active.
    QuonFileEventId Active(const wchar_t* path, DWORD mask)
    {
        const QuonFileEventId id = watch.Subscribe(path, mask);
        EXPECT_NE(id, 0u);
        EXPECT_TRUE(watch.Barrier());
        return id;
    }

    // Unsubscribed, and its acknowledgement taken: a later subscription may get the same identifier.
    void Remove(QuonFileEventId id)
    {
        watch.Unsubscribe(id);
        EXPECT_TRUE(watch.Barrier());
        TakeMessages(id);
    }

    WindowMessage Acknowledgement(QuonFileEventId id) const { return {kMsgRemove, 0, static_cast<LPARAM>(id)}; }

    FakeWatch watch;
    FakeFolders& folders = watch.folders;
};

TEST_F(WatchedFolders, AreThoseOfFilesAndTheFoldersThemselves)
{
    folders.SetFile(L"C:\\Dir\\File.TXT");
    folders.SetFile(L"C:/Dir/Sub/File.TXT");
    folders.SetFile(L"C:File.TXT");
    folders.SetFile(L"File.TXT");
    folders.SetFile(L"\\\\Server\\Share\\File.TXT");
    folders.SetFolder(L"C:\\Folder");
    folders.SetFolder(L"C:\\Folder\\");
    const struct
    {
        const wchar_t* path;
        const char* folder;
    } rows[] = {
        {L"C:\\Dir\\File.TXT", "c:\\dir\\"},
        {L"C:/Dir/Sub/File.TXT", "c:\\dir\\sub\\"},
        {L"C:File.TXT", "c:"},
        {L"File.TXT", ""},
        {L"\\\\Server\\Share\\File.TXT", "\\\\server\\share\\"},
        {L"C:\\Folder", "c:\\folder"},
        {L"C:\\Folder\\", "c:\\folder\\"},
        // What cannot be read is taken for a folder.
        {L"C:\\Dir\\Missing.TXT", "c:\\dir\\missing.txt"},
        {L"", ""},
    };
    for (const auto& row : rows)
    {
        SCOPED_TRACE(testing::PrintToString(row.path));
        folders.TakeCalls();
        const QuonFileEventId id = Active(row.path, 0x18);
        const std::wstring path(row.path);
        EXPECT_THAT(folders.TakeCalls(), ElementsAre("read " + std::string(path.begin(), path.end()),
                                                     "watch " + std::string(row.folder) + " 0 24"));
        EXPECT_THAT(TakeMessages(id), IsEmpty());
        Remove(id);
    }
}

TEST_F(WatchedFolders, GetTheMaskUnchangedAndNeverTheTreeBelow)
{
    folders.SetFile(L"c:\\d\\f");
    Active(L"c:\\d\\f", 0xFFFFFF08);
    EXPECT_THAT(folders.TakeCalls(), ElementsAre("read c:\\d\\f", "watch c:\\d\\ 0 4294967048"));
}

TEST_F(WatchedFolders, AreSharedByTheirSubscriptions)
{
    folders.SetFile(L"c:\\d\\f");
    folders.SetFile(L"C:\\D\\G");
    folders.SetFile(L"c:\\d\\h");
    const QuonFileEventId first = Active(L"c:\\d\\f", 0x8);
    const QuonFileEventId second = Active(L"C:\\D\\G", 0x10);
    const QuonFileEventId third = Active(L"c:\\d\\h", 0x1);
    EXPECT_EQ(folders.OpenCount(), 1u);
    // One notification, with the mask of the first.
    EXPECT_THAT(folders.TakeCalls(),
                ElementsAre("read c:\\d\\f", "watch c:\\d\\ 0 8", "read C:\\D\\G", "read c:\\d\\h"));

    watch.Unsubscribe(second);
    watch.Unsubscribe(first);
    EXPECT_TRUE(watch.Barrier());
    EXPECT_EQ(folders.OpenCount(), 1u);
    EXPECT_THAT(folders.TakeCalls(), IsEmpty());
    EXPECT_THAT(TakeMessages(first), ElementsAre(Acknowledgement(first)));
    EXPECT_THAT(TakeMessages(second), ElementsAre(Acknowledgement(second)));

    // The mask stays that of the first, also when that has gone.
    const QuonFileEventId fourth = Active(L"c:\\d\\f", 0x20);
    EXPECT_THAT(folders.TakeCalls(), ElementsAre("read c:\\d\\f"));
    EXPECT_EQ(BitsOfCheck(L"c:\\d\\", third), 0x1u);

    watch.Unsubscribe(fourth);
    watch.Unsubscribe(third);
    EXPECT_TRUE(watch.Barrier());
    EXPECT_EQ(folders.OpenCount(), 0u);
    EXPECT_THAT(folders.TakeCalls(), Contains("close c:\\d\\").Times(1));
    EXPECT_THAT(TakeMessages(third), ElementsAre(Acknowledgement(third)));

    // Afterwards the folder is a new one.
    Active(L"c:\\d\\f", 0x20);
    EXPECT_THAT(folders.TakeCalls(), ElementsAre("read c:\\d\\f", "watch c:\\d\\ 0 32"));
}

TEST_F(WatchedFolders, AreToldApartByTheirTextButNotByCase)
{
    folders.SetFile(L"C:\\d\\f");
    folders.SetFolder(L"C:\\d");
    folders.SetFolder(L"c:\\D");
    const QuonFileEventId file = Active(L"C:\\d\\f", 0x8);
    const QuonFileEventId folder = Active(L"C:\\d", 0x1);
    const QuonFileEventId sameFolder = Active(L"c:\\D", 0x1);
    EXPECT_EQ(folders.OpenCount(), 2u);
    EXPECT_EQ(BitsOfCheck(L"c:\\d", folder), 0x1u);
    EXPECT_THAT(TakeMessages(file), IsEmpty());
    EXPECT_THAT(TakeMessages(sameFolder), ElementsAre(WindowMessage{kMsgChanged, 1, static_cast<LPARAM>(sameFolder)}));

    watch.Unsubscribe(file);
    EXPECT_TRUE(watch.Barrier());
    EXPECT_EQ(folders.Notification(L"c:\\d\\"), nullptr);
    EXPECT_NE(folders.Notification(L"c:\\d"), nullptr);
}

TEST_F(WatchedFolders, AreNotToldApartByTheCaseOfForeignLetters)
{
    folders.SetFolder(L"C:\\\u00C4\u0416");
    folders.SetFolder(L"C:\\\u00E4\u0436");
    Active(L"C:\\\u00C4\u0416", 0x1);
    Active(L"C:\\\u00E4\u0436", 0x1);
    EXPECT_EQ(folders.OpenCount(), 1u);
}

TEST_F(WatchedFolders, StandInTheWaitInTheOrderOfTheirArrival)
{
    std::vector<QuonFileEventId> ids;
    for (const wchar_t* const path : {L"c:\\z", L"c:\\a", L"c:\\m", L"c:\\b"})
    {
        ids.push_back(Active(path, 0x1));
    }
    const auto waitsFor = [this](const std::vector<std::wstring>& expected) {
        return PumpUntil([&] { return folders.LastWait() == expected; });
    };
    EXPECT_TRUE(waitsFor({L"c:\\z", L"c:\\a", L"c:\\m", L"c:\\b"}));
    watch.Unsubscribe(ids[1]);
    EXPECT_TRUE(waitsFor({L"c:\\z", L"c:\\m", L"c:\\b"}));
    Active(L"c:\\a", 0x1);
    EXPECT_TRUE(waitsFor({L"c:\\z", L"c:\\m", L"c:\\b", L"c:\\a"}));
    watch.Unsubscribe(ids[0]);
    watch.Unsubscribe(ids[3]);
    EXPECT_TRUE(waitsFor({L"c:\\m", L"c:\\a"}));
    EXPECT_TRUE(folders.wereWaitArgumentsRight);
}

// Requests that lie in the queue together must all be served, though the wait tells only of messages that came after
// the last look at the queue.
TEST_F(WatchedFolders, AreAllAddedWhenManyRequestsComeAtOnce)
{
    folders.SetError(L"c:\\hold", 5);
    const Event go;
    folders.onRead = [&go](const std::wstring&) { go.Wait(); };
    // Holds the watcher, which has no folder yet, until all is posted.
    watch.Subscribe(L"c:\\hold", 0x1);
    for (const wchar_t* const path : {L"c:\\1", L"c:\\2", L"c:\\3", L"c:\\4"})
    {
        watch.Subscribe(path, 0x1);
    }
    go.Set();
    EXPECT_TRUE(PumpUntil([this] { return folders.OpenCount() == 4; }));
    EXPECT_TRUE(watch.Barrier());
    folders.onRead = nullptr;
}

TEST_F(WatchedFolders, ThatCannotBeWatchedAreToldWithTheError)
{
    for (const DWORD error : {DWORD{ERROR_FILE_NOT_FOUND}, DWORD{267}, DWORD{ERROR_ACCESS_DENIED}})
    {
        folders.SetError(L"c:\\no", error);
        watch.sink.calls.clear();
        const QuonFileEventId id = Active(L"C:\\no", 0x1);
        EXPECT_THAT(TakeMessages(id), ElementsAre(WindowMessage{kMsgWatchFailed, error, static_cast<LPARAM>(id)}));
        EXPECT_THAT(watch.sink.calls, ElementsAre("failed " + std::to_string(error)));
        // There is nothing to remove: no acknowledgement.
        EXPECT_EQ(watch.Unsubscribe(id), S_OK);
        EXPECT_TRUE(watch.Barrier());
        EXPECT_THAT(TakeMessages(id), IsEmpty());
    }
    EXPECT_EQ(folders.OpenCount(), 0u);
    // What failed is not remembered.
    folders.SetFolder(L"C:\\NO");
    folders.SetError(L"c:\\no", 5);
    folders.TakeCalls();
    Active(L"C:\\NO", 0x1);
    EXPECT_THAT(folders.TakeCalls(), ElementsAre("read C:\\NO", "watch c:\\no 0 1"));
}

TEST_F(WatchedFolders, AreLookedAtHalfASecondAfterTheirSignal)
{
    folders.SetFile(L"c:\\d\\f", FileOf(1, 1, 1));
    const QuonFileEventId id = Active(L"c:\\d\\f", 0x18);
    folders.SetFile(L"c:\\d\\f", FileOf(2, 1, 1));
    folders.TakeCalls();
    folders.Signal(L"c:\\d\\");
    EXPECT_TRUE(PumpUntil([&] { return !watch.sink.calls.empty(); }));
    EXPECT_THAT(TakeMessages(id), ElementsAre(WindowMessage{kMsgChanged, 0x8, static_cast<LPARAM>(id)}));
    EXPECT_THAT(watch.sink.calls, ElementsAre("size"));
    EXPECT_THAT(watch.sink.ids, ElementsAre(id));
    // The notification is armed again first: what happens during the pause signals anew.
    EXPECT_THAT(folders.TakeCalls(), ElementsAre("next c:\\d\\", "sleep 500", "read c:\\d\\f"));
}

// A signal is taken between two messages, too, and its check queues up behind them.
TEST_F(WatchedFolders, AreNotKeptWaitingByARowOfMessages)
{
    Active(L"c:\\d", 0x1);
    Active(L"c:\\e", 0x1);
    const Event held;
    const Event go;
    folders.onRead = [&](const std::wstring&) {
        held.Set();
        go.Wait();
    };
    folders.TakeCalls();
    for (const wchar_t* const path : {L"c:\\1", L"c:\\2"})
    {
        watch.Subscribe(path, 0x1);
    }
    EXPECT_TRUE(held.Wait());
    folders.Signal(L"c:\\d");
    folders.Signal(L"c:\\e");
    go.Set();
    EXPECT_TRUE(watch.Barrier());
    EXPECT_TRUE(watch.Barrier());
    folders.onRead = nullptr;
    const std::vector<std::string> calls = folders.TakeCalls();
    // One signal after each message, the first folder's first.
    ASSERT_GE(calls.size(), 6u);
    EXPECT_EQ(std::vector<std::string>(calls.begin(), calls.begin() + 6),
              (std::vector<std::string>{"read c:\\1", "watch c:\\1 0 1", "next c:\\d", "read c:\\2", "watch c:\\2 0 1",
                                        "next c:\\e"}));
    EXPECT_THAT(calls, Contains("sleep 500").Times(2));
}

// While there are messages one signal is taken after each, that of the folder which was added first. A folder that is
// signalled again during each pause therefore keeps the later ones waiting until it pauses.
TEST_F(WatchedFolders, AreNotCheckedWhileOneBeforeThemIsSignalledAllTheTime)
{
    constexpr int kRounds = 10;
    folders.SetFolder(L"c:\\busy");
    folders.SetFolder(L"c:\\later");
    const QuonFileEventId busy = Active(L"c:\\busy", 0x1);
    const QuonFileEventId later = Active(L"c:\\later", 0x1);
    int rounds = 0;
    folders.onRead = [&](const std::wstring& path) {
        if (path == L"c:\\busy" && ++rounds < kRounds)
        {
            folders.Signal(L"c:\\busy");
            folders.Signal(L"c:\\later");
        }
    };
    folders.Signal(L"c:\\busy");
    ASSERT_TRUE(PumpUntil([&] { return !TakeMessages(later).empty(); }));
    EXPECT_TRUE(watch.Barrier());
    folders.onRead = nullptr;
    std::vector<QuonFileEventId> expected(kRounds, busy);
    expected.push_back(later);
    EXPECT_EQ(watch.sink.ids, expected);
}

TEST_F(WatchedFolders, SurviveAWaitThatFails)
{
    folders.SetFolder(L"c:\\d");
    const QuonFileEventId id = Active(L"c:\\d", 0x1);
    folders.FailWaits(1000);
    folders.Signal(L"c:\\d");
    EXPECT_TRUE(PumpUntil([this] { return folders.FailingWaitsLeft() == 0; }));
    folders.Signal(L"c:\\d");
    EXPECT_TRUE(PumpUntil([&] { return !watch.sink.calls.empty(); }));
    EXPECT_EQ(watch.sink.ids.front(), id);
}

TEST_F(WatchedFolders, AreCheckedThoughTheirNotificationCannotBeArmed)
{
    folders.SetFolder(L"c:\\d");
    const QuonFileEventId id = Active(L"c:\\d", 0x1);
    {
        const OneFailure failure("FindNextChangeNotification", FALSE, ERROR_INVALID_HANDLE);
        folders.Signal(L"c:\\d");
        EXPECT_TRUE(PumpUntil([&] { return !watch.sink.calls.empty(); }));
        EXPECT_TRUE(failure.WasCalled());
    }
    EXPECT_EQ(watch.sink.ids.front(), id);
    // The watcher goes on.
    EXPECT_TRUE(watch.Barrier());
    watch.sink.calls.clear();
    folders.Signal(L"c:\\d");
    EXPECT_TRUE(PumpUntil([&] { return !watch.sink.calls.empty(); }));
}

TEST_F(WatchedFolders, AreForgottenThoughTheirNotificationCannotBeClosed)
{
    const QuonFileEventId id = Active(L"c:\\d", 0x1);
    {
        const OneFailure failure("FindCloseChangeNotification", FALSE, ERROR_INVALID_HANDLE);
        watch.Unsubscribe(id);
        EXPECT_TRUE(watch.Barrier());
        EXPECT_TRUE(failure.WasCalled());
    }
    EXPECT_THAT(TakeMessages(id), ElementsAre(Acknowledgement(id)));
    folders.TakeCalls();
    Remove(Active(L"c:\\d", 0x1));
    EXPECT_THAT(folders.TakeCalls(), ElementsAre("read c:\\d", "watch c:\\d 0 1", testing::StartsWith("close")));
}

TEST_F(WatchedFolders, ReportWhatHasChanged)
{
    constexpr unsigned __int64 kBig = 0x100000000;
    const WIN32_FILE_ATTRIBUTE_DATA before = FileOf(kBig + 5, kBig + 100, kBig + 200);
    const struct
    {
        const char* what;
        DWORD mask;
        WIN32_FILE_ATTRIBUTE_DATA now;
        DWORD bits;
    } rows[] = {
        {"nothing", 0x38, before, 0},
        {"nothing, uncompared bits", 0x3F, before, 0x7},
        {"no mask", 0, FileOf(6, kBig * 2, kBig * 2), 0},
        {"other mask bits", 0xFFFFFFC0, FileOf(6, kBig * 2, kBig * 2), 0},
        {"all", 0xFFFFFFFF, FileOf(6, kBig * 2, kBig * 2), 0x3F},
        {"file name", 0x1, before, 0x1},
        {"folder name", 0x2, before, 0x2},
        {"attributes", 0x4, before, 0x4},
        {"size low", 0x38, FileOf(kBig + 6, kBig + 100, kBig + 200), 0x8},
        {"size low, smaller", 0x38, FileOf(kBig + 4, kBig + 100, kBig + 200), 0x8},
        {"size high", 0x38, FileOf(5, kBig + 100, kBig + 200), 0x8},
        {"size, not asked", 0x30, FileOf(5, kBig + 100, kBig + 200), 0},
        {"write low", 0x38, FileOf(kBig + 5, kBig + 101, kBig + 200), 0x10},
        {"write high", 0x38, FileOf(kBig + 5, kBig * 2, kBig + 200), 0x10},
        {"write, sign bit", 0x38, FileOf(kBig + 5, 0x8000000000000000, kBig + 200), 0x10},
        {"write, older", 0x38, FileOf(kBig + 5, kBig + 99, kBig + 200), 0},
        {"write, older with a greater low half", 0x38, FileOf(kBig + 5, 0xFFFFFFFF, kBig + 200), 0},
        {"write, not asked", 0x28, FileOf(kBig + 5, kBig * 2, kBig + 200), 0},
        {"access", 0x38, FileOf(kBig + 5, kBig + 100, kBig + 201), 0x20},
        {"access, older", 0x38, FileOf(kBig + 5, kBig + 100, 7), 0},
        {"access, not asked", 0x18, FileOf(kBig + 5, kBig + 100, kBig * 2), 0},
        {"size and write", 0x18, FileOf(1, kBig * 2, kBig * 2), 0x18},
    };
    for (const auto& row : rows)
    {
        SCOPED_TRACE(row.what);
        folders.SetFile(L"c:\\d\\f", before);
        const QuonFileEventId id = Active(L"c:\\d\\f", row.mask);
        folders.SetFile(L"c:\\d\\f", row.now);
        EXPECT_EQ(BitsOfCheck(L"c:\\d\\", id), row.bits);
        // What was reported is the new baseline; what needs no comparison is reported again.
        EXPECT_EQ(BitsOfCheck(L"c:\\d\\", id), row.bits & 0x7);
        Remove(id);
    }
}

TEST_F(WatchedFolders, CompareWithWhatWasLastReported)
{
    folders.SetFile(L"c:\\d\\f", FileOf(5, 100, 100));
    const QuonFileEventId id = Active(L"c:\\d\\f", 0x38);
    const auto bitsFor = [&](unsigned __int64 size, unsigned __int64 written, unsigned __int64 accessed) {
        folders.SetFile(L"c:\\d\\f", FileOf(size, written, accessed));
        return BitsOfCheck(L"c:\\d\\", id);
    };
    EXPECT_EQ(bitsFor(6, 100, 100), 0x8u);
    EXPECT_EQ(bitsFor(5, 100, 100), 0x8u);
    EXPECT_EQ(bitsFor(5, 101, 100), 0x10u);
    // An older time is not reported and replaces nothing: the way back is no change either.
    EXPECT_EQ(bitsFor(5, 50, 50), 0u);
    EXPECT_EQ(bitsFor(5, 101, 100), 0u);
    EXPECT_EQ(bitsFor(5, 60, 101), 0x20u);
    EXPECT_EQ(bitsFor(5, 102, 101), 0x10u);
}

// A file that appears is compared with nothing: zeros.
TEST_F(WatchedFolders, CompareANewFileWithZeros)
{
    const QuonFileEventId id = Active(L"c:\\d\\", 0x18);
    folders.SetFile(L"c:\\d\\", FileOf(0, 1, 1));
    EXPECT_EQ(BitsOfCheck(L"c:\\d\\", id), 0x10u);
}

TEST_F(WatchedFolders, ReportNothingOfAFileThatIsGone)
{
    folders.SetFile(L"c:\\d\\f", FileOf(5, 100, 100));
    folders.SetFile(L"c:\\d\\g", FileOf(5, 100, 100));
    const QuonFileEventId gone = Active(L"c:\\d\\f", 0x3F);
    const QuonFileEventId there = Active(L"c:\\d\\g", 0x1);
    folders.RemoveFile(L"c:\\d\\f");
    EXPECT_EQ(BitsOfCheck(L"c:\\d\\", gone), 0u);
    EXPECT_THAT(TakeMessages(there), ElementsAre(WindowMessage{kMsgChanged, 0x1, static_cast<LPARAM>(there)}));
    // Back as it was, it is as unchanged as before.
    folders.SetFile(L"c:\\d\\f", FileOf(5, 100, 100));
    EXPECT_EQ(BitsOfCheck(L"c:\\d\\", gone), 0x7u);
}

TEST_F(WatchedFolders, ReportToTheirSubscriptionsInTurn)
{
    std::vector<LPARAM> expected;
    for (const wchar_t* const name : {L"c:\\d\\3", L"c:\\d\\1", L"c:\\d\\2", L"c:\\d\\1"})
    {
        folders.SetFile(name);
        expected.push_back(static_cast<LPARAM>(Active(name, 0x1)));
    }
    folders.TakeCalls();
    EXPECT_TRUE(watch.Check(L"c:\\d\\"));
    std::vector<LPARAM> told;
    for (const WindowMessage& message : watch.journal.messages)
    {
        told.push_back(message.lParam);
    }
    EXPECT_EQ(told, expected);
    EXPECT_THAT(folders.TakeCalls(),
                ElementsAre("sleep 500", "read c:\\d\\3", "read c:\\d\\1", "read c:\\d\\2", "read c:\\d\\1"));
}

TEST_F(WatchedFolders, AreNotTouchedByMessagesThatMeanNothing)
{
    folders.SetFile(L"c:\\d\\f");
    const QuonFileEventId id = Active(L"c:\\d\\f", 0x1);
    const auto record = static_cast<LPARAM>(id);
    folders.TakeCalls();
    const DWORD thread = TheWatcherThread().id;
    for (const UINT number : {0x8800u, 0x8802u, 0x8803u, 0x8805u, 0x8806u, 0x8808u, 0x400u})
    {
        ::PostThreadMessageW(thread, number, 0, record);
    }
    // Without a record there is nothing to do, and no pause either.
    for (const UINT number : {kMsgAdd, kMsgRemove, kMsgFolderSignaled})
    {
        ::PostThreadMessageW(thread, number, 99, 0);
    }
    EXPECT_TRUE(watch.Barrier());
    EXPECT_THAT(folders.TakeCalls(), IsEmpty());
    EXPECT_THAT(TakeMessages(id), IsEmpty());
    // An unknown notification has its pause and nothing else.
    ::PostThreadMessageW(thread, kMsgFolderSignaled, 0, 0x7654);
    EXPECT_TRUE(watch.Barrier());
    EXPECT_THAT(folders.TakeCalls(), ElementsAre("sleep 500"));
    EXPECT_EQ(BitsOfCheck(L"c:\\d\\", id), 0x1u);
}

// The same record once more is no second subscription.
TEST_F(WatchedFolders, HoldEachSubscriptionOnce)
{
    folders.SetFile(L"c:\\d\\f");
    const QuonFileEventId id = Active(L"c:\\d\\f", 0x1);
    ::PostThreadMessageW(TheWatcherThread().id, kMsgAdd, 0, static_cast<LPARAM>(id));
    EXPECT_TRUE(watch.Barrier());
    EXPECT_EQ(BitsOfCheck(L"c:\\d\\", id), 0x1u);
    watch.Unsubscribe(id);
    EXPECT_TRUE(watch.Barrier());
    EXPECT_THAT(TakeMessages(id), ElementsAre(Acknowledgement(id)));
    EXPECT_EQ(folders.OpenCount(), 0u);
}

// The end of a subscription does not wait for changes on their way: their checks find nothing any more.
TEST_F(WatchedFolders, AreNotReportedOnceTheSubscriptionIsRemoved)
{
    folders.SetFile(L"c:\\d\\f");
    const QuonFileEventId id = Active(L"c:\\d\\f", 0x1);
    HANDLE const notification = folders.Notification(L"c:\\d\\");
    watch.Unsubscribe(id);
    ::PostThreadMessageW(TheWatcherThread().id, kMsgFolderSignaled, 0, reinterpret_cast<LPARAM>(notification));
    EXPECT_TRUE(watch.Barrier());
    EXPECT_THAT(TakeMessages(id), ElementsAre(Acknowledgement(id)));
    EXPECT_THAT(watch.sink.calls, IsEmpty());
}

}  // namespace
