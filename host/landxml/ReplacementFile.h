// A file that takes the place of another only when it is whole.
#pragma once

#include <afx.h>

#include "host/FileHandle.h"

#include <string>
#include <string_view>

namespace quonhost
{

/// A new file beside the one that it will replace. Until `Commit` the old file stays as it is; a replacement that is
/// given up, by an error or Ctrl+C, is removed. A device is written directly: it has no contents to protect.
class ReplacementFile
{
public:
    /// Opens the new file. @throws CommandError with the system's text when that fails, or the target is a folder
    explicit ReplacementFile(const std::wstring& target);
    ~ReplacementFile();
    ReplacementFile(const ReplacementFile&) = delete;
    ReplacementFile& operator=(const ReplacementFile&) = delete;

    /// Writes the contents and reports the progress. @throws CommandError when it cannot be written, or the user wants
    /// to stop
    void Write(std::string_view contents);

    /// Reads the new file, compares it with what was written, and puts it in the place of the old one in one step.
    /// @throws CommandError when one of these fails
    void Commit(std::string_view contents);

private:
    void OpenBeside();
    void Verify(std::string_view contents);
    [[noreturn]] void Fail(const std::wstring& reason) const;
    [[noreturn]] void FailWithSystemText() const;

    std::wstring m_shownName;
    std::wstring m_target;
    std::wstring m_path;  // of the new file; empty once nothing is left to remove, and for a device
    FileHandle m_file;
};

/// Replaces a file, or writes to the standard output for "-". @throws CommandError as ReplacementFile does
void WriteWholeOutput(const std::wstring& target, std::string_view contents);

/// Refuses a target that is the same file as an input, under whatever name. @throws CommandError
void RequireOtherFile(const std::wstring& target, const std::wstring& input);

}  // namespace quonhost
