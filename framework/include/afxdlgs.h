#pragma once

/// @file afxdlgs.h
/// The common dialogs. The stand-in has none of their classes; it does to the names of the platform what the
/// framework's header does.

#include "afxwin.h"

#include <commdlg.h>

// A member function of this name keeps it, whichever headers came first.
#ifdef GetFileTitle
#undef GetFileTitle
/// The platform's function, which the header of its dialogs offers as a macro.
inline short APIENTRY GetFileTitle(LPCTSTR lpszFile, LPTSTR lpszTitle, WORD cbBuf)
{
    return ::GetFileTitleW(lpszFile, lpszTitle, cbBuf);
}
#endif
