// The watcher on real folders.
#include "monitoring/MonitoringTestSupport.h"

#include "helpers/TemporaryFolder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <atomic>

using namespace quon_test;
using testing::Each;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::UnorderedElementsAre;

namespace
{

constexpr DWORD kEverything = 0x3F;

const Event* changeIsDone;
std::atomic<int> pauses;

// The watcher gives whoever writes half a second to finish. Here it waits for just that.
void WINAPI PauseUntilTheChangeIsDone(DWORD milliseconds)
{
    EXPECT_EQ(milliseconds, 500u);
    changeIsDone->Wait();
    ++pauses;
}

class WatchRealFiles : public testing::Test
{
protected:
    WatchRealFiles()
    {
        changeIsDone = &m_isDone;
        m_isDone.Set();
    }

    ~WatchRealFiles() override
    {
        for (const QuonFileEventId id : ids)
        {
            server->Unsubscribe(id);
        }
        // The folder can be removed once the watcher has let it go.
        Barrier();
    }

    QuonFileEventId Watch(const std::wstring& path, DWORD mask, RecordingSink& subscriber)
    {
        QuonFileEventId id = 0;
        EXPECT_EQ(server->Subscribe(path.c_str(), mask, &subscriber, &id), S_OK);
        ids.push_back(id);
        Barrier();
        return id;
    }

    // Returns when the watcher has done what was posted to it: it fails in turn to watch a folder that is not there.
    void Barrier()
    {
        RecordingSink waiting;
        QuonFileEventId id = 0;
        server->Subscribe((folder / L"no such folder").c_str(), 0x1, &waiting, &id);
        EXPECT_TRUE(PumpUntil([&] { return !waiting.calls.empty(); }));
        server->Unsubscribe(id);
    }

    // Changes something in a watched folder. Returns when the watcher has seen that, and told what it found.
    template <typename Function>
    void Change(const Function& change)
    {
        const int before = pauses;
        m_isDone.Reset();
        change();
        m_isDone.Set();
        EXPECT_TRUE(PumpUntil([before] { return pauses > before; }));
        Barrier();
    }

    // A file that any later change makes a younger one, on any file system.
    std::wstring WriteOldFile(const wchar_t* name)
    {
        const std::uint64_t old = 130000000000000000;
        std::wstring path = folder.WriteFile(name, "1");
        folder.SetTimes(name, nullptr, nullptr, &old);
        return path;
    }

    void AppendTo(const wchar_t* name)
    {
        const HANDLE file = ::CreateFileW((folder / name).c_str(), FILE_APPEND_DATA, FILE_SHARE_READ, nullptr,
                                          OPEN_EXISTING, 0, nullptr);
        DWORD written = 0;
        EXPECT_TRUE(::WriteFile(file, "2", 1, &written, nullptr));
        ::CloseHandle(file);
    }

