#include "afx.h"
#include "FilePath.h"

namespace
{
void Tell(CFileException* error, LONG osError, LPCTSTR fileName)
{
    if (error != nullptr)
    {
        error->m_lOsError = osError;
        error->m_cause = CFileException::OsErrorToException(osError);
        error->m_strFileName = fileName;
    }
}

DWORD AccessOf(UINT openFlags)
{
    switch (openFlags & (CFile::modeWrite | CFile::modeReadWrite))
    {
        case CFile::modeRead:
            return GENERIC_READ;
        case CFile::modeWrite:
            return GENERIC_WRITE;
        default:
            return GENERIC_READ | GENERIC_WRITE;
    }
}

DWORD ShareModeOf(UINT openFlags)
{
    switch (openFlags & 0x70)
    {
        case CFile::shareDenyWrite:
            return FILE_SHARE_READ;
        case CFile::shareDenyRead:
            return FILE_SHARE_WRITE;
        case CFile::shareDenyNone:
            return FILE_SHARE_READ | FILE_SHARE_WRITE;
        default:
            return 0;
    }
}

DWORD DispositionOf(UINT openFlags)
{
    if (!(openFlags & CFile::modeCreate))
    {
        return OPEN_EXISTING;
    }
    return openFlags & CFile::modeNoTruncate ? OPEN_ALWAYS : CREATE_ALWAYS;
}

void ThrowLastError(const CString& fileName)
{
    const DWORD error = GetLastError();
    CFileException::ThrowOsError(static_cast<LONG>(error), fileName);
}
}  // namespace

const HANDLE CFile::hFileNull = INVALID_HANDLE_VALUE;

CFile::CFile() : m_hFile(INVALID_HANDLE_VALUE), m_bCloseOnDelete(FALSE) {}

CFile::CFile(LPCTSTR lpszFileName, UINT nOpenFlags) : CFile()
{
    CFileException error;
    if (!CFile::Open(lpszFileName, nOpenFlags, &error))
    {
        AfxThrowFileException(error.m_cause, error.m_lOsError, error.m_strFileName);
    }
}

CFile::~CFile()
{
    if (m_hFile != INVALID_HANDLE_VALUE && m_bCloseOnDelete)
    {
        CFile::Abort();
    }
}

BOOL CFile::Open(LPCTSTR lpszFileName, UINT nOpenFlags, CFileException* pError)
{
    ASSERT(!(nOpenFlags & typeText));
    m_bCloseOnDelete = FALSE;
    m_hFile = INVALID_HANDLE_VALUE;
    m_strFileName.Empty();

    wchar_t fullPath[_MAX_PATH];
    const LONG pathError = GetFullPath(lpszFileName, fullPath);
    if (pathError != ERROR_SUCCESS)
    {
        Tell(pError, pathError, lpszFileName);
        return FALSE;
    }
    SECURITY_ATTRIBUTES security = {sizeof security, nullptr, !(nOpenFlags & modeNoInherit)};
    const HANDLE file = CreateFileW(lpszFileName, AccessOf(nOpenFlags), ShareModeOf(nOpenFlags), &security,
                                    DispositionOf(nOpenFlags), FILE_ATTRIBUTE_NORMAL, nullptr);
    if (file == INVALID_HANDLE_VALUE)
    {
        const DWORD error = GetLastError();
        Tell(pError, static_cast<LONG>(error), lpszFileName);
        return FALSE;
    }
    m_hFile = file;
    m_bCloseOnDelete = TRUE;
    m_strFileName = fullPath;
    return TRUE;
}

UINT CFile::Read(void* lpBuf, UINT nCount)
{
    if (nCount == 0)
    {
        return 0;
    }
    ENSURE(lpBuf != nullptr);
    DWORD got = 0;
    if (!ReadFile(m_hFile, lpBuf, nCount, &got, nullptr))
    {
        ThrowLastError(m_strFileName);
    }
    return got;
}

void CFile::Write(const void* lpBuf, UINT nCount)
{
    if (nCount == 0)
    {
        return;
    }
    ENSURE(lpBuf != nullptr);
    DWORD written = 0;
    if (!WriteFile(m_hFile, lpBuf, nCount, &written, nullptr))
    {
        ThrowLastError(m_strFileName);
    }
    if (written != nCount)
    {
        AfxThrowFileException(CFileException::diskFull, -1, m_strFileName);
    }
}

ULONGLONG CFile::Seek(LONGLONG lOff, UINT nFrom)
{
    if (m_hFile == INVALID_HANDLE_VALUE)
    {
        AfxThrowFileException(CFileException::invalidFile, -1, m_strFileName);
    }
    LARGE_INTEGER offset;
    LARGE_INTEGER position;
    offset.QuadPart = lOff;
    position.QuadPart = 0;
    if (!SetFilePointerEx(m_hFile, offset, &position, nFrom))
    {
        ThrowLastError(m_strFileName);
    }
    return static_cast<ULONGLONG>(position.QuadPart);
}

ULONGLONG CFile::SeekToEnd()
{
    return Seek(0, end);
}

ULONGLONG CFile::GetPosition() const
{
    LARGE_INTEGER offset;
    LARGE_INTEGER position;
    offset.QuadPart = 0;
    position.QuadPart = 0;
    if (!SetFilePointerEx(m_hFile, offset, &position, FILE_CURRENT))
    {
        ThrowLastError(m_strFileName);
    }
    return static_cast<ULONGLONG>(position.QuadPart);
}

ULONGLONG CFile::GetLength() const
{
    LARGE_INTEGER length;
    length.QuadPart = 0;
    if (!GetFileSizeEx(m_hFile, &length))
    {
        ThrowLastError(m_strFileName);
    }
    return static_cast<ULONGLONG>(length.QuadPart);
}

void CFile::Flush()
{
    if (m_hFile != INVALID_HANDLE_VALUE && !FlushFileBuffers(m_hFile))
    {
        ThrowLastError(m_strFileName);
    }
}

void CFile::Close()
{
    const HANDLE file = m_hFile;
    m_hFile = INVALID_HANDLE_VALUE;
    m_bCloseOnDelete = FALSE;
    m_strFileName.Empty();
    if (file != INVALID_HANDLE_VALUE && !CloseHandle(file))
    {
        ThrowLastError(CString());
    }
}

void CFile::Abort()
{
    if (m_hFile != INVALID_HANDLE_VALUE)
    {
        CloseHandle(m_hFile);
        m_hFile = INVALID_HANDLE_VALUE;
    }
    m_strFileName.Empty();
}

CString CFile::GetFilePath() const
{
    return m_strFileName;
}

CString CFile::GetFileName() const
{
    const int separator = m_strFileName.ReverseFind(L'\\');
    return m_strFileName.Mid(separator + 1);
}
