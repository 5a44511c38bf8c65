#include "xml/ComHelpers.h"

#include "xml/UniqueStringsInternal.h"

#include <ctime>

namespace
{

constexpr size_t kTimeCharacters = 128;

CString SystemText(HRESULT result)
{
    wchar_t* text = nullptr;
    const DWORD length =
        ::FormatMessageW(FORMAT_MESSAGE_ALLOCATE_BUFFER | FORMAT_MESSAGE_IGNORE_INSERTS | FORMAT_MESSAGE_FROM_SYSTEM,
                         nullptr, static_cast<DWORD>(result), 0, reinterpret_cast<wchar_t*>(&text), 0, nullptr);
    CString copy(length == 0 ? nullptr : text);
    ::LocalFree(text);
    return copy;
}

}  // namespace

CString FormatHResultText(HRESULT result)
{
    CString text;
    text.Format(L"HRESULT = 0x%08X ", static_cast<unsigned int>(result));
    text += L".\n";
    text += L"\t";
    text += SystemText(result);
    return text;
}

CString FormatLocalTime(__time64_t time, const wchar_t* format)
{
    tm local = {};
    if (format == nullptr || ::_localtime64_s(&local, &time) != 0)
    {
        return CString();
    }
    wchar_t text[kTimeCharacters] = {};
    const size_t length = ::wcsftime(text, kTimeCharacters, format, &local);
    // Some run-times fill the buffer without the end and report that as a success.
    return length == 0 || length >= kTimeCharacters ? CString() : CString(text);
}

void AppendUniqueStrings(const CStringArray& source, CStringArray& target)
{
    xml_internal::UniqueStrings unique(target);
    for (INT_PTR i = 0; i < source.GetSize(); ++i)
    {
        unique.Append(source[i]);
    }
}

bool ContainsString(const CString& string, const CStringArray& strings)
{
    for (INT_PTR i = 0; i < strings.GetSize(); ++i)
    {
        if (strings[i] == string)
        {
            return true;
        }
    }
    return false;
}

HRESULT NotImplementedNodeFunction(MSXML2::IXMLDOMNodePtr node)
{
    static_cast<void>(node);
    return E_FAIL;
}
