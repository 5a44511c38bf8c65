#include "host/Streams.h"

#include <afx.h>

#include "host/Console.h"
#include "host/FileHandle.h"
#include "support/StringHelpers.h"

#include <algorithm>

namespace quonhost
{
namespace
{

constexpr size_t kBlock = 64 * 1024;

[[noreturn]] void FailToRead(const std::wstring& name, DWORD error)
{
    throw CommandError(name + L" cannot be read: " + SystemErrorText(error));
}

std::string ReadToEnd(HANDLE handle, const std::wstring& name)
{
    std::string bytes;
    for (;;)
    {
        const size_t before = bytes.size();
        // Doubling keeps the number of copies of a large file small.
        bytes.resize(before + std::clamp(before, kBlock, kBlock * 256));
        DWORD read = 0;
        if (!::ReadFile(handle, bytes.data() + before, static_cast<DWORD>(bytes.size() - before), &read, nullptr))
        {
            const DWORD error = ::GetLastError();
            // The writing end of a pipe was closed: that is its end.
            if (error != ERROR_BROKEN_PIPE)
            {
                FailToRead(name, error);
            }
            read = 0;
        }
        bytes.resize(before + read);
        if (read == 0)
        {
            return bytes;
        }
    }
}

}  // namespace

std::wstring SystemErrorText(DWORD error)
{
    CString text = GetSystemErrorText(error);
    text.Replace(L"\r\n", L" ");
    text.Trim();
    return text.IsEmpty() ? L"error " + std::to_wstring(error) : std::wstring(text.GetString());
}

// Somebody who looks at a character device sees each text at once; files and pipes are written in blocks.
OutputStream::OutputStream(HANDLE handle, std::wstring_view name)
    : m_handle(handle), m_name(name), m_capacity(::GetFileType(handle) == FILE_TYPE_CHAR ? 0 : kBlock)
{
}

void OutputStream::Write(std::string_view utf8)
{
    m_collected.append(utf8);
    if (m_collected.size() >= m_capacity)
    {
        Flush();
    }
}

void OutputStream::Flush()
{
    // Moved away first: text that could not be written must not be tried again by the next flush.
    std::string text;
    text.swap(m_collected);
    WriteAll(text);
    text.clear();
    m_collected.swap(text);
}

void OutputStream::WriteAll(std::string_view utf8)
{
    while (!utf8.empty())
    {
        // A console refuses large blocks.
        constexpr size_t kMaxWrite = kBlock / 2;
        DWORD written = 0;
        if (!::WriteFile(m_handle, utf8.data(), static_cast<DWORD>(std::min(utf8.size(), kMaxWrite)), &written,
                         nullptr))
        {
            const DWORD error = ::GetLastError();
            throw CommandError(m_name + L" cannot be written: " + SystemErrorText(error));
        }
        if (written == 0)
        {
            throw CommandError(m_name + L" cannot be written: " + SystemErrorText(ERROR_DISK_FULL));
        }
        utf8.remove_prefix(written);
    }
}

OutputStream& StandardOutput()
{
    static OutputStream output(::GetStdHandle(STD_OUTPUT_HANDLE), L"the output");
    return output;
}

std::wstring ShownInput(const std::wstring& name)
{
    return name == kStandardStreamName ? L"the standard input" : InQuotes(name);
}

std::string ReadWholeInput(const std::wstring& name)
{
    if (name == kStandardStreamName)
    {
        return ReadToEnd(::GetStdHandle(STD_INPUT_HANDLE), ShownInput(name));
    }
    const FileHandle file = OwnFile(::CreateFileW(name.c_str(), GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE,
                                                  nullptr, OPEN_EXISTING, FILE_FLAG_SEQUENTIAL_SCAN, nullptr));
    if (!file)
    {
        FailToRead(ShownInput(name), ::GetLastError());
    }
    return ReadToEnd(file.get(), ShownInput(name));
}

}  // namespace quonhost
