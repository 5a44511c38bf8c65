#include "afx.h"
#include "afxdisp.h"
#include "atltime.h"

namespace
{
const SIZE_T kFormatCapacity = 128;

bool ToLocalSystemTime(const FILETIME& fileTime, SYSTEMTIME& systemTime) noexcept
{
    // The time zone's present offset, not the one of that date: an hour off across a change of daylight saving time.
    FILETIME localTime;
    return FileTimeToLocalFileTime(&fileTime, &localTime) && FileTimeToSystemTime(&localTime, &systemTime);
}

__time64_t FromCalendar(int year, int month, int day, int hour, int minute, int second, int dst)
{
    const bool inRange = year >= 1900 && month >= 1 && month <= 12 && day >= 1 && day <= 31 && hour >= 0 &&
                         hour <= 23 && minute >= 0 && minute <= 59 && second >= 0 && second <= 59;
    if (!inRange)
    {
        ATL::AtlThrow(E_FAIL);
    }
    struct tm calendar = {};
    calendar.tm_year = year - 1900;
    calendar.tm_mon = month - 1;
    calendar.tm_mday = day;
    calendar.tm_hour = hour;
    calendar.tm_min = minute;
    calendar.tm_sec = second;
    calendar.tm_isdst = dst;
    const __time64_t time = _mktime64(&calendar);
    if (time == -1)
    {
        ATL::AtlThrow(E_INVALIDARG);
    }
    return time;
}

__time64_t FromSystemTime(const SYSTEMTIME& time, int dst)
{
    return time.wYear < 1900
               ? 0
               : FromCalendar(time.wYear, time.wMonth, time.wDay, time.wHour, time.wMinute, time.wSecond, dst);
}
}  // namespace

namespace ATL
{

CTime WINAPI CTime::GetCurrentTime() noexcept
{
    return CTime(_time64(nullptr));
}

BOOL WINAPI CTime::IsValidFILETIME(const FILETIME& fileTime) noexcept
{
    SYSTEMTIME systemTime;
    return ToLocalSystemTime(fileTime, systemTime);
}

CTime::CTime() noexcept : m_time(0) {}

CTime::CTime(__time64_t time) noexcept : m_time(time) {}

CTime::CTime(int nYear, int nMonth, int nDay, int nHour, int nMin, int nSec, int nDST)
    : m_time(FromCalendar(nYear, nMonth, nDay, nHour, nMin, nSec, nDST))
{
}

CTime::CTime(const SYSTEMTIME& systemTime, int nDST) : m_time(FromSystemTime(systemTime, nDST)) {}

CTime::CTime(const FILETIME& fileTime, int nDST) : m_time(0)
{
    SYSTEMTIME systemTime;
    if (!ToLocalSystemTime(fileTime, systemTime))
    {
        const DWORD error = GetLastError();
        AtlThrow(HRESULT_FROM_WIN32(error));
    }
    m_time = FromSystemTime(systemTime, nDST);
}

__time64_t CTime::GetTime() const noexcept
{
    return m_time;
}

struct tm* CTime::GetLocalTm(struct tm* ptm) const
{
    ENSURE(ptm != nullptr);
    return _localtime64_s(ptm, &m_time) == 0 ? ptm : nullptr;
}

int CTime::GetYear() const noexcept
{
    struct tm local;
    return GetLocalTm(&local) != nullptr ? local.tm_year + 1900 : 0;
}

int CTime::GetMonth() const noexcept
{
    struct tm local;
    return GetLocalTm(&local) != nullptr ? local.tm_mon + 1 : 0;
}

int CTime::GetDay() const noexcept
{
    struct tm local;
    return GetLocalTm(&local) != nullptr ? local.tm_mday : 0;
}

int CTime::GetHour() const noexcept
{
    struct tm local;
    return GetLocalTm(&local) != nullptr ? local.tm_hour : -1;
}

int CTime::GetMinute() const noexcept
{
    struct tm local;
    return GetLocalTm(&local) != nullptr ? local.tm_min : -1;
}

int CTime::GetSecond() const noexcept
{
    struct tm local;
    return GetLocalTm(&local) != nullptr ? local.tm_sec : -1;
}

int CTime::GetDayOfWeek() const noexcept
{
    struct tm local;
    return GetLocalTm(&local) != nullptr ? local.tm_wday + 1 : 0;
}

CString CTime::Format(LPCTSTR pszFormat) const
{
    struct tm local;
    wchar_t text[kFormatCapacity];
    if (pszFormat == nullptr || GetLocalTm(&local) == nullptr)
    {
        return CString();
    }
    // Wine's run-time fills the buffer, without a terminator, where Windows' says 0.
    const size_t length = wcsftime(text, kFormatCapacity, pszFormat, &local);
    return length < kFormatCapacity ? CString(text, static_cast<int>(length)) : CString();
}

bool CTime::operator==(CTime time) const noexcept
{
    return m_time == time.m_time;
}

bool CTime::operator!=(CTime time) const noexcept
{
    return m_time != time.m_time;
}

bool CTime::operator<(CTime time) const noexcept
{
    return m_time < time.m_time;
}

bool CTime::operator>(CTime time) const noexcept
{
    return m_time > time.m_time;
}

bool CTime::operator<=(CTime time) const noexcept
{
    return m_time <= time.m_time;
}

bool CTime::operator>=(CTime time) const noexcept
{
    return m_time >= time.m_time;
}

}  // namespace ATL
