// Bytes to and from files, pipes and the console. Every failure is reported in the system's words.
#pragma once

#include <afx.h>

#include <string>
#include <string_view>

namespace quonhost
{

/// Returns the system's text for an error code on one line, such as "Access is denied."; "error N" when it has none.
std::wstring SystemErrorText(DWORD error);

/// Collects UTF-8 text and writes it to a handle. Each write of the system is checked, so text that was accepted and
/// flushed has arrived, and text that could not be written is an error.
class OutputStream
{
public:
    /// Writes to `handle`, which stays the caller's. Error texts contain `name` as it is.
    OutputStream(HANDLE handle, std::wstring_view name);
    OutputStream(const OutputStream&) = delete;
    OutputStream& operator=(const OutputStream&) = delete;

    /// Takes the text over, and writes what was collected once that is much, or at once when a person watches.
    /// @throws CommandError when something cannot be written; what was collected is dropped
    void Write(std::string_view utf8);

    /// Writes what was collected. Must be called at the end: the destructor drops what is left.
    /// @throws CommandError as `Write` does
    void Flush();

private:
    void WriteAll(std::string_view utf8);

    HANDLE m_handle;
    std::wstring m_name;
    size_t m_capacity;
    std::string m_collected;
};

/// Returns the standard output, which all commands write to. Used on the main thread only.
OutputStream& StandardOutput();

/// The name that means standard input, or standard output, in the place of a file's.
inline constexpr std::wstring_view kStandardStreamName = L"-";

/// Returns how errors name an input: in quotes, or "the standard input" for the name "-".
std::wstring ShownInput(const std::wstring& name);

/// Returns all bytes of a file, or of the standard input for the name "-".
/// @throws CommandError with the system's text when it cannot be opened or read to its end
std::string ReadWholeInput(const std::wstring& name);

}  // namespace quonhost
