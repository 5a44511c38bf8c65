// A host that includes the framework's dialogs before the path's header.
#include <afxdlgs.h>

#include "paths/QuonPath.h"

#include <gtest/gtest.h>

TEST(QuonPathNames, AreTheSameAfterTheHeaderOfTheDialogs)
{
    wchar_t title[20] = {};
    EXPECT_EQ(GetFileTitle(L"C:\\a\\plan.xml", title, 20), 0);
    EXPECT_STREQ(QuonPath(L"C:\\a\\plan.xml", 0).GetFileTitle(), L"plan");
}
