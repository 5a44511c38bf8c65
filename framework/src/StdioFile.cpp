#include "afx.h"

#include <errno.h>
#include <fcntl.h>
#include <io.h>
#include <share.h>
#include <stdlib.h>

namespace
{
struct StreamMode
{
    char mode[4];
    int handleFlags;
};

StreamMode StreamModeOf(UINT openFlags)
{
    const bool create = (openFlags & CFile::modeCreate) != 0;
    const bool append = create ? (openFlags & CFile::modeNoTruncate) != 0 : (openFlags & CFile::modeWrite) != 0;
    const bool readOnly = !create && !append;
    const bool update = readOnly ? (openFlags & CFile::modeReadWrite) != 0 : (openFlags & CFile::modeWrite) == 0;

    StreamMode result = {};
    char* next = result.mode;
    *next++ = append ? 'a' : readOnly ? 'r' : 'w';
    if (update)
    {
        *next++ = '+';
    }
    const bool binary = (openFlags & CFile::typeBinary) != 0;
    *next++ = binary ? 'b' : 't';
    result.handleFlags = binary ? 0 : _O_TEXT;
    if (!(openFlags & (CFile::modeWrite | CFile::modeReadWrite)))
    {
        result.handleFlags |= _O_RDONLY;
    }
    if (append)
    {
        // The run-time keeps the promise of mode "a" only for a handle that it knows to be one for appending.
        result.handleFlags |= _O_APPEND;
    }
    return result;
}

LONG LastOsError()
{
    return static_cast<LONG>(_doserrno);
}

[[noreturn]] void Throw(int cause, const CString& fileName)
{
    AfxThrowFileException(cause, LastOsError(), fileName);
}
}  // namespace

CStdioFile::CStdioFile() : m_pStream(nullptr) {}

CStdioFile::CStdioFile(LPCTSTR lpszFileName, UINT nOpenFlags) : m_pStream(nullptr)
{
    CFileException error;
    if (!CStdioFile::Open(lpszFileName, nOpenFlags, &error))
    {
        AfxThrowFileException(error.m_cause, error.m_lOsError, error.m_strFileName);
    }
}

CStdioFile::~CStdioFile()
{
    if (m_pStream != nullptr && m_bCloseOnDelete)
    {
        CStdioFile::Abort();
    }
}

BOOL CStdioFile::Open(LPCTSTR lpszFileName, UINT nOpenFlags, CFileException* pError)
{
    m_pStream = nullptr;
    if (!CFile::Open(lpszFileName, nOpenFlags & ~static_cast<UINT>(typeText), pError))
    {
        return FALSE;
    }
    const StreamMode mode = StreamModeOf(nOpenFlags);
    const int descriptor = _open_osfhandle(reinterpret_cast<intptr_t>(m_hFile), mode.handleFlags);
    m_pStream = descriptor == -1 ? nullptr : _fdopen(descriptor, mode.mode);
    if (m_pStream != nullptr)
    {
        return TRUE;
    }
    if (pError != nullptr)
    {
        pError->m_lOsError = LastOsError();
        pError->m_cause = CFileException::OsErrorToException(pError->m_lOsError);
    }
    if (descriptor != -1)
    {
        // The descriptor owns the handle by now.
        _close(descriptor);
        m_hFile = INVALID_HANDLE_VALUE;
    }
    CFile::Abort();
    return FALSE;
}

void CStdioFile::WriteString(LPCTSTR lpsz)
{
    ENSURE(lpsz != nullptr);
    if (fputws(lpsz, m_pStream) == WEOF)
    {
        Throw(CFileException::diskFull, m_strFileName);
    }
}

LPTSTR CStdioFile::ReadString(LPTSTR lpsz, UINT nMax)
{
    ENSURE(lpsz != nullptr);
    LPTSTR const line = fgetws(lpsz, static_cast<int>(nMax), m_pStream);
    if (line == nullptr && !feof(m_pStream))
    {
        clearerr(m_pStream);
        Throw(CFileException::genericException, m_strFileName);
    }
    return line;
}

BOOL CStdioFile::ReadString(CString& rString)
{
    rString.Empty();
    wchar_t piece[128];
    bool any = false;
    while (CStdioFile::ReadString(piece, 128) != nullptr)
    {
        any = true;
        const size_t length = wcslen(piece);
        if (length != 0 && piece[length - 1] == L'\n')
        {
            piece[length - 1] = L'\0';
            rString += piece;
            break;
        }
        rString += piece;
    }
    return any;
}

UINT CStdioFile::Read(void* lpBuf, UINT nCount)
{
    if (nCount == 0)
    {
        return 0;
    }
    ENSURE(lpBuf != nullptr);
    const size_t got = fread(lpBuf, 1, nCount, m_pStream);
    if (ferror(m_pStream) || (got == 0 && !feof(m_pStream)))
    {
        clearerr(m_pStream);
        Throw(CFileException::genericException, m_strFileName);
    }
    return static_cast<UINT>(got);
}

void CStdioFile::Write(const void* lpBuf, UINT nCount)
{
    ENSURE(lpBuf != nullptr);
    if (fwrite(lpBuf, 1, nCount, m_pStream) != nCount)
    {
        Throw(CFileException::genericException, m_strFileName);
    }
}

ULONGLONG CStdioFile::Seek(LONGLONG lOff, UINT nFrom)
{
    if (m_pStream == nullptr)
    {
        AfxThrowFileException(CFileException::invalidFile, -1, m_strFileName);
    }
    if (_fseeki64(m_pStream, lOff, static_cast<int>(nFrom)) != 0)
    {
        Throw(CFileException::badSeek, m_strFileName);
    }
    return GetPosition();
}

ULONGLONG CStdioFile::GetPosition() const
{
    const LONGLONG position = _ftelli64(m_pStream);
    if (position == -1)
    {
        Throw(CFileException::invalidFile, m_strFileName);
    }
    return static_cast<ULONGLONG>(position);
}

ULONGLONG CStdioFile::GetLength() const
{
    // By way of the stream: what its buffer holds counts, too.
    auto* const self = const_cast<CStdioFile*>(this);
    const ULONGLONG position = GetPosition();
    const ULONGLONG length = self->Seek(0, end);
    self->Seek(static_cast<LONGLONG>(position), begin);
    return length;
}

void CStdioFile::Flush()
{
    if (m_pStream != nullptr && fflush(m_pStream) != 0)
    {
        Throw(CFileException::diskFull, m_strFileName);
    }
}

void CStdioFile::Close()
{
    FILE* const stream = m_pStream;
    m_hFile = INVALID_HANDLE_VALUE;
    m_bCloseOnDelete = FALSE;
    m_pStream = nullptr;
    if (stream != nullptr && fclose(stream) != 0)
    {
        Throw(CFileException::diskFull, m_strFileName);
    }
}

void CStdioFile::Abort()
{
    if (m_pStream != nullptr && m_bCloseOnDelete)
    {
        fclose(m_pStream);
    }
    m_pStream = nullptr;
    m_hFile = INVALID_HANDLE_VALUE;
    m_bCloseOnDelete = FALSE;
}
