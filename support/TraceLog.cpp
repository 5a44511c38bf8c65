#include "support/TraceLog.h"

#include "support/StringHelpers.h"
#include "support/TraceLineInternal.h"

#include <comdef.h>

#include <cstdarg>
#include <cstring>
#include <cwchar>
#include <memory>
#include <set>

namespace
{

constexpr std::size_t kPrintSize = 2048;
constexpr std::size_t kMessageSize = 1024;
constexpr std::size_t kPositionSize = 512;  // for the position before a message, unless the file name is longer

// Formats into `Size` characters and cuts what is longer. The run-time's formatter writes no terminator when it cuts or
// gives up: then zeros laid beforehand are the terminator. That rarely happens, and clearing the buffer takes as long
// as formatting a short line, so it is done for the second attempt only.
template <std::size_t Size>
void FormatCut(wchar_t* buffer, const wchar_t* format, va_list arguments)
{
    buffer[0] = L'\0';
    buffer[Size - 1] = L'\0';
    if (format == nullptr)
    {
        return;
    }
    va_list again;
    va_copy(again, arguments);
    if (::_vsnwprintf(buffer, Size - 1, format, arguments) < 0)
    {
        std::memset(buffer, 0, Size * sizeof(wchar_t));
        ::_vsnwprintf(buffer, Size - 1, format, again);
    }
    va_end(again);
}

struct OrdinalLess
{
    bool operator()(const CString& a, const CString& b) const { return a.Compare(b) < 0; }
};

using SuppressionSet = std::set<CString, OrdinalLess>;

SuppressionSet& Suppressed()
{
    static SuppressionSet positions;
    return positions;
}

int ShowBox(const CString& text)
{
    return ::MessageBoxW(nullptr, text, L"", MB_OKCANCEL);
}

bool IsShiftDown()
{
    return (static_cast<unsigned short>(::GetAsyncKeyState(VK_SHIFT)) & 0x8000U) != 0;
}

}  // namespace

void DebugPrint(const wchar_t* format, ...)
{
    wchar_t text[kPrintSize];
    va_list arguments;
    va_start(arguments, format);
    FormatCut<kPrintSize>(text, format, arguments);
    va_end(arguments);
    ::OutputDebugStringW(text);
}

void DebugLog(const wchar_t* file, int line, const wchar_t* format, ...)
{
    const wchar_t* const name = file != nullptr ? file : L"(null)";
    const std::size_t nameLength = TraceTextLength(name);
    const std::size_t room = TraceHeaderRoom(nameLength) + 1 + kMessageSize + 1;
    // The length of a file name is not limited; the names of real files fit the array.
    wchar_t fixedText[kMessageSize + kPositionSize];
    std::unique_ptr<wchar_t[]> longText;
    if (room > std::size(fixedText))
    {
        longText.reset(new wchar_t[room]);
    }
    wchar_t* const text = longText != nullptr ? longText.get() : fixedText;

    wchar_t* out = PutTraceHeader(text, name, nameLength, line, ::GetCurrentThreadId());
    *out++ = L' ';
    va_list arguments;
    va_start(arguments, format);
    FormatCut<kMessageSize>(out, format, arguments);
    va_end(arguments);
    out += TraceTextLength(out);
    out[0] = L'\n';
    out[1] = L'\0';
    ::OutputDebugStringW(text);
}

int ShowErrorBox(DWORD code)
{
    return ShowBox(GetSystemErrorText(code));
}

int ShowComErrorBox(const _com_error& error, const wchar_t* file, int line)
{
    SuppressionSet& suppressed = Suppressed();
    CString key;
    key.Format(L"%s#%d", file, line);
    if (suppressed.count(key) != 0)
    {
        return IDOK;
    }
    const int answer = ShowBox(GetComErrorText(error));
    // Shift counts at the moment of the answer; with Cancel it means nothing.
    if (answer == IDOK && IsShiftDown())
    {
        suppressed.insert(key);
    }
    return answer;
}
