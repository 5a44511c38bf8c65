#pragma once

/// @file atltime.h
/// A point in time, in seconds.

#include "afxver_.h"
#include "afxstr.h"

#include <time.h>

// <windows.h> defines a macro of this name, which would rename the member.
#undef GetCurrentTime

namespace ATL
{

/// Seconds since 1 January 1970, UTC; what it is made of and taken apart into is local time.
class QUON_FRAMEWORK_API CTime
{
public:
    static CTime WINAPI GetCurrentTime() noexcept;
    /// True when the constructor accepts the file time.
    static BOOL WINAPI IsValidFILETIME(const FILETIME& fileTime) noexcept;

    CTime() noexcept;
    CTime(__time64_t time) noexcept;
    /// @param nDST  1 and 0: daylight saving time is or is not in effect; -1: as the time zone's rules say
    /// Throws for what is no date from 1900 on, and for a date before 1970.
    CTime(int nYear, int nMonth, int nDay, int nHour, int nMin, int nSec, int nDST = -1);
    /// A year before 1900 gives the time 0.
    CTime(const SYSTEMTIME& systemTime, int nDST = -1);
    /// Fractions of a second are dropped. A year before 1900 gives the time 0.
    CTime(const FILETIME& fileTime, int nDST = -1);

    __time64_t GetTime() const noexcept;
    /// Takes the time apart. @return `ptm`, or null when it has no calendar date
    struct tm* GetLocalTm(struct tm* ptm) const;
    int GetYear() const noexcept;
    /// From 1, January.
    int GetMonth() const noexcept;
    int GetDay() const noexcept;
    int GetHour() const noexcept;
    int GetMinute() const noexcept;
    int GetSecond() const noexcept;
    /// From 1, Sunday.
    int GetDayOfWeek() const noexcept;

    /// Formats as wcsftime does. A text that has not room in 128 characters is empty.
    CString Format(LPCTSTR pszFormat) const;

    bool operator==(CTime time) const noexcept;
    bool operator!=(CTime time) const noexcept;
    bool operator<(CTime time) const noexcept;
    bool operator>(CTime time) const noexcept;
    bool operator<=(CTime time) const noexcept;
    bool operator>=(CTime time) const noexcept;

private:
    __time64_t m_time;
};

}  // namespace ATL

using ATL::CTime;
