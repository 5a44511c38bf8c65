#pragma once

/// Records one call; in the DLL that is not built for tests it does nothing.
/// @return false when the call shall fail by its result. Throws CMemoryException* when it shall fail so.
#ifdef QUON_FRAMEWORK_JOURNAL
bool RecordCall(const char* name);
#else
constexpr bool RecordCall(const char*)
{
    return true;
}
#endif
