#include "afxcoll.h"
#include "ArrayStorage.h"

// A new element may be one of the array's own, or point into one: where the storage may move or elements are shifted,
// a copy is taken first.

CStringArray::CStringArray() : m_pData(nullptr), m_nSize(0), m_nMaxSize(0), m_nGrowBy(0) {}

CStringArray::~CStringArray()
{
    std::destroy_n(m_pData, m_nSize);
    std::free(m_pData);
}

INT_PTR CStringArray::GetSize() const
{
    return m_nSize;
}

INT_PTR CStringArray::GetCount() const
{
    return m_nSize;
}

BOOL CStringArray::IsEmpty() const
{
    return m_nSize == 0;
}

INT_PTR CStringArray::GetUpperBound() const
{
    return m_nSize - 1;
}

void CStringArray::SetSize(INT_PTR nNewSize, INT_PTR nGrowBy)
{
    ArrayStorage<CString>{m_pData, m_nSize, m_nMaxSize, m_nGrowBy}.SetSize(nNewSize, nGrowBy);
}

void CStringArray::FreeExtra()
{
    ArrayStorage<CString>{m_pData, m_nSize, m_nMaxSize, m_nGrowBy}.FreeExtra();
}

void CStringArray::RemoveAll()
{
    SetSize(0, -1);
}

const CString& CStringArray::GetAt(INT_PTR nIndex) const
{
    ENSURE(nIndex >= 0 && nIndex < m_nSize);
    return m_pData[nIndex];
}

void CStringArray::SetAt(INT_PTR nIndex, LPCTSTR newElement)
{
    ElementAt(nIndex) = newElement;
}

void CStringArray::SetAt(INT_PTR nIndex, const CString& newElement)
{
    ElementAt(nIndex) = newElement;
}

CString& CStringArray::ElementAt(INT_PTR nIndex)
{
    ENSURE(nIndex >= 0 && nIndex < m_nSize);
    return m_pData[nIndex];
}

const CString* CStringArray::GetData() const
{
    return m_pData;
}

CString* CStringArray::GetData()
{
    return m_pData;
}

void CStringArray::SetAtGrow(INT_PTR nIndex, LPCTSTR newElement)
{
    SetAtGrow(nIndex, CString(newElement));
}

void CStringArray::SetAtGrow(INT_PTR nIndex, const CString& newElement)
{
    ENSURE(nIndex >= 0 && nIndex < INTPTR_MAX);
    const CString element(newElement);
    if (nIndex >= m_nSize)
    {
        SetSize(nIndex + 1, -1);
    }
    m_pData[nIndex] = element;
}

INT_PTR CStringArray::Add(LPCTSTR newElement)
{
    return Add(CString(newElement));
}

INT_PTR CStringArray::Add(const CString& newElement)
{
    const INT_PTR index = m_nSize;
    SetAtGrow(index, newElement);
    return index;
}

INT_PTR CStringArray::Append(const CStringArray& src)
{
    ASSERT(this != &src);
    const INT_PTR oldSize = m_nSize;
    const INT_PTR count = src.m_nSize;
    SetSize(oldSize + count, -1);
    std::copy_n(src.m_pData, count, m_pData + oldSize);
    return oldSize;
}

void CStringArray::Copy(const CStringArray& src)
{
    ASSERT(this != &src);
    if (this != &src)
    {
        SetSize(src.m_nSize, -1);
        std::copy_n(src.m_pData, src.m_nSize, m_pData);
    }
}

const CString& CStringArray::operator[](INT_PTR nIndex) const
{
    return GetAt(nIndex);
}

CString& CStringArray::operator[](INT_PTR nIndex)
{
    return ElementAt(nIndex);
}

void CStringArray::InsertAt(INT_PTR nIndex, LPCTSTR newElement, INT_PTR nCount)
{
    InsertAt(nIndex, CString(newElement), nCount);
}

void CStringArray::InsertAt(INT_PTR nIndex, const CString& newElement, INT_PTR nCount)
{
    const CString element(newElement);
    ArrayStorage<CString>{m_pData, m_nSize, m_nMaxSize, m_nGrowBy}.OpenGap(nIndex, nCount);
    std::fill_n(m_pData + nIndex, nCount, element);
}

void CStringArray::RemoveAt(INT_PTR nIndex, INT_PTR nCount)
{
    ArrayStorage<CString>{m_pData, m_nSize, m_nMaxSize, m_nGrowBy}.RemoveAt(nIndex, nCount);
}

void CStringArray::InsertAt(INT_PTR nStartIndex, const CStringArray* pNewArray)
{
    ENSURE(pNewArray != nullptr && pNewArray != this && nStartIndex >= 0);
    if (pNewArray->m_nSize > 0)
    {
        InsertAt(nStartIndex, CString(), pNewArray->m_nSize);
        std::copy_n(pNewArray->m_pData, pNewArray->m_nSize, m_pData + nStartIndex);
    }
}
