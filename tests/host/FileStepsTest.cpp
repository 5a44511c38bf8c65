#include "host/FileSteps.h"

#include <afx.h>

#include "helpers/TemporaryFolder.h"
#include "host/Console.h"
#include "host/FileHandle.h"
#include "host/Streams.h"

#include <gtest/gtest.h>

#include <functional>

namespace
{

using namespace quonhost;

std::wstring ErrorOf(const std::function<void()>& action)
{
    try
    {
        action();
    }
    catch (const CommandError& error)
    {
        return error.Text();
    }
    return L"no error";
}

class FileSteps : public ::testing::Test
{
protected:
    FileSteps()
    {
        ::CreateDirectoryW((m_folder / L"a").c_str(), nullptr);
        ::CreateDirectoryW((m_folder / L"a\\b").c_str(), nullptr);
        for (const wchar_t* const name : {L"x.txt", L"a\\b\\held.txt"})
        {
            OwnFile(::CreateFileW((m_folder / name).c_str(), GENERIC_WRITE, 0, nullptr, CREATE_NEW, 0, nullptr));
        }
    }

    QuonPath Path(const wchar_t* name) const { return QuonPath((m_folder / name).c_str(), QuonPathBackslash); }

    // Keeps others from opening the file.
    FileHandle Hold(const wchar_t* name) const
    {
        return OwnFile(::CreateFileW(Path(name), GENERIC_READ | GENERIC_WRITE, 0, nullptr, OPEN_EXISTING, 0, nullptr));
    }

    quon_test::TemporaryFolder m_folder;
};

TEST_F(FileSteps, NameTheFileThatCannotBeRemoved)
{
    const std::wstring reason =
        InQuotes(Path(L"a\\b\\held.txt")) + L" cannot be removed: " + SystemErrorText(ERROR_SHARING_VIOLATION);
    {
        const FileHandle held = Hold(L"a\\b\\held.txt");
        ASSERT_TRUE(held);
        EXPECT_EQ(DeleteFileOrExplain(Path(L"a\\b\\held.txt")), reason);
        EXPECT_EQ(ExplainFolderThatStays(Path(L"a")), reason);
    }
    EXPECT_EQ(DeleteFileOrExplain(Path(L"a\\b\\held.txt")), L"");
    EXPECT_EQ(DeleteFileOrExplain(Path(L"x.txt")), L"");
}

TEST_F(FileSteps, RemoveReadOnlyFiles)
{
    ::SetFileAttributesW(Path(L"x.txt"), FILE_ATTRIBUTE_READONLY);
    EXPECT_EQ(DeleteFileOrExplain(Path(L"x.txt")), L"");
    EXPECT_FALSE(Path(L"x.txt").Exists());
}

TEST_F(FileSteps, NameTheFilesThatCannotBeCopied)
{
    const auto failure = [this](const wchar_t* source, const wchar_t* target, DWORD error) {
        return InQuotes(Path(source)) + L" cannot be copied to " + InQuotes(Path(target)) + L": " +
               SystemErrorText(error);
    };
    const auto copy = [this](const wchar_t* source, const wchar_t* target, bool failIfExists) {
        return ErrorOf([&] { CopyFileWhole(Path(source), Path(target), failIfExists); });
    };
    const FileHandle held = Hold(L"a\\b\\held.txt");
    EXPECT_EQ(copy(L"x.txt", L"a\\b\\held.txt", false), failure(L"x.txt", L"a\\b\\held.txt", ERROR_SHARING_VIOLATION));
    EXPECT_EQ(copy(L"a\\b\\held.txt", L"new.txt", false),
              failure(L"a\\b\\held.txt", L"new.txt", ERROR_SHARING_VIOLATION));
    EXPECT_EQ(copy(L"x.txt", L"no\\where.txt", false), failure(L"x.txt", L"no\\where.txt", ERROR_PATH_NOT_FOUND));
    EXPECT_EQ(copy(L"x.txt", L"y.txt", true), L"no error");
    EXPECT_EQ(copy(L"x.txt", L"y.txt", true), failure(L"x.txt", L"y.txt", ERROR_FILE_EXISTS));
}

TEST_F(FileSteps, PutAFileIntoAFolderOrUnderAName)
{
    struct Row
    {
        const wchar_t* destination;
        const wchar_t* target;
    };
    for (const Row& row : {Row{L"a", L"a\\x.txt"}, Row{L"a\\", L"a\\x.txt"}, Row{L"new\\", L"new\\x.txt"},
                           Row{L"new", L"new"}, Row{L"a\\y.txt", L"a\\y.txt"}})
    {
        EXPECT_STREQ(FileTarget(Path(L"x.txt"), Path(row.destination)), Path(row.target)) << row.destination;
    }
}

TEST_F(FileSteps, MakeFoldersOrSayWhyNot)
{
    EXPECT_EQ(ErrorOf([&] { MakeFolder(Path(L"new\\sub")); }), L"no error");
    EXPECT_TRUE(Path(L"new\\sub").Exists());
    EXPECT_EQ(ErrorOf([&] { MakeFolder(Path(L"new\\sub")); }), L"no error");
    EXPECT_EQ(ErrorOf([&] { MakeFolder(QuonPath(L"", QuonPathBackslash)); }), L"no error");
    EXPECT_EQ(ErrorOf([&] { MakeFolder(Path(L"x.txt")); }), InQuotes(Path(L"x.txt")) + L" is not a folder");
    EXPECT_EQ(ErrorOf([&] { MakeFolder(Path(L"x.txt\\sub")); }),
              InQuotes(Path(L"x.txt\\sub")) + L" cannot be made: " + SystemErrorText(ERROR_PATH_NOT_FOUND));
}

TEST_F(FileSteps, RefuseAFolderThatCannotBeRead)
{
    EXPECT_EQ(ErrorOf([&] { RequireReadableFolder(Path(L"a")); }), L"no error");
    EXPECT_EQ(ErrorOf([&] { RequireReadableFolder(Path(L"missing")); }),
              InQuotes(Path(L"missing")) + L" cannot be read: " + SystemErrorText(ERROR_PATH_NOT_FOUND));
}

}  // namespace
