#pragma once

/// @file afxlist_.h
/// The list template. afxtempl.h includes this; include that.

#include "afxtempl.h"

#include <new>

/// Doubly linked list. A POSITION stays valid until its element is removed; null ends an iteration.
///
/// Nodes come from blocks of `nBlockSize`; the blocks are freed when the list becomes empty. What needs an element and
/// finds none (an empty list, a null position) throws the invalid-argument exception, and so does an insertion for
/// which there is no node.
template <class TYPE, class ARG_TYPE = const TYPE&>
class CList : public CObject
{
protected:
    struct CNode
    {
        CNode* pNext;
        CNode* pPrev;
        TYPE data;
    };

public:
    explicit CList(INT_PTR nBlockSize = 10);
    ~CList() override;

    INT_PTR GetCount() const { return m_nCount; }
    INT_PTR GetSize() const { return m_nCount; }
    BOOL IsEmpty() const { return m_nCount == 0; }

    TYPE& GetHead() { return DataAt(m_pNodeHead); }
    const TYPE& GetHead() const { return DataAt(m_pNodeHead); }
    TYPE& GetTail() { return DataAt(m_pNodeTail); }
    const TYPE& GetTail() const { return DataAt(m_pNodeTail); }

    /// Removes the element and returns it.
    TYPE RemoveHead() { return Take(m_pNodeHead); }
    TYPE RemoveTail() { return Take(m_pNodeTail); }

    POSITION AddHead(ARG_TYPE newElement) { return InsertBetween(nullptr, m_pNodeHead, newElement); }
    POSITION AddTail(ARG_TYPE newElement) { return InsertBetween(m_pNodeTail, nullptr, newElement); }
    /// Adds all elements of another list, in its order.
    void AddHead(CList* pNewList);
    void AddTail(CList* pNewList);

    void RemoveAll();

    POSITION GetHeadPosition() const { return PositionOf(m_pNodeHead); }
    POSITION GetTailPosition() const { return PositionOf(m_pNodeTail); }
    /// The element at the position, which then moves to the next or previous one, or becomes null.
    TYPE& GetNext(POSITION& rPosition);
    const TYPE& GetNext(POSITION& rPosition) const;
    TYPE& GetPrev(POSITION& rPosition);
    const TYPE& GetPrev(POSITION& rPosition) const;

    TYPE& GetAt(POSITION position) { return DataAt(NodeOf(position)); }
    const TYPE& GetAt(POSITION position) const { return DataAt(NodeOf(position)); }
    void SetAt(POSITION position, ARG_TYPE newElement) { DataAt(NodeOf(position)) = newElement; }
    void RemoveAt(POSITION position) { Unlink(NodeOf(position)); }

    /// Inserts beside the position; a null position inserts at the head (before) or at the tail (after).
    POSITION InsertBefore(POSITION position, ARG_TYPE newElement);
    POSITION InsertAfter(POSITION position, ARG_TYPE newElement);

    /// The first element equal to the value, searching from the head or from behind `startAfter`; null when none is.
    POSITION Find(ARG_TYPE searchValue, POSITION startAfter = nullptr) const;
    /// The position of the element with this number, counted from 0; null when there is none.
    POSITION FindIndex(INT_PTR nIndex) const;

protected:
    CNode* m_pNodeHead;
    CNode* m_pNodeTail;
    INT_PTR m_nCount;
    CNode* m_pNodeFree;
    CPlex* m_pBlocks;
    INT_PTR m_nBlockSize;

    CNode* NewNode(CNode* pPrev, CNode* pNext);
    void FreeNode(CNode* pNode);

private:
    static POSITION PositionOf(CNode* node) { return reinterpret_cast<POSITION>(node); }
    static CNode* NodeOf(POSITION position) { return reinterpret_cast<CNode*>(position); }
    static TYPE& DataAt(CNode* node);

    void AddFreeBlock();
    POSITION InsertBetween(CNode* previous, CNode* next, ARG_TYPE newElement);
    void Unlink(CNode* node);
    TYPE Take(CNode* node);
};

template <class TYPE, class ARG_TYPE>
CList<TYPE, ARG_TYPE>::CList(INT_PTR nBlockSize)
    : m_pNodeHead(nullptr),
      m_pNodeTail(nullptr),
      m_nCount(0),
      m_pNodeFree(nullptr),
      m_pBlocks(nullptr),
      m_nBlockSize(nBlockSize)
{
    ASSERT(nBlockSize > 0);
}

template <class TYPE, class ARG_TYPE>
CList<TYPE, ARG_TYPE>::~CList()
{
    RemoveAll();
}

template <class TYPE, class ARG_TYPE>
void CList<TYPE, ARG_TYPE>::RemoveAll()
{
    for (CNode* node = m_pNodeHead; node != nullptr; node = node->pNext)
    {
        node->data.~TYPE();
    }
    m_nCount = 0;
    m_pNodeHead = m_pNodeTail = m_pNodeFree = nullptr;
    if (m_pBlocks != nullptr)
    {
        m_pBlocks->FreeDataChain();
    }
    m_pBlocks = nullptr;
}

template <class TYPE, class ARG_TYPE>
void CList<TYPE, ARG_TYPE>::AddHead(CList* pNewList)
{
    ENSURE(pNewList != nullptr);
    for (POSITION position = pNewList->GetTailPosition(); position != nullptr;)
    {
        AddHead(pNewList->GetPrev(position));
    }
}

template <class TYPE, class ARG_TYPE>
void CList<TYPE, ARG_TYPE>::AddTail(CList* pNewList)
{
    ENSURE(pNewList != nullptr);
    for (POSITION position = pNewList->GetHeadPosition(); position != nullptr;)
    {
        AddTail(pNewList->GetNext(position));
    }
}

