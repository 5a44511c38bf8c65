#include "afxstr.h"
#include <climits>
#include <cstdlib>
#include <functional>

using ATL::AtlThrow;
using ATL::CStringData;

ATL::CNilStringData afxNilStringData = {{0, 0, 2}, {0, 0}};

namespace
{
// Lengths up to this one leave room for the header in a size that fits an int twice over.
constexpr int kMaxLength = INT_MAX / 2 - 64;

// Room comes in steps of eight characters, the terminating zero included.
constexpr int RoundedLength(int length)
{
    return (length | 7);
}

size_t BytesFor(int allocLength)
{
    return sizeof(CStringData) + (static_cast<size_t>(allocLength) + 1) * sizeof(wchar_t);
}

void CheckLength(int length)
{
    if (length < 0)
    {
        AtlThrow(E_INVALIDARG);
    }
    if (length > kMaxLength)
    {
        AtlThrow(E_OUTOFMEMORY);
    }
}

// Growing by half makes appending one character at a time linear in all.
int GrownLength(int allocLength, int needed)
{
    const int grown = allocLength > kMaxLength / 2 ? allocLength : allocLength + allocLength / 2;
    return grown < needed ? needed : grown;
}

// malloc aligns to 16 bytes, which the header asks for.
CStringData* Allocate(int length)
{
    const int allocLength = RoundedLength(length);
    auto* data = static_cast<CStringData*>(std::malloc(BytesFor(allocLength)));
    if (data == nullptr)
    {
        AtlThrow(E_OUTOFMEMORY);
    }
    data->nDataLength = 0;
    data->nAllocLength = allocLength;
    data->nRefs = 1;
    return data;
}
}  // namespace

void AFXAPI AfxFreeStringData(CStringData* pData) noexcept
{
    std::free(pData);
}

bool CStringW::IsOwn(PCXSTR psz) const noexcept
{
    // std::less orders pointers of different texts, too.
    return !std::less<PCXSTR>()(psz, m_pszData) && !std::less<PCXSTR>()(m_pszData + GetLength(), psz);
}

// Gives this string characters of its own with room for nLength, and the first nKeep of the old ones.
void CStringW::Reallocate(int nLength, int nKeep)
{
    CStringData* old = GetData();
    if (!old->IsShared())
    {
        const int allocLength = RoundedLength(nLength);
        auto* data = static_cast<CStringData*>(std::realloc(old, BytesFor(allocLength)));
        if (data == nullptr)
        {
            AtlThrow(E_OUTOFMEMORY);
        }
        data->nAllocLength = allocLength;
        m_pszData = static_cast<PXSTR>(data->data());
        return;
    }
    CStringData* data = Allocate(nLength);
    auto* text = static_cast<PXSTR>(data->data());
    wmemcpy(text, m_pszData, static_cast<size_t>(nKeep));
    text[nKeep] = 0;
    data->nDataLength = nKeep;
    m_pszData = text;
    old->Release();
}

void CStringW::PrepareWrite(int nLength)
{
    CheckLength(nLength);
    const CStringData* data = GetData();
    const int needed = data->nDataLength > nLength ? data->nDataLength : nLength;
    if (data->IsShared())
    {
        Reallocate(needed, data->nDataLength);
    }
    else if (data->nAllocLength < needed)
    {
        Reallocate(GrownLength(data->nAllocLength, needed), data->nDataLength);
    }
}

CStringW::PXSTR CStringW::GetBufferSetLength(int nLength)
{
    PXSTR buffer = GetBuffer(nLength);
    ReleaseBufferSetLength(nLength);
    return buffer;
}

void CStringW::Preallocate(int nLength)
{
    PrepareWrite(nLength);
}

void CStringW::FreeExtra()
{
    const CStringData* data = GetData();
    if (data->nAllocLength != 0 && data->nDataLength == 0)
    {
        Empty();
    }
    else if (!data->IsShared() && RoundedLength(data->nDataLength) < data->nAllocLength)
    {
        Reallocate(data->nDataLength, data->nDataLength);
    }
}

void CStringW::Truncate(int nNewLength)
{
    if (nNewLength >= GetLength())
    {
        return;
    }
    GetBuffer(nNewLength);
    ReleaseBufferSetLength(nNewLength);
}

void CStringW::Empty() noexcept
{
    CStringData* old = GetData();
    m_pszData = afxNilStringData.achNil;
    old->Release();
}

void CStringW::SetAt(int iChar, XCHAR ch)
{
    if (iChar < 0 || iChar >= GetLength())
    {
        AtlThrow(E_INVALIDARG);
    }
    GetBuffer()[iChar] = ch;
}

void CStringW::SetString(PCXSTR pszSrc)
{
    SetString(pszSrc, StringLength(pszSrc));
}

void CStringW::SetString(PCXSTR pszSrc, int nLength)
{
    if (nLength == 0)
    {
        Empty();
        return;
    }
    CheckLength(nLength);
    if (pszSrc == nullptr)
    {
        AtlThrow(E_INVALIDARG);
    }
    CStringData* old = GetData();
    if (!old->IsShared() && old->nAllocLength >= nLength)
    {
        // The source may be a part of this very text.
        wmemmove(m_pszData, pszSrc, static_cast<size_t>(nLength));
        ReleaseBufferSetLength(nLength);
        return;
    }
    // The old characters live until the new ones are written: the source may lie in them.
    CStringData* data = Allocate(nLength);
    auto* text = static_cast<PXSTR>(data->data());
    wmemcpy(text, pszSrc, static_cast<size_t>(nLength));
    text[nLength] = 0;
    data->nDataLength = nLength;
    m_pszData = text;
    old->Release();
}

void CStringW::Append(PCXSTR pszSrc)
{
    AppendChars(pszSrc, StringLength(pszSrc));
}

void CStringW::Append(PCXSTR pszSrc, int nLength)
{
    // The framework never appends from a zero on, although the length is told.
    AppendChars(pszSrc, nLength < 0 ? StringLength(pszSrc) : StringLengthN(pszSrc, static_cast<size_t>(nLength)));
}

void CStringW::AppendChars(PCXSTR pszSrc, int nLength)
{
    if (nLength == 0)
    {
        return;
    }
    const int oldLength = GetLength();
    if (nLength > kMaxLength - oldLength)
    {
        AtlThrow(E_OUTOFMEMORY);
    }
    // A source within this text moves along when the text does.
    const bool isOwn = IsOwn(pszSrc);
    const ptrdiff_t offset = isOwn ? pszSrc - m_pszData : 0;
    PXSTR buffer = GetBuffer(oldLength + nLength);
    wmemmove(buffer + oldLength, isOwn ? buffer + offset : pszSrc, static_cast<size_t>(nLength));
    ReleaseBufferSetLength(oldLength + nLength);
}

CStringW CStringW::Concatenate(PCXSTR psz1, int nLength1, PCXSTR psz2, int nLength2)
{
    if (nLength2 > kMaxLength - nLength1)
    {
        AtlThrow(E_OUTOFMEMORY);
    }
    CStringW result;
    const int length = nLength1 + nLength2;
    if (length != 0)
    {
        PXSTR buffer = result.GetBuffer(length);
        wmemcpy(buffer, psz1, static_cast<size_t>(nLength1));
        wmemcpy(buffer + nLength1, psz2, static_cast<size_t>(nLength2));
        result.ReleaseBufferSetLength(length);
    }
    return result;
}
