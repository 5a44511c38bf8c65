#include <windows.h>
#include "ModuleStateInternal.h"

BOOL WINAPI DllMain(HINSTANCE, DWORD reason, LPVOID)
{
    // A failed attach is followed by a detach.
    if (reason == DLL_PROCESS_ATTACH)
    {
        return StartNewHandlers() && StartModuleStates() ? TRUE : FALSE;
    }
    if (reason == DLL_PROCESS_DETACH)
    {
        EndModuleStates();
        EndNewHandlers();
    }
    return TRUE;
}
