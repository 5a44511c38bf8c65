// The watcher on real folders. Each change takes it half a second, so these are few.
#include "monitoring/MonitoringTestSupport.h"

#include "helpers/TemporaryFolder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using namespace quon_test;
using testing::Each;
using testing::ElementsAre;
using testing::IsEmpty;

namespace
{

constexpr DWORD kEverything = 0x3F;

class WatchRealFiles : public testing::Test
{
protected:
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

    // What is written below comes later than what was written before, on any file system.
    void NextTick() const { ::Sleep(20); }

    QuonFileEventServer* server = TheServer();
    TemporaryFolder folder;
    RecordingSink sink;
    std::vector<QuonFileEventId> ids;
};

TEST_F(WatchRealFiles, TellsSizeAndTimeOfAFileThatIsWritten)
{
    const std::wstring file = folder.WriteFile(L"File.txt", "1");
    RecordingSink onlyTime;
    RecordingSink bystander;
    const QuonFileEventId id = Watch(file, 0x18, sink);
    const QuonFileEventId timeId = Watch(file, 0x10, onlyTime);
    folder.WriteFile(L"other.txt", "1");
    Watch(folder / L"other.txt", 0x18, bystander);
    NextTick();
    const ULONGLONG start = ::GetTickCount64();
    folder.WriteFile(L"File.txt", "12");
    EXPECT_TRUE(PumpUntil([&] { return sink.calls.size() == 2 && onlyTime.calls.size() == 1; }));
    EXPECT_GE(::GetTickCount64() - start, 480u);
    EXPECT_THAT(sink.calls, ElementsAre("size", "last write"));
    EXPECT_THAT(sink.ids, Each(id));
    EXPECT_THAT(onlyTime.calls, ElementsAre("last write"));
    EXPECT_THAT(onlyTime.ids, ElementsAre(timeId));

    // The same folder signals for another file, too, but there is nothing new in these.
    sink.calls.clear();
    onlyTime.calls.clear();
    NextTick();
    folder.WriteFile(L"other.txt", "12");
    EXPECT_TRUE(PumpUntil([&] { return bystander.calls.size() == 2; }));
    PumpFor(700);
    EXPECT_THAT(bystander.calls, ElementsAre("size", "last write"));
    EXPECT_THAT(sink.calls, IsEmpty());
    EXPECT_THAT(onlyTime.calls, IsEmpty());
}

TEST_F(WatchRealFiles, DoesNotTellOfAFileThatGetsAnOlderTime)
{
    const std::wstring file = folder.WriteFile(L"file.txt", "1");
    Watch(file, 0x18, sink);
    const std::uint64_t old = 130000000000000000;
    folder.SetTimes(L"file.txt", nullptr, nullptr, &old);
    PumpFor(1200);
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
    ASSERT_TRUE(::DeleteFileW(file.c_str()));
    PumpFor(1200);
    EXPECT_THAT(sink.calls, IsEmpty());
}

TEST_F(WatchRealFiles, DoesNotTellOfTheTreeBelow)
{
    const std::wstring file = folder.WriteFile(L"file.txt", "1");
    folder.MakeFolder(L"sub");
    Watch(file, 0x1F, sink);
    folder.WriteFile(L"sub\\new.txt", "1");
    PumpFor(1200);
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
