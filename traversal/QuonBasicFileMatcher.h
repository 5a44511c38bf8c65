/// @file
/// Enumerates the entries of one folder.
#pragma once

#include <afx.h>

#include "traversal/QuonFileMatch.h"

/// The entries of one folder that match a wildcard pattern and an attribute filter, in the order in which the system
/// returns them. The object holds a search of the operating system open from FindFirst until Close, the next FindFirst
/// or its destruction, also after the last match.
class QUON_API QuonBasicFileMatcher : public QuonFileMatch
{
public:
    /// A closed matcher that never matches "." and "..".
    QuonBasicFileMatcher();

    QuonBasicFileMatcher(const QuonBasicFileMatcher&) = delete;
    QuonBasicFileMatcher& operator=(const QuonBasicFileMatcher&) = delete;

    /// Forgets folder, pattern and filter and releases the search. The find data and the skip-dots flag stay as they
    /// are.
    void Close() override;

    /// Searches `folder` for `pattern`; an empty folder makes the pattern relative to the current folder, an empty
    /// pattern searches for the folder itself. See QuonFileMatch::FindFirst.
    bool FindFirst(const wchar_t* folder, const wchar_t* pattern, unsigned int filter) override;

    bool FindNext() override;

    bool IsFound() const override;

    /// Folder joined with the entry's name; a copy of the folder while there is no match.
    QuonPath GetFoundPath() const override;

    /// The entry's name; the empty path while there is no match.
    QuonPath GetFoundName() const override;

    QuonPath GetFolder() const override;

    ~QuonBasicFileMatcher() override;

    /// Whether "." and ".." are left out (TRUE from construction on). Takes effect with the next entry that is read.
    void SetSkipDots(BOOL skipDots);

    /// The flag that SetSkipDots set, unchanged.
    BOOL GetSkipDots() const;

    /// The object's record of the entry that was read last, matched or not; zero-filled before the first.
    /// @return never null; valid while the object lives, its content until the next FindFirst or FindNext
    const WIN32_FIND_DATAW* GetFindData() const;

    /// Whether an entry with these attributes satisfies every field of an attribute filter.
    /// @param attributes  `FILE_ATTRIBUTE_` flags, as the system gives them
    static bool MatchAttributes(unsigned int filter, DWORD attributes);

private:
    QuonPath m_folder;
    QuonPath m_pattern;
    unsigned int m_filter;
    BOOL m_found;
    HANDLE m_search;  // owned; INVALID_HANDLE_VALUE when no search is open
    WIN32_FIND_DATAW m_findData;
    BOOL m_skipDots;
};
