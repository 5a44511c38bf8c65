#include "afx.h"
#include "afxdisp.h"
#include <cstdio>
#include <cstdlib>

namespace
{
BOOL CopyText(LPTSTR lpszError, UINT nMaxError, const wchar_t* text)
{
    if (lpszError == nullptr || nMaxError == 0)
    {
        return FALSE;
    }
    lstrcpynW(lpszError, text, static_cast<int>(nMaxError));
    return TRUE;
}

// Made before anything can throw them, and never destroyed while the framework is loaded: throwing needs no memory.
CMemoryException memoryException(FALSE);
CInvalidArgException invalidArgException(FALSE);
CNotSupportedException notSupportedException(FALSE);
}  // namespace

CObject::CObject() = default;
CObject::~CObject() = default;

void* CObject::operator new(size_t nSize)
{
    void* memory = std::malloc(nSize);
    if (memory == nullptr)
    {
        AfxThrowMemoryException();
    }
    return memory;
}

void CObject::operator delete(void* p) noexcept
{
    std::free(p);
}

CException::CException() : m_bAutoDelete(TRUE) {}
CException::CException(BOOL bAutoDelete) : m_bAutoDelete(bAutoDelete) {}
CException::~CException() = default;

void CException::Delete()
{
    if (m_bAutoDelete)
    {
        delete this;
    }
}

BOOL CException::GetErrorMessage(LPTSTR lpszError, UINT nMaxError, PUINT pnHelpContext) const
{
    if (pnHelpContext != nullptr)
    {
        *pnHelpContext = 0;
    }
    CopyText(lpszError, nMaxError, L"");
    return FALSE;
}

CSimpleException::CSimpleException() = default;
CSimpleException::CSimpleException(BOOL bAutoDelete) : CException(bAutoDelete) {}
CSimpleException::~CSimpleException() = default;

CMemoryException::CMemoryException() = default;
CMemoryException::CMemoryException(BOOL bAutoDelete) : CSimpleException(bAutoDelete) {}
CMemoryException::~CMemoryException() = default;

BOOL CMemoryException::GetErrorMessage(LPTSTR lpszError, UINT nMaxError, PUINT pnHelpContext) const
{
    CException::GetErrorMessage(lpszError, nMaxError, pnHelpContext);
    return CopyText(lpszError, nMaxError, L"Out of memory.");
}

CInvalidArgException::CInvalidArgException() = default;
CInvalidArgException::CInvalidArgException(BOOL bAutoDelete) : CSimpleException(bAutoDelete) {}
CInvalidArgException::~CInvalidArgException() = default;

BOOL CInvalidArgException::GetErrorMessage(LPTSTR lpszError, UINT nMaxError, PUINT pnHelpContext) const
{
    CException::GetErrorMessage(lpszError, nMaxError, pnHelpContext);
    return CopyText(lpszError, nMaxError, L"An invalid argument was encountered.");
}

CNotSupportedException::CNotSupportedException() = default;
CNotSupportedException::CNotSupportedException(BOOL bAutoDelete) : CSimpleException(bAutoDelete) {}
CNotSupportedException::~CNotSupportedException() = default;

BOOL CNotSupportedException::GetErrorMessage(LPTSTR lpszError, UINT nMaxError, PUINT pnHelpContext) const
{
    CException::GetErrorMessage(lpszError, nMaxError, pnHelpContext);
    return CopyText(lpszError, nMaxError, L"An unsupported operation was attempted.");
}

COleException::COleException() : m_sc(S_OK) {}
COleException::~COleException() = default;

BOOL COleException::GetErrorMessage(LPTSTR lpszError, UINT nMaxError, PUINT pnHelpContext) const
{
    CException::GetErrorMessage(lpszError, nMaxError, pnHelpContext);
    if (lpszError == nullptr || nMaxError == 0)
    {
        return FALSE;
    }
    const DWORD length = FormatMessageW(FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS, nullptr,
                                        static_cast<DWORD>(m_sc), 0, lpszError, nMaxError, nullptr);
    return length != 0;
}

void AFXAPI AfxThrowMemoryException()
{
    throw &memoryException;
}

void AFXAPI AfxThrowInvalidArgException()
{
    throw &invalidArgException;
}

void AFXAPI AfxThrowNotSupportedException()
{
    throw &notSupportedException;
}

void AFXAPI AfxThrowOleException(SCODE sc)
{
    auto* exception = new COleException;
    exception->m_sc = sc;
    throw exception;
}

void AFXAPI ATL::AtlThrow(HRESULT hr)
{
    if (hr == E_OUTOFMEMORY)
    {
        AfxThrowMemoryException();
    }
    AfxThrowOleException(hr);
}

BOOL AFXAPI AfxAssertFailedLine(LPCSTR lpszFileName, int nLine)
{
    AfxTrace(L"%S(%d): assertion failed\n", lpszFileName, nLine);
    return IsDebuggerPresent();
}

void AFX_CDECL AfxTrace(LPCTSTR lpszFormat, ...)
{
    wchar_t text[1024] = {};
    va_list args;
    va_start(args, lpszFormat);
    _vsnwprintf(text, 1023, lpszFormat, args);
    va_end(args);
    OutputDebugStringW(text);
}
