#pragma once

/// @file afxcoll.h
/// The arrays: of pointers and of strings.

#include "afx.h"

/// Growable array of pointers, which it does not own. New elements are null.
///
/// An index or count that does not fit throws the invalid-argument exception, a lack of memory the memory exception.
class QUON_FRAMEWORK_API CPtrArray : public CObject
{
public:
    CPtrArray();
    ~CPtrArray() override;

    INT_PTR GetSize() const;
    INT_PTR GetCount() const;
    BOOL IsEmpty() const;
    /// Index of the last element, -1 when the array is empty.
    INT_PTR GetUpperBound() const;

    /// Cuts or extends the array. No elements frees the storage; otherwise it only ever grows.
    /// @param nGrowBy  elements by which to grow from now on: -1 keeps the present step, 0 leaves the choice to the
    ///                 array (an eighth of its size, but 4 at least and 1024 at most)
    void SetSize(INT_PTR nNewSize, INT_PTR nGrowBy = -1);
    /// Gives back storage beyond the last element.
    void FreeExtra();
    void RemoveAll();

    void* GetAt(INT_PTR nIndex) const;
    void SetAt(INT_PTR nIndex, void* newElement);
    void*& ElementAt(INT_PTR nIndex);
    /// The elements, null when there is no storage; valid until the array changes its size.
    const void** GetData() const;
    void** GetData();

    /// Extends the array as far as needed.
    void SetAtGrow(INT_PTR nIndex, void* newElement);
    /// @return index of the new element
    INT_PTR Add(void* newElement);
    /// @return index of the first element appended
    INT_PTR Append(const CPtrArray& src);
    void Copy(const CPtrArray& src);

    void* operator[](INT_PTR nIndex) const;
    void*& operator[](INT_PTR nIndex);

    /// Inserts `nCount` copies; an index beyond the end extends the array first.
    void InsertAt(INT_PTR nIndex, void* newElement, INT_PTR nCount = 1);
    void RemoveAt(INT_PTR nIndex, INT_PTR nCount = 1);
    void InsertAt(INT_PTR nStartIndex, CPtrArray* pNewArray);

protected:
    void** m_pData;
    INT_PTR m_nSize;
    INT_PTR m_nMaxSize;
    INT_PTR m_nGrowBy;
};

/// Growable array of strings; it follows the rules of CPtrArray. New elements are empty.
class QUON_FRAMEWORK_API CStringArray : public CObject
{
public:
    CStringArray();
    ~CStringArray() override;

    INT_PTR GetSize() const;
    INT_PTR GetCount() const;
    BOOL IsEmpty() const;
    INT_PTR GetUpperBound() const;

    void SetSize(INT_PTR nNewSize, INT_PTR nGrowBy = -1);
    void FreeExtra();
    void RemoveAll();

    const CString& GetAt(INT_PTR nIndex) const;
    void SetAt(INT_PTR nIndex, LPCTSTR newElement);
    void SetAt(INT_PTR nIndex, const CString& newElement);
    CString& ElementAt(INT_PTR nIndex);
    const CString* GetData() const;
    CString* GetData();

    void SetAtGrow(INT_PTR nIndex, LPCTSTR newElement);
    void SetAtGrow(INT_PTR nIndex, const CString& newElement);
    INT_PTR Add(LPCTSTR newElement);
    INT_PTR Add(const CString& newElement);
    INT_PTR Append(const CStringArray& src);
    void Copy(const CStringArray& src);

    const CString& operator[](INT_PTR nIndex) const;
    CString& operator[](INT_PTR nIndex);

    void InsertAt(INT_PTR nIndex, LPCTSTR newElement, INT_PTR nCount = 1);
    void InsertAt(INT_PTR nIndex, const CString& newElement, INT_PTR nCount = 1);
    void RemoveAt(INT_PTR nIndex, INT_PTR nCount = 1);
    void InsertAt(INT_PTR nStartIndex, const CStringArray* pNewArray);

protected:
    CString* m_pData;
    INT_PTR m_nSize;
    INT_PTR m_nMaxSize;
    INT_PTR m_nGrowBy;
};
