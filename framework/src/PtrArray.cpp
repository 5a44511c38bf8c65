#include "afxcoll.h"
#include "ArrayStorage.h"

CPtrArray::CPtrArray() : m_pData(nullptr), m_nSize(0), m_nMaxSize(0), m_nGrowBy(0) {}

CPtrArray::~CPtrArray()
{
    std::free(m_pData);
}

INT_PTR CPtrArray::GetSize() const
{
    return m_nSize;
}

INT_PTR CPtrArray::GetCount() const
{
    return m_nSize;
}

BOOL CPtrArray::IsEmpty() const
{
    return m_nSize == 0;
}

INT_PTR CPtrArray::GetUpperBound() const
{
    return m_nSize - 1;
}

void CPtrArray::SetSize(INT_PTR nNewSize, INT_PTR nGrowBy)
{
    ArrayStorage<void*>{m_pData, m_nSize, m_nMaxSize, m_nGrowBy}.SetSize(nNewSize, nGrowBy);
}

void CPtrArray::FreeExtra()
{
    ArrayStorage<void*>{m_pData, m_nSize, m_nMaxSize, m_nGrowBy}.FreeExtra();
}

void CPtrArray::RemoveAll()
{
    SetSize(0, -1);
}

void* CPtrArray::GetAt(INT_PTR nIndex) const
{
    ENSURE(nIndex >= 0 && nIndex < m_nSize);
    return m_pData[nIndex];
}

void CPtrArray::SetAt(INT_PTR nIndex, void* newElement)
{
    ElementAt(nIndex) = newElement;
}

void*& CPtrArray::ElementAt(INT_PTR nIndex)
{
    ENSURE(nIndex >= 0 && nIndex < m_nSize);
    return m_pData[nIndex];
}

const void** CPtrArray::GetData() const
{
    return const_cast<const void**>(m_pData);
}

void** CPtrArray::GetData()
{
    return m_pData;
}

void CPtrArray::SetAtGrow(INT_PTR nIndex, void* newElement)
{
    ENSURE(nIndex >= 0 && nIndex < INTPTR_MAX);
    if (nIndex >= m_nSize)
    {
        SetSize(nIndex + 1, -1);
    }
    m_pData[nIndex] = newElement;
}

INT_PTR CPtrArray::Add(void* newElement)
{
    const INT_PTR index = m_nSize;
    SetAtGrow(index, newElement);
    return index;
}

INT_PTR CPtrArray::Append(const CPtrArray& src)
{
    ASSERT(this != &src);
    const INT_PTR oldSize = m_nSize;
    const INT_PTR count = src.m_nSize;
    SetSize(oldSize + count, -1);
    std::copy_n(src.m_pData, count, m_pData + oldSize);
    return oldSize;
}

void CPtrArray::Copy(const CPtrArray& src)
{
    ASSERT(this != &src);
    if (this != &src)
    {
        SetSize(src.m_nSize, -1);
        std::copy_n(src.m_pData, src.m_nSize, m_pData);
    }
}

void* CPtrArray::operator[](INT_PTR nIndex) const
{
    return GetAt(nIndex);
}

void*& CPtrArray::operator[](INT_PTR nIndex)
{
    return ElementAt(nIndex);
}

void CPtrArray::InsertAt(INT_PTR nIndex, void* newElement, INT_PTR nCount)
{
    ArrayStorage<void*>{m_pData, m_nSize, m_nMaxSize, m_nGrowBy}.OpenGap(nIndex, nCount);
    std::fill_n(m_pData + nIndex, nCount, newElement);
}

void CPtrArray::RemoveAt(INT_PTR nIndex, INT_PTR nCount)
{
    ArrayStorage<void*>{m_pData, m_nSize, m_nMaxSize, m_nGrowBy}.RemoveAt(nIndex, nCount);
}

void CPtrArray::InsertAt(INT_PTR nStartIndex, CPtrArray* pNewArray)
{
    ENSURE(pNewArray != nullptr && pNewArray != this && nStartIndex >= 0);
    if (pNewArray->m_nSize > 0)
    {
        InsertAt(nStartIndex, nullptr, pNewArray->m_nSize);
        std::copy_n(pNewArray->m_pData, pNewArray->m_nSize, m_pData + nStartIndex);
    }
}
