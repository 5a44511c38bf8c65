#include "JournalInternal.h"

#ifdef QUON_FRAMEWORK_JOURNAL

#include "quon_framework_journal.h"
#include <algorithm>
#include <cstring>

namespace
{
// Without constructors and destructors: calls come while modules are still, or already, without their run-time.
constexpr size_t kMaxCalls = 4096;
constexpr size_t kMaxName = 64;
QuonFrameworkCall calls[kMaxCalls];
size_t callCount;
char failingName[kMaxName];
QuonFrameworkFault failingFault;
SRWLOCK journalLock = SRWLOCK_INIT;

class JournalGuard
{
public:
    JournalGuard() { AcquireSRWLockExclusive(&journalLock); }
    ~JournalGuard() { ReleaseSRWLockExclusive(&journalLock); }
    JournalGuard(const JournalGuard&) = delete;
    JournalGuard& operator=(const JournalGuard&) = delete;
};
}  // namespace

bool RecordCall(const char* name, const CallDetails& details)
{
    AFX_MODULE_STATE* const state = AfxGetModuleState();
    QuonFrameworkFault fault;
    {
        const JournalGuard guard;
        if (callCount < kMaxCalls)
        {
            calls[callCount++] = {name, GetCurrentThreadId(), details.system, details.module, details.argument, state};
        }
        if (details.system || std::strcmp(name, failingName) != 0)
        {
            return true;
        }
        failingName[0] = 0;
        fault = failingFault;
    }
    if (fault == QuonFrameworkFault::MemoryException)
    {
        AfxThrowMemoryException();
    }
    return false;
}

CString AFXAPI QuonFrameworkJournal(DWORD threadId)
{
    const JournalGuard guard;
    CString text;
    for (size_t i = 0; i < callCount; ++i)
    {
        if (!calls[i].system && (threadId == 0 || calls[i].threadId == threadId))
        {
            if (!text.IsEmpty())
            {
                text += L'\n';
            }
            text += calls[i].name;
        }
    }
    return text;
}

size_t AFXAPI QuonFrameworkCalls(QuonFrameworkCall* copies, size_t capacity)
{
    const JournalGuard guard;
    std::copy_n(calls, std::min(capacity, callCount), copies);
    return callCount;
}

void AFXAPI QuonFrameworkClearJournal()
{
    const JournalGuard guard;
    callCount = 0;
    failingName[0] = 0;
}

void AFXAPI QuonFrameworkFailNext(LPCSTR name, QuonFrameworkFault fault)
{
    const JournalGuard guard;
    lstrcpynA(failingName, name, static_cast<int>(kMaxName));
    failingFault = fault;
}

#endif
