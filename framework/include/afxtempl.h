#pragma once

/// @file afxtempl.h
/// The collection templates: a doubly linked list, a hash map and the typed view of a pointer array.

#include "afx.h"
#include "afxplex_.h"

/// Hash of a map's key. This one serves pointers and integers; specialise it for other keys.
template <class ARG_KEY>
inline UINT AFXAPI HashKey(ARG_KEY key)
{
    // Heap blocks and handles differ little in their lowest bits.
    return static_cast<UINT>(((DWORD_PTR)key) >> 4);
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
