#include "monitoring/QuonFileModifiedManager.h"

#include "helpers/AllocationCounter.h"
#include "helpers/ImportPatch.h"
#include "helpers/TemporaryFolder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <new>
#include <string>
#include <type_traits>
#include <vector>

using namespace quon_test;
using testing::Each;

namespace
{

constexpr std::uint64_t kSecond = 10000000;
constexpr std::uint64_t kSomeTime = 130000000000000000;  // in 2012
const CString kName = L"C:\\Folder\\name.txt";

bool IsModified(const std::wstring& path)
{
    return QuonFileModifiedManager::IsFileModified(path.c_str());
}

CFileStatus SomeStatus()
{
    CFileStatus status = {};
    status.m_ctime = CTime(1000);
    status.m_mtime = CTime(2000);
    status.m_atime = CTime(3000);
    status.m_size = 0x123456789A;
    status.m_attribute = 0x21;
    std::wcscpy(status.m_szFullName, kName);
    return status;
}

void ExpectSame(const CFileStatus& status, const CFileStatus& expected)
{
    EXPECT_EQ(status.m_ctime.GetTime(), expected.m_ctime.GetTime());
    EXPECT_EQ(status.m_mtime.GetTime(), expected.m_mtime.GetTime());
    EXPECT_EQ(status.m_atime.GetTime(), expected.m_atime.GetTime());
    EXPECT_EQ(status.m_size, expected.m_size);
    EXPECT_EQ(status.m_attribute, expected.m_attribute);
    EXPECT_STREQ(status.m_szFullName, expected.m_szFullName);
}

TEST(FileModifiedStatus, BeginsWithTimesOfZeroAndNothingElse)
{
    alignas(QuonFileModifiedStatus) unsigned char memory[sizeof(QuonFileModifiedStatus)];
    std::memset(memory, 0xA5, sizeof(memory));
    auto* const status = new (memory) QuonFileModifiedStatus;
    EXPECT_EQ(status->m_ctime.GetTime(), 0);
    EXPECT_EQ(status->m_mtime.GetTime(), 0);
    EXPECT_EQ(status->m_atime.GetTime(), 0);
    EXPECT_EQ(status->m_size, 0xA5A5A5A5A5A5A5A5u);
    EXPECT_EQ(status->m_attribute, 0xA5);
    EXPECT_THAT(status->m_szFullName, Each(static_cast<wchar_t>(0xA5A5)));
    status->~QuonFileModifiedStatus();
}

TEST(FileModifiedStatus, TakesOverTheFrameworksRecord)
{
    ExpectSame(QuonFileModifiedStatus(SomeStatus()), SomeStatus());
}

TEST(FileModifiedStatus, IsCopiedWhole)
{
    const QuonFileModifiedStatus original(SomeStatus());
    const QuonFileModifiedStatus copy(original);
    ExpectSame(copy, SomeStatus());
}

TEST(FileModifiedStatus, IsAssignedWithoutAccessTimeAndAttributes)
{
    CFileStatus other = {};
    other.m_ctime = CTime(1);
    other.m_mtime = CTime(2);
    other.m_atime = CTime(3);
    other.m_size = 4;
    other.m_attribute = 5;
    std::wcscpy(other.m_szFullName, L"C:\\another and longer\\name.txt");
    QuonFileModifiedStatus target(other);
    const QuonFileModifiedStatus source(SomeStatus());

    EXPECT_EQ(&(target = source), &target);
    CFileStatus expected = SomeStatus();
    expected.m_atime = CTime(3);
    expected.m_attribute = 5;
    ExpectSame(target, expected);

    QuonFileModifiedStatus& same = target;
    target = same;
    ExpectSame(target, expected);
}

TEST(FileModifiedStatus, EqualsItselfAlone)
{
    const QuonFileModifiedStatus status(SomeStatus());
    const QuonFileModifiedStatus copy(status);
    EXPECT_TRUE(status == status);
    EXPECT_FALSE(status != status);
    EXPECT_FALSE(status == copy);
    EXPECT_TRUE(status != copy);
    EXPECT_FALSE(copy == status);
    EXPECT_TRUE(copy != status);
}

TEST(FileModifiedStatus, HasTheFrameworksFieldsBehindItsTable)
{
    static_assert(std::has_virtual_destructor_v<QuonFileModifiedStatus>);
    static_assert(std::is_base_of_v<CFileStatus, QuonFileModifiedStatus>);
    const QuonFileModifiedStatus status(SomeStatus());
    const CFileStatus& base = status;
    EXPECT_EQ(reinterpret_cast<const char*>(&base) - reinterpret_cast<const char*>(&status), 8);
    EXPECT_EQ(sizeof(QuonFileModifiedStatus), sizeof(CFileStatus) + 8);
}

TEST(FileModifiedManager, HasATableAlone)
{
    static_assert(std::has_virtual_destructor_v<QuonFileModifiedManager>);
    EXPECT_EQ(sizeof(QuonFileModifiedManager), sizeof(void*));
    const QuonFileModifiedManager manager;
    EXPECT_FALSE(manager.IsFileModified(L"C:\\windows") && manager.IsFileModified(L"C:\\windows"));
}

class FileModified : public testing::Test
{
protected:
    void SetModified(std::uint64_t time) const { folder.SetTimes(L"file.txt", nullptr, nullptr, &time); }

