// Module state, extension modules and the window procedure, as an extension module and its host use them.
#include <gtest/gtest.h>
#include <afxwin.h>
#include <string>
#include <thread>
#include <vector>

#undef AfxWndProc

namespace
{
LRESULT CALLBACK EntryForTests(HWND hWnd, UINT nMsg, WPARAM wParam, LPARAM lParam)
{
    return AfxWndProc(hWnd, nMsg, wParam, lParam);
}

AFX_MODULE_STATE& TestState()
{
    static AFX_MODULE_STATE state(TRUE, &EntryForTests, _MFC_VER);
    return state;
}

/// The modules of the current state's list, in its order.
std::vector<HMODULE> Modules()
{
    std::vector<HMODULE> modules;
    auto& list = AfxGetModuleState()->m_libraryList;
    for (CDynLinkLibrary* library = list; library != nullptr; library = list.GetNext(library))
    {
        modules.push_back(library->m_hModule);
    }
    return modules;
}

HMODULE Fake(INT_PTR number)
{
    return reinterpret_cast<HMODULE>(number);
}

TEST(ModuleStateTest, AThreadStartsWithTheApplicationsState)
{
    ASSERT_NE(AfxGetAppModuleState(), nullptr);
    EXPECT_EQ(AfxGetModuleState(), AfxGetAppModuleState());
    AFX_MANAGE_STATE(&TestState());
    AFX_MODULE_STATE* seen = nullptr;
    std::thread([&] { seen = AfxGetModuleState(); }).join();
    EXPECT_EQ(seen, AfxGetAppModuleState());
    EXPECT_EQ(AfxGetModuleState(), &TestState());
}

void CallWithTheApplicationsState()
{
    AFX_MANAGE_STATE(AfxGetAppModuleState());
    EXPECT_EQ(AfxGetModuleState(), AfxGetAppModuleState());
    EXPECT_FALSE(AfxIsModuleDll());
}

TEST(ModuleStateTest, AScopeRestoresTheState)
{
    {
        AFX_MANAGE_STATE(&TestState());
        EXPECT_EQ(AfxGetModuleState(), &TestState());
        EXPECT_TRUE(AfxIsModuleDll());
        CallWithTheApplicationsState();
        EXPECT_EQ(AfxGetModuleState(), &TestState());
    }
    EXPECT_EQ(AfxGetModuleState(), AfxGetAppModuleState());
}

TEST(ModuleStateTest, AnExceptionRestoresTheState)
{
    try
    {
        AFX_MANAGE_STATE(&TestState());
        AfxThrowMemoryException();
    }
    catch (CMemoryException* error)
    {
        error->Delete();
    }
    EXPECT_EQ(AfxGetModuleState(), AfxGetAppModuleState());
}

TEST(ModuleStateTest, SettingAStateReturnsTheOneBefore)
{
    AFX_MODULE_STATE* before = AfxSetModuleState(&TestState());
    EXPECT_EQ(AfxSetModuleState(AfxGetAppModuleState()), &TestState());
    AfxSetModuleState(before);
    EXPECT_EQ(AfxGetModuleState(), AfxGetAppModuleState());
}

TEST(ModuleStateTest, HoldsWhatItWasMadeOf)
{
    const AFX_MODULE_STATE state(TRUE, &EntryForTests, _MFC_VER, TRUE);
    EXPECT_EQ(state.m_bDLL, TRUE);
    EXPECT_EQ(state.m_bSystem, TRUE);
    EXPECT_EQ(state.m_pfnAfxWndProc, &EntryForTests);
    EXPECT_EQ(state.m_dwVersion, static_cast<DWORD>(_MFC_VER));
    EXPECT_TRUE(state.m_libraryList.IsEmpty());
    EXPECT_EQ(TestState().m_bSystem, FALSE);
}

TEST(ModuleStateTest, InitialisationSetsTheInstanceOfTheCurrentState)
{
    AFX_MANAGE_STATE(&TestState());
    const HINSTANCE instance = GetModuleHandleW(nullptr);
    EXPECT_TRUE(AfxWinInit(instance, nullptr, GetCommandLineW(), 0));
    EXPECT_EQ(AfxGetInstanceHandle(), instance);
    EXPECT_EQ(AfxGetResourceHandle(), instance);
    EXPECT_EQ(TestState().m_hCurrentInstanceHandle, instance);
    EXPECT_NE(GetErrorMode() & SEM_FAILCRITICALERRORS, 0U);
    AfxSetResourceHandle(Fake(8));
    EXPECT_EQ(AfxGetResourceHandle(), Fake(8));
    EXPECT_EQ(AfxGetInstanceHandle(), instance);
    AfxWinTerm();
}

TEST(ModuleStateTest, TempMapLocksNest)
{
    EXPECT_FALSE(AfxUnlockTempMaps());
    AfxLockTempMaps();
    AfxLockTempMaps();
    EXPECT_TRUE(AfxUnlockTempMaps());
    std::thread([] { EXPECT_FALSE(AfxUnlockTempMaps()); }).join();
    EXPECT_FALSE(AfxUnlockTempMaps(FALSE));
    EXPECT_FALSE(AfxUnlockTempMaps());
}

TEST(ModuleStateTest, TempMapLocksBelongToTheModule)
{
    AfxLockTempMaps();
    AfxLockTempMaps();
    {
        AFX_MANAGE_STATE(&TestState());
        EXPECT_FALSE(AfxUnlockTempMaps());
    }
    EXPECT_TRUE(AfxUnlockTempMaps());
    EXPECT_FALSE(AfxUnlockTempMaps());
}

TEST(ModuleStateTest, TerminationToleratesWhatWasNeverBegun)
{
    AFX_EXTENSION_MODULE record = {};
    std::thread([&] {
        AfxTermExtensionModule(record);
        AfxUnlockTempMaps();
        AfxTermThread(Fake(16));
        AfxTermThread();
        AfxTermThread();
        AfxWinTerm();
        AfxTermExtensionModule(record, TRUE);
        EXPECT_EQ(AfxGetModuleState(), AfxGetAppModuleState());
    }).join();
    EXPECT_FALSE(record.bInitialized);
}

TEST(ModuleStateTest, AnExtensionModuleIsFilledOnce)
{
    AFX_EXTENSION_MODULE record = {};
    EXPECT_TRUE(AfxInitExtensionModule(record, Fake(16)));
    EXPECT_TRUE(record.bInitialized);
    EXPECT_EQ(record.hModule, Fake(16));
    EXPECT_TRUE(AfxInitExtensionModule(record, Fake(32)));
    EXPECT_EQ(record.hModule, Fake(16));
    AfxTermExtensionModule(record);
}

TEST(ModuleStateTest, LibrariesLinkThemselvesIntoTheCurrentState)
{
    const AFX_MODULE_STATE* app = AfxGetModuleState();
    AFX_MODULE_STATE state(TRUE, &EntryForTests, _MFC_VER);
    AFX_MANAGE_STATE(&state);
    AFX_EXTENSION_MODULE first = {};
    AFX_EXTENSION_MODULE second = {};
    AfxInitExtensionModule(first, Fake(16));
    AfxInitExtensionModule(second, Fake(32));
    new CDynLinkLibrary(first);
    new CDynLinkLibrary(second);
    CDynLinkLibrary* third = new CDynLinkLibrary(Fake(48), Fake(64));
    EXPECT_EQ(third->m_hResource, Fake(64));
    EXPECT_EQ(Modules(), (std::vector<HMODULE>{Fake(48), Fake(32), Fake(16)}));
    EXPECT_NE(AfxGetModuleState(), app);
    AfxTermExtensionModule(second);
    EXPECT_EQ(Modules(), (std::vector<HMODULE>{Fake(48), Fake(16)}));
    delete third;
    EXPECT_EQ(Modules(), (std::vector<HMODULE>{Fake(16)}));
    new CDynLinkLibrary(second);
    AfxTermExtensionModule(first, TRUE);
    EXPECT_TRUE(Modules().empty());
}

TEST(ModuleStateTest, ARecordNeverFilledEndsNoOtherModule)
{
    AFX_MODULE_STATE state(TRUE, &EntryForTests, _MFC_VER);
    AFX_MANAGE_STATE(&state);
    AFX_EXTENSION_MODULE record = {};
    CDynLinkLibrary* other = new CDynLinkLibrary(Fake(16), Fake(16));
    AfxTermExtensionModule(record, TRUE);
    EXPECT_EQ(Modules(), (std::vector<HMODULE>{Fake(16)}));
    delete other;
}

TEST(ModuleStateTest, AllRecordsOfAModuleGoTogether)
{
    AFX_MODULE_STATE state(TRUE, &EntryForTests, _MFC_VER);
    AFX_MANAGE_STATE(&state);
    AFX_EXTENSION_MODULE record = {};
    AfxInitExtensionModule(record, Fake(16));
    new CDynLinkLibrary(record);
    new CDynLinkLibrary(Fake(32), Fake(32));
    new CDynLinkLibrary(record);
    AfxTermExtensionModule(record);
    EXPECT_EQ(Modules(), (std::vector<HMODULE>{Fake(32)}));
    AfxTermExtensionModule(record, TRUE);
}

TEST(ModuleStateTest, TheWindowProcedureIsReachedThroughTheCurrentState)
{
    AFX_MANAGE_STATE(&TestState());
    EXPECT_EQ(AfxGetAfxWndProc(), &EntryForTests);
    EXPECT_EQ(AfxWndProc(nullptr, 0x0360, 0, 0), 1);
    AfxSetModuleState(AfxGetAppModuleState());
    ASSERT_NE(AfxGetAfxWndProc(), nullptr);
    EXPECT_NE(AfxGetAfxWndProc(), &EntryForTests);
}

TEST(ModuleStateTest, UnknownWindowsGetTheDefaultHandling)
{
    HWND window = CreateWindowExW(0, L"STATIC", L"a title", 0, 0, 0, 10, 10, HWND_MESSAGE, nullptr, nullptr, nullptr);
    ASSERT_NE(window, nullptr);
    EXPECT_EQ(AfxWndProc(window, WM_GETTEXTLENGTH, 0, 0), DefWindowProcW(window, WM_GETTEXTLENGTH, 0, 0));
    DestroyWindow(window);
}
}  // namespace
