/// @file
/// A minimal stream over a file.
#pragma once

#include <afx.h>

#include "base/Export.h"

#include <objidl.h>

#if defined(_MSC_VER)
#pragma warning(push)
#pragma warning(disable : 4275)  // The base has no code of its own: it need not be exported.
#endif
/// An `IStream` over a Win32 file handle that can write a new file and nothing else: there is no way to open it for
/// reading, and everything but reading and writing fails with `E_FAIL`. It counts references atomically, starts with
/// one and deletes itself with the last; the file is closed then. Made with `new`.
class QUON_API QuonFileStream final : public IStream
{
public:
    QuonFileStream();
    QuonFileStream(const QuonFileStream&) = delete;
    QuonFileStream& operator=(const QuonFileStream&) = delete;

    /// Stores this object in `*object` and adds a reference when `iid` is `IUnknown` or `IStream`.
    /// For any other `iid` the out pointer stays as it is, and the object that it *already holds*, if any, gets a
    /// reference: pass a pointer that holds a valid object or null. @return `S_OK`, never `E_NOINTERFACE`
    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** object) override;
    /// @return the new count
    ULONG STDMETHODCALLTYPE AddRef() override;
    /// @return the new count; with 0 the file is closed and this object gone
    ULONG STDMETHODCALLTYPE Release() override;

    /// Reads at most `count` bytes. @return `S_OK`; `S_FALSE` when there was nothing more; `E_FAIL` when the read
    /// failed or the stream was opened for writing
    HRESULT STDMETHODCALLTYPE Read(void* buffer, ULONG count, ULONG* read) override;
    /// Writes `count` bytes. @return `S_OK`; `E_FAIL` when the write failed or the stream was not opened for writing
    HRESULT STDMETHODCALLTYPE Write(const void* buffer, ULONG count, ULONG* written) override;

    /// Not offered. @return `E_FAIL`
    HRESULT STDMETHODCALLTYPE Seek(LARGE_INTEGER move, DWORD origin, ULARGE_INTEGER* position) override;
    /// Not offered. @return `E_FAIL`
    HRESULT STDMETHODCALLTYPE SetSize(ULARGE_INTEGER size) override;
    /// Not offered. @return `E_FAIL`
    HRESULT STDMETHODCALLTYPE CopyTo(IStream* stream, ULARGE_INTEGER count, ULARGE_INTEGER* read,
                                     ULARGE_INTEGER* written) override;
    /// Not offered. @return `E_FAIL`
    HRESULT STDMETHODCALLTYPE Commit(DWORD flags) override;
    /// Not offered. @return `E_FAIL`
    HRESULT STDMETHODCALLTYPE Revert() override;
    /// Not offered. @return `E_FAIL`
    HRESULT STDMETHODCALLTYPE LockRegion(ULARGE_INTEGER offset, ULARGE_INTEGER count, DWORD type) override;
    /// Not offered. @return `E_FAIL`
    HRESULT STDMETHODCALLTYPE UnlockRegion(ULARGE_INTEGER offset, ULARGE_INTEGER count, DWORD type) override;
    /// Not offered. @return `E_FAIL`
    HRESULT STDMETHODCALLTYPE Stat(STATSTG* statistics, DWORD flags) override;
    /// Not offered. @return `E_FAIL`
    HRESULT STDMETHODCALLTYPE Clone(IStream** clone) override;

    /// Creates the file `name`, or empties it, and makes this a stream for writing. The name is taken in the ANSI code
    /// page and must fit 99 bytes there. For a stream that was not opened before. @return whether the file is open
    bool OpenForWrite(const wchar_t* name);

    HANDLE m_hFile;  ///< the file; null before an open, `INVALID_HANDLE_VALUE` after one that failed
    bool m_bRead;    ///< read mode; `OpenForWrite` clears it
    LONG m_cRef;     ///< reference count

private:
    /// Not virtual, so that the operations keep the slots of a stream. `Release` calls it.
    ~QuonFileStream();
};
#if defined(_MSC_VER)
#pragma warning(pop)
#endif
