// Text in and out of the console: UTF-8 outside, UTF-16 inside.
#pragma once

#include <afx.h>

#include <stdexcept>
#include <string>
#include <string_view>

namespace quonhost
{

/// Returns the text as UTF-8.
std::string ToUtf8(std::wstring_view text);
/// Returns UTF-8 as wide text; bytes that are not UTF-8 become U+FFFD.
std::wstring ToWide(std::string_view utf8);

/// The exit codes of the host.
enum ExitCode
{
    kSuccess = 0,
    kFailed = 1,  ///< the work could not be done
    kUsage = 2,   ///< the command line was not understood
};

/// A failure that the user is shown in one line; ends the command with kFailed.
class CommandError : public std::runtime_error
{
public:
    explicit CommandError(std::wstring_view text) : std::runtime_error(ToUtf8(text)), m_text(text) {}
    /// Takes UTF-8.
    explicit CommandError(const std::string& utf8) : std::runtime_error(utf8), m_text(ToWide(utf8)) {}

    /// Returns the line; `what` returns the same as UTF-8.
    const std::wstring& Text() const { return m_text; }

private:
    std::wstring m_text;
};

/// Returns the path of a file or folder with `\`; a relative one is taken from the current folder.
std::wstring FullPath(const wchar_t* path);

/// Returns the name in double quotes.
std::wstring InQuotes(const std::wstring& name);
inline std::wstring InQuotes(const wchar_t* name)
{
    return InQuotes(std::wstring(name));
}

/// Returns the number with its noun, such as "1 file" or "2 files".
std::wstring Counted(unsigned long long count, std::wstring_view singular, std::wstring_view plural);

/// Writes one line to the standard output. @throws CommandError when it cannot be written
void PrintLine(std::wstring_view text);
/// Writes one line to the standard error output, after "quonhost: ". Control characters become blanks.
void PrintError(std::wstring_view text);
/// Does so with UTF-8.
void PrintError(std::string_view utf8);

/// Makes the console carry UTF-8 while it lives, and restores the code pages that the user had.
class ConsoleCodePages
{
public:
    ConsoleCodePages();
    ~ConsoleCodePages();
    ConsoleCodePages(const ConsoleCodePages&) = delete;
    ConsoleCodePages& operator=(const ConsoleCodePages&) = delete;

private:
    UINT m_input;
    UINT m_output;
};

}  // namespace quonhost
