// What the stand-in offers to the tests of modules: the order of their calls, and failures on demand.
#include <gtest/gtest.h>
#include <afxwin.h>
#include <quon_framework_journal.h>
#include <thread>

namespace
{
class JournalTest : public testing::Test
{
protected:
    JournalTest() { QuonFrameworkClearJournal(); }
    ~JournalTest() override { QuonFrameworkClearJournal(); }
};

bool InitThrowsMemoryException()
{
    try
    {
        AfxWinInit(nullptr, nullptr, nullptr, 0);
    }
    catch (CMemoryException* error)
    {
        error->Delete();
        return true;
    }
    return false;
}

TEST_F(JournalTest, RecordsTheCallsInTheirOrder)
{
    AFX_MODULE_STATE state(TRUE, AfxGetAfxWndProc(), _MFC_VER);
    AFX_MANAGE_STATE(&state);
    AFX_EXTENSION_MODULE record = {};
    EXPECT_TRUE(QuonFrameworkJournal().IsEmpty());
    AfxCoreInitModule();
    AfxWinInit(nullptr, nullptr, nullptr, 0);
    AfxInitExtensionModule(record, GetModuleHandleW(nullptr));
    new CDynLinkLibrary(record);
    AfxLockTempMaps();
    AfxUnlockTempMaps();
    AfxTermThread();
    AfxSetModuleState(&state);
    AfxWinTerm();
    AfxTermExtensionModule(record, TRUE);
    EXPECT_STREQ(QuonFrameworkJournal(),
                 L"AfxCoreInitModule\nAfxWinInit\nAfxInitExtensionModule\nCDynLinkLibrary\nAfxLockTempMaps\n"
                 L"AfxUnlockTempMaps\nAfxTermThread\nAfxWinTerm\nAfxTermExtensionModule\n~CDynLinkLibrary");
    EXPECT_TRUE(state.m_libraryList.IsEmpty());
    QuonFrameworkClearJournal();
    EXPECT_TRUE(QuonFrameworkJournal().IsEmpty());
}

TEST_F(JournalTest, TellsThreadsApart)
{
    DWORD other = 0;
    AfxWinTerm();
    std::thread(
        [&]
        {
            other = GetCurrentThreadId();
            AfxTermThread();
        })
        .join();
    EXPECT_STREQ(QuonFrameworkJournal(), L"AfxWinTerm\nAfxTermThread");
    EXPECT_STREQ(QuonFrameworkJournal(GetCurrentThreadId()), L"AfxWinTerm");
    EXPECT_STREQ(QuonFrameworkJournal(other), L"AfxTermThread");
}

TEST_F(JournalTest, ACallFailsOnceAsOrdered)
{
    QuonFrameworkFailNext("AfxWinInit", QuonFrameworkFault::MemoryException);
    AfxWinTerm();
    EXPECT_TRUE(InitThrowsMemoryException());
    EXPECT_FALSE(InitThrowsMemoryException());
    QuonFrameworkFailNext("AfxWinInit", QuonFrameworkFault::ReturnFalse);
    EXPECT_FALSE(AfxWinInit(nullptr, nullptr, nullptr, 0));
    EXPECT_TRUE(AfxWinInit(nullptr, nullptr, nullptr, 0));
    EXPECT_STREQ(QuonFrameworkJournal(), L"AfxWinTerm\nAfxWinInit\nAfxWinInit\nAfxWinInit\nAfxWinInit");
}

TEST_F(JournalTest, AFailedLibraryRecordIsNotLinked)
{
    AFX_MODULE_STATE state(TRUE, AfxGetAfxWndProc(), _MFC_VER);
    AFX_MANAGE_STATE(&state);
    AFX_EXTENSION_MODULE record = {};
    AfxInitExtensionModule(record, GetModuleHandleW(nullptr));
    QuonFrameworkFailNext("CDynLinkLibrary", QuonFrameworkFault::MemoryException);
    try
    {
        new CDynLinkLibrary(record);
        FAIL();
    }
    catch (CMemoryException* error)
    {
        error->Delete();
    }
    EXPECT_TRUE(state.m_libraryList.IsEmpty());
    AfxTermExtensionModule(record);
}
}  // namespace
