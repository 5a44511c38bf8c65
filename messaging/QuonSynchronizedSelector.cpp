#include "messaging/QuonSynchronizedSelector.h"

QuonSynchronizedSelector::QuonSynchronizedSelector() = default;

QuonSynchronizedSelector::~QuonSynchronizedSelector()
{
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

bool QuonSynchronizedSelector::Find(HANDLE handle, HandleRecord& record) const
{
    return m_map.Lookup(handle, record) != FALSE;
}
