#include "host/FileIdentity.h"

#include <afx.h>

#include "helpers/TemporaryFolder.h"
#include "host/FileHandle.h"

#include <gtest/gtest.h>

namespace
{

using namespace quonhost;

class FileIdentity : public ::testing::Test
{
protected:
    FileIdentity()
    {
        ::CreateDirectoryW((m_folder / L"a").c_str(), nullptr);
        ::CreateDirectoryW((m_folder / L"a\\b").c_str(), nullptr);
        ::CreateDirectoryW((m_folder / L"ab").c_str(), nullptr);
        for (const wchar_t* const name : {L"x.txt", L"y.txt"})
        {
            OwnFile(::CreateFileW((m_folder / name).c_str(), GENERIC_WRITE, 0, nullptr, CREATE_NEW, 0, nullptr));
        }
        ::CreateHardLinkW((m_folder / L"link.txt").c_str(), (m_folder / L"x.txt").c_str(), nullptr);
    }

    quon_test::TemporaryFolder m_folder;
};

TEST_F(FileIdentity, DoesNotDependOnTheName)
{
    struct Row
    {
        const wchar_t* name;
        const wchar_t* other;
        bool isSame;
    };
    for (const Row& row :
         {Row{L"x.txt", L"x.txt", true}, Row{L"x.txt", L"X.TXT", true}, Row{L"x.txt", L".\\x.txt", true},
          Row{L"x.txt", L"a\\..\\x.txt", true}, Row{L"x.txt", L"link.txt", true}, Row{L"a", L"a\\", true},
          Row{L"a", L"a\\b\\..", true}, Row{L"x.txt", L"y.txt", false}, Row{L"a", L"ab", false},
          Row{L"x.txt", L"missing", false}, Row{L"missing", L"missing", false}})
    {
        EXPECT_EQ(IsSameFile((m_folder / row.name).c_str(), (m_folder / row.other).c_str()), row.isSame)
            << row.name << L" " << row.other;
    }
}

TEST_F(FileIdentity, IsFoundForFilesThatOthersHaveLocked)
{
    const FileHandle lock = OwnFile(::CreateFileW((m_folder / L"x.txt").c_str(), GENERIC_READ | GENERIC_WRITE, 0,
                                                  nullptr, OPEN_EXISTING, 0, nullptr));
    ASSERT_TRUE(lock);
    EXPECT_TRUE(IsSameFile((m_folder / L"x.txt").c_str(), (m_folder / L"link.txt").c_str()));
}

TEST_F(FileIdentity, PlacesNamesThatDoNotExist)
{
    struct Row
    {
        const wchar_t* path;
        const wchar_t* folder;
        bool isInside;
    };
    for (const Row& row : {Row{L"a", L"a", true}, Row{L"a\\b", L"a", true}, Row{L"a\\new\\sub", L"a", true},
                           Row{L"A\\NEW", L"a\\", true}, Row{L"ab", L"a", false}, Row{L"ab\\new", L"a", false},
                           Row{L"a", L"a\\b", false}, Row{L"a\\b\\..\\..\\ab", L"a", false},
                           Row{L"a", L"missing", false}, Row{L"missing\\x", L"missing", false}})
    {
        EXPECT_EQ(IsInside((m_folder / row.path).c_str(), (m_folder / row.folder).c_str()), row.isInside)
            << row.path << L" " << row.folder;
    }
}

TEST_F(FileIdentity, DistinguishesFoldersFromFiles)
{
    EXPECT_TRUE(IsFolder((m_folder / L"a").c_str()));
    EXPECT_FALSE(IsFolder((m_folder / L"x.txt").c_str()));
    EXPECT_FALSE(IsFolder((m_folder / L"missing").c_str()));
}

// The handles that Wine makes of redirected Unix files have no identity, so the test opens the file by itself.
TEST_F(FileIdentity, AStandardHandleIsTheFileThatItWasRedirectedTo)
{
    for (const DWORD standard : {STD_INPUT_HANDLE, STD_OUTPUT_HANDLE})
    {
        const HANDLE before = ::GetStdHandle(standard);
        const HANDLE file = ::CreateFileW((m_folder / L"x.txt").c_str(), GENERIC_READ | GENERIC_WRITE, FILE_SHARE_READ,
                                          nullptr, OPEN_EXISTING, 0, nullptr);
        ::SetStdHandle(standard, file);
        const bool isSame = IsRedirectedTo(standard, (m_folder / L"X.TXT").c_str());
        const bool isOther = IsRedirectedTo(standard, (m_folder / L"y.txt").c_str());
        const bool isMissing = IsRedirectedTo(standard, (m_folder / L"none.txt").c_str());
        ::SetStdHandle(standard, before);
        ::CloseHandle(file);
        EXPECT_TRUE(isSame);
        EXPECT_FALSE(isOther);
        EXPECT_FALSE(isMissing);
    }
}

}  // namespace
