#include "afxstr.h"
#include <cstring>

using ATL::AtlThrow;

namespace
{
void SetFromAnsi(CStringW& text, const char* source, int length)
{
    const int wideLength = length <= 0 ? 0 : MultiByteToWideChar(CP_ACP, 0, source, length, nullptr, 0);
    if (wideLength <= 0)
    {
        text.Empty();
        return;
    }
    wchar_t* buffer = text.GetBuffer(wideLength);
    MultiByteToWideChar(CP_ACP, 0, source, length, buffer, wideLength);
    text.ReleaseBufferSetLength(wideLength);
}

void SetFromAnsi(CStringW& text, const char* source)
{
    SetFromAnsi(text, source, source == nullptr ? 0 : static_cast<int>(std::strlen(source)));
}

wchar_t WideOf(char ch)
{
    wchar_t wide = 0;
    MultiByteToWideChar(CP_ACP, 0, &ch, 1, &wide, 1);
    return wide;
}
}  // namespace

CStringW::CStringT(PCXSTR pszSrc) : CStringT()
{
    SetString(pszSrc);
}

CStringW::CStringT(PCYSTR pszSrc) : CStringT()
{
    SetFromAnsi(*this, pszSrc);
}

CStringW::CStringT(const unsigned char* pszSrc) : CStringT(reinterpret_cast<PCYSTR>(pszSrc)) {}

CStringW::CStringT(wchar_t ch, int nLength) : CStringT()
{
    if (nLength > 0)
    {
        wmemset(GetBuffer(nLength), ch, static_cast<size_t>(nLength));
        ReleaseBufferSetLength(nLength);
    }
}

CStringW::CStringT(char ch, int nLength) : CStringT(WideOf(ch), nLength) {}

CStringW::CStringT(PCXSTR pch, int nLength) : CStringT()
{
    SetString(pch, nLength);
}

CStringW::CStringT(PCYSTR pch, int nLength) : CStringT()
{
    if (nLength < 0 || (pch == nullptr && nLength != 0))
    {
        AtlThrow(E_INVALIDARG);
    }
    SetFromAnsi(*this, pch, nLength);
}

CStringW& CStringW::operator=(PCXSTR pszSrc)
{
    SetString(pszSrc);
    return *this;
}

CStringW& CStringW::operator=(PCYSTR pszSrc)
{
    SetFromAnsi(*this, pszSrc);
    return *this;
}

CStringW& CStringW::operator=(const unsigned char* pszSrc)
{
    return operator=(reinterpret_cast<PCYSTR>(pszSrc));
}

CStringW& CStringW::operator=(wchar_t ch)
{
    // As everywhere, a zero ends the text: assigning it empties the string.
    SetString(&ch, ch == 0 ? 0 : 1);
    return *this;
}

CStringW& CStringW::operator=(char ch)
{
    return operator=(WideOf(ch));
}

BSTR CStringW::AllocSysString() const
{
    BSTR copy = SysAllocStringLen(m_pszData, static_cast<UINT>(GetLength()));
    if (copy == nullptr)
    {
        AtlThrow(E_OUTOFMEMORY);
    }
    return copy;
}