template <class TYPE, class ARG_TYPE>
TYPE& CList<TYPE, ARG_TYPE>::GetNext(POSITION& rPosition)
{
    CNode* const node = NodeOf(rPosition);
    TYPE& data = DataAt(node);
    rPosition = PositionOf(node->pNext);
    return data;
}

template <class TYPE, class ARG_TYPE>
const TYPE& CList<TYPE, ARG_TYPE>::GetNext(POSITION& rPosition) const
{
    return const_cast<CList*>(this)->GetNext(rPosition);
}

template <class TYPE, class ARG_TYPE>
TYPE& CList<TYPE, ARG_TYPE>::GetPrev(POSITION& rPosition)
{
    CNode* const node = NodeOf(rPosition);
    TYPE& data = DataAt(node);
    rPosition = PositionOf(node->pPrev);
    return data;
}

template <class TYPE, class ARG_TYPE>
const TYPE& CList<TYPE, ARG_TYPE>::GetPrev(POSITION& rPosition) const
{
    return const_cast<CList*>(this)->GetPrev(rPosition);
}

template <class TYPE, class ARG_TYPE>
POSITION CList<TYPE, ARG_TYPE>::InsertBefore(POSITION position, ARG_TYPE newElement)
{
    if (position == nullptr)
    {
        return AddHead(newElement);
    }
    CNode* const node = NodeOf(position);
    return InsertBetween(node->pPrev, node, newElement);
}

template <class TYPE, class ARG_TYPE>
POSITION CList<TYPE, ARG_TYPE>::InsertAfter(POSITION position, ARG_TYPE newElement)
{
    if (position == nullptr)
    {
        return AddTail(newElement);
    }
    CNode* const node = NodeOf(position);
    return InsertBetween(node, node->pNext, newElement);
}

template <class TYPE, class ARG_TYPE>
POSITION CList<TYPE, ARG_TYPE>::Find(ARG_TYPE searchValue, POSITION startAfter) const
{
    CNode* node = startAfter == nullptr ? m_pNodeHead : NodeOf(startAfter)->pNext;
    while (node != nullptr && !CompareElements<TYPE>(&node->data, &searchValue))
    {
        node = node->pNext;
    }
    return PositionOf(node);
}

template <class TYPE, class ARG_TYPE>
POSITION CList<TYPE, ARG_TYPE>::FindIndex(INT_PTR nIndex) const
{
    if (nIndex < 0 || nIndex >= m_nCount)
    {
        return nullptr;
    }
    CNode* node = m_pNodeHead;
    while (nIndex-- > 0)
    {
        node = node->pNext;
    }
    return PositionOf(node);
}

template <class TYPE, class ARG_TYPE>
TYPE& CList<TYPE, ARG_TYPE>::DataAt(CNode* node)
{
    ENSURE(node != nullptr);
    return node->data;
}

template <class TYPE, class ARG_TYPE>
void CList<TYPE, ARG_TYPE>::AddFreeBlock()
{
    CPlex* const block = CPlex::Create(m_pBlocks, static_cast<UINT_PTR>(m_nBlockSize), sizeof(CNode));
    CNode* const nodes = static_cast<CNode*>(block->data());
    // From the last to the first, so that nodes are handed out in the order of their addresses.
    for (INT_PTR i = m_nBlockSize; i-- > 0;)
    {
        nodes[i].pNext = m_pNodeFree;
        m_pNodeFree = &nodes[i];
    }
}

template <class TYPE, class ARG_TYPE>
typename CList<TYPE, ARG_TYPE>::CNode* CList<TYPE, ARG_TYPE>::NewNode(CNode* pPrev, CNode* pNext)
{
    if (m_pNodeFree == nullptr)
    {
        AddFreeBlock();
    }
    ENSURE(m_pNodeFree != nullptr);
    CNode* const node = m_pNodeFree;
    ::new (static_cast<void*>(&node->data)) TYPE();
    m_pNodeFree = node->pNext;
    node->pPrev = pPrev;
    node->pNext = pNext;
    ++m_nCount;
    return node;
}

template <class TYPE, class ARG_TYPE>
void CList<TYPE, ARG_TYPE>::FreeNode(CNode* pNode)
{
    pNode->data.~TYPE();
    pNode->pNext = m_pNodeFree;
    m_pNodeFree = pNode;
    if (--m_nCount == 0)
    {
        RemoveAll();
    }
}

template <class TYPE, class ARG_TYPE>
POSITION CList<TYPE, ARG_TYPE>::InsertBetween(CNode* previous, CNode* next, ARG_TYPE newElement)
{
    CNode* const node = NewNode(previous, next);
    node->data = newElement;
    (previous != nullptr ? previous->pNext : m_pNodeHead) = node;
    (next != nullptr ? next->pPrev : m_pNodeTail) = node;
    return PositionOf(node);
}

template <class TYPE, class ARG_TYPE>
void CList<TYPE, ARG_TYPE>::Unlink(CNode* node)
{
    ENSURE(node != nullptr);
    (node->pPrev != nullptr ? node->pPrev->pNext : m_pNodeHead) = node->pNext;
    (node->pNext != nullptr ? node->pNext->pPrev : m_pNodeTail) = node->pPrev;
    FreeNode(node);
}

template <class TYPE, class ARG_TYPE>
TYPE CList<TYPE, ARG_TYPE>::Take(CNode* node)
{
    TYPE element = DataAt(node);
    Unlink(node);
    return element;
}
