#pragma once

/// @file afxdll_.h
/// Extension modules: DLLs that extend the framework's own classes and resources.

#include "afxstat_.h"

/// Base of what can receive commands. The stand-in routes none.
class QUON_FRAMEWORK_API CCmdTarget : public CObject
{
public:
    ~CCmdTarget() override;

protected:
    CCmdTarget();
};

/// Record of an extension module, zero until AfxInitExtensionModule fills it.
struct AFX_EXTENSION_MODULE
{
    BOOL bInitialized;
    HMODULE hModule;
    HMODULE hResource;
};

/// An extension module's place in the list of the module that loaded it.
class QUON_FRAMEWORK_API CDynLinkLibrary : public CCmdTarget
{
public:
    /// Links itself at the head of the current module state's list. A null resource instance means the module's
    /// own.
    explicit CDynLinkLibrary(AFX_EXTENSION_MODULE& state, BOOL bSystem = FALSE);
    /// The same for a module without a record, which is not the framework's.
    CDynLinkLibrary(HINSTANCE hModule, HINSTANCE hResource);
    /// Takes itself out of the current module state's list.
    ~CDynLinkLibrary() override;

    HMODULE m_hModule;
    HMODULE m_hResource;
    BOOL m_bSystem;
    CDynLinkLibrary* m_pNextDLL;
};

/// Fills the record on the first call. @return TRUE
QUON_FRAMEWORK_API BOOL AFXAPI AfxInitExtensionModule(AFX_EXTENSION_MODULE& state, HMODULE hModule);
/// Deletes the module's CDynLinkLibrary objects (with `bAll` those of every module) in the current module state's list.
/// Does nothing for a record that was never filled.
QUON_FRAMEWORK_API void AFXAPI AfxTermExtensionModule(AFX_EXTENSION_MODULE& state, BOOL bAll = FALSE);

/// Links the framework itself into the current module state's list, for a DLL with a module state of its own.
QUON_FRAMEWORK_API void AFXAPI AfxCoreInitModule();
