/// @file
/// Creates, copies, moves and removes files and folder trees.
///
/// All functions return 0 for success and 1 for failure, the reverse of the system calls below them. None throws (but
/// for exhausted memory), none reports a text, and nothing is rolled back: what was done before a failure stays. Links
/// and junctions below a folder are followed, not copied or removed as such.
#pragma once

#include <afx.h>

#include "base/Export.h"
#include "paths/QuonPath.h"
#include "traversal/QuonFileMatch.h"

/// Creates the folder `path` with all its missing parents; the last component is a folder too. What exists already is
/// no error, a file of that name included. After a failure the components below it are still tried.
///
/// The path is taken apart and put together again, so `\a\b` means `a\b` below the current folder, and "C:a" means
/// `C:\a`.
/// The directory is cut at 263 characters, as QuonPath::Split() does: of a deeper path the folders up to there are
/// created, the last name possibly cut, and the result is 0 although the others are missing.
/// @return 0 when every missing folder up to the cut was created, otherwise 1
QUON_API unsigned int CreateFolderTree(const wchar_t* path);

/// Creates for every match, from the current one on, the folder of the same relative path below `destination`. Goes on
/// after a failure.
/// @return 0 when all exist (up to CreateFolderTree's cut) or there was no match, 1 when any failed
QUON_API unsigned int CreateMatchedFolders(QuonFileMatch& match, const wchar_t* destination);

/// Copies one file with its attributes. The target's folder must exist.
/// @param failIfExists  nonzero: an existing target is a failure; zero: it is replaced
QUON_API unsigned int CopyOneFile(const wchar_t* source, const wchar_t* target, BOOL failIfExists);

/// Copies every match, from the current one on, to the same relative path below `destination`, whose folders must
/// exist. Stops at the first file that cannot be copied, which is then still the current match.
/// @return 0 when all were copied or there was no match, 1 otherwise
QUON_API unsigned int CopyMatchedFiles(QuonFileMatch& match, const wchar_t* destination, BOOL failIfExists);

/// Deletes a file even if it is read-only. A file that cannot be deleted gets its old attributes back.
QUON_API unsigned int DeleteFileForced(const wchar_t* path);

/// Deletes every match, from the current one on, as DeleteFileForced does. Goes on after a failure.
/// @return 0 when all were deleted or there was no match, 1 when any failed
QUON_API unsigned int DeleteMatchedFiles(QuonFileMatch& match);

/// Copies everything in `source` into `destination`, which is created if it is missing. All folders are created before
/// the first file is copied; copying stops at the first file that cannot be copied. Folders deeper than
/// CreateFolderTree's cut are not created: an empty one is missing from the copy although the result is 0, and a file
/// in one is a failure.
/// @param failIfExists  nonzero: a file that exists in the destination is a failure; zero: it is replaced
/// @return 0 when all was copied, 1 otherwise, also when the source does not exist
QUON_API unsigned int CopyFolderTree(const wchar_t* source, const wchar_t* destination, BOOL failIfExists);

/// Removes `folder` with everything in it, read-only files included.
///
/// If the process's current folder begins with the text of `folder`, in any case, by the user's locale, the parent of
/// `folder` becomes the current folder first; all threads share the current folder. A file that cannot be deleted shows
/// only as the failure of the folders above it.
/// @return 0 when the folder is gone or never was, 1 when any folder could not be removed
QUON_API unsigned int RemoveFolderTree(const wchar_t* folder);

/// Copies `source` to `destination` as CopyFolderTree does, then removes `source` as RemoveFolderTree does. Empty
/// folders deeper than CreateFolderTree's cut are lost: they are not in the copy, and the result is 0.
/// @return 0 when both succeeded; 1 otherwise, and when the copy failed nothing was removed
QUON_API unsigned int MoveFolderTree(const wchar_t* source, const wchar_t* destination, BOOL failIfExists);
