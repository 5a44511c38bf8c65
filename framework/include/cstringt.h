#pragma once

/// @file cstringt.h
/// The framework's reference-counted string. The stand-in offers it for UTF-16 text only.

#include <windows.h>
#include <oleauto.h>
#include <cstdarg>
#include <cwchar>
#include "atlsimpstr.h"

namespace ATL
{
/// Character traits that take their functions from the C run-time.
template <typename CharType>
class ChTraitsCRT;

template <>
class ChTraitsCRT<wchar_t>
{
public:
    using XCHAR = wchar_t;
    using PXSTR = LPWSTR;
    using PCXSTR = LPCWSTR;
    using YCHAR = char;
    using PYSTR = LPSTR;
    using PCYSTR = LPCSTR;
};
}  // namespace ATL

template <typename CharType = char, class StringIterator = ATL::ChTraitsCRT<CharType>>
class StrTraitMFC_DLL;

#ifdef _ATL_CSTRING_EXPLICIT_CONSTRUCTORS
#define CSTRING_EXPLICIT explicit
#else
#define CSTRING_EXPLICIT
#endif

namespace ATL
{
template <typename BaseType, class StringTraits>
class CStringT;

/// A string of UTF-16 text: one pointer to its characters, which copies share until one of them is changed.
///
/// Copying, moving and destroying never throw. Different threads may use different strings that share their characters;
/// one string is used by one thread at a time. A null pointer given as text reads as the empty text unless told
/// otherwise. Searches and comparisons end at the first zero character, also when the string goes on behind it.
/// Too long a text, or no memory, throws CMemoryException*; a wrong index or length throws what AtlThrow(E_INVALIDARG)
/// throws.
template <>
class QUON_FRAMEWORK_API CStringT<wchar_t, StrTraitMFC_DLL<wchar_t>>
{
public:
    using XCHAR = wchar_t;
    using PXSTR = LPWSTR;
    using PCXSTR = LPCWSTR;
    using YCHAR = char;
    using PYSTR = LPSTR;
    using PCYSTR = LPCSTR;
    using StrTraits = StrTraitMFC_DLL<wchar_t>;

    CStringT() noexcept : m_pszData(afxNilStringData.achNil) {}
    CStringT(const CStringT& strSrc) noexcept : m_pszData(strSrc.m_pszData) { GetData()->AddRef(); }
    CStringT(CStringT&& strSrc) noexcept : m_pszData(strSrc.m_pszData) { strSrc.m_pszData = afxNilStringData.achNil; }
    CStringT(PCXSTR pszSrc);
    /// Converts from the ANSI code page.
    CSTRING_EXPLICIT CStringT(PCYSTR pszSrc);
    CSTRING_EXPLICIT CStringT(const unsigned char* pszSrc);
    /// `nLength` times the same character; none when it is not positive.
    CSTRING_EXPLICIT CStringT(wchar_t ch, int nLength = 1);
    CSTRING_EXPLICIT CStringT(char ch, int nLength = 1);
    /// Exactly `nLength` characters, zeros included.
    CStringT(PCXSTR pch, int nLength);
    CStringT(PCYSTR pch, int nLength);
    ~CStringT() noexcept { GetData()->Release(); }

    CStringT& operator=(const CStringT& strSrc) noexcept
    {
        CStringData* pOld = GetData();
        strSrc.GetData()->AddRef();
        m_pszData = strSrc.m_pszData;
        pOld->Release();
        return *this;
    }
    CStringT& operator=(CStringT&& strSrc) noexcept
    {
        // In this order a string survives being moved to itself.
        PXSTR pszTaken = strSrc.m_pszData;
        strSrc.m_pszData = afxNilStringData.achNil;
        CStringData* pOld = GetData();
        m_pszData = pszTaken;
        pOld->Release();
        return *this;
    }
    CStringT& operator=(PCXSTR pszSrc);
    CStringT& operator=(PCYSTR pszSrc);
    CStringT& operator=(const unsigned char* pszSrc);
    CStringT& operator=(wchar_t ch);
    CStringT& operator=(char ch);

