#pragma once

/// @file atlsimpstr.h
/// The record that stands in front of a string's characters.

#include "afxver_.h"

namespace ATL
{
struct CStringData;
}

/// Gives back the memory of characters that no string refers to any more. Not for callers.
QUON_FRAMEWORK_API void AFXAPI AfxFreeStringData(ATL::CStringData* pData) noexcept;

namespace ATL
{
/// Throws what the framework throws for `hr`: CMemoryException* for E_OUTOFMEMORY, else COleException*.
[[noreturn]] QUON_FRAMEWORK_API void AFXAPI AtlThrow(HRESULT hr);

/// Lengths and reference count; the characters and their terminating zero follow it in memory.
struct alignas(16) CStringData
{
    int nDataLength;   ///< Characters in use, without the terminating zero.
    int nAllocLength;  ///< Characters that fit, without the terminating zero; 0 only in the shared empty string.
    long nRefs;        ///< Strings that share the characters; the shared empty string always counts as shared.

    void* data() noexcept { return this + 1; }
    bool IsShared() const noexcept { return static_cast<const volatile long&>(nRefs) > 1; }

    // The shared empty string is never counted: default-constructed strings of many threads would contend for it.
    void AddRef() noexcept
    {
        if (nAllocLength != 0)
        {
            InterlockedIncrement(&nRefs);
        }
    }

    // A count of one is ours alone, and nobody can raise it meanwhile: no interlocked operation is needed to see that.
    void Release() noexcept
    {
        if (nAllocLength != 0 && (!IsShared() || InterlockedDecrement(&nRefs) <= 0))
        {
            AfxFreeStringData(this);
        }
    }
};

/// The empty string that all empty strings share.
struct CNilStringData : CStringData
{
    alignas(CStringData) wchar_t achNil[2];  // where data() of the record points, in every ABI
};
}  // namespace ATL

/// Lives in the framework and needs no construction, so that strings of every module may refer to it until the end.
extern QUON_FRAMEWORK_API ATL::CNilStringData afxNilStringData;
