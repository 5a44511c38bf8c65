#include "support/StringHelpers.h"

#include "base/RuntimeInternal.h"

#include <cmath>
#include <cwchar>
#include <cwctype>

namespace
{

using CaseChange = DWORD(WINAPI*)(LPWSTR, DWORD);

CString ChangedCopy(const CString& text, CaseChange change)
{
    CString copy = text;
    const int length = copy.GetLength();
    if (length != 0)
    {
        change(copy.GetBuffer(length), static_cast<DWORD>(length));
        copy.ReleaseBuffer(length);
    }
    return copy;
}

bool StartsWordBehind(wchar_t previous)
{
    return std::iswdigit(previous) || std::iswspace(previous);
}

}  // namespace

CString ToUpperCopy(const CString& text)
{
    return ChangedCopy(text, &::CharUpperBuffW);
}

CString ToLowerCopy(const CString& text)
{
    return ChangedCopy(text, &::CharLowerBuffW);
}

CString CapitalizeWords(const CString& text)
{
    CString result = text;
    const int length = result.GetLength();
    if (length == 0)
    {
        return result;
    }
    wchar_t* const characters = result.GetBuffer(length);
    ::CharUpperBuffW(characters, 1);
    // The last character is left alone, on purpose: callers may rely on it.
    for (int i = 1; i < length - 1; ++i)
    {
        if (StartsWordBehind(characters[i - 1]))
        {
            ::CharUpperBuffW(characters + i, 1);
        }
        else
        {
            ::CharLowerBuffW(characters + i, 1);
        }
    }
    result.ReleaseBuffer(length);
    return result;
}

CString FormatDouble(double value, int decimals)
{
    CString text;
    text.Format(L"%.*f", decimals, value);
    return text;
}

bool ParseDouble(const CString& text, double* value)
{
    wchar_t* end = nullptr;
    const double parsed = RuntimeWcstod(text, &end);
    if (value != nullptr)
    {
        *value = parsed;
    }
    // Only overflow to the positive side is refused.
    return *end == L'\0' && parsed != HUGE_VAL;
}

bool IsZeroText(const CString& text)
{
    const wchar_t* const characters = text;
    for (int i = 0; i < text.GetLength(); ++i)
    {
        if (characters[i] != L'0' && characters[i] != L'.')
        {
            return false;
        }
    }
    return !text.IsEmpty();
}

bool IsNumericText(const wchar_t* text)
{
    for (; text != nullptr && *text != L'\0'; ++text)
    {
        if (!std::iswdigit(*text) && *text != L'-' && *text != L'.')
        {
            return false;
        }
    }
    return true;
}

void MakeCaption(CString& text, bool asLabel)
{
    text.Trim();
    if (text.IsEmpty() || !asLabel)
    {
        return;
    }
    if (text[0] != L'\n')
    {
        text.Insert(0, L'\n');
    }
    text += text[text.GetLength() - 1] == L':' ? L" " : L": ";
}
