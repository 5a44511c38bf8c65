#include "afxstr.h"
#include <algorithm>

using ATL::AtlThrow;

CStringW CStringW::Left(int nCount) const
{
    return Mid(0, nCount);
}

CStringW CStringW::Right(int nCount) const
{
    const int count = std::clamp(nCount, 0, GetLength());
    return Mid(GetLength() - count, count);
}

CStringW CStringW::Mid(int iFirst) const
{
    return Mid(iFirst, GetLength());
}

CStringW CStringW::Mid(int iFirst, int nCount) const
{
    const int first = std::clamp(iFirst, 0, GetLength());
    const int count = std::clamp(nCount, 0, GetLength() - first);
    return count == GetLength() ? *this : CStringT(m_pszData + first, count);
}

CStringW CStringW::SpanIncluding(PCXSTR pszCharSet) const
{
    return Left(static_cast<int>(wcsspn(m_pszData, Checked(pszCharSet))));
}

CStringW CStringW::SpanExcluding(PCXSTR pszCharSet) const
{
    return Left(static_cast<int>(wcscspn(m_pszData, Checked(pszCharSet))));
}

CStringW CStringW::Tokenize(PCXSTR pszTokens, int& iStart) const
{
    if (iStart < 0)
    {
        AtlThrow(E_INVALIDARG);
    }
    const int length = GetLength();
    if (pszTokens == nullptr || *pszTokens == 0)
    {
        // Without delimiters the rest is one token, and the position stays: the caller ends by comparing lengths.
        if (iStart < length)
        {
            return Mid(iStart);
        }
    }
    else if (iStart < length)
    {
        const int first = iStart + static_cast<int>(wcsspn(m_pszData + iStart, pszTokens));
        if (first < length)
        {
            const int count = static_cast<int>(wcscspn(m_pszData + first, pszTokens));
            iStart = first + count + 1;
            return Mid(first, count);
        }
    }
    iStart = -1;
    return CStringT();
}

int CStringW::Find(XCHAR ch, int iStart) const noexcept
{
    if (iStart < 0 || iStart >= GetLength())
    {
        return -1;
    }
    const wchar_t* found = wcschr(m_pszData + iStart, ch);
    return found == nullptr ? -1 : static_cast<int>(found - m_pszData);
}

int CStringW::Find(PCXSTR pszSub, int iStart) const noexcept
{
    if (pszSub == nullptr || iStart < 0 || iStart > GetLength())
    {
        return -1;
    }
    // An empty text is found at once, also at the end, where run-times differ.
    const wchar_t* found = *pszSub == 0 ? m_pszData + iStart : wcsstr(m_pszData + iStart, pszSub);
    return found == nullptr ? -1 : static_cast<int>(found - m_pszData);
}

int CStringW::ReverseFind(XCHAR ch) const noexcept
{
    const wchar_t* found = wcsrchr(m_pszData, ch);
    return found == nullptr ? -1 : static_cast<int>(found - m_pszData);
}

int CStringW::FindOneOf(PCXSTR pszCharSet) const
{
    const wchar_t* found = wcspbrk(m_pszData, Checked(pszCharSet));
    return found == nullptr ? -1 : static_cast<int>(found - m_pszData);
}