    // Reading

    int GetLength() const noexcept { return GetData()->nDataLength; }
    bool IsEmpty() const noexcept { return GetLength() == 0; }
    /// Characters that fit without another allocation.
    int GetAllocLength() const noexcept { return GetData()->nAllocLength; }
    PCXSTR GetString() const noexcept { return m_pszData; }
    operator PCXSTR() const noexcept { return m_pszData; }
    /// The character at `iChar`; the index of the terminating zero is allowed.
    XCHAR GetAt(int iChar) const
    {
        if (iChar < 0 || iChar > GetLength())
        {
            AtlThrow(E_INVALIDARG);
        }
        return m_pszData[iChar];
    }
    XCHAR operator[](int iChar) const { return GetAt(iChar); }

    // Buffers

    /// The characters for writing, of this string alone: the text is kept, and `nMinBufferLength` characters (or the
    /// text, when it is longer) and a terminating zero fit. Followed by one of the ReleaseBuffer functions.
    PXSTR GetBuffer(int nMinBufferLength)
    {
        const CStringData* pData = GetData();
        if (pData->IsShared() || pData->nAllocLength < nMinBufferLength || nMinBufferLength < 0)
        {
            PrepareWrite(nMinBufferLength);
        }
        return m_pszData;
    }
    PXSTR GetBuffer() { return GetBuffer(GetLength()); }
    PXSTR GetBufferSetLength(int nLength);
    /// Ends writing. With -1 the text ends at its first zero, or where the allocation ends.
    void ReleaseBuffer(int nNewLength = -1)
    {
        const int nLength =
            nNewLength == -1 ? StringLengthN(m_pszData, static_cast<size_t>(GetAllocLength())) : nNewLength;
        ReleaseBufferSetLength(nLength);
    }
    void ReleaseBufferSetLength(int nNewLength)
    {
        if (nNewLength < 0 || nNewLength > GetAllocLength())
        {
            AtlThrow(E_INVALIDARG);
        }
        GetData()->nDataLength = nNewLength;
        m_pszData[nNewLength] = 0;
    }
    /// Makes room for `nLength` characters without changing the text.
    void Preallocate(int nLength);
    /// Gives back the room that the text does not need.
    void FreeExtra();
    /// Cuts the text to `nNewLength` characters.
    void Truncate(int nNewLength);
    void Empty() noexcept;

    // Writing

    void SetAt(int iChar, XCHAR ch);
    void SetString(PCXSTR pszSrc);
    /// `pszSrc` may lie in this string.
    void SetString(PCXSTR pszSrc, int nLength);
    void Append(PCXSTR pszSrc);
    /// Appends up to `nLength` characters, but none from the first zero on. `pszSrc` may lie in this string.
    void Append(PCXSTR pszSrc, int nLength);
    void Append(const CStringT& strSrc) { Append(strSrc.m_pszData, strSrc.GetLength()); }
    void AppendChar(XCHAR ch)
    {
        const int nLength = GetLength();
        PXSTR pszBuffer = GetBuffer(nLength + 1);
        pszBuffer[nLength] = ch;
        ReleaseBufferSetLength(nLength + 1);
    }

    CStringT& operator+=(const CStringT& strSrc)
    {
        Append(strSrc);
        return *this;
    }
    CStringT& operator+=(PCXSTR pszSrc)
    {
        Append(pszSrc);
        return *this;
    }
    CStringT& operator+=(PCYSTR pszSrc) { return *this += CStringT(pszSrc); }
    CStringT& operator+=(wchar_t ch)
    {
        AppendChar(ch);
        return *this;
    }
    CStringT& operator+=(char ch) { return *this += CStringT(ch); }

    /// Inserts before `iIndex`, which is moved into the text. @return the new length
    int Insert(int iIndex, XCHAR ch);
    int Insert(int iIndex, PCXSTR psz);
    /// Removes at most `nCount` characters from `iIndex` on. @return the new length
    int Delete(int iIndex, int nCount = 1);
    /// @return the number of characters replaced
    int Replace(XCHAR chOld, XCHAR chNew);
    /// Replaces from left to right; replaced text is not searched again. @return the number of replacements
    int Replace(PCXSTR pszOld, PCXSTR pszNew);
    /// @return the number of characters removed
    int Remove(XCHAR chRemove);

