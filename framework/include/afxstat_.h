#pragma once

/// @file afxstat_.h
/// Module state: what the framework knows of one executable or DLL that uses it.

#include "afx.h"
#include "afxtls_.h"

class CDynLinkLibrary;

/// State of one module. A thread works with one of them at a time; a thread that chose none works with the
/// application's, which the framework owns.
class QUON_FRAMEWORK_API AFX_MODULE_STATE
{
public:
    /// @param bDLL whether the module is a DLL
    /// @param pfnAfxWndProc the module's entry to the framework's window procedure
    /// @param dwVersion _MFC_VER
    /// @param bSystem whether the module belongs to the framework
    /// Throws CMemoryException* when the system has no thread-local slot left.
    AFX_MODULE_STATE(BOOL bDLL, WNDPROC pfnAfxWndProc, DWORD dwVersion, BOOL bSystem = FALSE);
    ~AFX_MODULE_STATE();
    AFX_MODULE_STATE(const AFX_MODULE_STATE&) = delete;
    AFX_MODULE_STATE& operator=(const AFX_MODULE_STATE&) = delete;

    HINSTANCE m_hCurrentInstanceHandle;
    HINSTANCE m_hCurrentResourceHandle;
    BYTE m_bDLL;
    BYTE m_bSystem;
    CTypedSimpleList<CDynLinkLibrary*> m_libraryList;  ///< Extension modules, the latest first.
    WNDPROC m_pfnAfxWndProc;
    DWORD m_dwVersion;

    /// Thread-local slot of the framework's own: how often a thread has locked its temporary maps for this module.
    DWORD m_dwTempMapLockSlot;
};

/// State of the application itself.
QUON_FRAMEWORK_API AFX_MODULE_STATE* AFXAPI AfxGetAppModuleState();
/// State that the calling thread works with. Leaves GetLastError() alone.
QUON_FRAMEWORK_API AFX_MODULE_STATE* AFXAPI AfxGetModuleState();
/// Makes the calling thread work with another state; null stands for the application's.
/// @return the state set before, null when none was
QUON_FRAMEWORK_API AFX_MODULE_STATE* AFXAPI AfxSetModuleState(AFX_MODULE_STATE* pNewState) noexcept;
QUON_FRAMEWORK_API BOOL AFXAPI AfxIsModuleDll();
QUON_FRAMEWORK_API HINSTANCE AFXAPI AfxGetInstanceHandle();
QUON_FRAMEWORK_API HINSTANCE AFXAPI AfxGetResourceHandle();
QUON_FRAMEWORK_API void AFXAPI AfxSetResourceHandle(HINSTANCE hInstResource);

/// Sets a module state for the rest of a scope.
struct QUON_FRAMEWORK_API AFX_MAINTAIN_STATE2
{
    explicit AFX_MAINTAIN_STATE2(AFX_MODULE_STATE* pModuleState) noexcept;
    ~AFX_MAINTAIN_STATE2();
    AFX_MAINTAIN_STATE2(const AFX_MAINTAIN_STATE2&) = delete;
    AFX_MAINTAIN_STATE2& operator=(const AFX_MAINTAIN_STATE2&) = delete;

protected:
    AFX_MODULE_STATE* m_pPrevModuleState;
};

#define AFX_MANAGE_STATE(p) AFX_MAINTAIN_STATE2 _ctlState(p);
