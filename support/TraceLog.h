/// @file
/// Lines for the debugger's output, and message boxes that show an error.
#pragma once

#include <afx.h>

#include "base/Export.h"

class _com_error;

/// Writes formatted text to the debugger's output (`OutputDebugStringW`), as it is: no line feed is added.
///
/// What exceeds 2047 characters is cut. Any thread; takes no lock.
/// @param format as for `wprintf` of this platform: "%s" is a wide string, "%S" a narrow one. Null writes an empty
/// text.
QUON_API void DebugPrint(const wchar_t* format, ...);

/// Writes one line to the debugger's output: where it comes from, which thread wrote it, and a message (most of the
/// dots are left out here):
///
/// ```
/// main(12): LOG ..............TID=0000012C x=1
/// ```
/// The position is followed by dots up to column 98 and by the thread's number in columns 99 to 110; then come a blank,
/// the message and a line feed. A position longer than 98 characters is not cut: the thread's number follows it
/// directly.
///
/// Messages are cut at 1023 characters. Any thread; takes no lock, and no memory unless the file name is very long.
/// @param file the source file, such as `__FILEW__`; null prints as "(null)".
/// @param line the line in it.
/// @param format the message, as for `DebugPrint`.
QUON_API void DebugLog(const wchar_t* file, int line, const wchar_t* format, ...);

/// Shows the system's text for an error in a box without owner and caption, with the buttons OK and Cancel.
/// @param code a system error code.
/// @return what `MessageBoxW` returns: `IDOK`, `IDCANCEL`, or 0 when the box could not be shown.
QUON_API int ShowErrorBox(DWORD code);

/// Shows the text of a COM error (`GetComErrorText`) in a box without owner and caption, with the buttons OK and
/// Cancel.
///
/// Holding Shift while pressing OK silences the position: for the rest of the process its box is not shown again and
/// counts as answered with OK. The same line under two spellings of the file name is two positions.
///
/// For the user-interface thread: the record of silenced positions has no lock.
/// @param error what to show.
/// @param file the source file of the position.
/// @param line the line in it.
/// @return `IDOK`, `IDCANCEL`, or 0 when the box could not be shown. What Cancel means is the caller's affair; commonly
///         it breaks into the debugger.
QUON_API int ShowComErrorBox(const _com_error& error, const wchar_t* file, int line);