    TemporaryFolder folder;
    const std::wstring file = folder.WriteFile(L"file.txt", "12345");
};

TEST_F(FileModified, IsTrueForAFileThatIsSeenForTheFirstTime)
{
    EXPECT_TRUE(IsModified(file));
    EXPECT_FALSE(IsModified(file));
    EXPECT_FALSE(IsModified(file));
}

TEST_F(FileModified, ComparesTheTimeInWholeSeconds)
{
    SetModified(kSomeTime);
    EXPECT_TRUE(IsModified(file));
    SetModified(kSomeTime + kSecond - 1);
    EXPECT_FALSE(IsModified(file));
    SetModified(kSomeTime + kSecond);
    EXPECT_TRUE(IsModified(file));
}

TEST_F(FileModified, StaysTrueOnceTheFileHasChanged)
{
    SetModified(kSomeTime);
    EXPECT_TRUE(IsModified(file));
    SetModified(kSomeTime + kSecond);
    for (int call = 0; call < 5; ++call)
    {
        EXPECT_TRUE(IsModified(file));
    }
    // The first time is what counts.
    SetModified(kSomeTime);
    EXPECT_FALSE(IsModified(file));
    SetModified(kSomeTime + kSecond);
    EXPECT_TRUE(IsModified(file));
}

TEST_F(FileModified, TakesAnEarlierTimeForAChangeToo)
{
    SetModified(kSomeTime);
    EXPECT_TRUE(IsModified(file));
    SetModified(kSomeTime - kSecond);
    EXPECT_TRUE(IsModified(file));
}

TEST_F(FileModified, LooksAtTheTimeOfModificationAlone)
{
    SetModified(kSomeTime);
    EXPECT_TRUE(IsModified(file));
    folder.WriteFile(L"file.txt", "another size", FILE_ATTRIBUTE_HIDDEN);
    const std::uint64_t other = kSomeTime + 100 * kSecond;
    const std::uint64_t same = kSomeTime;
    folder.SetTimes(L"file.txt", &other, &other, &same);
    EXPECT_FALSE(IsModified(file));
}

TEST_F(FileModified, FindsAFileWithoutRegardToCase)
{
    std::wstring upper = file;
    ::CharUpperW(upper.data());
    ASSERT_NE(upper, file);
    EXPECT_TRUE(IsModified(file));
    EXPECT_FALSE(IsModified(upper));
    std::wstring lower = file;
    ::CharLowerW(lower.data());
    EXPECT_FALSE(IsModified(lower));
}

// A relative path finds the file and is remembered under its full name, under which alone it is found again.
TEST_F(FileModified, RemembersTheFullName)
{
    wchar_t before[MAX_PATH] = {};
    ::GetCurrentDirectoryW(MAX_PATH, before);
    ASSERT_TRUE(::SetCurrentDirectoryW(folder.Path().c_str()));
    EXPECT_TRUE(IsModified(L"file.txt"));
    EXPECT_TRUE(IsModified(L"file.txt"));
    EXPECT_FALSE(IsModified(file));
    ::SetCurrentDirectoryW(before);
}

TEST_F(FileModified, IsTrueForWhatCannotBeRead)
{
    const std::wstring missing = folder / L"missing.txt";
    for (int call = 0; call < 3; ++call)
    {
        EXPECT_TRUE(IsModified(missing));
        EXPECT_TRUE(IsModified(L""));
    }
    // Nothing was remembered: the file is new when it comes.
    folder.WriteFile(L"missing.txt");
    EXPECT_TRUE(IsModified(missing));
    EXPECT_FALSE(IsModified(missing));
    // And what is remembered survives that it cannot be read for a while.
    ::DeleteFileW(missing.c_str());
    EXPECT_TRUE(IsModified(missing));
}

// One record for each answer but "no", and none ever goes. A record is the only thing of the library's that stays.
TEST_F(FileModified, RemembersARecordForEachChangeThatItTells)
{
    SetModified(kSomeTime);
    AllocationCounter counter;
    IsModified(folder / L"missing.txt");
    EXPECT_EQ(counter.GetLiveCount(), 0u);
    IsModified(file);
    EXPECT_EQ(counter.GetLiveCount(), 1u);
    IsModified(file);
    EXPECT_EQ(counter.GetLiveCount(), 1u);
    SetModified(kSomeTime + kSecond);
    for (std::size_t call = 1; call <= 3; ++call)
    {
        IsModified(file);
        EXPECT_EQ(counter.GetLiveCount(), 1 + call);
    }
}

}  // namespace
