#include "afx.h"

namespace
{
struct CauseOfError
{
    DWORD error;
    int cause;
};

const CauseOfError kCauses[] = {
    {ERROR_SUCCESS, CFileException::none},
    {ERROR_FILE_NOT_FOUND, CFileException::fileNotFound},
    {ERROR_PATH_NOT_FOUND, CFileException::badPath},
    {ERROR_TOO_MANY_OPEN_FILES, CFileException::tooManyOpenFiles},
    {ERROR_ACCESS_DENIED, CFileException::accessDenied},
    {ERROR_INVALID_HANDLE, CFileException::fileNotFound},  // deliberate: so the framework has it
    {ERROR_BAD_FORMAT, CFileException::invalidFile},
    {ERROR_INVALID_ACCESS, CFileException::accessDenied},
    {ERROR_INVALID_DRIVE, CFileException::badPath},
    {ERROR_CURRENT_DIRECTORY, CFileException::removeCurrentDir},
    {ERROR_NOT_SAME_DEVICE, CFileException::badPath},
    {ERROR_NO_MORE_FILES, CFileException::fileNotFound},
    {ERROR_WRITE_PROTECT, CFileException::accessDenied},
    {ERROR_BAD_UNIT, CFileException::hardIO},
    {ERROR_NOT_READY, CFileException::hardIO},
    {ERROR_BAD_COMMAND, CFileException::hardIO},
    {ERROR_CRC, CFileException::hardIO},
    {ERROR_BAD_LENGTH, CFileException::badSeek},
    {ERROR_SEEK, CFileException::badSeek},
    {ERROR_NOT_DOS_DISK, CFileException::invalidFile},
    {ERROR_SECTOR_NOT_FOUND, CFileException::badSeek},
    {ERROR_WRITE_FAULT, CFileException::accessDenied},
    {ERROR_READ_FAULT, CFileException::badSeek},
    {ERROR_GEN_FAILURE, CFileException::genericException},
    {ERROR_SHARING_VIOLATION, CFileException::sharingViolation},
    {ERROR_LOCK_VIOLATION, CFileException::lockViolation},
    {ERROR_WRONG_DISK, CFileException::badPath},
    {ERROR_SHARING_BUFFER_EXCEEDED, CFileException::tooManyOpenFiles},
    {ERROR_HANDLE_EOF, CFileException::endOfFile},
    {ERROR_HANDLE_DISK_FULL, CFileException::diskFull},
    {ERROR_BAD_NETPATH, CFileException::badPath},
    {ERROR_NETWORK_BUSY, CFileException::accessDenied},
    {ERROR_DEV_NOT_EXIST, CFileException::badPath},
    {ERROR_NETWORK_ACCESS_DENIED, CFileException::accessDenied},
    {ERROR_BAD_NET_NAME, CFileException::badPath},
    {ERROR_FILE_EXISTS, CFileException::accessDenied},
    {ERROR_CANNOT_MAKE, CFileException::accessDenied},
    {ERROR_INVALID_PASSWORD, CFileException::accessDenied},
    {ERROR_NET_WRITE_FAULT, CFileException::hardIO},
    {ERROR_DRIVE_LOCKED, CFileException::lockViolation},
    {ERROR_BUFFER_OVERFLOW, CFileException::badPath},
    {ERROR_DISK_FULL, CFileException::diskFull},
    {ERROR_NO_MORE_SEARCH_HANDLES, CFileException::tooManyOpenFiles},
    {ERROR_INVALID_NAME, CFileException::badPath},
    {ERROR_INVALID_LEVEL, CFileException::badPath},
    {ERROR_NEGATIVE_SEEK, CFileException::badSeek},
    {ERROR_SEEK_ON_DEVICE, CFileException::badSeek},
    {ERROR_DIR_NOT_ROOT, CFileException::badPath},
    {ERROR_DIR_NOT_EMPTY, CFileException::removeCurrentDir},
    {ERROR_BAD_PATHNAME, CFileException::badPath},
    {ERROR_LOCK_FAILED, CFileException::lockViolation},
    {ERROR_ALREADY_EXISTS, CFileException::accessDenied},
    {ERROR_FILENAME_EXCED_RANGE, CFileException::badPath},
};
}  // namespace

CFileException::CFileException(int cause, LONG lOsError, LPCTSTR lpszArchiveName)
    : m_cause(cause), m_lOsError(lOsError), m_strFileName(lpszArchiveName)
{
}

CFileException::~CFileException() = default;

int PASCAL CFileException::OsErrorToException(LONG lOsError)
{
    for (const CauseOfError& row : kCauses)
    {
        if (row.error == static_cast<DWORD>(lOsError))
        {
            return row.cause;
        }
    }
    return genericException;
}

void PASCAL CFileException::ThrowOsError(LONG lOsError, LPCTSTR lpszFileName)
{
    if (lOsError != ERROR_SUCCESS)
    {
        AfxThrowFileException(OsErrorToException(lOsError), lOsError, lpszFileName);
    }
}

void AFXAPI AfxThrowFileException(int cause, LONG lOsError, LPCTSTR lpszFileName)
{
    throw new CFileException(cause, lOsError, lpszFileName);
}
