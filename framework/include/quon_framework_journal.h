#pragma once

/// @file quon_framework_journal.h
/// What the stand-in offers to tests when it is built with QUON_FRAMEWORK_JOURNAL: a record of the calls that start and
/// end modules and threads, and failures on demand. The framework has nothing like it; only tests may include this.
///
/// Recorded, under these names: AfxCoreInitModule, AfxWinInit, AfxInitExtensionModule, CDynLinkLibrary,
/// ~CDynLinkLibrary, AfxLockTempMaps, AfxUnlockTempMaps, AfxTermThread, AfxWinTerm, AfxTermExtensionModule.
/// CDynLinkLibrary objects are recorded unless they are the framework's own.

#include "afx.h"

/// How a call fails.
enum class QuonFrameworkFault
{
    MemoryException,  ///< It throws CMemoryException*.
    ReturnFalse       ///< It does nothing and returns FALSE (AfxWinInit, AfxInitExtensionModule).
};

/// The names of the calls in their order, one per line without a last line break.
/// @param threadId calls of this thread only; 0 for all
QUON_FRAMEWORK_API CString AFXAPI QuonFrameworkJournal(DWORD threadId = 0);
/// Forgets the calls and a failure that was ordered and has not happened.
QUON_FRAMEWORK_API void AFXAPI QuonFrameworkClearJournal();
/// Makes the next call of that name fail, once. A call that fails is recorded all the same.
QUON_FRAMEWORK_API void AFXAPI QuonFrameworkFailNext(LPCSTR name, QuonFrameworkFault fault);
