#include "module/ModuleStateInternal.h"

AFX_MODULE_STATE& QuonModuleState()
{
    static AFX_MODULE_STATE state(TRUE, &QuonModuleWndProc, _MFC_VER);
    return state;
}

LRESULT CALLBACK QuonModuleWndProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam)
{
    AFX_MANAGE_STATE(&QuonModuleState());
    return AfxWndProc(window, message, wParam, lParam);
}
