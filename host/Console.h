// Text in and out of the console: UTF-8 outside, UTF-16 inside.
#pragma once

#include <afx.h>

#include <stdexcept>
#include <string>
#include <string_view>

namespace quonhost
{

/// The exit codes of the host.
enum ExitCode
{
    kSuccess = 0,
    kFailed = 1,  ///< the work could not be done
    kUsage = 2,   ///< the command line was not understood
};

/// A failure to tell the user in one line; ends the command with kFailed.
class CommandError : public std::runtime_error
{
public:
    explicit CommandError(const std::string& text) : std::runtime_error(text) {}
    explicit CommandError(std::wstring_view text);
};

/// The path of a file or folder, from the current folder on where it is relative, written with `\`.
std::wstring FullPath(std::string_view path);

std::string ToUtf8(std::wstring_view text);
std::wstring ToWide(std::string_view text);

/// Writes one line to the standard output.
void PrintLine(std::wstring_view text);
/// Writes one line to the standard error output, after "quonhost: ".
void PrintError(std::string_view text);

/// Makes the standard streams carry UTF-8 with plain line feeds, in a console as in a pipe.
void SetUpConsole();

}  // namespace quonhost
