#pragma once

/// @file afxmap_.h
/// The map template. afxtempl.h includes this; include that.

#include "afxtempl.h"

#include <new>

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
        m_pHashTable = new CAssoc*[nHashSize]();
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
    if (m_pBlocks != nullptr)
    {
        m_pBlocks->FreeDataChain();
    }
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
