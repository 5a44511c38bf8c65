// What the stand-in offers to the tests of modules: the order of their calls, and failures on demand.
#include <afxwin.h>

#include <gtest/gtest.h>
#include <quon_framework_journal.h>

#include <thread>

#include "helpers/ModuleNames.h"

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

TEST_F(JournalTest, TellsArgumentsAndModuleStates)
{
    const HMODULE module = GetModuleHandleW(nullptr);
    AFX_MODULE_STATE state(TRUE, AfxGetAfxWndProc(), _MFC_VER);
    AfxWinTerm();
    {
        AFX_MANAGE_STATE(&state);
        AFX_EXTENSION_MODULE record = {};
        AfxCoreInitModule();
        AfxWinInit(module, nullptr, nullptr, 0);
        AfxInitExtensionModule(record, module);
        AfxUnlockTempMaps(-1);
        AfxTermExtensionModule(record, TRUE);
    }
    QuonFrameworkCall calls[20] = {};
    ASSERT_EQ(QuonFrameworkCalls(calls, 20), 8u);
    const struct
    {
        const char* name;
        bool system;
        HMODULE module;
        int argument;
        AFX_MODULE_STATE* moduleState;
    } expected[] = {
        {"AfxWinTerm", false, nullptr, 0, AfxGetAppModuleState()},
        {"AfxCoreInitModule", false, nullptr, 0, &state},
        {"CDynLinkLibrary", true, GetModuleHandleW(quon_test::kFrameworkModule), 0, &state},
        {"AfxWinInit", false, module, 0, &state},
        {"AfxInitExtensionModule", false, module, 0, &state},
        {"AfxUnlockTempMaps", false, nullptr, -1, &state},
        {"AfxTermExtensionModule", false, module, TRUE, &state},
        {"~CDynLinkLibrary", true, GetModuleHandleW(quon_test::kFrameworkModule), 0, &state},
    };
    for (int i = 0; i < 8; ++i)
    {
        SCOPED_TRACE(testing::Message() << "call " << i);
        EXPECT_STREQ(calls[i].name, expected[i].name);
        EXPECT_EQ(calls[i].system, expected[i].system);
        EXPECT_EQ(calls[i].module, expected[i].module);
        EXPECT_EQ(calls[i].argument, expected[i].argument);
        EXPECT_EQ(calls[i].moduleState, expected[i].moduleState);
        EXPECT_EQ(calls[i].threadId, GetCurrentThreadId());
    }
    EXPECT_EQ(QuonFrameworkCalls(calls, 1), 8u) << "there may be more calls than room";
}

TEST_F(JournalTest, TellsThreadsApart)
{
    DWORD other = 0;
    AfxWinTerm();
    std::thread([&] {
        other = GetCurrentThreadId();
        AfxTermThread();
    }).join();
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
