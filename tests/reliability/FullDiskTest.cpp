// Logs and streams on a disk that has no room: the system refuses to write.
#include <afx.h>

#include <gtest/gtest.h>

#include <string>

#include "helpers/ImportPatch.h"
#include "helpers/ModuleNames.h"
#include "support/QuonTimer.h"
#include "helpers/TemporaryFolder.h"
#include "xml/QuonFileStream.h"

namespace
{

using quon_test::ImportPatch;
using quon_test::TemporaryFolder;

int refusals = 0;

BOOL WINAPI RefuseToWrite(HANDLE, LPCVOID, DWORD, LPDWORD written, LPOVERLAPPED)
{
    ++refusals;
    if (written != nullptr)
    {
        *written = 0;
    }
    ::SetLastError(ERROR_DISK_FULL);
    return FALSE;
}

class FullDisk : public testing::Test
{
protected:
    FullDisk() { refusals = 0; }

    TemporaryFolder folder;
};

// The log's text goes through the C run-time, whose buffer is flushed when it is full and when the log is closed.
TEST_F(FullDisk, ATimerMeasuresAllTheSame)
{
    const std::wstring path = folder / L"run.log";
    {
        QuonTimer timer(path.c_str(), FALSE, TRUE);
        const ImportPatch<decltype(&::WriteFile)> patch(quon_test::kRunTimeModule, "WriteFile", &RefuseToWrite);
        timer.StartTimer();
        for (int i = 0; i < 10000; ++i)
        {
            timer.WriteReport(L"a step that is told at length, so that the buffer is full soon", FALSE);
        }
        EXPECT_GT(refusals, 0) << "the run-time did not ask the system";
        EXPECT_GE(timer.AddLap(), 0);
        EXPECT_NE(timer.GetElapsedText(TRUE).Find(L" sec"), -1);
    }
    EXPECT_TRUE(folder.Exists(L"run.log"));
}

TEST_F(FullDisk, ALogClosesWhenItsLastTextCannotBeWritten)
{
    const std::wstring path = folder / L"run.log";
    const ImportPatch<decltype(&::WriteFile)> patch(quon_test::kRunTimeModule, "WriteFile", &RefuseToWrite);
    {
        QuonTimer timer(path.c_str(), FALSE, TRUE);
        timer.WriteElapsed(FALSE);
    }
    EXPECT_GT(refusals, 0);
    EXPECT_NE(::DeleteFileW(path.c_str()), FALSE) << "the log is still open";
}

// Room comes back: what is written then is there.
TEST_F(FullDisk, ALogGoesOnWhenThereIsRoomAgain)
{
    const std::wstring path = folder / L"run.log";
    {
        QuonTimer timer(path.c_str(), FALSE, TRUE);
        {
            const ImportPatch<decltype(&::WriteFile)> patch(quon_test::kRunTimeModule, "WriteFile", &RefuseToWrite);
            for (int i = 0; i < 2000; ++i)
            {
                timer.WriteReport(L"lost", FALSE);
            }
        }
        for (int i = 0; i < 2000; ++i)
        {
            timer.WriteReport(L"kept", FALSE);
        }
    }
    EXPECT_NE(folder.ReadFile(L"run.log").find("Timer in kept"), std::string::npos);
}

// A stream asks the system at once: the failure is told, and the stream lives on.
TEST_F(FullDisk, AStreamTellsThatItCouldNotWrite)
{
    const std::wstring path = folder / L"out";
    auto* const stream = new QuonFileStream;
    ASSERT_TRUE(stream->OpenForWrite(path.c_str()));
    ULONG written = 7;
    {
        const ImportPatch<decltype(&::WriteFile)> patch(quon_test::kLibraryModule, "WriteFile", &RefuseToWrite);
        EXPECT_EQ(stream->Write("lost", 4, &written), E_FAIL);
        EXPECT_EQ(refusals, 1);
        EXPECT_EQ(written, 0u);
    }
    EXPECT_EQ(stream->Write("kept", 4, &written), S_OK);
    EXPECT_EQ(written, 4u);
    EXPECT_EQ(stream->Release(), 0u);
    EXPECT_EQ(folder.ReadFile(L"out"), "kept");
}

}  // namespace
