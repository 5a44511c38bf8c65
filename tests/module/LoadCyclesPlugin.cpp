// A module whose work makes the library catch an exception of the framework and construct a guarded static: for both,
// the run-time in the library needs thread-local storage.

#include <afx.h>

#include "monitoring/QuonFileModifiedManager.h"
#include "support/QuonTimer.h"

extern "C" __declspec(dllexport) int Work()
{
    QuonTimer timer(CString(L"no-such-folder\\no.log"), FALSE, FALSE);
    return timer.StartTimer() >= 0 && QuonFileModifiedManager().IsFileModified(CString(L"no-such-file")) ? 1 : 0;
}
