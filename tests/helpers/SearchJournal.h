// Watches the searches that the library opens: their arguments, the order of opening and closing, and what stays open.
#pragma once

#include <afx.h>

#include <algorithm>
#include <map>
#include <string>
#include <vector>

#include "helpers/ImportPatch.h"

namespace quon_test
{

struct SearchOpening
{
    std::wstring path;
    FINDEX_INFO_LEVELS level;
    const void* data;
    FINDEX_SEARCH_OPS operation;
    const void* searchFilter;
    DWORD flags;
    HANDLE search;  // INVALID_HANDLE_VALUE when it failed
};

/// One at a time. Every call goes on to the operating system.
class SearchJournal
{
public:
    SearchJournal() { s_active = this; }
    ~SearchJournal() { s_active = nullptr; }
    SearchJournal(const SearchJournal&) = delete;
    SearchJournal& operator=(const SearchJournal&) = delete;

    /// Every call of FindFirstFileExW, failed ones included.
    const std::vector<SearchOpening>& Openings() const { return m_openings; }
    /// "open <path>", "fail <path>" and "close <path>" in order; "close ?" for a handle that was not open.
    const std::vector<std::wstring>& Events() const { return m_events; }
    std::size_t OpenNow() const { return m_open.size(); }
    std::size_t MostOpen() const { return m_mostOpen; }
    std::size_t NextCalls() const { return m_nextCalls; }

    std::vector<std::wstring> Paths() const
    {
        std::vector<std::wstring> paths;
        for (const SearchOpening& opening : m_openings)
        {
            paths.push_back(opening.path);
        }
        return paths;
    }

    /// What FindNextFileW returns instead of TRUE, and what FindClose returns.
    BOOL nextResult = TRUE;
    BOOL closeResult = TRUE;
    /// Whether entries lose the archive attribute, which some systems give to every file: a filter that asks for it
    /// could not be told from one that asks for files.
    bool clearArchive = false;

private:
    static HANDLE WINAPI First(LPCWSTR path, FINDEX_INFO_LEVELS level, LPVOID data, FINDEX_SEARCH_OPS operation,
                               LPVOID searchFilter, DWORD flags)
    {
        SearchJournal& journal = *s_active;
        const HANDLE search = journal.m_first.Original()(path, level, data, operation, searchFilter, flags);
        const DWORD error = GetLastError();
        if (search != INVALID_HANDLE_VALUE)
        {
            journal.Adjust(*static_cast<WIN32_FIND_DATAW*>(data));
        }
        journal.m_openings.push_back({path, level, data, operation, searchFilter, flags, search});
        if (search == INVALID_HANDLE_VALUE)
        {
            journal.m_events.push_back(std::wstring(L"fail ") + path);
        }
        else
        {
            journal.m_events.push_back(std::wstring(L"open ") + path);
            journal.m_open[search] = path;
            journal.m_mostOpen = std::max(journal.m_mostOpen, journal.m_open.size());
        }
        SetLastError(error);
        return search;
    }

    static BOOL WINAPI Next(HANDLE search, LPWIN32_FIND_DATAW data)
    {
        ++s_active->m_nextCalls;
        if (!s_active->m_next.Original()(search, data))
        {
            return FALSE;
        }
        s_active->Adjust(*data);
        return s_active->nextResult;
    }

    static BOOL WINAPI Last(HANDLE search)
    {
        SearchJournal& journal = *s_active;
        const auto known = journal.m_open.find(search);
        if (known == journal.m_open.end())
        {
            journal.m_events.push_back(L"close ?");
            return FALSE;
        }
        journal.m_events.push_back(L"close " + known->second);
        journal.m_open.erase(known);
        journal.m_close.Original()(search);
        return journal.closeResult;
    }

    void Adjust(WIN32_FIND_DATAW& data) const
    {
        if (clearArchive)
        {
            data.dwFileAttributes &= ~DWORD{FILE_ATTRIBUTE_ARCHIVE};
            data.dwFileAttributes = data.dwFileAttributes == 0 ? FILE_ATTRIBUTE_NORMAL : data.dwFileAttributes;
        }
    }

    static inline SearchJournal* s_active = nullptr;

    std::vector<SearchOpening> m_openings;
    std::vector<std::wstring> m_events;
    std::map<HANDLE, std::wstring> m_open;
    std::size_t m_mostOpen = 0;
    std::size_t m_nextCalls = 0;
    ImportPatch<decltype(&::FindFirstFileExW)> m_first{L"QuonWin32Utils.dll", "FindFirstFileExW", &First};
    ImportPatch<decltype(&::FindNextFileW)> m_next{L"QuonWin32Utils.dll", "FindNextFileW", &Next};
    ImportPatch<decltype(&::FindClose)> m_close{L"QuonWin32Utils.dll", "FindClose", &Last};
};

}  // namespace quon_test
