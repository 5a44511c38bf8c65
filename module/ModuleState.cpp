#include "module/ModuleStateInternal.h"

// The framework's headers make the name mean the current module's entry, which is the function below: calling that from
// within would never end.
#undef AfxWndProc

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
