// A host that includes the framework's dialogs after the path's header.
#include "paths/QuonPath.h"

#include <afxdlgs.h>

#include <gtest/gtest.h>

TEST(QuonPathNames, AreTheSameBeforeTheHeaderOfTheDialogs)
{
    wchar_t title[20] = {};
    EXPECT_EQ(GetFileTitle(L"C:\\a\\plan.xml", title, 20), 0);
    EXPECT_STREQ(QuonPath(L"C:\\a\\plan.xml", 0).GetFileTitle(), L"plan");
}
