#pragma once

#include <afx.h>

/// What a call was given, as far as a journal tells.
struct CallDetails
{
    HMODULE module = nullptr;
    int argument = 0;
    bool system = false;  // about a record of the framework's own
};

/// Records one call; in the DLL that is not built for tests it does nothing.
/// @return false when the call shall fail by its result. Throws CMemoryException* when it shall fail so.
#ifdef QUON_FRAMEWORK_JOURNAL
bool RecordCall(const char* name, const CallDetails& details = CallDetails());
#else
constexpr bool RecordCall(const char*, const CallDetails& = CallDetails())
{
    return true;
}
#endif
