/// @file
/// Changes of case by the user's locale.
#pragma once

#include <afx.h>

// CString::MakeUpper() and MakeLower() follow the C run-time's locale instead, which knows A to Z alone in a program
// that calls no setlocale(): paths that the system takes for the same would differ.

/// Puts the whole text into upper case by the user's locale. Throws CMemoryException* when a shared text cannot be
/// copied.
inline void MakeUpperForUser(CString& text)
{
    ::CharUpperBuffW(text.GetBuffer(), static_cast<DWORD>(text.GetLength()));
}

/// Puts the whole text into lower case by the user's locale. Throws CMemoryException* when a shared text cannot be
/// copied.
inline void MakeLowerForUser(CString& text)
{
    ::CharLowerBuffW(text.GetBuffer(), static_cast<DWORD>(text.GetLength()));
}
