/// @file
/// The compiler's COM support: `_com_error`, smart pointers, `_bstr_t`, `_variant_t`; and what some compilers declare
/// of it and have in no library. Elsewhere that comes with the compiler.
#pragma once

#include <afx.h>

#include <ole2.h>
#include <comdef.h>

#if !defined(_MSC_VER)

/// Raises `result` as `_com_error`, with the error object that `object` left for its interface `iid`.
inline void WINAPI _com_issue_errorex(HRESULT result, IUnknown* object, REFIID iid)
{
    ISupportErrorInfo* support = nullptr;
    IErrorInfo* info = nullptr;
    if (object != nullptr &&
        SUCCEEDED(object->QueryInterface(IID_ISupportErrorInfo, reinterpret_cast<void**>(&support))))
    {
        // An error object of an earlier failure must not be taken for this one's: only objects that keep theirs are
        // asked.
        if (support->InterfaceSupportsErrorInfo(iid) != S_OK || ::GetErrorInfo(0, &info) != S_OK)
        {
            info = nullptr;
        }
        support->Release();
    }
    _com_raise_error(result, info);
}

namespace _com_util
{

/// The text in the ANSI code page, from array `new`; null for a null text.
inline char* WINAPI ConvertBSTRToString(BSTR text)
{
    if (text == nullptr)
    {
        return nullptr;
    }
    const int length = static_cast<int>(::SysStringLen(text));
    const int size = length == 0 ? 0 : ::WideCharToMultiByte(CP_ACP, 0, text, length, nullptr, 0, nullptr, nullptr);
    char* const converted = new char[static_cast<size_t>(size) + 1];
    if (size != 0)
    {
        ::WideCharToMultiByte(CP_ACP, 0, text, length, converted, size, nullptr, nullptr);
    }
    converted[size] = '\0';
    return converted;
}

/// The ANSI text as a new BSTR; null for a null text.
inline BSTR WINAPI ConvertStringToBSTR(const char* text)
{
    if (text == nullptr)
    {
        return nullptr;
    }
    const int size = ::MultiByteToWideChar(CP_ACP, 0, text, -1, nullptr, 0);
    BSTR const converted = size == 0 ? nullptr : ::SysAllocStringLen(nullptr, static_cast<UINT>(size - 1));
    if (converted == nullptr)
    {
        _com_issue_error(E_OUTOFMEMORY);
        return nullptr;
    }
    ::MultiByteToWideChar(CP_ACP, 0, text, -1, converted, size);
    return converted;
}

}  // namespace _com_util
#endif