    QuonFileEventServer* server = TheServer();
    TemporaryFolder folder;
    RecordingSink sink;
    std::vector<QuonFileEventId> ids;

private:
    const Event m_isDone;
    const Patch<decltype(&::Sleep)> m_sleep{kLibrary, "Sleep", &PauseUntilTheChangeIsDone};
};

TEST_F(WatchRealFiles, TellsSizeAndTimeOfAFileThatIsWritten)
{
    const std::wstring file = WriteOldFile(L"File.txt");
    const std::wstring other = WriteOldFile(L"other.txt");
    RecordingSink onlyTime;
    RecordingSink bystander;
    const QuonFileEventId id = Watch(file, 0x18, sink);
    const QuonFileEventId timeId = Watch(file, 0x10, onlyTime);
    Watch(other, 0x18, bystander);
    Change([&] { AppendTo(L"File.txt"); });
    EXPECT_THAT(sink.calls, ElementsAre("size", "last write"));
    EXPECT_THAT(sink.ids, Each(id));
    EXPECT_THAT(onlyTime.calls, ElementsAre("last write"));
    EXPECT_THAT(onlyTime.ids, ElementsAre(timeId));
    EXPECT_THAT(bystander.calls, IsEmpty());

    // The same folder signals for another file, too, but there is nothing new in these.
    sink.calls.clear();
    onlyTime.calls.clear();
    Change([&] { AppendTo(L"other.txt"); });
    EXPECT_TRUE(PumpUntil([&] { return bystander.calls.size() == 2; }));
    EXPECT_THAT(bystander.calls, UnorderedElementsAre("size", "last write"));
    EXPECT_THAT(sink.calls, IsEmpty());
    EXPECT_THAT(onlyTime.calls, IsEmpty());
}

TEST_F(WatchRealFiles, DoesNotTellOfAFileThatGetsAnOlderTime)
{
    const std::wstring file = folder.WriteFile(L"file.txt", "1");
    Watch(file, 0x18, sink);
    const std::uint64_t old = 130000000000000000;
    Change([&] { folder.SetTimes(L"file.txt", nullptr, nullptr, &old); });
    EXPECT_THAT(sink.calls, IsEmpty());
}

TEST_F(WatchRealFiles, TellsNamesAndAttributesForEveryChangeOfTheFolder)
{
    const std::wstring file = folder.WriteFile(L"file.txt", "1");
    Watch(file, 0x7, sink);
    folder.WriteFile(L"another.txt", "1");
    EXPECT_TRUE(PumpUntil([&] { return !sink.calls.empty(); }));
    EXPECT_THAT(std::vector<std::string>(sink.calls.begin(), sink.calls.begin() + 3),
                ElementsAre("file name", "folder name", "attributes"));
}

TEST_F(WatchRealFiles, TellsOfAWatchedFolder)
{
    folder.MakeFolder(L"sub");
    Watch(folder / L"sub", 0x1, sink);
    folder.WriteFile(L"sub\\new.txt", "1");
    EXPECT_TRUE(PumpUntil([&] { return !sink.calls.empty(); }));
    EXPECT_THAT(sink.calls, Each("file name"));
}

TEST_F(WatchRealFiles, DoesNotTellOfAFileThatIsDeleted)
{
    const std::wstring file = folder.WriteFile(L"file.txt", "1");
    Watch(file, kEverything, sink);
    Change([&] { EXPECT_TRUE(::DeleteFileW(file.c_str())); });
    EXPECT_THAT(sink.calls, IsEmpty());
}

TEST_F(WatchRealFiles, DoesNotTellOfTheTreeBelow)
{
    const std::wstring file = folder.WriteFile(L"file.txt", "1");
    folder.MakeFolder(L"sub");
    Watch(file, 0x1F, sink);
    // The system signals for the folder below; were the one above signalled, too, it would come first: its watch is
    // older.
    RecordingSink below;
    Watch(folder / L"sub", 0x1, below);
    Change([&] { folder.WriteFile(L"sub\\new.txt", "1"); });
    EXPECT_THAT(below.calls, Each("file name"));
    EXPECT_FALSE(below.calls.empty());
    EXPECT_THAT(sink.calls, IsEmpty());
}

TEST_F(WatchRealFiles, FailsForWhatIsNeitherFileNorFolder)
{
    const struct
    {
        std::wstring path;
        const char* call;
    } rows[] = {{folder / L"missing", "failed 2"}, {folder / L"missing\\file.txt", "failed"}, {L"", "failed 3"}};
    for (const auto& row : rows)
    {
        sink.calls.clear();
        Watch(row.path, 0x1, sink);
        ASSERT_EQ(sink.calls.size(), 1u);
        EXPECT_THAT(sink.calls[0], testing::StartsWith(row.call));
    }
}

TEST_F(WatchRealFiles, FailsForAnEmptyMask)
{
    const std::wstring file = folder.WriteFile(L"file.txt", "1");
    Watch(file, 0, sink);
    EXPECT_THAT(sink.calls, ElementsAre("failed 87"));
}

}  // namespace
