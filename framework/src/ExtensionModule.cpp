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
    : CDynLinkLibrary(state.hModule, state.hResource, bSystem)
{
}

CDynLinkLibrary::CDynLinkLibrary(HINSTANCE hModule, HINSTANCE hResource, BOOL bSystem)
    : m_hModule(hModule),
      m_hResource(hResource == nullptr ? hModule : hResource),
      m_bSystem(bSystem),
      m_pNextDLL(nullptr)
{
    RecordCall("CDynLinkLibrary", {hModule, 0, bSystem != FALSE});
    const LibraryListGuard guard;
    AfxGetModuleState()->m_libraryList.AddHead(this);
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
    const HMODULE framework = FrameworkModule();
    new CDynLinkLibrary(framework, framework, TRUE);
}
