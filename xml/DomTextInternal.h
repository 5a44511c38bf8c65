/// @file
/// Texts on their way between the DOM, which has `_bstr_t`, and callers, who have `CString`.
#pragma once

#include <afx.h>

#include "xml/Msxml2.h"

namespace xml_internal
{

/// Copies a text for the DOM. Raises `E_OUTOFMEMORY` as `_com_error` when memory is short, for the characters or for
/// the object that owns them.
_bstr_t ToBstr(const CString& text);

/// Returns the characters of a text, valid as long as it lives. A null text is an empty one.
inline const wchar_t* Characters(const _bstr_t& text)
{
    const wchar_t* const characters = text;
    return characters == nullptr ? L"" : characters;
}

/// Returns the value as text; "" for a value that is not a text and cannot be made one.
CString TextOfVariant(const _variant_t& value);

/// Returns the value of an attribute of `node`; "" for a node that has no such attribute or cannot have any.
CString AttributeText(MSXML2::IXMLDOMNode& node, const _bstr_t& name);

}  // namespace xml_internal
