/// @file
/// The library's own module state in the application framework.
#pragma once

#include <afxwin.h>

/// The framework's state of this module: what its instance initialisation fills and what the library's own windows run
/// under. Lives as long as the module.
AFX_MODULE_STATE& QuonModuleState();

/// The framework's window procedure under the library's module state. Windows of the library's own that the framework
/// handles find the library's resources and maps, whichever module sent the message.
LRESULT CALLBACK QuonModuleWndProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam);
