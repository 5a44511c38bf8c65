// Which file or folder a name leads to. Commands ask before they write, so that none destroys what it reads.
#pragma once

#include <afx.h>

namespace quonhost
{

/// Returns whether there is a folder of this name.
bool IsFolder(const wchar_t* path);

/// Returns whether both names lead to one existing file or folder, by whatever spelling, link or drive.
/// Two names that cannot be opened are not the same.
bool IsSameFile(const wchar_t* path, const wchar_t* other);

/// Returns whether a standard handle, STD_INPUT_HANDLE or STD_OUTPUT_HANDLE, was redirected to the file of this name.
bool IsRedirectedTo(DWORD standardHandle, const wchar_t* path);

/// Returns whether `path`, which need not exist, is `folder` or would be below it.
bool IsInside(const wchar_t* path, const wchar_t* folder);

}  // namespace quonhost
