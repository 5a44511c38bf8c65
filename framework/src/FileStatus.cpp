#include "afx.h"
#include "FilePath.h"

namespace
{
// A time that the file system does not keep comes as zero, which lies before the first year that CTime knows.
CTime ToTime(const FILETIME& fileTime)
{
    return CTime::IsValidFILETIME(fileTime) ? CTime(fileTime) : CTime();
}
}  // namespace

LONG GetFullPath(LPCTSTR path, wchar_t (&full)[_MAX_PATH])
{
    const DWORD length = path == nullptr ? 0 : GetFullPathNameW(path, _MAX_PATH, full, nullptr);
    const DWORD error = GetLastError();
    if (length == 0)
    {
        full[0] = L'\0';
        return path == nullptr || error == ERROR_SUCCESS ? ERROR_INVALID_NAME : static_cast<LONG>(error);
    }
    if (length >= _MAX_PATH)
    {
        full[0] = L'\0';
        return ERROR_FILENAME_EXCED_RANGE;
    }
    return ERROR_SUCCESS;
}

BOOL PASCAL CFile::GetStatus(LPCTSTR lpszFileName, CFileStatus& rStatus)
{
    if (GetFullPath(lpszFileName, rStatus.m_szFullName) != ERROR_SUCCESS)
    {
        return FALSE;
    }
    WIN32_FIND_DATAW found;
    const HANDLE search = FindFirstFileW(lpszFileName, &found);
    if (search == INVALID_HANDLE_VALUE)
    {
        return FALSE;
    }
    FindClose(search);

    // "Normal" means that no attribute is set; the record says that by zero.
    rStatus.m_attribute = static_cast<BYTE>(found.dwFileAttributes & ~static_cast<DWORD>(FILE_ATTRIBUTE_NORMAL));
    rStatus.m_size = static_cast<ULONGLONG>(found.nFileSizeHigh) << 32 | found.nFileSizeLow;
    rStatus.m_ctime = ToTime(found.ftCreationTime);
    rStatus.m_atime = ToTime(found.ftLastAccessTime);
    rStatus.m_mtime = ToTime(found.ftLastWriteTime);
    if (rStatus.m_ctime.GetTime() == 0)
    {
        rStatus.m_ctime = rStatus.m_mtime;
    }
    if (rStatus.m_atime.GetTime() == 0)
    {
        rStatus.m_atime = rStatus.m_mtime;
    }
    return TRUE;
}
