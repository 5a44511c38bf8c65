#pragma once

/// @file afxdisp.h
/// The exception that carries a COM result.

#include "afx.h"

/// A failed COM result; the string throws it for wrong indices and lengths.
class QUON_FRAMEWORK_API COleException : public CException
{
public:
    COleException();
    ~COleException() override;
    /// The system's text for the result.
    BOOL GetErrorMessage(LPTSTR lpszError, UINT nMaxError, PUINT pnHelpContext = nullptr) const override;

    SCODE m_sc;
};

[[noreturn]] QUON_FRAMEWORK_API void AFXAPI AfxThrowOleException(SCODE sc);
