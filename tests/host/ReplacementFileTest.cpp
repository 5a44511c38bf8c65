#include "host/Console.h"
#include "host/landxml/LandXmlWriter.h"
#include "host/landxml/ReplacementFile.h"
#include "support/Progress.h"
#include "helpers/ImportPatch.h"
#include "helpers/TemporaryFolder.h"

#include <algorithm>
#include <filesystem>
#include <gtest/gtest.h>
#include <iterator>
#include <string>

namespace
{

using quon_test::TemporaryFolder;
using quonhost::CommandError;
using quonhost::ReplacementFile;

std::ptrdiff_t CountFiles(const TemporaryFolder& folder)
{
    return std::distance(std::filesystem::directory_iterator(folder.Path()), std::filesystem::directory_iterator());
}

template <typename Work>
std::string ComplaintOf(const Work& work)
{
    try
    {
        work();
    }
    catch (const CommandError& error)
    {
        return error.what();
    }
    return "";
}

TEST(ReplacementFile, TheOldFileStaysUntilTheNewOneIsWhole)
{
    const TemporaryFolder folder;
    const std::wstring target = folder.WriteFile(L"a.xml", "old");
    {
        ReplacementFile file(target);
        file.Write("new");
        EXPECT_EQ(folder.ReadFile(L"a.xml"), "old");
        file.Commit("new");
        EXPECT_EQ(folder.ReadFile(L"a.xml"), "new");
    }
    EXPECT_EQ(folder.ReadFile(L"a.xml"), "new");
    EXPECT_EQ(CountFiles(folder), 1);
}

TEST(ReplacementFile, WhatIsGivenUpLeavesNothing)
{
    const TemporaryFolder folder;
    const std::wstring target = folder.WriteFile(L"a.xml", "old");
    {
        ReplacementFile file(target);
        file.Write("new");
        EXPECT_EQ(CountFiles(folder), 2);
    }
    EXPECT_EQ(folder.ReadFile(L"a.xml"), "old");
    EXPECT_EQ(CountFiles(folder), 1);
}

TEST(ReplacementFile, AFileThatDoesNotHoldWhatWasWrittenReplacesNothing)
{
    const TemporaryFolder folder;
    const std::wstring target = folder.WriteFile(L"a.xml", "old");
    for (const std::string_view expected : {"longer", "ne", "nex", ""})
    {
        SCOPED_TRACE(expected);
        ReplacementFile file(target);
        file.Write("new");
        EXPECT_NE(ComplaintOf([&] { file.Commit(expected); }).find("does not hold what was written"),
                  std::string::npos);
        EXPECT_EQ(folder.ReadFile(L"a.xml"), "old");
    }
    EXPECT_EQ(CountFiles(folder), 1);
}

TEST(ReplacementFile, WhereNoFileCanBeIsReportedAtOnceInTheWordsOfTheSystem)
{
    const TemporaryFolder folder;
    EXPECT_NE(
        ComplaintOf([&] { ReplacementFile(folder / L"missing\\a.xml"); }).find("cannot be written: Path not found."),
        std::string::npos);
    EXPECT_NE(ComplaintOf([&] { ReplacementFile(folder.Path()); }).find("it is a folder"), std::string::npos);
}

TEST(ReplacementFile, AFileThatIsThereByChanceIsNotOverwritten)
{
    const TemporaryFolder folder;
    const std::wstring target = folder.WriteFile(L"a.xml", "old");
    const std::wstring beside = L"a.xml." + std::to_wstring(::GetCurrentProcessId()) + L".tmp";
    folder.WriteFile(beside.c_str(), "somebody's");
    quonhost::WriteWholeOutput(target, "new");
    EXPECT_EQ(folder.ReadFile(L"a.xml"), "new");
    EXPECT_EQ(folder.ReadFile(beside.c_str()), "somebody's");
}

TEST(ReplacementFile, TheSameFileIsRecognizedUnderAnyName)
{
    const TemporaryFolder folder;
    const std::wstring file = folder.WriteFile(L"a long name.xml", "old");
    const std::wstring link = folder / L"link.xml";
    ASSERT_TRUE(::CreateHardLinkW(link.c_str(), file.c_str(), nullptr));
    const std::wstring other = folder.WriteFile(L"b.xml", "old");
    for (const std::wstring& name : {file, link, folder / L"A LONG NAME.XML", folder / L"x\\..\\a long name.xml",
                                     folder / L".\\a long name.xml", L"\\\\?\\" + file})
    {
        SCOPED_TRACE(quonhost::ToUtf8(name));
        EXPECT_THROW(quonhost::RequireOtherFile(name, file), CommandError);
        EXPECT_THROW(quonhost::RequireOtherFile(file, name), CommandError);
    }
    EXPECT_NO_THROW(quonhost::RequireOtherFile(other, file));
    EXPECT_NO_THROW(quonhost::RequireOtherFile(folder / L"new.xml", file));
    EXPECT_NO_THROW(quonhost::RequireOtherFile(L"-", L"-"));
    EXPECT_THROW(quonhost::RequireOtherFile(folder / L"New.xml", folder / L"new.XML"), CommandError);
}

// A disk that is full after so many bytes.
DWORD room = 0;

BOOL WINAPI WriteAsFarAsThereIsRoom(HANDLE file, const void* data, DWORD size, DWORD* written, OVERLAPPED* overlapped)
{
    if (room == 0)
    {
        ::SetLastError(ERROR_DISK_FULL);
        return FALSE;
    }
    const DWORD part = std::min(size, room);
    room -= part;
    using Write = BOOL(WINAPI*)(HANDLE, const void*, DWORD, DWORD*, OVERLAPPED*);
    const auto write = reinterpret_cast<Write>(
        reinterpret_cast<void*>(::GetProcAddress(::GetModuleHandleW(L"kernel32"), "WriteFile")));
    return write(file, data, part, written, overlapped);
}

// A system that loses what it was given and reports success.
BOOL WINAPI LoseWhatIsWritten(HANDLE, const void*, DWORD size, DWORD* written, OVERLAPPED*)
{
    *written = size;
    return TRUE;
}

BOOL WINAPI FailToFlush(HANDLE)
{
    ::SetLastError(ERROR_DISK_FULL);
    return FALSE;
}

TEST(ReplacementFile, AFullDiskLeavesTheOldFileAndIsReportedInTheWordsOfTheSystem)
{
    const TemporaryFolder folder;
    const std::wstring target = folder.WriteFile(L"a.xml", "old");
    const quon_test::ImportPatch<decltype(&::WriteFile)> patch(nullptr, "WriteFile", &WriteAsFarAsThereIsRoom);
    for (const DWORD bytes : {0U, 1U, 2U})
    {
        SCOPED_TRACE(bytes);
        room = bytes;
        EXPECT_NE(ComplaintOf([&] { quonhost::WriteWholeOutput(target, "new"); }).find("cannot be written: Disk full."),
                  std::string::npos);
        EXPECT_EQ(folder.ReadFile(L"a.xml"), "old");
        EXPECT_EQ(CountFiles(folder), 1);
    }
    room = 3;
    quonhost::WriteWholeOutput(target, "new");
    EXPECT_EQ(folder.ReadFile(L"a.xml"), "new");
}

TEST(ReplacementFile, WhatTheSystemLostOrCouldNotFlushReplacesNothing)
{
    const TemporaryFolder folder;
    const std::wstring target = folder.WriteFile(L"a.xml", "old");
    {
        const quon_test::ImportPatch<decltype(&::WriteFile)> patch(nullptr, "WriteFile", &LoseWhatIsWritten);
        EXPECT_NE(
            ComplaintOf([&] { quonhost::WriteWholeOutput(target, "new"); }).find("does not hold what was written"),
            std::string::npos);
    }
    {
        const quon_test::ImportPatch<decltype(&::FlushFileBuffers)> patch(nullptr, "FlushFileBuffers", &FailToFlush);
        EXPECT_NE(ComplaintOf([&] { quonhost::WriteWholeOutput(target, "new"); }).find("Disk full."),
                  std::string::npos);
    }
    EXPECT_EQ(folder.ReadFile(L"a.xml"), "old");
    EXPECT_EQ(CountFiles(folder), 1);
}

int polls = 0;
int stoppingPoll = 0;  // 0: none

int StopAtPoll(int command, unsigned int, LPARAM)
{
    return command == 2 && ++polls == stoppingPoll ? 1 : 0;
}

TEST(ReplacementFile, AnExportThatIsStoppedAtAnyTimeLeavesTheOldFile)
{
    const TemporaryFolder folder;
    const std::wstring target = folder.WriteFile(L"a.xml", "old");
    quonhost::Survey survey;
    for (int number = 1; number <= 2000; ++number)
    {
        survey.points.push_back({std::to_wstring(number), {2.0 * number, 1.0 * number, 3.0}, L"A", L""});
    }
    const auto exportStoppedAt = [&](int poll) {
        polls = 0;
        stoppingPoll = poll;
        SetProgressCallback(&StopAtPoll);
        const std::string complaint =
            ComplaintOf([&] { quonhost::WriteWholeOutput(target, quonhost::WriteLandXml(survey, {})); });
        SetProgressCallback(nullptr);
        return complaint;
    };
    EXPECT_EQ(exportStoppedAt(0), "");
    EXPECT_NE(folder.ReadFile(L"a.xml"), "old");
    const int count = polls;
    EXPECT_GE(count, 5) << "while the document is made, when it is written, before it replaces";
    folder.WriteFile(L"a.xml", "old");
    for (int poll = 1; poll <= count; ++poll)
    {
        SCOPED_TRACE(poll);
        EXPECT_EQ(exportStoppedAt(poll), "stopped");
        EXPECT_EQ(folder.ReadFile(L"a.xml"), "old");
        EXPECT_EQ(CountFiles(folder), 1);
    }
}

}  // namespace