    CStringT& Trim();
    CStringT& Trim(XCHAR chTarget);
    CStringT& Trim(PCXSTR pszTargets);
    CStringT& TrimLeft();
    CStringT& TrimLeft(XCHAR chTarget);
    CStringT& TrimLeft(PCXSTR pszTargets);
    CStringT& TrimRight();
    CStringT& TrimRight(XCHAR chTarget);
    CStringT& TrimRight(PCXSTR pszTargets);

    /// Case by the C run-time's locale: A to Z alone in a program that sets none. Ends at the first zero.
    CStringT& MakeLower();
    CStringT& MakeUpper();
    CStringT& MakeReverse();

    /// Formats as the C run-time's wide printf does: %s is wide, %S narrow. The text itself may be an argument.
    void AFX_CDECL Format(PCXSTR pszFormat, ...);
    void AFX_CDECL AppendFormat(PCXSTR pszFormat, ...);
    void FormatV(PCXSTR pszFormat, va_list args);
    void AppendFormatV(PCXSTR pszFormat, va_list args);

    // Parts: counts and indices are moved into the text.

    CStringT Left(int nCount) const;
    CStringT Right(int nCount) const;
    CStringT Mid(int iFirst) const;
    CStringT Mid(int iFirst, int nCount) const;
    /// The leading characters that are all (none) of the set.
    CStringT SpanIncluding(PCXSTR pszCharSet) const;
    CStringT SpanExcluding(PCXSTR pszCharSet) const;
    /// The next token from `iStart` on, which moves behind it; when there is none, empty and `iStart` is -1.
    CStringT Tokenize(PCXSTR pszTokens, int& iStart) const;

    // Searching: the index found, or -1.

    int Find(XCHAR ch, int iStart = 0) const noexcept;
    int Find(PCXSTR pszSub, int iStart = 0) const noexcept;
    int ReverseFind(XCHAR ch) const noexcept;
    int FindOneOf(PCXSTR pszCharSet) const;

    // Comparing: negative, zero or positive.

    int Compare(PCXSTR psz) const { return wcscmp(m_pszData, Checked(psz)); }
    int CompareNoCase(PCXSTR psz) const { return _wcsicmp(m_pszData, Checked(psz)); }
    int Collate(PCXSTR psz) const { return wcscoll(m_pszData, Checked(psz)); }
    int CollateNoCase(PCXSTR psz) const { return _wcsicoll(m_pszData, Checked(psz)); }

    /// A copy for COM, which the caller frees with SysFreeString.
    BSTR AllocSysString() const;

    static int StringLength(PCXSTR psz) noexcept { return psz == nullptr ? 0 : static_cast<int>(wcslen(psz)); }
    static int StringLengthN(PCXSTR psz, size_t sizeInXChar) noexcept
    {
        return psz == nullptr ? 0 : static_cast<int>(wcsnlen(psz, sizeInXChar));
    }

    friend CStringT operator+(const CStringT& str1, const CStringT& str2)
    {
        return Concatenate(str1, str1.GetLength(), str2, str2.GetLength());
    }
    friend CStringT operator+(const CStringT& str1, PCXSTR psz2)
    {
        return Concatenate(str1, str1.GetLength(), psz2, StringLength(psz2));
    }
    friend CStringT operator+(PCXSTR psz1, const CStringT& str2)
    {
        return Concatenate(psz1, StringLength(psz1), str2, str2.GetLength());
    }
    friend CStringT operator+(const CStringT& str1, wchar_t ch2)
    {
        return Concatenate(str1, str1.GetLength(), &ch2, 1);
    }
    friend CStringT operator+(wchar_t ch1, const CStringT& str2)
    {
        return Concatenate(&ch1, 1, str2, str2.GetLength());
    }
    friend CStringT operator+(const CStringT& str1, char ch2) { return str1 + CStringT(ch2); }
    friend CStringT operator+(char ch1, const CStringT& str2) { return CStringT(ch1) + str2; }

