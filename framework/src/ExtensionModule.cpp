#include "afxwin.h"
#include "JournalInternal.h"

namespace
{
// Modules come and go under the loader's lock, but the lists may also be changed without it.
SRWLOCK libraryListLock = SRWLOCK_INIT;

class LibraryListGuard
{
public:
    LibraryListGuard() { AcquireSRWLockExclusive(&libraryListLock); }
    ~LibraryListGuard() { ReleaseSRWLockExclusive(&libraryListLock); }
    LibraryListGuard(const LibraryListGuard&) = delete;
    LibraryListGuard& operator=(const LibraryListGuard&) = delete;
};

CDynLinkLibrary* FindLibrary(HMODULE module, BOOL any)
{
    const LibraryListGuard guard;
    const auto& list = AfxGetModuleState()->m_libraryList;
    CDynLinkLibrary* library = list.GetHead();
    while (library != nullptr && !any && library->m_hModule != module)
    {
        library = list.GetNext(library);
    }
    return library;
}

// A record that lives as long as the call that it is given to.
AFX_EXTENSION_MODULE& Temporary(AFX_EXTENSION_MODULE&& record)
{
    return record;
}

HMODULE FrameworkModule()
{
    HMODULE module = nullptr;
    GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT,
                       reinterpret_cast<LPCWSTR>(&libraryListLock), &module);
    return module;
}
}  // namespace

CCmdTarget::CCmdTarget() = default;
CCmdTarget::~CCmdTarget() = default;

CDynLinkLibrary::CDynLinkLibrary(AFX_EXTENSION_MODULE& state, BOOL bSystem)
    : m_hModule(state.hModule),
      m_hResource(state.hResource == nullptr ? state.hModule : state.hResource),
      m_bSystem(bSystem),
      m_pNextDLL(nullptr)
{
    RecordCall("CDynLinkLibrary", {m_hModule, 0, bSystem != FALSE});
    const LibraryListGuard guard;
    AfxGetModuleState()->m_libraryList.AddHead(this);
}

CDynLinkLibrary::CDynLinkLibrary(HINSTANCE hModule, HINSTANCE hResource)
    : CDynLinkLibrary(Temporary(AFX_EXTENSION_MODULE{TRUE, hModule, hResource}), FALSE)
{
}

CDynLinkLibrary::~CDynLinkLibrary()
{
    RecordCall("~CDynLinkLibrary", {m_hModule, 0, m_bSystem != FALSE});
    const LibraryListGuard guard;
    AfxGetModuleState()->m_libraryList.Remove(this);
}

BOOL AFXAPI AfxInitExtensionModule(AFX_EXTENSION_MODULE& state, HMODULE hModule)
{
    if (!RecordCall("AfxInitExtensionModule", {hModule}))
    {
        return FALSE;
    }
    if (!state.bInitialized)
    {
        state.bInitialized = TRUE;
        state.hModule = hModule;
        state.hResource = nullptr;
    }
    return TRUE;
}

void AFXAPI AfxTermExtensionModule(AFX_EXTENSION_MODULE& state, BOOL bAll)
{
    RecordCall("AfxTermExtensionModule", {state.hModule, bAll});
    if (!state.bInitialized)
    {
        return;
    }
    while (CDynLinkLibrary* library = FindLibrary(state.hModule, bAll))
    {
        delete library;
    }
}

void AFXAPI AfxCoreInitModule()
{
    RecordCall("AfxCoreInitModule");
    AFX_EXTENSION_MODULE framework = {TRUE, FrameworkModule(), nullptr};
    new CDynLinkLibrary(framework, TRUE);
}
