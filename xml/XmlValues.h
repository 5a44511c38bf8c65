/// @file
/// Typed values in an XML tree: a getter and a setter for each type.
///
/// A getter hands `query` to the node's `selectSingleNode` unchanged ("Station/Name", "@name") and converts the typed
/// value of what it finds. Nothing found gives the type's zero. An empty node raises `E_POINTER`; a failed DOM call or
/// a text that does not convert raises its result; all as `_com_error`.
///
/// A setter writes the attribute `name` of `node`; the parser makes the text. A node that is not an element is left
/// alone without a report. A failed DOM call is raised as `_com_error`.
#pragma once

#include <afx.h>

#include "base/Export.h"
#include "xml/Msxml2.h"

/// @return the text when the typed value is a text already, otherwise ""; nothing is converted
QUON_API CString GetXmlString(const MSXML2::IXMLDOMNodePtr& node, const CString& query);
/// Returns the typed value as a truth value.
QUON_API bool GetXmlBool(const MSXML2::IXMLDOMNodePtr& node, const CString& query);
/// Returns the typed value as a 16-bit integer.
QUON_API short GetXmlShort(const MSXML2::IXMLDOMNodePtr& node, const CString& query);
/// Returns the typed value as a 32-bit integer.
QUON_API long GetXmlLong(const MSXML2::IXMLDOMNodePtr& node, const CString& query);
/// Returns the typed value as a 64-bit integer. Before Windows XP, where there is no 64-bit variant, reads the text
/// with "%I64d" instead: a text without a number gives 0.
QUON_API __int64 GetXmlInt64(const MSXML2::IXMLDOMNodePtr& node, const CString& query);
/// Returns the typed value as an unsigned 32-bit integer.
QUON_API unsigned long GetXmlULong(const MSXML2::IXMLDOMNodePtr& node, const CString& query);
/// Reads the text with "." as decimal and "," as thousands separator, whatever the user's are: while it runs they are
/// changed *for every program of the user*, and put back on success. A raised error leaves them changed.
QUON_API double GetXmlDouble(const MSXML2::IXMLDOMNodePtr& node, const CString& query);

/// Writes a text as it is.
QUON_API void SetXmlString(const MSXML2::IXMLDOMNodePtr& node, const CString& name, const CString& value);
/// Writes a truth value in the parser's own text, such as "-1" and "0".
QUON_API void SetXmlBool(const MSXML2::IXMLDOMNodePtr& node, const CString& name, bool value);
/// Writes a 16-bit integer.
QUON_API void SetXmlShort(const MSXML2::IXMLDOMNodePtr& node, const CString& name, short value);
/// Writes a 32-bit integer.
QUON_API void SetXmlLong(const MSXML2::IXMLDOMNodePtr& node, const CString& name, long value);
/// Writes a 64-bit integer; before Windows XP as text, formatted with "%I64d".
QUON_API void SetXmlInt64(const MSXML2::IXMLDOMNodePtr& node, const CString& name, __int64 value);
/// Writes an unsigned 32-bit integer.
QUON_API void SetXmlULong(const MSXML2::IXMLDOMNodePtr& node, const CString& name, unsigned long value);
/// Writes a number in the parser's own text. Unlike the getter it leaves the separators alone.
QUON_API void SetXmlDouble(const MSXML2::IXMLDOMNodePtr& node, const CString& name, double value);

/// @return whether the system is newer than version 5.0. Asked once per process; later calls repeat the answer.
QUON_API bool IsWindowsXPOrLater();
