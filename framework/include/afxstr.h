#pragma once

/// @file afxstr.h
/// The framework's names for its string.

#include "cstringt.h"

/// Traits of the strings of a program that links the framework as a DLL.
template <typename CharType, class StringIterator>
class StrTraitMFC_DLL : public StringIterator
{
};

using CStringW = ATL::CStringT<wchar_t, StrTraitMFC_DLL<wchar_t>>;
using CString = CStringW;
