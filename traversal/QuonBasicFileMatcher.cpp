#include "traversal/QuonBasicFileMatcher.h"

namespace
{

// The attributes in the order of the filter's fields, the lowest field first.
constexpr DWORD kFieldAttributes[] = {FILE_ATTRIBUTE_ARCHIVE, FILE_ATTRIBUTE_COMPRESSED, FILE_ATTRIBUTE_DIRECTORY,
                                      FILE_ATTRIBUTE_HIDDEN,  FILE_ATTRIBUTE_NORMAL,     FILE_ATTRIBUTE_READONLY,
                                      FILE_ATTRIBUTE_SYSTEM,  FILE_ATTRIBUTE_TEMPORARY};

constexpr unsigned int kFieldBits = 2;
constexpr unsigned int kFieldMask = 3;
constexpr unsigned int kMustBeSet = 1;
constexpr unsigned int kMustBeClear = 2;

bool IsDots(const wchar_t* name)
{
    return name[0] == L'.' && (name[1] == L'\0' || (name[1] == L'.' && name[2] == L'\0'));
}

// Only these two filters tell the file system that folders are all that is wanted, and even then it may return files:
// every entry is tested all the same.
FINDEX_SEARCH_OPS SearchOperation(unsigned int filter)
{
    return filter == kQuonMatchFolders || filter == kQuonMatchPlainFolders ? FindExSearchLimitToDirectories
                                                                           : FindExSearchNameMatch;
}

// Looks for a match from the entry in `data` on. A result of the system other than exactly TRUE ends the search.
BOOL SeekMatch(HANDLE search, WIN32_FIND_DATAW& data, unsigned int filter, BOOL skipDots)
{
    do
    {
        const bool skipped = skipDots && IsDots(data.cFileName);
        if (!skipped && QuonBasicFileMatcher::MatchAttributes(filter, data.dwFileAttributes))
        {
            return TRUE;
        }
    } while (FindNextFileW(search, &data) == TRUE);
    return FALSE;
}

}  // namespace

QuonBasicFileMatcher::QuonBasicFileMatcher()
    : m_folder(L"", QuonPathBackslash),
      m_pattern(L"", QuonPathBackslash),
      m_filter(kQuonMatchEverything),
      m_found(FALSE),
      m_search(INVALID_HANDLE_VALUE),
      m_findData(),
      m_skipDots(TRUE)
{
}

QuonBasicFileMatcher::~QuonBasicFileMatcher()
{
    QuonBasicFileMatcher::Close();
}

void QuonBasicFileMatcher::Close()
{
    m_folder = L"";
    m_pattern = L"";
    m_filter = kQuonMatchEverything;
    m_found = FALSE;
    if (m_search != INVALID_HANDLE_VALUE)
    {
        FindClose(m_search);
    }
    m_search = INVALID_HANDLE_VALUE;
}

bool QuonBasicFileMatcher::FindFirst(const wchar_t* folder, const wchar_t* pattern, unsigned int filter)
{
    // Copied first: both may point into this object, which Close empties.
    const QuonPath newFolder(folder, QuonPathBackslash);
    const QuonPath newPattern(pattern, QuonPathBackslash);
    Close();
    m_folder = newFolder;
    m_pattern = newPattern;
    m_filter = filter;

    QuonPath search(m_folder);
    search.Append(m_pattern);
    m_search = FindFirstFileExW(search, FindExInfoStandard, &m_findData, SearchOperation(m_filter), nullptr, 0);
    if (m_search != INVALID_HANDLE_VALUE)
    {
        m_found = SeekMatch(m_search, m_findData, m_filter, m_skipDots);
    }
    return IsFound();
}

bool QuonBasicFileMatcher::FindNext()
{
    m_found = FALSE;
    // Any result but 0 counts as success here, unlike within the search for a match.
    if (FindNextFileW(m_search, &m_findData))
    {
        m_found = SeekMatch(m_search, m_findData, m_filter, m_skipDots);
    }
    return m_found != FALSE;
}

bool QuonBasicFileMatcher::IsFound() const
{
    return m_found != FALSE;
}

QuonPath QuonBasicFileMatcher::GetFoundPath() const
{
    return m_found ? m_folder + m_findData.cFileName : QuonPath(m_folder);
}

QuonPath QuonBasicFileMatcher::GetFoundName() const
{
    return QuonPath(m_found ? m_findData.cFileName : L"", QuonPathBackslash);
}

QuonPath QuonBasicFileMatcher::GetFolder() const
{
    return QuonPath(m_folder);
}

void QuonBasicFileMatcher::SetSkipDots(BOOL skipDots)
{
    m_skipDots = skipDots;
}

BOOL QuonBasicFileMatcher::GetSkipDots() const
{
    return m_skipDots;
}

const WIN32_FIND_DATAW* QuonBasicFileMatcher::GetFindData() const
{
    return &m_findData;
}

bool QuonBasicFileMatcher::MatchAttributes(unsigned int filter, DWORD attributes)
{
    for (const DWORD attribute : kFieldAttributes)
    {
        const unsigned int field = filter & kFieldMask;
        const bool isSet = (attributes & attribute) != 0;
        if (field == kFieldMask || (field == kMustBeSet && !isSet) || (field == kMustBeClear && isSet))
        {
            return false;
        }
        filter >>= kFieldBits;
    }
    return true;
}
