/// @file
/// The handle table of a server thread.
#pragma once

#include <afx.h>
#include <afxtempl.h>

#include "base/Export.h"
#include "messaging/QuonServerResult.h"

class QuonServerEventHandler;

/// The maximum number of handles in one wait of a server thread: that of the system (MAXIMUM_WAIT_OBJECTS).
constexpr DWORD kQuonMaxServerHandles = 64;

/// Maps waitable handles to the handlers that serve them. Has no lock: it is used on one thread, to which a
/// QuonServerThread carries every change. Handlers are not owned.
class QUON_API QuonSynchronizedSelector
{
public:
    /// What the table holds for a handle.
    struct HandleRecord
    {
        bool active;                      ///< Only active records take part in the wait.
        QuonServerEventHandler* handler;  ///< Not owned.
    };

    /// An empty table.
    QuonSynchronizedSelector();
    /// One thread, one table.
    QuonSynchronizedSelector(const QuonSynchronizedSelector&) = delete;
    /// One thread, one table.
    QuonSynchronizedSelector& operator=(const QuonSynchronizedSelector&) = delete;
    /// Forgets the handles; the handlers are not touched.
    virtual ~QuonSynchronizedSelector();

    /// Registers an active record.
    /// @return kQuonServerOk, or kQuonServerRefused when the handle is already registered; the first handler then stays
    QuonServerResult Add(HANDLE handle, QuonServerEventHandler* handler);

    /// Takes a handle out of the table.
    /// @param handler receives the handler, which is not deleted; untouched on failure
    /// @return kQuonServerOk, or kQuonServerRefused when the handle is not registered
    QuonServerResult Remove(HANDLE handle, QuonServerEventHandler*& handler);

    /// Writes the handles of the active records in the order of the table's 17 buckets (the handle divided by 16,
    /// modulo 17) and in each bucket from the youngest to the oldest, which is not the order of registration.
    /// @param handles room for all of them, GetCount() at most; the table does not check it. A server thread provides
    /// kQuonMaxServerHandles.
    /// @return the number of handles written
    DWORD GetHandles(HANDLE* handles) const;

    /// @return the number of handles in the table, of any record
    DWORD GetCount() const;

    /// Looks a handle up.
    /// @param record receives a copy of the record; untouched when there is none
    /// @return whether the handle is registered
    bool Find(HANDLE handle, HandleRecord& record) const;

private:
    CMap<void*, void*, HandleRecord, HandleRecord> m_map;
};
