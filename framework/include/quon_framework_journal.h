#pragma once

/// @file quon_framework_journal.h
/// What the stand-in offers to tests when it is built with QUON_FRAMEWORK_JOURNAL: a record of the calls that start and
/// end modules and threads, and failures on demand. The framework has nothing like it; only tests may include this.
///
/// Recorded, under these names: AfxCoreInitModule, AfxWinInit, AfxInitExtensionModule, CDynLinkLibrary,
/// ~CDynLinkLibrary, AfxLockTempMaps, AfxUnlockTempMaps, AfxTermThread, AfxWinTerm, AfxTermExtensionModule.
/// CDynLinkLibrary objects that are the framework's own are told apart: only the list of calls with their details holds
/// them, and they do not fail on demand.

#include "afxstat_.h"

/// How a call fails.
enum class QuonFrameworkFault
{
    MemoryException,  ///< It throws CMemoryException*.
    ReturnFalse       ///< It does nothing and returns FALSE (AfxWinInit, AfxInitExtensionModule).
};

/// One call with its details.
struct QuonFrameworkCall
{
    const char* name;
    DWORD threadId;
    bool system;     ///< About a CDynLinkLibrary of the framework's own.
    HMODULE module;  ///< The instance or module that was passed, or that the record passed is about; null for others.
    int argument;    ///< The flag that was passed: bAll of AfxTermExtensionModule, the one of AfxUnlockTempMaps.
    AFX_MODULE_STATE* moduleState;  ///< The one that the thread worked with. It may be gone by now.
};

/// The names of the calls in their order, one per line without a last line break.
/// @param threadId calls of this thread only; 0 for all
QUON_FRAMEWORK_API CString AFXAPI QuonFrameworkJournal(DWORD threadId = 0);
/// Copies the calls in their order, as many as there is room for.
/// @return how many there are
QUON_FRAMEWORK_API size_t AFXAPI QuonFrameworkCalls(QuonFrameworkCall* copies, size_t capacity);
/// Forgets the calls and a failure that was ordered and has not happened.
QUON_FRAMEWORK_API void AFXAPI QuonFrameworkClearJournal();
/// Makes the next call of that name fail, once. A call that fails is recorded all the same.
QUON_FRAMEWORK_API void AFXAPI QuonFrameworkFailNext(LPCSTR name, QuonFrameworkFault fault);
