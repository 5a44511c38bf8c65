#include <afx.h>

#include <gtest/gtest.h>

#include <string>
#include <utility>

#include "framework/ThrowsPointer.h"
#include "helpers/TemporaryFolder.h"

namespace
{
using quon_test::FileErrorOf;
using quon_test::TemporaryFolder;
using quon_test::ThrowsPointer;

TEST(CFileTest, KnowsTheFlagsByTheirValues)
{
    EXPECT_EQ(0x7012U, UINT{CFile::modeCreate | CFile::modeNoTruncate | CFile::typeText | CFile::modeReadWrite |
                            CFile::shareExclusive});
    EXPECT_EQ(0x5012U, UINT{CFile::modeCreate | CFile::typeText | CFile::modeReadWrite | CFile::shareExclusive});
    EXPECT_EQ(CFile::modeRead, 0);
    EXPECT_EQ(CFile::modeWrite, 1);
    EXPECT_EQ(CFile::shareCompat, 0);
    EXPECT_EQ(CFile::shareDenyWrite, 0x20);
    EXPECT_EQ(CFile::shareDenyRead, 0x30);
    EXPECT_EQ(CFile::shareDenyNone, 0x40);
    EXPECT_EQ(CFile::modeNoInherit, 0x80);
    EXPECT_EQ(CFile::typeBinary, 0x8000);
    EXPECT_EQ(CFile::hFileNull, INVALID_HANDLE_VALUE);
}

TEST(CFileTest, WritesReadsAndSeeks)
{
    const TemporaryFolder folder;
    const std::wstring path = folder / L"a.bin";
    CFile file(path.c_str(), CFile::modeCreate | CFile::modeReadWrite);
    EXPECT_TRUE(file.GetFilePath() == path.c_str());
    EXPECT_TRUE(file.GetFileName() == L"a.bin");
    file.Write("0123456789", 10);
    EXPECT_EQ(file.GetLength(), 10U);
    EXPECT_EQ(file.GetPosition(), 10U);
    EXPECT_EQ(file.Seek(-3, CFile::end), 7U);
    EXPECT_EQ(file.Seek(-2, CFile::current), 5U);
    char text[8] = {};
    EXPECT_EQ(file.Read(text, 8), 5U);
    EXPECT_STREQ(text, "56789");
    EXPECT_EQ(file.Read(text, 8), 0U);  // the end is no error
    EXPECT_EQ(file.Seek(4, CFile::begin), 4U);
    file.Write("x\n", 2);
    EXPECT_EQ(file.SeekToEnd(), 10U);
    file.Flush();
    file.Close();
    EXPECT_EQ(file.m_hFile, CFile::hFileNull);
    EXPECT_TRUE(file.GetFilePath().IsEmpty());
    EXPECT_EQ(folder.ReadFile(L"a.bin"), "0123x\n6789");
}

TEST(CFileTest, ZeroBytesNeedNoBuffer)
{
    const TemporaryFolder folder;
    CFile file((folder / L"a").c_str(), CFile::modeCreate | CFile::modeReadWrite);
    file.Write(nullptr, 0);
    EXPECT_EQ(file.Read(nullptr, 0), 0U);
}

TEST(CFileTest, CreatesTruncatesOrKeeps)
{
    const TemporaryFolder folder;
    struct Row
    {
        const wchar_t* name;
        UINT flags;
        BOOL opens;
        const char* left;
    };
    const Row rows[] = {
        {L"old", CFile::modeReadWrite, TRUE, "content"},
        {L"old", CFile::modeReadWrite | CFile::modeNoTruncate, TRUE, "content"},
        {L"old", CFile::modeReadWrite | CFile::modeCreate | CFile::modeNoTruncate, TRUE, "content"},
        {L"old", CFile::modeReadWrite | CFile::modeCreate, TRUE, ""},
        {L"new", CFile::modeReadWrite, FALSE, nullptr},
        {L"new", CFile::modeReadWrite | CFile::modeNoTruncate, FALSE, nullptr},
        {L"new", CFile::modeReadWrite | CFile::modeCreate | CFile::modeNoTruncate, TRUE, ""},
        {L"new", CFile::modeReadWrite | CFile::modeCreate, TRUE, ""},
    };
    for (const Row& row : rows)
    {
        SCOPED_TRACE(testing::Message() << row.name << " " << std::hex << row.flags);
        folder.WriteFile(L"old", "content");
        DeleteFileW((folder / L"new").c_str());
        {
            CFile file;
            EXPECT_EQ(file.Open((folder / row.name).c_str(), row.flags), row.opens);
        }
        ASSERT_EQ(folder.Exists(row.name), row.left != nullptr);
        if (row.left != nullptr)
        {
            EXPECT_EQ(folder.ReadFile(row.name), row.left);
        }
    }
}

TEST(CFileTest, GrantsOnlyTheAccessAskedFor)
{
    const TemporaryFolder folder;
    const std::wstring path = folder.WriteFile(L"a", "content");
    char byte = 0;
    CFile reader(path.c_str(), CFile::modeRead);
    EXPECT_EQ(FileErrorOf([&] { reader.Write("x", 1); }).first, CFileException::accessDenied);
    reader.Close();
    CFile writer(path.c_str(), CFile::modeWrite);
    EXPECT_EQ(FileErrorOf([&] { writer.Read(&byte, 1); }).first, CFileException::accessDenied);
    writer.Close();
    CFile both(path.c_str(), CFile::modeReadWrite);
    EXPECT_EQ(both.Read(&byte, 1), 1U);
    both.Write("x", 1);
}

TEST(CFileTest, SharesAsTold)
{
    struct Row
    {
        UINT share;
        bool readersMay;
        bool writersMay;
    };
    const Row rows[] = {{CFile::shareCompat, false, false},
                        {CFile::shareExclusive, false, false},
                        {CFile::shareDenyWrite, true, false},
                        {CFile::shareDenyRead, false, true},
                        {CFile::shareDenyNone, true, true}};
    const TemporaryFolder folder;
    const std::wstring path = folder.WriteFile(L"a", "content");
    for (const Row& row : rows)
    {
        SCOPED_TRACE(row.share);
        CFile holder(path.c_str(), CFile::modeReadWrite | row.share);
        CFile other;
        CFileException error;
        EXPECT_EQ(other.Open(path.c_str(), CFile::modeRead | CFile::shareDenyNone, &error) != FALSE, row.readersMay);
        EXPECT_EQ(error.m_cause, row.readersMay ? CFileException::none : CFileException::sharingViolation);
        if (row.readersMay)
        {
            other.Close();
        }
        EXPECT_EQ(other.Open(path.c_str(), CFile::modeWrite | CFile::shareDenyNone) != FALSE, row.writersMay);
    }
}

TEST(CFileTest, OpenTellsWhatFailedAndDoesNotThrow)
{
    const TemporaryFolder folder;
    folder.MakeFolder(L"folder");
    const std::wstring path = folder / L"missing";
    const std::wstring tooLong = folder / std::wstring(300, L'x');
    struct Row
    {
        std::wstring path;
        UINT flags;
        int cause;
    };
    const Row rows[] = {
        {path, CFile::modeRead, CFileException::fileNotFound},
        {folder / L"no\\folder", CFile::modeCreate | CFile::modeWrite, CFileException::badPath},
        {folder / L"folder", CFile::modeRead, CFileException::accessDenied},
        {tooLong, CFile::modeCreate | CFile::modeWrite, CFileException::badPath},
    };
    for (const Row& row : rows)
    {
        SCOPED_TRACE(std::string(row.path.begin(), row.path.end()));
        CFileException error;
        CFile file;
        EXPECT_FALSE(file.Open(row.path.c_str(), row.flags, &error));
        EXPECT_EQ(error.m_cause, row.cause);
        EXPECT_TRUE(error.m_strFileName == row.path.c_str());
        EXPECT_EQ(file.m_hFile, CFile::hFileNull);
        EXPECT_FALSE(file.Open(row.path.c_str(), row.flags));
        EXPECT_EQ(FileErrorOf([&] { CFile thrower(row.path.c_str(), row.flags); }).first, row.cause);

        CStdioFile textFile;
        CFileException textError;
        EXPECT_FALSE(textFile.Open(row.path.c_str(), row.flags, &textError));
        EXPECT_EQ(textError.m_cause, row.cause);
        EXPECT_EQ(textFile.m_pStream, nullptr);
        EXPECT_EQ(FileErrorOf([&] { CStdioFile thrower(row.path.c_str(), row.flags); }).first, row.cause);
    }
    CFileException error;
    CFile file;
    EXPECT_FALSE(file.Open(path.c_str(), CFile::modeRead, &error));
    EXPECT_EQ(error.m_lOsError, ERROR_FILE_NOT_FOUND);
    EXPECT_FALSE(file.Open(L"", CFile::modeRead));
}

TEST(CFileTest, TheDestructorCloses)
{
    const TemporaryFolder folder;
    const std::wstring path = folder / L"a";
    HANDLE handle = nullptr;
    {
        CFile file(path.c_str(), CFile::modeCreate | CFile::modeWrite | CFile::shareExclusive);
        handle = file.m_hFile;
        DWORD flags = 0;
        EXPECT_TRUE(GetHandleInformation(handle, &flags));
        EXPECT_TRUE(flags & HANDLE_FLAG_INHERIT);
    }
    EXPECT_TRUE(DeleteFileW(path.c_str()));
    CFile file(path.c_str(), CFile::modeCreate | CFile::modeWrite | CFile::modeNoInherit);
    DWORD flags = 0;
    EXPECT_TRUE(GetHandleInformation(file.m_hFile, &flags));
    EXPECT_FALSE(flags & HANDLE_FLAG_INHERIT);
}

TEST(CFileExceptionTest, CarriesWhatItIsGiven)
{
    CFileException plain;
    EXPECT_EQ(plain.m_cause, CFileException::none);
    EXPECT_EQ(plain.m_lOsError, -1);
    EXPECT_TRUE(plain.m_strFileName.IsEmpty());
    try
    {
        AfxThrowFileException(CFileException::badSeek, 25, L"name");
        FAIL();
    }
    catch (CFileException* error)
    {
        EXPECT_EQ(error->m_cause, CFileException::badSeek);
        EXPECT_EQ(error->m_lOsError, 25);
        EXPECT_TRUE(error->m_strFileName == L"name");
        error->Delete();
    }
    EXPECT_TRUE(ThrowsPointer<CException>([] { AfxThrowFileException(CFileException::diskFull); }));
    EXPECT_FALSE(ThrowsPointer<CException>([] { CFileException::ThrowOsError(ERROR_SUCCESS); }));
    EXPECT_EQ(FileErrorOf([] { CFileException::ThrowOsError(ERROR_DISK_FULL, L"name"); }),
              std::make_pair(int{CFileException::diskFull}, LONG{ERROR_DISK_FULL}));
}

TEST(CFileExceptionTest, NamesTheCauseOfAnErrorCode)
{
    struct Row
    {
        DWORD error;
        int cause;
    };
    const Row rows[] = {{ERROR_SUCCESS, 0},
                        {ERROR_FILE_NOT_FOUND, 2},
                        {ERROR_PATH_NOT_FOUND, 3},
                        {ERROR_TOO_MANY_OPEN_FILES, 4},
                        {ERROR_ACCESS_DENIED, 5},
                        {ERROR_INVALID_HANDLE, 2},
                        {ERROR_BAD_FORMAT, 6},
                        {ERROR_CURRENT_DIRECTORY, 7},
                        {ERROR_SEEK, 9},
                        {ERROR_CRC, 10},
                        {ERROR_SHARING_VIOLATION, 11},
                        {ERROR_LOCK_VIOLATION, 12},
                        {ERROR_DISK_FULL, 13},
                        {ERROR_HANDLE_EOF, 14},
                        {ERROR_INVALID_NAME, 3},
                        {ERROR_ALREADY_EXISTS, 5},
                        {ERROR_NOT_ENOUGH_MEMORY, 1},
                        {0xFFFFFFFF, 1}};
    for (const Row& row : rows)
    {
        EXPECT_EQ(CFileException::OsErrorToException(static_cast<LONG>(row.error)), row.cause) << row.error;
    }
    EXPECT_EQ(CFileException::directoryFull, 8);
}
}  // namespace
