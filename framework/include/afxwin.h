#pragma once

/// @file afxwin.h
/// Start and end of the framework in a process, a thread and a module; its window procedure.

#include "afx.h"
#include "afxstat_.h"
#include "afxdll_.h"

/// Asks a window whether the framework's window procedure is its own; that answers 1.
#define WM_QUERYAFXWNDPROC 0x0360

/// Prepares the current module state for `hInstance`. A console program calls it first, with its own instance, null,
/// its command line and 0. Critical errors are reported to the caller from then on, not in a message box.
/// @return whether it succeeded
QUON_FRAMEWORK_API BOOL AFXAPI AfxWinInit(HINSTANCE hInstance, HINSTANCE hPrevInstance, LPTSTR lpCmdLine, int nCmdShow);
/// Ends what AfxWinInit began; may be called without it.
QUON_FRAMEWORK_API void AFXAPI AfxWinTerm();
/// Ends the calling thread's state for the module `hInstTerm`, or for all when it is null.
QUON_FRAMEWORK_API void AFXAPI AfxTermThread(HINSTANCE hInstTerm = nullptr);

/// Keeps the calling thread's temporary objects for handles alive until AfxUnlockTempMaps. Calls nest.
QUON_FRAMEWORK_API void AFXAPI AfxLockTempMaps();
/// @param bDeleteTemps whether the last unlock deletes the temporary objects
/// @return whether they are still locked
QUON_FRAMEWORK_API BOOL AFXAPI AfxUnlockTempMaps(BOOL bDeleteTemps = TRUE);

/// The framework's window procedure. The stand-in has no window objects: every window gets the default handling.
QUON_FRAMEWORK_API LRESULT CALLBACK AfxWndProc(HWND hWnd, UINT nMsg, WPARAM wParam, LPARAM lParam);
/// The current module state's entry to it.
QUON_FRAMEWORK_API WNDPROC AFXAPI AfxGetAfxWndProc();
// As in the framework, the name means the current module's entry. A module's own entry says #undef AfxWndProc before it
// calls the procedure itself, or it would call itself for ever.
#define AfxWndProc (*AfxGetAfxWndProc())
