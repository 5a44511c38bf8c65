/// @file
/// The folders that the system and the user's shell know by name.
#pragma once

#include <afx.h>

#include "base/Export.h"

/// Selects a well-known folder for the constructors of QuonPath, QuonPath::Assign() and QuonPath::SetToFolder().
/// Any number is allowed: what is not one of the names below selects nothing and leaves the path's text as it is.
using QuonFolderId = int;

/// The full file name of the process's executable (not of this library).
inline constexpr QuonFolderId QuonFolderModuleFile = 0;
/// The folder of the process's executable, with a trailing separator.
inline constexpr QuonFolderId QuonFolderModuleFolder = 1;
/// The Windows folder, without a trailing separator unless it is the root of a drive.
inline constexpr QuonFolderId QuonFolderWindows = 2;
/// The system folder, without a trailing separator unless it is the root of a drive.
inline constexpr QuonFolderId QuonFolderSystem = 3;
/// The folder for temporary files, with a trailing separator.
inline constexpr QuonFolderId QuonFolderTemp = 4;
/// The process's current folder, without a trailing separator unless it is the root of a drive.
inline constexpr QuonFolderId QuonFolderCurrent = 5;
/// The user's desktop folder, with a trailing separator.
inline constexpr QuonFolderId QuonFolderDesktop = 6;
/// The user's favourites folder, with a trailing separator.
inline constexpr QuonFolderId QuonFolderFavorites = 7;
/// A name, beginning with "~", that no file in the temporary folder has at that moment. The file is not created, so
/// nothing keeps the name: calls in a row give different names, another process or a later call may be given it again.
inline constexpr QuonFolderId QuonFolderTempFileName = 8;

/// The number of characters, the terminating zero included, that ReadShellFolder() may write: 260 of the value, one
/// added separator and the zero.
inline constexpr int QuonShellFolderBufferSize = 262;

/// Reads one of the user's shell folders from the registry.
///
/// The value's type is not looked at: its bytes are taken as text up to the first zero character, and a value stored
/// without a terminating zero ends where its bytes end. The text gets a trailing `\` unless it ends in one; an empty
/// value therefore gives `\`. The key is opened with full access, so an account that may only read it gets the error
/// of the opening.
///
/// @param valueName the name of the value, such as "Desktop", "Favorites" or "Personal".
/// @param out       not null; has room for #QuonShellFolderBufferSize characters. Written on success only.
/// @return 0 on success, otherwise the Windows error code of the step that failed (`ERROR_FILE_NOT_FOUND` when there
///         is no such value, `ERROR_MORE_DATA` when it takes more than 520 bytes).
QUON_API LONG ReadShellFolder(const wchar_t* valueName, wchar_t* out);
