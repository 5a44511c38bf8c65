/// @file
/// The common interface of everything that hands out folders or files one at a time, and the attribute filter codes.
#pragma once

#include <afx.h>

#include "base/Export.h"
#include "paths/QuonPath.h"

/// @name Attribute filter codes
/// A filter is a code of eight 2-bit fields, one per file attribute: 0 the attribute does not matter, 1 it must be set,
/// 2 it must be clear, 3 nothing matches. The names below are the fields' values 1 and 2; codes of different fields are
/// combined with `|`. Bits above 15 are ignored.
///
/// A filter is *not* a set of `FILE_ATTRIBUTE_` flags. Two codes merely coincide with one: 0x10 is "must be a folder"
/// and also FILE_ATTRIBUTE_DIRECTORY; 0x20 is "must not be a folder" and also FILE_ATTRIBUTE_ARCHIVE.
/// @{
inline constexpr unsigned int kQuonMatchEverything = 0;         ///< no condition at all
inline constexpr unsigned int kQuonMatchArchive = 0x1;          ///< the archive bit must be set
inline constexpr unsigned int kQuonMatchNotArchive = 0x2;       ///< the archive bit must be clear
inline constexpr unsigned int kQuonMatchCompressed = 0x4;       ///< must be compressed
inline constexpr unsigned int kQuonMatchNotCompressed = 0x8;    ///< must not be compressed
inline constexpr unsigned int kQuonMatchFolders = 0x10;         ///< must be a folder
inline constexpr unsigned int kQuonMatchFiles = 0x20;           ///< must not be a folder
inline constexpr unsigned int kQuonMatchHidden = 0x40;          ///< must be hidden
inline constexpr unsigned int kQuonMatchNotHidden = 0x80;       ///< must not be hidden
inline constexpr unsigned int kQuonMatchNormal = 0x100;         ///< FILE_ATTRIBUTE_NORMAL must be set
inline constexpr unsigned int kQuonMatchNotNormal = 0x200;      ///< FILE_ATTRIBUTE_NORMAL must be clear
inline constexpr unsigned int kQuonMatchReadOnly = 0x400;       ///< must be read-only
inline constexpr unsigned int kQuonMatchNotReadOnly = 0x800;    ///< must not be read-only
inline constexpr unsigned int kQuonMatchSystem = 0x1000;        ///< must be a system file
inline constexpr unsigned int kQuonMatchNotSystem = 0x2000;     ///< must not be a system file
inline constexpr unsigned int kQuonMatchTemporary = 0x4000;     ///< must be temporary
inline constexpr unsigned int kQuonMatchNotTemporary = 0x8000;  ///< must not be temporary
/// Folders that are neither hidden nor system folders (0x2090).
inline constexpr unsigned int kQuonMatchPlainFolders = kQuonMatchFolders | kQuonMatchNotHidden | kQuonMatchNotSystem;
/// @}

/// An enumeration of folders or files, driven the same way whatever stands behind it:
///
/// ```cpp
/// for (match.FindFirst(folder, L"*", kQuonMatchFiles); match.IsFound(); match.FindNext())
/// {
///     Use(match.GetFoundPath());
/// }
/// ```
/// Errors are never reported: what cannot be listed contributes no match. The order of the operations below is part of
/// the binary interface. An object is used by one thread at a time.
class QUON_API QuonFileMatch
{
public:
    /// Ends the enumeration, releases what the operating system holds open for it and clears the state.
    virtual void Close() = 0;

    /// Ends the running enumeration, if any, and starts a new one at its first match.
    /// @param folder   zero-terminated; copied before anything else happens, so it may be this object's own text
    /// @param pattern  zero-terminated wildcard pattern, copied likewise
    /// @param filter   an attribute filter code, see kQuonMatchEverything and the codes after it
    /// @return whether there is a current match
    virtual bool FindFirst(const wchar_t* folder, const wchar_t* pattern, unsigned int filter) = 0;

    /// Goes on to the next match. Harmless when there is no current match.
    /// @return whether there is a current match
    virtual bool FindNext() = 0;

    /// Whether there is a current match.
    virtual bool IsFound() const = 0;

    /// The full path of the current match, with the separator `\`.
    virtual QuonPath GetFoundPath() const = 0;

    /// The path of the current match relative to the folder, with the separator `\`.
    virtual QuonPath GetFoundName() const = 0;

    /// The folder given to FindFirst, as given, with the separator `\`; empty before FindFirst and after Close.
    virtual QuonPath GetFolder() const = 0;

    virtual ~QuonFileMatch();

protected:
    QuonFileMatch();
    /// For copying of derived classes; there is nothing here to copy.
    QuonFileMatch(const QuonFileMatch&);
    /// For assignment of derived classes; there is nothing here to assign.
    QuonFileMatch& operator=(const QuonFileMatch&);
};
