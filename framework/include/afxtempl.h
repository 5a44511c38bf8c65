#pragma once

/// @file afxtempl.h
/// The collection templates: a doubly linked list, a hash map and the typed view of a pointer array.

#include "afx.h"
#include "afxplex_.h"

/// Hash of a map's key. This one serves pointers and integers of up to 32 bits, and of pointers the lowest 32 bits;
/// specialise it for other keys, and where the order of a map's iteration matters.
template <class ARG_KEY>
inline UINT AFXAPI HashKey(ARG_KEY key)
{
    // The lowest 32 bits, times 16807 modulo 2^31 - 1: the multiplier and the modulus of a well-known random generator.
    // The product of a negative key is brought up by one modulus.
    constexpr INT64 kMultiplier = 16807;
    constexpr INT64 kModulus = 0x7FFFFFFF;
    const INT64 product = static_cast<INT32>((DWORD_PTR)key) * kMultiplier % kModulus;
    return static_cast<UINT>(product < 0 ? product + kModulus : product);
}

/// The two halves of a 64-bit key, hashed and combined.
template <>
inline UINT AFXAPI HashKey<__int64>(__int64 key)
{
    return HashKey<DWORD>(static_cast<DWORD>(key & 0xFFFFFFFF)) ^ HashKey<DWORD>(static_cast<DWORD>(key >> 32));
}

/// Hash of a text's characters, so that equal texts are equal keys wherever they are stored.
template <class CHARACTER>
inline UINT AFXAPI AfxHashText(const CHARACTER* text)
{
    UINT hash = 2166136261U;
    for (; *text != 0; ++text)
    {
        hash = (hash ^ static_cast<UINT>(*text)) * 16777619U;
    }
    return hash;
}
/// The text's characters, not its address.
template <>
inline UINT AFXAPI HashKey<LPCWSTR>(LPCWSTR key)
{
    return AfxHashText(key);
}
/// The text's characters, not its address.
template <>
inline UINT AFXAPI HashKey<LPCSTR>(LPCSTR key)
{
    return AfxHashText(key);
}

/// Equality of list elements and map keys. Specialise it where == does not do.
template <class TYPE, class ARG_TYPE>
inline BOOL AFXAPI CompareElements(const TYPE* pElement1, const ARG_TYPE* pElement2)
{
    return *pElement1 == *pElement2;
}

/// A pointer array whose elements have the type TYPE, by casts only.
template <class BASE_CLASS, class TYPE>
class CTypedPtrArray : public BASE_CLASS
{
public:
    TYPE GetAt(INT_PTR nIndex) const { return (TYPE)BASE_CLASS::GetAt(nIndex); }
    TYPE& ElementAt(INT_PTR nIndex) { return (TYPE&)BASE_CLASS::ElementAt(nIndex); }
    void SetAt(INT_PTR nIndex, TYPE ptr) { BASE_CLASS::SetAt(nIndex, ptr); }
    void SetAtGrow(INT_PTR nIndex, TYPE newElement) { BASE_CLASS::SetAtGrow(nIndex, newElement); }
    INT_PTR Add(TYPE newElement) { return BASE_CLASS::Add(newElement); }
    INT_PTR Append(const CTypedPtrArray& src) { return BASE_CLASS::Append(src); }
    void Copy(const CTypedPtrArray& src) { BASE_CLASS::Copy(src); }
    void InsertAt(INT_PTR nIndex, TYPE newElement, INT_PTR nCount = 1)
    {
        BASE_CLASS::InsertAt(nIndex, newElement, nCount);
    }
    void InsertAt(INT_PTR nStartIndex, CTypedPtrArray* pNewArray) { BASE_CLASS::InsertAt(nStartIndex, pNewArray); }

    TYPE operator[](INT_PTR nIndex) const { return (TYPE)BASE_CLASS::operator[](nIndex); }
    TYPE& operator[](INT_PTR nIndex) { return (TYPE&)BASE_CLASS::operator[](nIndex); }
};

#include "afxlist_.h"
#include "afxmap_.h"
