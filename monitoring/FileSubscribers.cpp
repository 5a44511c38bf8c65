#include "monitoring/FileSubscribersInternal.h"

namespace QuonFileEventServer_details
{

bool FileSubscribers::KeepWhenReserved(std::unique_ptr<FileSubscription>& record)
{
    const auto found = m_entries.find(IdOf(record.get()));
    if (found == m_entries.end())
    {
        return false;
    }
    found->second.kept = std::move(record);
    return true;
}

void FileSubscribers::Add(QuonFileEventId id, QuonFileEventSink* sink)
{
    m_entries.emplace(id, Entry{{sink, m_lastSerial + 1}, false, nullptr});
    ++m_lastSerial;
}

void FileSubscribers::Reserve(QuonFileEventId id)
{
    const auto found = m_entries.find(id);
    if (found != m_entries.end())
    {
        found->second.isRemoved = true;
    }
}

void FileSubscribers::Erase(QuonFileEventId id)
{
    const auto found = m_entries.find(id);
    if (found != m_entries.end() && !found->second.isRemoved)
    {
        m_entries.erase(found);
    }
}

void FileSubscribers::Release(QuonFileEventId id)
{
    const auto found = m_entries.find(id);
    if (found != m_entries.end() && found->second.isRemoved)
    {
        m_entries.erase(found);
    }
}

const FileSubscribers::Subscriber* FileSubscribers::Find(QuonFileEventId id) const
{
    const auto found = m_entries.find(id);
    return found != m_entries.end() && !found->second.isRemoved ? &found->second.subscriber : nullptr;
}

}  // namespace QuonFileEventServer_details
