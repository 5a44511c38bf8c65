// The library's own windows: the framework's window procedure under the library's module state.

#include "module/ModuleStateInternal.h"

#include "helpers/ImportPatch.h"
#include "helpers/ModuleNames.h"

#include <gtest/gtest.h>

namespace
{

struct Seen
{
    AFX_MODULE_STATE* state;
    UINT message;
    WPARAM wParam;
    LPARAM lParam;
};
Seen seen;

LRESULT WINAPI RecordingDefWindowProc(HWND, UINT message, WPARAM wParam, LPARAM lParam)
{
    seen = {AfxGetModuleState(), message, wParam, lParam};
    return 42;
}

TEST(ModuleStateTest, TheFrameworksWindowProcedureRunsUnderTheLibrarysModuleState)
{
    AFX_MODULE_STATE* const host = AfxGetModuleState();
    ASSERT_NE(host, &QuonModuleState());
    const quon_test::ImportPatch<decltype(&::DefWindowProcW)> patch(quon_test::kFrameworkModule, "DefWindowProcW",
                                                                    &RecordingDefWindowProc);
    EXPECT_EQ(QuonModuleWndProc(nullptr, WM_USER + 1, 2, 3), 42);
    EXPECT_EQ(seen.state, &QuonModuleState());
    EXPECT_EQ(seen.message, static_cast<UINT>(WM_USER + 1));
    EXPECT_EQ(seen.wParam, 2u);
    EXPECT_EQ(seen.lParam, 3);
    EXPECT_EQ(AfxGetModuleState(), host) << "the caller's state is back afterwards";
}

TEST(ModuleStateTest, TheModuleStateNamesThatProcedureAsItsOwn)
{
    EXPECT_EQ(QuonModuleState().m_pfnAfxWndProc, &QuonModuleWndProc);
    EXPECT_NE(QuonModuleState().m_bDLL, 0);
}

}  // namespace
