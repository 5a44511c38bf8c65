#include "host/Console.h"

#include <afx.h>

#include "host/Streams.h"

#include <algorithm>

namespace quonhost
{

std::string ToUtf8(std::wstring_view text)
{
    const int length = static_cast<int>(text.size());
    std::string result;
    result.resize(
        static_cast<size_t>(::WideCharToMultiByte(CP_UTF8, 0, text.data(), length, nullptr, 0, nullptr, nullptr)));
    ::WideCharToMultiByte(CP_UTF8, 0, text.data(), length, result.data(), static_cast<int>(result.size()), nullptr,
                          nullptr);
    return result;
}

std::wstring ToWide(std::string_view text)
{
    const int length = static_cast<int>(text.size());
    std::wstring result;
    result.resize(static_cast<size_t>(::MultiByteToWideChar(CP_UTF8, 0, text.data(), length, nullptr, 0)));
    ::MultiByteToWideChar(CP_UTF8, 0, text.data(), length, result.data(), static_cast<int>(result.size()));
    return result;
}

std::wstring FullPath(const wchar_t* path)
{
    std::wstring full(::GetFullPathNameW(path, 0, nullptr, nullptr), L'\0');
    full.resize(::GetFullPathNameW(path, static_cast<DWORD>(full.size()), full.data(), nullptr));
    return full;
}

std::wstring InQuotes(const std::wstring& name)
{
    return L"\"" + name + L"\"";
}

std::wstring Counted(unsigned long long count, std::wstring_view singular, std::wstring_view plural)
{
    return std::to_wstring(count) + L' ' + std::wstring(count == 1 ? singular : plural);
}

void PrintLine(std::wstring_view text)
{
    StandardOutput().Write(ToUtf8(text) + '\n');
}

void PrintError(std::wstring_view text)
{
    std::wstring line = L"quonhost: " + std::wstring(text);
    // A name may contain a line break; an error stays one line.
    std::replace_if(
        line.begin(), line.end(), [](wchar_t ch) { return ch < L' '; }, L' ');
    const std::string utf8 = ToUtf8(line) + '\n';
    DWORD written = 0;
    // An error that cannot be shown still has its exit code.
    ::WriteFile(::GetStdHandle(STD_ERROR_HANDLE), utf8.data(), static_cast<DWORD>(utf8.size()), &written, nullptr);
}

void PrintError(std::string_view utf8)
{
    PrintError(ToWide(utf8));
}

ConsoleCodePages::ConsoleCodePages() : m_input(::GetConsoleCP()), m_output(::GetConsoleOutputCP())
{
    ::SetConsoleCP(CP_UTF8);
    ::SetConsoleOutputCP(CP_UTF8);
}

ConsoleCodePages::~ConsoleCodePages()
{
    ::SetConsoleCP(m_input);
    ::SetConsoleOutputCP(m_output);
}

}  // namespace quonhost
