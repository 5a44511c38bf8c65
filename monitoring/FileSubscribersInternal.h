/// @file
/// The subscriptions as the window's thread knows them: their identifiers and sinks.
#pragma once

#include <afx.h>

#include "monitoring/FileSubscriptionInternal.h"
#include "monitoring/QuonFileEventServer.h"

#include <map>
#include <memory>

namespace QuonFileEventServer_details
{

/// The sinks by identifier. Used on the window's thread alone.
///
/// An identifier is the address of a record, which the watcher frees and the allocator may then give out again. Events
/// of the old subscription can still be queued at that moment. So an identifier stays reserved after its subscription
/// was removed, until the watcher's acknowledgement arrives: that comes through the same queue, after all its events.
class FileSubscribers
{
public:
    /// Names one subscription for ever, which an identifier does not. Never 0.
    using Serial = unsigned;

    /// A subscription that has not been removed.
    struct Subscriber
    {
        QuonFileEventSink* sink;  ///< Not owned; may be null.
        Serial serial;
    };

    /// Takes a record whose address is an identifier in use or reserved, and keeps it as long: so the allocator does
    /// not give the address out any more.
    /// @return whether `record` was taken; then it is null
    bool KeepWhenReserved(std::unique_ptr<FileSubscription>& record);
    /// Adds a subscription. Throws, and changes nothing, when memory is short.
    /// @param id neither in use nor reserved
    void Add(QuonFileEventId id, QuonFileEventSink* sink);
    /// Removes a subscription whose watcher will acknowledge it: the identifier stays reserved. An identifier that is
    /// not in use is left as it is.
    void Reserve(QuonFileEventId id);
    /// Removes a subscription that nobody will acknowledge. An identifier that is not in use is left as it is.
    void Erase(QuonFileEventId id);
    /// Ends the reservation of an identifier. One that is in use is left as it is.
    void Release(QuonFileEventId id);
    /// @return the subscription, null when there is none or it was removed; valid until the next change
    const Subscriber* Find(QuonFileEventId id) const;

private:
    struct Entry
    {
        Subscriber subscriber;
        bool isRemoved;                          // reserved, and nobody's
        std::unique_ptr<FileSubscription> kept;  // a record that was made at the same address meanwhile
    };

    std::map<QuonFileEventId, Entry> m_entries;
    Serial m_lastSerial = 0;
};

}  // namespace QuonFileEventServer_details
