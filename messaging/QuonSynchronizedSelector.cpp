#include "messaging/QuonSynchronizedSelector.h"

// The order in which a server thread serves its handles follows from the map's buckets, so it must not change with the
// framework: newer ones hash keys in another way. Here and not in the header, since it would change the maps of every
// source that includes it; the map's members are instantiated in this source only.
template <>
inline UINT AFXAPI HashKey<void*>(void* key)
{
    return static_cast<UINT>(reinterpret_cast<DWORD_PTR>(key) >> 4);
}

namespace
{

constexpr INT_PTR kBlockSize = 10;
constexpr UINT kBuckets = 17;

}  // namespace

QuonSynchronizedSelector::QuonSynchronizedSelector() : m_map(kBlockSize)
{
    // The table itself is allocated when the first handle comes.
    m_map.InitHashTable(kBuckets, FALSE);
}

QuonSynchronizedSelector::~QuonSynchronizedSelector()
{
    // The handlers belong to others.
    m_map.RemoveAll();
}

QuonServerResult QuonSynchronizedSelector::Add(HANDLE handle, QuonServerEventHandler* handler)
{
    HandleRecord record = {};
    if (m_map.Lookup(handle, record))
    {
        return kQuonServerRefused;
    }
    m_map.SetAt(handle, HandleRecord{true, handler});
    return kQuonServerOk;
}

QuonServerResult QuonSynchronizedSelector::Remove(HANDLE handle, QuonServerEventHandler*& handler)
{
    HandleRecord record = {};
    if (!m_map.Lookup(handle, record))
    {
        return kQuonServerRefused;
    }
    handler = record.handler;
    // Removing the last key releases the map's hash table and blocks.
    m_map.RemoveKey(handle);
    return kQuonServerOk;
}

DWORD QuonSynchronizedSelector::GetHandles(HANDLE* handles) const
{
    DWORD count = 0;
    for (POSITION position = m_map.GetStartPosition(); position != nullptr;)
    {
        void* handle = nullptr;
        HandleRecord record = {};
        m_map.GetNextAssoc(position, handle, record);
        if (record.active)
        {
            handles[count++] = handle;
        }
    }
    return count;
}

DWORD QuonSynchronizedSelector::GetCount() const
{
    return static_cast<DWORD>(m_map.GetCount());
}

bool QuonSynchronizedSelector::Find(HANDLE handle, HandleRecord& record) const
{
    return m_map.Lookup(handle, record) != FALSE;
}