    friend bool operator==(const CStringT& str1, const CStringT& str2) { return str1.Compare(str2) == 0; }
    friend bool operator==(const CStringT& str1, PCXSTR psz2) { return str1.Compare(psz2) == 0; }
    friend bool operator==(PCXSTR psz1, const CStringT& str2) { return str2.Compare(psz1) == 0; }
    friend bool operator==(const CStringT& str1, PCYSTR psz2) { return str1 == CStringT(psz2); }
    friend bool operator==(PCYSTR psz1, const CStringT& str2) { return CStringT(psz1) == str2; }
    friend bool operator==(const CStringT& str1, XCHAR ch2)
    {
        return str1.GetLength() == 1 && str1.m_pszData[0] == ch2;
    }
    friend bool operator==(XCHAR ch1, const CStringT& str2) { return str2 == ch1; }
    friend bool operator!=(const CStringT& str1, const CStringT& str2) { return str1.Compare(str2) != 0; }
    friend bool operator!=(const CStringT& str1, PCXSTR psz2) { return str1.Compare(psz2) != 0; }
    friend bool operator!=(PCXSTR psz1, const CStringT& str2) { return str2.Compare(psz1) != 0; }
    friend bool operator!=(const CStringT& str1, PCYSTR psz2) { return !(str1 == psz2); }
    friend bool operator!=(PCYSTR psz1, const CStringT& str2) { return !(psz1 == str2); }
    friend bool operator!=(const CStringT& str1, XCHAR ch2) { return !(str1 == ch2); }
    friend bool operator!=(XCHAR ch1, const CStringT& str2) { return !(str2 == ch1); }
    friend bool operator<(const CStringT& str1, const CStringT& str2) { return str1.Compare(str2) < 0; }
    friend bool operator<(const CStringT& str1, PCXSTR psz2) { return str1.Compare(psz2) < 0; }
    friend bool operator<(PCXSTR psz1, const CStringT& str2) { return str2.Compare(psz1) > 0; }
    friend bool operator>(const CStringT& str1, const CStringT& str2) { return str1.Compare(str2) > 0; }
    friend bool operator>(const CStringT& str1, PCXSTR psz2) { return str1.Compare(psz2) > 0; }
    friend bool operator>(PCXSTR psz1, const CStringT& str2) { return str2.Compare(psz1) < 0; }
    friend bool operator<=(const CStringT& str1, const CStringT& str2) { return str1.Compare(str2) <= 0; }
    friend bool operator<=(const CStringT& str1, PCXSTR psz2) { return str1.Compare(psz2) <= 0; }
    friend bool operator<=(PCXSTR psz1, const CStringT& str2) { return str2.Compare(psz1) >= 0; }
    friend bool operator>=(const CStringT& str1, const CStringT& str2) { return str1.Compare(str2) >= 0; }
    friend bool operator>=(const CStringT& str1, PCXSTR psz2) { return str1.Compare(psz2) >= 0; }
    friend bool operator>=(PCXSTR psz1, const CStringT& str2) { return str2.Compare(psz1) <= 0; }

private:
    CStringData* GetData() const noexcept { return reinterpret_cast<CStringData*>(m_pszData) - 1; }
    // Comparing with a null pointer is an error, unlike assigning one.
    static PCXSTR Checked(PCXSTR psz)
    {
        if (psz == nullptr)
        {
            AtlThrow(E_FAIL);
        }
        return psz;
    }
    bool IsOwn(PCXSTR psz) const noexcept;
    void PrepareWrite(int nLength);
    void Reallocate(int nLength, int nKeep);
    void AppendChars(PCXSTR pszSrc, int nLength);
    void TrimLeftTo(PCXSTR pszFirst);
    static CStringT Concatenate(PCXSTR psz1, int nLength1, PCXSTR psz2, int nLength2);

    PXSTR m_pszData;
};
}  // namespace ATL
