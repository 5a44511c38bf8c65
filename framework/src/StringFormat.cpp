#include "afxstr.h"
#include <cstdio>

using ATL::AtlThrow;

namespace
{
// Most texts fit here, and then the arguments are formatted once instead of measured first.
constexpr int kShortLength = 255;

// Appends to `text`, or replaces it, once the formatted text stands: an argument may be a part of `text`.
void Store(CStringW& text, const wchar_t* formatted, int length, int keep)
{
    if (keep + length == 0)
    {
        text.Empty();
        return;
    }
    wchar_t* buffer = text.GetBuffer(keep + length);
    wmemcpy(buffer + keep, formatted, static_cast<size_t>(length));
    text.ReleaseBufferSetLength(keep + length);
}

void FormatInto(CStringW& text, const wchar_t* format, va_list args, int keep)
{
    if (format == nullptr)
    {
        AtlThrow(E_INVALIDARG);
    }
    wchar_t shortText[kShortLength + 1];
    va_list again;
    va_copy(again, args);
    const int shortLength = _vsnwprintf(shortText, kShortLength + 1, format, again);
    va_end(again);
    if (shortLength >= 0)
    {
        Store(text, shortText, shortLength, keep);
        return;
    }
    va_copy(again, args);
    const int length = _vscwprintf(format, again);
    va_end(again);
    // A format that cannot be done has a negative length, which GetBuffer rejects.
    CStringW longText;
    wchar_t* buffer = longText.GetBuffer(length);
    _vsnwprintf(buffer, static_cast<size_t>(length) + 1, format, args);
    longText.ReleaseBufferSetLength(length);
    if (keep == 0)
    {
        text = static_cast<CStringW&&>(longText);
    }
    else
    {
        Store(text, longText, length, keep);
    }
}
}  // namespace

void CStringW::FormatV(PCXSTR pszFormat, va_list args)
{
    FormatInto(*this, pszFormat, args, 0);
}

void CStringW::AppendFormatV(PCXSTR pszFormat, va_list args)
{
    FormatInto(*this, pszFormat, args, GetLength());
}

void AFX_CDECL CStringW::Format(PCXSTR pszFormat, ...)
{
    va_list args;
    va_start(args, pszFormat);
    FormatV(pszFormat, args);
    va_end(args);
}

void AFX_CDECL CStringW::AppendFormat(PCXSTR pszFormat, ...)
{
    va_list args;
    va_start(args, pszFormat);
    AppendFormatV(pszFormat, args);
    va_end(args);
}
