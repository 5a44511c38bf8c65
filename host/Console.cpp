#include "host/Console.h"

#include <afx.h>

#include <fcntl.h>
#include <io.h>

#include <cstdio>

namespace quonhost
{

CommandError::CommandError(std::wstring_view text) : std::runtime_error(ToUtf8(text)) {}

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

std::wstring FullPath(std::string_view path)
{
    const std::wstring relative = ToWide(path);
    std::wstring full(::GetFullPathNameW(relative.c_str(), 0, nullptr, nullptr), L'\0');
    full.resize(::GetFullPathNameW(relative.c_str(), static_cast<DWORD>(full.size()), full.data(), nullptr));
    return full;
}

void PrintLine(std::wstring_view text)
{
    const std::string line = ToUtf8(text) + '\n';
    std::fwrite(line.data(), 1, line.size(), stdout);
}

void PrintError(std::string_view text)
{
    const std::string line = "quonhost: " + std::string(text) + '\n';
    std::fwrite(line.data(), 1, line.size(), stderr);
}

void SetUpConsole()
{
    ::SetConsoleOutputCP(CP_UTF8);
    ::_setmode(::_fileno(stdout), _O_BINARY);
    ::_setmode(::_fileno(stderr), _O_BINARY);
}

}  // namespace quonhost
