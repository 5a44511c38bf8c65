// A program that uses the library, compiled once for each thing that a user may have included before and after its
// headers. What a macro of the Windows headers renames does not link, or returns something else.

#if defined(QUON_CLIENT_LEAN)
#define WIN32_LEAN_AND_MEAN
#endif

#include <afx.h>

#if defined(QUON_CLIENT_COMMDLG_FIRST)
#include <windows.h>
#include <commdlg.h>
#endif

#include "paths/QuonPath.h"
#include "monitoring/QuonFileModifiedManager.h"

#if defined(QUON_CLIENT_COMMDLG_LAST)
#include <commdlg.h>
#endif

#include <cstdio>
#include <cwchar>

int main()
{
    const QuonPath path(L"C:\\folder\\title.txt", 0);
    const bool isTitle = std::wcscmp(path.GetFileTitle(), L"title") == 0;
    const bool isThisYear = CTime::GetCurrentTime().GetYear() > 2000;
#if defined(GetFileTitle)
    // The system's own function of that name is there as well.
    wchar_t title[MAX_PATH] = {};
    const bool isSystemTitle = ::GetFileTitle(L"C:\\folder\\title.txt", title, MAX_PATH) == 0 && title[0] == L't';
#else
    const bool isSystemTitle = true;
#endif
    std::printf("%s\n", isTitle && isThisYear && isSystemTitle ? "right" : "wrong");
    return isTitle && isThisYear && isSystemTitle ? 0 : 1;
}
