// The single steps of copying, moving and removing. Each names what fails, with the system's text.
#pragma once

#include <afx.h>

#include "paths/QuonPath.h"

#include <string>

namespace quonhost
{

/// Returns where a file goes: into `destination` when that is a folder or ends in a separator, else to that name.
QuonPath FileTarget(const QuonPath& source, const QuonPath& destination);

/// Checks that copying the folder `source` to `destination` writes nothing into `source`.
/// @throws CommandError when the destination is the source or inside it, or when a folder of the source would land in
/// the source
void RequireSeparateFolders(const QuonPath& source, const QuonPath& destination);

/// Checks that a copy would not write what it reads. @throws CommandError when both names lead to the same file
void RequireDifferentFiles(const QuonPath& source, const QuonPath& target);

/// Checks that a folder can be listed, because a walk passes over those that cannot. @throws CommandError if not
void RequireReadableFolder(const QuonPath& folder);

/// Makes a folder with its parents, where they are missing; does nothing for an empty path.
/// @throws CommandError when that fails, or the name is that of a file
void MakeFolder(const QuonPath& folder);

/// Copies a file. @throws CommandError when that fails; also when both names lead to the same file
void CopyFileWhole(const QuonPath& source, const QuonPath& target, bool failIfExists);

/// Deletes a file, read-only or not. @return an empty text, or why it is still there
std::wstring DeleteFileOrExplain(const QuonPath& file);

/// Returns which folder or file of a tree cannot be removed, and why.
std::wstring ExplainFolderThatStays(const QuonPath& folder);

}  // namespace quonhost
