// The host's end of the library's progress facade: a bar on the terminal, and Ctrl+C as the wish to stop.
#pragma once

namespace quonhost
{

/// While it lives, the library's progress reports draw a bar on the standard error output (only when that is a console,
/// or when asked to), and its polls ask whether Ctrl+C was pressed.
class ProgressBar
{
public:
    /// @param always draw even when the standard error output is no console
    explicit ProgressBar(bool always);
    ~ProgressBar();
    ProgressBar(const ProgressBar&) = delete;
    ProgressBar& operator=(const ProgressBar&) = delete;
};

}  // namespace quonhost
