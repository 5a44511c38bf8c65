#pragma once

/// @file afxtempl.h
/// The collection templates: a doubly linked list, a hash map and the typed view of a pointer array.

#include "afx.h"
#include "afxplex_.h"

#include <new>

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

/// Hash map. Iteration goes through the buckets from the first to the last and in each from the youngest association
/// to the oldest; users rely on that order.
///
/// The table is allocated at the first insertion; table and blocks are freed when the map becomes empty.
template <class KEY, class ARG_KEY, class VALUE, class ARG_VALUE>
class CMap : public CObject
{
public:
    struct CPair
    {
        const KEY key;
        VALUE value;

    protected:
        // PODs start as zero.
        explicit CPair(ARG_KEY keyValue) : key(keyValue), value() {}
    };

protected:
    class CAssoc : public CPair
    {
        friend class CMap<KEY, ARG_KEY, VALUE, ARG_VALUE>;
        CAssoc* pNext;
        UINT nHashValue;

    public:
        CAssoc(ARG_KEY keyValue, CAssoc* next, UINT hash) : CPair(keyValue), pNext(next), nHashValue(hash) {}
    };

public:
    explicit CMap(INT_PTR nBlockSize = 10);
    ~CMap() override;

    INT_PTR GetCount() const { return m_nCount; }
    INT_PTR GetSize() const { return m_nCount; }
    BOOL IsEmpty() const { return m_nCount == 0; }

    /// @return FALSE, and leaves the value alone, when the key is unknown
    BOOL Lookup(ARG_KEY key, VALUE& rValue) const;
    /// The value of the key; an unknown key gets an association with a default value.
    VALUE& operator[](ARG_KEY key);
    void SetAt(ARG_KEY key, ARG_VALUE newValue) { (*this)[key] = newValue; }
    /// @return FALSE when the key is unknown
    BOOL RemoveKey(ARG_KEY key);
    void RemoveAll();

    /// Start of an iteration, null when the map is empty. Removing the association that GetNextAssoc gave last leaves
    /// the position valid as long as the map does not become empty.
    POSITION GetStartPosition() const { return m_nCount == 0 ? nullptr : BEFORE_START_POSITION; }
    /// Gives the association at the position, which then moves on, or becomes null after the last one.
    void GetNextAssoc(POSITION& rNextPosition, KEY& rKey, VALUE& rValue) const;

    UINT GetHashTableSize() const { return m_nHashTableSize; }
    /// Sets the number of buckets of a map that is still empty, by default allocating the table at once.
    void InitHashTable(UINT nHashSize, BOOL bAllocNow = TRUE);

protected:
    CAssoc** m_pHashTable;
    UINT m_nHashTableSize;
    INT_PTR m_nCount;
    CAssoc* m_pFreeList;
    CPlex* m_pBlocks;
    INT_PTR m_nBlockSize;

    CAssoc* NewAssoc(ARG_KEY key, CAssoc* next, UINT hash);
    void FreeAssoc(CAssoc* pAssoc);
    CAssoc* GetAssocAt(ARG_KEY key, UINT& nHashBucket, UINT& nHashValue) const;

private:
    // What waits in the free list is no association: only its link is alive.
    struct FreeSlot
    {
        CAssoc* pNext;
    };

    void AddFreeBlock();
    CAssoc* FirstFromBucket(UINT bucket) const;
};

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

// CList

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
    CPlex::FreeDataChain(m_pBlocks);
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

// CMap

template <class KEY, class ARG_KEY, class VALUE, class ARG_VALUE>
CMap<KEY, ARG_KEY, VALUE, ARG_VALUE>::CMap(INT_PTR nBlockSize)
    : m_pHashTable(nullptr),
      m_nHashTableSize(17),
      m_nCount(0),
      m_pFreeList(nullptr),
      m_pBlocks(nullptr),
      m_nBlockSize(nBlockSize)
{
    ASSERT(nBlockSize > 0);
}

template <class KEY, class ARG_KEY, class VALUE, class ARG_VALUE>
CMap<KEY, ARG_KEY, VALUE, ARG_VALUE>::~CMap()
{
    RemoveAll();
}

template <class KEY, class ARG_KEY, class VALUE, class ARG_VALUE>
void CMap<KEY, ARG_KEY, VALUE, ARG_VALUE>::InitHashTable(UINT nHashSize, BOOL bAllocNow)
{
    ASSERT(m_nCount == 0);
    ASSERT(nHashSize > 0);
    delete[] m_pHashTable;
    m_pHashTable = nullptr;
    if (bAllocNow)
    {
        m_pHashTable = new (std::nothrow) CAssoc*[nHashSize]();
        if (m_pHashTable == nullptr)
        {
            AfxThrowMemoryException();
        }
    }
    m_nHashTableSize = nHashSize;
}

template <class KEY, class ARG_KEY, class VALUE, class ARG_VALUE>
void CMap<KEY, ARG_KEY, VALUE, ARG_VALUE>::RemoveAll()
{
    for (UINT bucket = 0; m_pHashTable != nullptr && bucket < m_nHashTableSize; ++bucket)
    {
        for (CAssoc* assoc = m_pHashTable[bucket]; assoc != nullptr;)
        {
            CAssoc* const next = assoc->pNext;
            assoc->~CAssoc();
            assoc = next;
        }
    }
    delete[] m_pHashTable;
    m_pHashTable = nullptr;
    m_nCount = 0;
    m_pFreeList = nullptr;
    CPlex::FreeDataChain(m_pBlocks);
    m_pBlocks = nullptr;
}

