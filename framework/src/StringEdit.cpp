#include "afxstr.h"
#include <algorithm>
#include <cwctype>

int CStringW::Insert(int iIndex, XCHAR ch)
{
    const int length = GetLength();
    const int index = std::clamp(iIndex, 0, length);
    PXSTR buffer = GetBuffer(length + 1);
    wmemmove(buffer + index + 1, buffer + index, static_cast<size_t>(length - index));
    buffer[index] = ch;
    ReleaseBufferSetLength(length + 1);
    return length + 1;
}

int CStringW::Insert(int iIndex, PCXSTR psz)
{
    const int length = GetLength();
    const int added = StringLength(psz);
    // Empty strings share one text, which would count as a part of this one.
    if (added == 0)
    {
        return length;
    }
    if (IsOwn(psz))
    {
        return Insert(iIndex, static_cast<PCXSTR>(CStringT(psz)));
    }
    const int index = std::clamp(iIndex, 0, length);
    PXSTR buffer = GetBuffer(length + added);
    wmemmove(buffer + index + added, buffer + index, static_cast<size_t>(length - index));
    wmemcpy(buffer + index, psz, static_cast<size_t>(added));
    ReleaseBufferSetLength(length + added);
    return length + added;
}

int CStringW::Delete(int iIndex, int nCount)
{
    const int length = GetLength();
    const int index = std::max(iIndex, 0);
    const int count = std::min(std::max(nCount, 0), length - index);
    if (count <= 0)
    {
        return length;
    }
    PXSTR buffer = GetBuffer();
    wmemmove(buffer + index, buffer + index + count, static_cast<size_t>(length - index - count));
    ReleaseBufferSetLength(length - count);
    return length - count;
}

int CStringW::Remove(XCHAR chRemove)
{
    const int length = GetLength();
    const int count = static_cast<int>(std::count(m_pszData, m_pszData + length, chRemove));
    if (count != 0)
    {
        PXSTR buffer = GetBuffer();
        std::remove(buffer, buffer + length, chRemove);
        ReleaseBufferSetLength(length - count);
    }
    return count;
}

int CStringW::Replace(XCHAR chOld, XCHAR chNew)
{
    if (chOld == chNew)
    {
        return 0;
    }
    const int length = GetLength();
    const int count = static_cast<int>(std::count(m_pszData, m_pszData + length, chOld));
    if (count != 0)
    {
        PXSTR buffer = GetBuffer();
        std::replace(buffer, buffer + length, chOld, chNew);
    }
    return count;
}

int CStringW::Replace(PCXSTR pszOld, PCXSTR pszNew)
{
    const int oldLength = StringLength(pszOld);
    if (oldLength == 0)
    {
        return 0;
    }
    const PCXSTR end = m_pszData + GetLength();
    PCXSTR at = std::search<PCXSTR>(m_pszData, end, pszOld, pszOld + oldLength);
    if (at == end)
    {
        return 0;
    }
    // A new text is built, because old and new pieces may be parts of this one.
    const int newLength = StringLength(pszNew);
    CStringT result;
    result.Preallocate(GetLength());
    int count = 0;
    PCXSTR from = m_pszData;
    const auto copy = [&result](PCXSTR source, int length) {
        const int before = result.GetLength();
        wmemcpy(result.GetBuffer(before + length) + before, source, static_cast<size_t>(length));
        result.ReleaseBufferSetLength(before + length);
    };
    for (; at != end; at = std::search(from, end, pszOld, pszOld + oldLength))
    {
        copy(from, static_cast<int>(at - from));
        copy(pszNew, newLength);
        from = at + oldLength;
        ++count;
    }
    copy(from, static_cast<int>(end - from));
    *this = static_cast<CStringT&&>(result);
    return count;
}

void CStringW::TrimLeftTo(PCXSTR pszFirst)
{
    Delete(0, static_cast<int>(pszFirst - m_pszData));
}

CStringW& CStringW::TrimLeft()
{
    PCXSTR first = m_pszData;
    while (iswspace(*first))
    {
        ++first;
    }
    TrimLeftTo(first);
    return *this;
}

CStringW& CStringW::TrimLeft(XCHAR chTarget)
{
    PCXSTR first = m_pszData;
    while (chTarget == *first && *first != 0)
    {
        ++first;
    }
    TrimLeftTo(first);
    return *this;
}

CStringW& CStringW::TrimLeft(PCXSTR pszTargets)
{
    if (pszTargets != nullptr)
    {
        TrimLeftTo(m_pszData + wcsspn(m_pszData, pszTargets));
    }
    return *this;
}

CStringW& CStringW::TrimRight()
{
    int length = GetLength();
    while (length > 0 && iswspace(m_pszData[length - 1]))
    {
        --length;
    }
    Truncate(length);
    return *this;
}

CStringW& CStringW::TrimRight(XCHAR chTarget)
{
    int length = GetLength();
    while (length > 0 && m_pszData[length - 1] == chTarget)
    {
        --length;
    }
    Truncate(length);
    return *this;
}

CStringW& CStringW::TrimRight(PCXSTR pszTargets)
{
    if (pszTargets == nullptr)
    {
        return *this;
    }
    int length = GetLength();
    while (length > 0 && m_pszData[length - 1] != 0 && wcschr(pszTargets, m_pszData[length - 1]) != nullptr)
    {
        --length;
    }
    Truncate(length);
    return *this;
}

CStringW& CStringW::Trim()
{
    return TrimRight().TrimLeft();
}

CStringW& CStringW::Trim(XCHAR chTarget)
{
    return TrimRight(chTarget).TrimLeft(chTarget);
}

CStringW& CStringW::Trim(PCXSTR pszTargets)
{
    return TrimRight(pszTargets).TrimLeft(pszTargets);
}

CStringW& CStringW::MakeLower()
{
    _wcslwr(GetBuffer());
    return *this;
}

CStringW& CStringW::MakeUpper()
{
    _wcsupr(GetBuffer());
    return *this;
}

CStringW& CStringW::MakeReverse()
{
    PXSTR buffer = GetBuffer();
    std::reverse(buffer, buffer + GetLength());
    return *this;
}
