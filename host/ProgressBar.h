// The host's end of the library's progress facade: a bar on the terminal, and Ctrl+C as the request to stop.
#pragma once

namespace quonhost
{

/// While it lives, the library's progress reports draw a bar on the standard error output, if asked to, and its
/// polls ask whether Ctrl+C was pressed.
class ProgressBar
{
public:
    explicit ProgressBar(bool draw);
    ~ProgressBar();
    ProgressBar(const ProgressBar&) = delete;
    ProgressBar& operator=(const ProgressBar&) = delete;
};

/// The description of the option --progress.
inline constexpr const char* kProgressHelp = "Show the progress on the error output even when that is not a terminal";

/// Returns whether somebody at a terminal sees the standard error output and nothing else is printed there.
bool IsProgressVisible();

}  // namespace quonhost