template <class KEY, class ARG_KEY, class VALUE, class ARG_VALUE>
void CMap<KEY, ARG_KEY, VALUE, ARG_VALUE>::AddFreeBlock()
{
    CPlex* const block = CPlex::Create(m_pBlocks, static_cast<UINT_PTR>(m_nBlockSize), sizeof(CAssoc));
    CAssoc* const slots = static_cast<CAssoc*>(block->data());
    for (INT_PTR i = m_nBlockSize; i-- > 0;)
    {
        ::new (static_cast<void*>(&slots[i])) FreeSlot{m_pFreeList};
        m_pFreeList = &slots[i];
    }
}

template <class KEY, class ARG_KEY, class VALUE, class ARG_VALUE>
typename CMap<KEY, ARG_KEY, VALUE, ARG_VALUE>::CAssoc* CMap<KEY, ARG_KEY, VALUE, ARG_VALUE>::NewAssoc(ARG_KEY key,
                                                                                                      CAssoc* next,
                                                                                                      UINT hash)
{
    if (m_pFreeList == nullptr)
    {
        AddFreeBlock();
    }
    ENSURE(m_pFreeList != nullptr);
    void* const slot = m_pFreeList;
    m_pFreeList = static_cast<FreeSlot*>(slot)->pNext;
    CAssoc* const assoc = ::new (slot) CAssoc(key, next, hash);
    ++m_nCount;
    return assoc;
}

template <class KEY, class ARG_KEY, class VALUE, class ARG_VALUE>
void CMap<KEY, ARG_KEY, VALUE, ARG_VALUE>::FreeAssoc(CAssoc* pAssoc)
{
    pAssoc->~CAssoc();
    ::new (static_cast<void*>(pAssoc)) FreeSlot{m_pFreeList};
    m_pFreeList = pAssoc;
    if (--m_nCount == 0)
    {
        RemoveAll();
    }
}

template <class KEY, class ARG_KEY, class VALUE, class ARG_VALUE>
typename CMap<KEY, ARG_KEY, VALUE, ARG_VALUE>::CAssoc* CMap<KEY, ARG_KEY, VALUE, ARG_VALUE>::GetAssocAt(
    ARG_KEY key, UINT& nHashBucket, UINT& nHashValue) const
{
    nHashValue = HashKey<ARG_KEY>(key);
    nHashBucket = nHashValue % m_nHashTableSize;
    CAssoc* assoc = m_pHashTable == nullptr ? nullptr : m_pHashTable[nHashBucket];
    while (assoc != nullptr && !(assoc->nHashValue == nHashValue && CompareElements(&assoc->key, &key)))
    {
        assoc = assoc->pNext;
    }
    return assoc;
}

template <class KEY, class ARG_KEY, class VALUE, class ARG_VALUE>
BOOL CMap<KEY, ARG_KEY, VALUE, ARG_VALUE>::Lookup(ARG_KEY key, VALUE& rValue) const
{
    UINT bucket = 0;
    UINT hash = 0;
    const CAssoc* const assoc = GetAssocAt(key, bucket, hash);
    if (assoc == nullptr)
    {
        return FALSE;
    }
    rValue = assoc->value;
    return TRUE;
}

template <class KEY, class ARG_KEY, class VALUE, class ARG_VALUE>
VALUE& CMap<KEY, ARG_KEY, VALUE, ARG_VALUE>::operator[](ARG_KEY key)
{
    UINT bucket = 0;
    UINT hash = 0;
    CAssoc* assoc = GetAssocAt(key, bucket, hash);
    if (assoc == nullptr)
    {
        if (m_pHashTable == nullptr)
        {
            InitHashTable(m_nHashTableSize);
        }
        assoc = NewAssoc(key, m_pHashTable[bucket], hash);
        m_pHashTable[bucket] = assoc;
    }
    return assoc->value;
}

template <class KEY, class ARG_KEY, class VALUE, class ARG_VALUE>
BOOL CMap<KEY, ARG_KEY, VALUE, ARG_VALUE>::RemoveKey(ARG_KEY key)
{
    UINT bucket = 0;
    UINT hash = 0;
    CAssoc* const assoc = GetAssocAt(key, bucket, hash);
    if (assoc == nullptr)
    {
        return FALSE;
    }
    CAssoc** link = &m_pHashTable[bucket];
    while (*link != assoc)
    {
        link = &(*link)->pNext;
    }
    *link = assoc->pNext;
    FreeAssoc(assoc);
    return TRUE;
}

template <class KEY, class ARG_KEY, class VALUE, class ARG_VALUE>
typename CMap<KEY, ARG_KEY, VALUE, ARG_VALUE>::CAssoc* CMap<KEY, ARG_KEY, VALUE, ARG_VALUE>::FirstFromBucket(
    UINT bucket) const
{
    while (bucket < m_nHashTableSize && m_pHashTable[bucket] == nullptr)
    {
        ++bucket;
    }
    return bucket < m_nHashTableSize ? m_pHashTable[bucket] : nullptr;
}

template <class KEY, class ARG_KEY, class VALUE, class ARG_VALUE>
void CMap<KEY, ARG_KEY, VALUE, ARG_VALUE>::GetNextAssoc(POSITION& rNextPosition, KEY& rKey, VALUE& rValue) const
{
    ENSURE(m_pHashTable != nullptr);
    ENSURE(rNextPosition != nullptr);
    CAssoc* const assoc =
        rNextPosition == BEFORE_START_POSITION ? FirstFromBucket(0) : reinterpret_cast<CAssoc*>(rNextPosition);
    ENSURE(assoc != nullptr);
    CAssoc* const next =
        assoc->pNext != nullptr ? assoc->pNext : FirstFromBucket(assoc->nHashValue % m_nHashTableSize + 1);
    rNextPosition = reinterpret_cast<POSITION>(next);
    rKey = assoc->key;
    rValue = assoc->value;
}
