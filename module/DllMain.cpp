// Attaches the library to a process as an extension module of the application framework, and detaches it.

#include "module/ModuleStateInternal.h"

#include <afxdllx.h>

#include "base/MemoryInternal.h"

namespace
{

AFX_EXTENSION_MODULE extensionModule;

// The library's own instance is initialised under the library's own module state, so that the host's keeps what the
// host put there.
bool InitialiseFramework(HINSTANCE instance)
{
    AFX_MANAGE_STATE(&QuonModuleState());
    AfxCoreInitModule();
    wchar_t noCommandLine[] = L"";
    return AfxWinInit(instance, nullptr, noCommandLine, 0) != FALSE;
}

// The record links itself into the list of the module state that is current, and that is the host's: there the host's
// framework looks for resources and run-time classes. AfxTermExtensionModule deletes it.
bool JoinHost(HINSTANCE instance)
{
    if (!AfxInitExtensionModule(extensionModule, instance))
    {
        return false;
    }
    new CDynLinkLibrary(extensionModule);
    return true;
}

void ReleaseTemporaryMaps()
{
    AfxLockTempMaps();
    AfxUnlockTempMaps(-1);
}

void DetachThread()
{
    AFX_MANAGE_STATE(&QuonModuleState());
    ReleaseTemporaryMaps();
    AfxTermThread();
}

// Empties the list of the library's own module state: AfxCoreInitModule linked the framework into it. The record that
// is known to the host does not serve: an attach that failed early never filled it, and then nothing would be deleted.
void UnlinkFramework(HINSTANCE instance)
{
    AFX_EXTENSION_MODULE ownModule = {};
    ownModule.bInitialized = TRUE;
    ownModule.hModule = instance;
    AfxTermExtensionModule(ownModule, TRUE);
}

void DetachProcess(HINSTANCE instance)
{
    {
        AFX_MANAGE_STATE(&QuonModuleState());
        ReleaseTemporaryMaps();
        AfxWinTerm();
        UnlinkFramework(instance);
    }
    AfxTermExtensionModule(extensionModule);
}

}  // namespace

// No exception may leave: memory that cannot be had makes the attach fail. Windows then calls the process detach, whose
// steps cope with whatever part was initialised.
extern "C" BOOL WINAPI DllMain(HINSTANCE instance, DWORD reason, LPVOID)
{
    bool succeeded = true;
    const bool hadMemory = RunsInMemory([&] {
        switch (reason)
        {
            case DLL_PROCESS_ATTACH:
                succeeded = InitialiseFramework(instance) && JoinHost(instance);
                break;
            case DLL_THREAD_DETACH:
                DetachThread();
                break;
            case DLL_PROCESS_DETACH:
                DetachProcess(instance);
                break;
            default:
                break;
        }
    });
    return hadMemory && succeeded;
}
