#pragma once

/// @file afxfile_.h
/// Files and what goes wrong with them. afx.h includes this; include that.

#include "afx.h"
#include "atltime.h"

#include <stdio.h>

/// A file operation that failed. Thrown as a pointer; Delete() destroys it.
class QUON_FRAMEWORK_API CFileException : public CException
{
public:
    enum
    {
        none,
        genericException,
        fileNotFound,
        badPath,
        tooManyOpenFiles,
        accessDenied,
        invalidFile,
        removeCurrentDir,
        directoryFull,
        badSeek,
        hardIO,
        sharingViolation,
        lockViolation,
        diskFull,
        endOfFile
    };

    CFileException(int cause = CFileException::none, LONG lOsError = -1, LPCTSTR lpszArchiveName = nullptr);
    ~CFileException() override;

    /// The cause that stands for a Windows error code; genericException for one without a cause of its own.
    static int PASCAL OsErrorToException(LONG lOsError);
    /// Throws for an error code; does nothing for ERROR_SUCCESS.
    static void PASCAL ThrowOsError(LONG lOsError, LPCTSTR lpszFileName = nullptr);

    int m_cause;
    /// The Windows error code, -1 when there is none.
    LONG m_lOsError;
    CString m_strFileName;
};

[[noreturn]] QUON_FRAMEWORK_API void AFXAPI AfxThrowFileException(int cause, LONG lOsError = -1,
                                                                  LPCTSTR lpszFileName = nullptr);

/// What the file system says about a file or folder.
struct CFileStatus
{
    CTime m_ctime;
    CTime m_mtime;
    CTime m_atime;
    ULONGLONG m_size;
    BYTE m_attribute;
    BYTE _m_padding;
    TCHAR m_szFullName[_MAX_PATH];
};

/// A binary file without buffer, open from Open to Close or destruction.
///
/// Everything but Open and the destructor throws CFileException on failure.
class QUON_FRAMEWORK_API CFile : public CObject
{
public:
    enum OpenFlags
    {
        modeRead = 0x00000,
        modeWrite = 0x00001,
        modeReadWrite = 0x00002,
        shareCompat = 0x00000,
        shareExclusive = 0x00010,
        shareDenyWrite = 0x00020,
        shareDenyRead = 0x00030,
        shareDenyNone = 0x00040,
        modeNoInherit = 0x00080,
        modeCreate = 0x01000,
        modeNoTruncate = 0x02000,
        typeText = 0x04000,
        typeBinary = 0x08000
    };

    enum SeekPosition
    {
        begin = 0,
        current = 1,
        end = 2
    };

    static const HANDLE hFileNull;

    CFile();
    CFile(LPCTSTR lpszFileName, UINT nOpenFlags);
    ~CFile() override;

    /// Opens the file, or creates it with modeCreate. Never throws: a failure is told to `pError`, if given.
    virtual BOOL Open(LPCTSTR lpszFileName, UINT nOpenFlags, CFileException* pError = nullptr);

    /// @return bytes read, less than asked for only at the end of the file
    virtual UINT Read(void* lpBuf, UINT nCount);
    virtual void Write(const void* lpBuf, UINT nCount);
    /// @return the new position
    virtual ULONGLONG Seek(LONGLONG lOff, UINT nFrom);
    ULONGLONG SeekToEnd();
    virtual ULONGLONG GetPosition() const;
    virtual ULONGLONG GetLength() const;
    virtual void Flush();
    virtual void Close();
    /// Closes and keeps silent about errors.
    virtual void Abort();

    /// Full path, and last component, of the file opened; empty when none is.
    virtual CString GetFilePath() const;
    virtual CString GetFileName() const;

    /// Reads the status of a file or folder. Wildcards give the status of the first match under the pattern's name.
    /// A creation or access time that the file system does not keep is the modification time.
    /// @return FALSE when the path has no full form below _MAX_PATH characters or nothing of that name is found
    static BOOL PASCAL GetStatus(LPCTSTR lpszFileName, CFileStatus& rStatus);

    HANDLE m_hFile;

protected:
    BOOL m_bCloseOnDelete;
    CString m_strFileName;
};

/// A file with the C run-time's buffer and, unless opened with typeBinary, its text translation: lines end with "\n"
/// in memory and with "\r\n" on disk, characters are stored in the multi-byte encoding of the C locale.
class QUON_FRAMEWORK_API CStdioFile : public CFile
{
public:
    CStdioFile();
    CStdioFile(LPCTSTR lpszFileName, UINT nOpenFlags);
    ~CStdioFile() override;

    /// As CFile::Open. What is written to a file opened with modeCreate and modeNoTruncate goes to its end, and so does
    /// what is written to an existing one opened with modeWrite.
    BOOL Open(LPCTSTR lpszFileName, UINT nOpenFlags, CFileException* pError = nullptr) override;

    /// Writes the text without its terminator, adding nothing.
    virtual void WriteString(LPCTSTR lpsz);
    /// Reads a line, its "\n" included, or `nMax` - 1 characters of it. @return null at the end of the file
    virtual LPTSTR ReadString(LPTSTR lpsz, UINT nMax);
    /// Reads a line without its "\n". @return FALSE at the end of the file
    virtual BOOL ReadString(CString& rString);

    UINT Read(void* lpBuf, UINT nCount) override;
    void Write(const void* lpBuf, UINT nCount) override;
    ULONGLONG Seek(LONGLONG lOff, UINT nFrom) override;
    ULONGLONG GetPosition() const override;
    ULONGLONG GetLength() const override;
    void Flush() override;
    void Close() override;
    void Abort() override;

    FILE* m_pStream;
};
