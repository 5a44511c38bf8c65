// A file that takes the place of another only when it is whole.
#pragma once

#include <afx.h>

#include "paths/QuonPath.h"

namespace quonhost
{

/// A new file beside the one it will replace. Until `Commit` the old file stays as it is; a replacement that is given
/// up, by an error or Ctrl+C, is removed.
class ReplacementFile
{
public:
    /// @throws CommandError when `target` cannot be replaced: its folder is missing, or it is a folder itself
    explicit ReplacementFile(const QuonPath& target);
    ~ReplacementFile();
    ReplacementFile(const ReplacementFile&) = delete;
    ReplacementFile& operator=(const ReplacementFile&) = delete;

    /// Where to write.
    const QuonPath& GetPath() const { return m_path; }

    /// Puts the new file in the place of the old one, in one step. @throws CommandError when that fails
    void Commit();

private:
    QuonPath m_target;
    QuonPath m_path;
};

}  // namespace quonhost
