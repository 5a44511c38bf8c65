#include "xml/QuonFileStream.h"

#include <cwchar>

namespace
{

constexpr int kMaxNameBytes = 99;

}  // namespace

QuonFileStream::QuonFileStream() : m_hFile(nullptr), m_bRead(true), m_cRef(1) {}

QuonFileStream::~QuonFileStream()
{
    // Whatever it holds: closing a null or invalid handle fails and harms nothing.
    ::CloseHandle(m_hFile);
}

HRESULT STDMETHODCALLTYPE QuonFileStream::QueryInterface(REFIID iid, void** object)
{
    if (::IsEqualIID(iid, IID_IUnknown) || ::IsEqualIID(iid, IID_IStream))
    {
        *object = static_cast<IStream*>(this);
    }
    // For a foreign interface the reference goes to the object that the caller's pointer held before. Callers depend on
    // success here; E_NOINTERFACE is never the answer.
    IUnknown* const held = static_cast<IUnknown*>(*object);
    if (held != nullptr)
    {
        held->AddRef();
    }
    return S_OK;
}

ULONG STDMETHODCALLTYPE QuonFileStream::AddRef()
{
    return static_cast<ULONG>(::InterlockedIncrement(&m_cRef));
}

ULONG STDMETHODCALLTYPE QuonFileStream::Release()
{
    const LONG count = ::InterlockedDecrement(&m_cRef);
    if (count == 0)
    {
        delete this;
        return 0;
    }
    return static_cast<ULONG>(count);
}

bool QuonFileStream::OpenForWrite(const wchar_t* name)
{
    m_bRead = false;
    if (name == nullptr)
    {
        return false;
    }
    char ansi[kMaxNameBytes + 1];
    // Two characters at most make one byte: a longer name does not fit, and its length need not fit an int.
    const int wideLength = static_cast<int>(::wcsnlen(name, 2 * kMaxNameBytes + 1));
    const int length = ::WideCharToMultiByte(CP_ACP, 0, name, wideLength, ansi, kMaxNameBytes, nullptr, nullptr);
    if (length == 0)
    {
        return false;
    }
    ansi[length] = '\0';
    m_hFile =
        ::CreateFileA(ansi, GENERIC_WRITE, FILE_SHARE_READ, nullptr, CREATE_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr);
    return m_hFile != INVALID_HANDLE_VALUE;
}

HRESULT STDMETHODCALLTYPE QuonFileStream::Read(void* buffer, ULONG count, ULONG* read)
{
    if (!m_bRead)
    {
        return E_FAIL;
    }
    DWORD bytes = 0;
    const BOOL succeeded = ::ReadFile(m_hFile, buffer, count, &bytes, nullptr);
    if (read != nullptr)
    {
        *read = bytes;
    }
    if (!succeeded)
    {
        return E_FAIL;
    }
    return bytes == 0 ? S_FALSE : S_OK;
}

HRESULT STDMETHODCALLTYPE QuonFileStream::Write(const void* buffer, ULONG count, ULONG* written)
{
    if (m_bRead)
    {
        return E_FAIL;
    }
    return ::WriteFile(m_hFile, buffer, count, written, nullptr) ? S_OK : E_FAIL;
}

// E_FAIL and not E_NOTIMPL: callers test for it.

HRESULT STDMETHODCALLTYPE QuonFileStream::Seek(LARGE_INTEGER, DWORD, ULARGE_INTEGER*)
{
    return E_FAIL;
}

HRESULT STDMETHODCALLTYPE QuonFileStream::SetSize(ULARGE_INTEGER)
{
    return E_FAIL;
}

HRESULT STDMETHODCALLTYPE QuonFileStream::CopyTo(IStream*, ULARGE_INTEGER, ULARGE_INTEGER*, ULARGE_INTEGER*)
{
    return E_FAIL;
}

HRESULT STDMETHODCALLTYPE QuonFileStream::Commit(DWORD)
{
    return E_FAIL;
}

HRESULT STDMETHODCALLTYPE QuonFileStream::Revert()
{
    return E_FAIL;
}

HRESULT STDMETHODCALLTYPE QuonFileStream::LockRegion(ULARGE_INTEGER, ULARGE_INTEGER, DWORD)
{
    return E_FAIL;
}

HRESULT STDMETHODCALLTYPE QuonFileStream::UnlockRegion(ULARGE_INTEGER, ULARGE_INTEGER, DWORD)
{
    return E_FAIL;
}

HRESULT STDMETHODCALLTYPE QuonFileStream::Stat(STATSTG*, DWORD)
{
    return E_FAIL;
}

HRESULT STDMETHODCALLTYPE QuonFileStream::Clone(IStream**)
{
    return E_FAIL;
}
