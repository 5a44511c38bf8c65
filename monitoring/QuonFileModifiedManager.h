/// @file
/// Remembers when files were last modified.
#pragma once

#include <afx.h>

#include "base/Export.h"

/// The state of a file as it was once read.
class QUON_API QuonFileModifiedStatus : public CFileStatus
{
public:
    /// Sets the three times to 0. *The other fields are not set.*
    QuonFileModifiedStatus();
    /// Takes over all that the framework's record holds.
    explicit QuonFileModifiedStatus(const CFileStatus& status);
    /// Copies all fields.
    QuonFileModifiedStatus(const QuonFileModifiedStatus& other);
    /// Copies name, creation time, modification time and size. *Access time and attributes stay as they are.*
    QuonFileModifiedStatus& operator=(const QuonFileModifiedStatus& other);
    /// Has nothing to release.
    virtual ~QuonFileModifiedStatus();

    /// Tells whether both are *the same object*. An exact copy is not equal to its original.
    bool operator==(const QuonFileModifiedStatus& other) const;
    /// The negation of operator==.
    bool operator!=(const QuonFileModifiedStatus& other) const;
};

/// Answers one question: has this file been modified since I last asked? What it remembers is the process's, is never
/// forgotten and is not locked: calls must not overlap.
class QUON_API QuonFileModifiedManager
{
public:
    /// Has nothing to set up.
    QuonFileModifiedManager();
    /// Has nothing to copy.
    QuonFileModifiedManager(const QuonFileModifiedManager&);
    /// Has nothing to copy.
    QuonFileModifiedManager& operator=(const QuonFileModifiedManager&);
    /// Leaves alone what is remembered.
    virtual ~QuonFileModifiedManager();

    /// Reads the file's time of modification, in seconds, and compares it with the *first* one that was remembered
    /// for it: once a file has changed it counts as modified for ever, unless it gets its first time back.
    /// @param path the full path: a file is found again by this text, without regard to case as
    /// CString::CompareNoCase compares: by the C run-time's locale, so only A to Z in a program that never calls
    /// setlocale()
    /// @return true when the time is another one, when the file is asked for the first time, and when it cannot be
    /// read; in the first two cases its state is remembered, in the last it is not
    static bool IsFileModified(CString path);
};
