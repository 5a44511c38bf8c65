#include "afxwin.h"
#include "JournalInternal.h"
#include "ModuleStateInternal.h"

// Here the name means the procedure itself.
#undef AfxWndProc

namespace
{
AFX_MODULE_STATE* appState = nullptr;
// The slots hold the values themselves: nothing to allocate, and nothing left over when a thread ends.
DWORD currentStateSlot = TLS_OUT_OF_INDEXES;

// Reading a slot clears the last error, which the caller may still want.
void* ReadSlot(DWORD slot)
{
    const DWORD lastError = GetLastError();
    void* value = TlsGetValue(slot);
    SetLastError(lastError);
    return value;
}

LRESULT CALLBACK AppWndProc(HWND hWnd, UINT nMsg, WPARAM wParam, LPARAM lParam)
{
    AFX_MANAGE_STATE(AfxGetAppModuleState());
    return AfxWndProc(hWnd, nMsg, wParam, lParam);
}

ULONG_PTR TempMapLocks()
{
    return reinterpret_cast<ULONG_PTR>(ReadSlot(AfxGetModuleState()->m_dwTempMapLockSlot));
}

void SetTempMapLocks(ULONG_PTR count)
{
    TlsSetValue(AfxGetModuleState()->m_dwTempMapLockSlot, reinterpret_cast<void*>(count));
}
}  // namespace

bool StartModuleStates()
{
    currentStateSlot = TlsAlloc();
    if (currentStateSlot == TLS_OUT_OF_INDEXES)
    {
        return false;
    }
    try
    {
        appState = new AFX_MODULE_STATE(FALSE, &AppWndProc, _MFC_VER);
    }
    catch (CMemoryException*)
    {
        return false;
    }
    return true;
}

void EndModuleStates()
{
    delete appState;
    appState = nullptr;
    if (currentStateSlot != TLS_OUT_OF_INDEXES)
    {
        TlsFree(currentStateSlot);
        currentStateSlot = TLS_OUT_OF_INDEXES;
    }
}

AFX_MODULE_STATE::AFX_MODULE_STATE(BOOL bDLL, WNDPROC pfnAfxWndProc, DWORD dwVersion, BOOL bSystem)
    : m_hCurrentInstanceHandle(nullptr),
      m_hCurrentResourceHandle(nullptr),
      m_bDLL(static_cast<BYTE>(bDLL)),
      m_bSystem(static_cast<BYTE>(bSystem)),
      m_libraryList(&CDynLinkLibrary::m_pNextDLL),
      m_pfnAfxWndProc(pfnAfxWndProc),
      m_dwVersion(dwVersion),
      m_dwTempMapLockSlot(TlsAlloc())
{
    if (m_dwTempMapLockSlot == TLS_OUT_OF_INDEXES)
    {
        AfxThrowMemoryException();
    }
}

AFX_MODULE_STATE::~AFX_MODULE_STATE()
{
    if (ReadSlot(currentStateSlot) == this)
    {
        AfxSetModuleState(nullptr);
    }
    TlsFree(m_dwTempMapLockSlot);
}

AFX_MODULE_STATE* AFXAPI AfxGetAppModuleState()
{
    return appState;
}

AFX_MODULE_STATE* AFXAPI AfxGetModuleState()
{
    auto* state = static_cast<AFX_MODULE_STATE*>(ReadSlot(currentStateSlot));
    return state != nullptr ? state : appState;
}

AFX_MODULE_STATE* AFXAPI AfxSetModuleState(AFX_MODULE_STATE* pNewState) noexcept
{
    auto* previous = static_cast<AFX_MODULE_STATE*>(ReadSlot(currentStateSlot));
    TlsSetValue(currentStateSlot, pNewState);
    return previous;
}

BOOL AFXAPI AfxIsModuleDll()
{
    return AfxGetModuleState()->m_bDLL;
}

HINSTANCE AFXAPI AfxGetInstanceHandle()
{
    return AfxGetModuleState()->m_hCurrentInstanceHandle;
}

HINSTANCE AFXAPI AfxGetResourceHandle()
{
    return AfxGetModuleState()->m_hCurrentResourceHandle;
}

void AFXAPI AfxSetResourceHandle(HINSTANCE hInstResource)
{
    AfxGetModuleState()->m_hCurrentResourceHandle = hInstResource;
}

AFX_MAINTAIN_STATE2::AFX_MAINTAIN_STATE2(AFX_MODULE_STATE* pModuleState) noexcept
    : m_pPrevModuleState(AfxSetModuleState(pModuleState))
{
}

AFX_MAINTAIN_STATE2::~AFX_MAINTAIN_STATE2()
{
    AfxSetModuleState(m_pPrevModuleState);
}

BOOL AFXAPI AfxWinInit(HINSTANCE hInstance, HINSTANCE, LPTSTR, int)
{
    if (!RecordCall("AfxWinInit", {hInstance}))
    {
        return FALSE;
    }
    SetErrorMode(GetErrorMode() | SEM_FAILCRITICALERRORS | SEM_NOOPENFILEERRORBOX);
    AFX_MODULE_STATE* state = AfxGetModuleState();
    state->m_hCurrentInstanceHandle = hInstance;
    state->m_hCurrentResourceHandle = hInstance;
    return TRUE;
}

void AFXAPI AfxWinTerm()
{
    // The framework unregisters its window classes here; the stand-in registers none.
    RecordCall("AfxWinTerm");
}

void AFXAPI AfxTermThread(HINSTANCE hInstTerm)
{
    RecordCall("AfxTermThread", {hInstTerm});
    if (hInstTerm == nullptr || hInstTerm == AfxGetInstanceHandle())
    {
        SetTempMapLocks(0);
    }
    if (hInstTerm == nullptr)
    {
        AfxSetModuleState(nullptr);
    }
}

void AFXAPI AfxLockTempMaps()
{
    RecordCall("AfxLockTempMaps");
    SetTempMapLocks(TempMapLocks() + 1);
}

BOOL AFXAPI AfxUnlockTempMaps(BOOL bDeleteTemps)
{
    // There are no temporary objects to delete: only the count is kept.
    RecordCall("AfxUnlockTempMaps", {nullptr, bDeleteTemps});
    const ULONG_PTR locks = TempMapLocks();
    if (locks == 0)
    {
        return FALSE;
    }
    SetTempMapLocks(locks - 1);
    return locks != 1;
}

LRESULT CALLBACK AfxWndProc(HWND hWnd, UINT nMsg, WPARAM wParam, LPARAM lParam)
{
    if (nMsg == WM_QUERYAFXWNDPROC)
    {
        return 1;
    }
    return DefWindowProcW(hWnd, nMsg, wParam, lParam);
}

WNDPROC AFXAPI AfxGetAfxWndProc()
{
    return AfxGetModuleState()->m_pfnAfxWndProc;
}
