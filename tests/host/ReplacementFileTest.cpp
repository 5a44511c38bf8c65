#include "host/Console.h"
#include "host/landxml/LandXmlWriter.h"
#include "host/landxml/ReplacementFile.h"
#include "support/Progress.h"
#include "helpers/TemporaryFolder.h"

#include <filesystem>
#include <gtest/gtest.h>
#include <iterator>
#include <string>

namespace
{

using quon_test::TemporaryFolder;
using quonhost::CommandError;
using quonhost::ReplacementFile;

QuonPath PathOf(const std::wstring& text)
{
    return QuonPath(text, QuonPathBackslash);
}

void Fill(const QuonPath& path, const std::string& text)
{
    FILE* const file = ::_wfopen(path, L"wb");
    ASSERT_NE(file, nullptr);
    std::fwrite(text.data(), 1, text.size(), file);
    std::fclose(file);
}

std::ptrdiff_t CountFiles(const TemporaryFolder& folder)
{
    return std::distance(std::filesystem::directory_iterator(folder.Path()), std::filesystem::directory_iterator());
}

TEST(ReplacementFile, TheOldFileStaysUntilTheNewOneIsWhole)
{
    const TemporaryFolder folder;
    const std::wstring target = folder.WriteFile(L"a.xml", "old");
    {
        ReplacementFile file(PathOf(target));
        Fill(file.GetPath(), "new");
        EXPECT_EQ(folder.ReadFile(L"a.xml"), "old");
        file.Commit();
        EXPECT_EQ(folder.ReadFile(L"a.xml"), "new");
    }
    EXPECT_EQ(folder.ReadFile(L"a.xml"), "new");
    EXPECT_EQ(CountFiles(folder), 1);
}

TEST(ReplacementFile, WhatIsGivenUpLeavesNothingBehind)
{
    const TemporaryFolder folder;
    const std::wstring target = folder.WriteFile(L"a.xml", "old");
    {
        const ReplacementFile file(PathOf(target));
        Fill(file.GetPath(), "new");
        EXPECT_EQ(CountFiles(folder), 2);
    }
    EXPECT_EQ(folder.ReadFile(L"a.xml"), "old");
    EXPECT_EQ(CountFiles(folder), 1);
}

TEST(ReplacementFile, AFailedReplacementLeavesTheOldFile)
{
    const TemporaryFolder folder;
    const std::wstring target = folder.WriteFile(L"a.xml", "old");
    {
        ReplacementFile file(PathOf(target));
        EXPECT_THROW(file.Commit(), CommandError) << "nothing was written";
    }
    EXPECT_EQ(folder.ReadFile(L"a.xml"), "old");
    EXPECT_EQ(CountFiles(folder), 1);
}

TEST(ReplacementFile, WhereNoFileCanBeIsToldAtOnce)
{
    const TemporaryFolder folder;
    EXPECT_THROW(ReplacementFile(PathOf(folder / L"missing\\a.xml")), CommandError);
    EXPECT_THROW(ReplacementFile(PathOf(folder.Path())), CommandError);
}

int pollsUntilStop = 0;

int StopLater(int command, unsigned int, LPARAM)
{
    return command == 2 && --pollsUntilStop < 0 ? 1 : 0;
}

TEST(ReplacementFile, AWriterThatIsStoppedLeavesTheOldFile)
{
    const TemporaryFolder folder;
    const std::wstring target = folder.WriteFile(L"a.xml", "old");
    quonhost::Survey survey;
    for (unsigned long number = 1; number <= 2000; ++number)
    {
        survey.points.push_back({number, 1.0 * number, 2.0 * number, 3.0, "A"});
    }
    for (int polls = 0; polls < 4; ++polls)
    {
        pollsUntilStop = polls;
        SetProgressCallback(&StopLater);
        std::string complaint;
        try
        {
            ReplacementFile file(PathOf(target));
            quonhost::WriteLandXml(survey, {L"stopped", false}, file.GetPath());
            file.Commit();
        }
        catch (const CommandError& error)
        {
            complaint = error.what();
        }
        SetProgressCallback(nullptr);
        EXPECT_EQ(complaint, "stopped") << polls;
        EXPECT_EQ(folder.ReadFile(L"a.xml"), "old");
        EXPECT_EQ(CountFiles(folder), 1);
    }
}

}  // namespace
