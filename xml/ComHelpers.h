/// @file
/// Small pieces under the XML layer: texts for failed COM calls, a time formatter, helpers for string arrays.
#pragma once

#include <afx.h>
#include <afxcoll.h>

#include "base/Export.h"
#include "xml/Msxml2.h"

/// Returns the text for a result code: "HRESULT = 0x%08X " with the code, then ".\n", a tab and the system's own text
/// for it. A code that the system has no text for ends with the tab.
QUON_API CString FormatHResultText(HRESULT result);

/// Formats the local time of `time` (seconds since 1970, UTC) in the format of `wcsftime`.
/// @return "" for a null format, for a time that has no local time, and when the result does not fit 127 characters
QUON_API CString FormatLocalTime(__time64_t time, const wchar_t* format);

/// Appends to `target`, in the order of `source`, each entry of `source` that no entry of `target` equals. A value that
/// `source` repeats is appended once. Case matters.
QUON_API void AppendUniqueStrings(const CStringArray& source, CStringArray& target);

/// @return whether some entry of `strings` equals `string`. Case matters.
QUON_API bool ContainsString(const CString& string, const CStringArray& strings);

/// Releases its argument and does nothing else: a placeholder that callers bind to. @return `E_FAIL`
QUON_API HRESULT NotImplementedNodeFunction(MSXML2::IXMLDOMNodePtr node);
