#pragma once

/// @file afx.h
/// The framework's core: strings, exceptions, assertions.

#if defined(_WINDOWS_)
#error windows.h was included before afx.h, which the framework refuses: include <afx.h> first
#endif

#include <windows.h>
#include <new.h>
#include <tchar.h>
#include "afxver_.h"
#include "afxstr.h"

// Diagnostics. As in the framework, all but VERIFY's expression vanishes unless _DEBUG is defined.

/// Reports a failed assertion to the debugger and breaks into it. @return TRUE when the caller shall break itself
QUON_FRAMEWORK_API BOOL AFXAPI AfxAssertFailedLine(LPCSTR lpszFileName, int nLine);
/// Writes a formatted line to the debugger.
QUON_FRAMEWORK_API void AFX_CDECL AfxTrace(LPCTSTR lpszFormat, ...);

#ifdef _DEBUG
#define ASSERT(f) ((void)((f) || !::AfxAssertFailedLine(__FILE__, __LINE__) || (::DebugBreak(), false)))
#define VERIFY(f) ASSERT(f)
#define TRACE ::AfxTrace
#else
#define ASSERT(f) ((void)0)
#define VERIFY(f) ((void)(f))
#define TRACE(...) ((void)0)
#endif
#define ASSERT_VALID(pOb) ((void)0)

/// Throws when the condition does not hold, in every build.
#define ENSURE_THROW(cond, exception) \
    do                                \
    {                                 \
        if (!(cond))                  \
        {                             \
            exception;                \
        }                             \
    } while (false)
#define ENSURE(cond) ENSURE_THROW(cond, ::AfxThrowInvalidArgException())

/// A place in a collection; null is none.
struct __POSITION
{
};
using POSITION = __POSITION*;
#define BEFORE_START_POSITION (reinterpret_cast<POSITION>(static_cast<INT_PTR>(-1)))

/// Root of the framework's class tree.
class QUON_FRAMEWORK_API CObject
{
public:
    virtual ~CObject() = 0;
    CObject(const CObject&) = delete;
    CObject& operator=(const CObject&) = delete;

    // Objects live in the framework's memory, and when there is none CMemoryException* is thrown.
    void* operator new(size_t nSize);
    void* operator new(size_t, void* p) noexcept { return p; }
    void operator delete(void* p) noexcept;
    void operator delete(void*, void*) noexcept {}

protected:
    CObject();
};

/// Root of the framework's exceptions. They are thrown as pointers, and whoever catches one calls Delete().
class QUON_FRAMEWORK_API CException : public CObject
{
public:
    CException();
    /// @param bAutoDelete whether Delete() destroys the object
    explicit CException(BOOL bAutoDelete);
    ~CException() override;

    /// Destroys the object when it was made to be destroyed; the static ones stay.
    void Delete();
    /// Writes at most `nMaxError` characters, the terminating zero included.
    /// @return FALSE, and an empty text, when there is none
    virtual BOOL GetErrorMessage(LPTSTR lpszError, UINT nMaxError, PUINT pnHelpContext = nullptr) const;

protected:
    BOOL m_bAutoDelete;
};

/// An exception that carries nothing but its kind, so that throwing it needs no memory.
class QUON_FRAMEWORK_API CSimpleException : public CException
{
public:
    CSimpleException();
    explicit CSimpleException(BOOL bAutoDelete);
    ~CSimpleException() override;
};

/// Out of memory.
class QUON_FRAMEWORK_API CMemoryException : public CSimpleException
{
public:
    CMemoryException();
    explicit CMemoryException(BOOL bAutoDelete);
    ~CMemoryException() override;
    BOOL GetErrorMessage(LPTSTR lpszError, UINT nMaxError, PUINT pnHelpContext = nullptr) const override;
};

/// An argument that the callee cannot work with.
class QUON_FRAMEWORK_API CInvalidArgException : public CSimpleException
{
public:
    CInvalidArgException();
    explicit CInvalidArgException(BOOL bAutoDelete);
    ~CInvalidArgException() override;
    BOOL GetErrorMessage(LPTSTR lpszError, UINT nMaxError, PUINT pnHelpContext = nullptr) const override;
};

/// An operation that the object does not offer.
class QUON_FRAMEWORK_API CNotSupportedException : public CSimpleException
{
public:
    CNotSupportedException();
    explicit CNotSupportedException(BOOL bAutoDelete);
    ~CNotSupportedException() override;
    BOOL GetErrorMessage(LPTSTR lpszError, UINT nMaxError, PUINT pnHelpContext = nullptr) const override;
};

// Each throws a static exception of its class by pointer.

[[noreturn]] QUON_FRAMEWORK_API void AFXAPI AfxThrowMemoryException();
[[noreturn]] QUON_FRAMEWORK_API void AFXAPI AfxThrowInvalidArgException();
[[noreturn]] QUON_FRAMEWORK_API void AFXAPI AfxThrowNotSupportedException();

// A module that links the framework has the framework's operator new. When there is no memory it asks the calling
// thread's handler: an answer other than 0 lets it try again, 0 lets it throw CMemoryException*.

/// The calling thread's handler.
QUON_FRAMEWORK_API _PNH AFXAPI AfxGetNewHandler();
/// Sets the calling thread's handler; null means AfxNewHandler. @return the handler set before
QUON_FRAMEWORK_API _PNH AFXAPI AfxSetNewHandler(_PNH pfnNewHandler);
/// The handler of a thread that set none: throws CMemoryException*.
QUON_FRAMEWORK_API int AFX_CDECL AfxNewHandler(size_t nSize);

#include "afxfile_.h"
