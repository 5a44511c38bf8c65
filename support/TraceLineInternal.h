/// @file
/// The layout of a trace line, without any output. Not for callers of the library.
#pragma once

#include <cstddef>

/// The number of characters before the terminator.
std::size_t TraceTextLength(const wchar_t* text);

/// The most characters that `PutTraceHeader` writes for a file name of that length.
std::size_t TraceHeaderRoom(std::size_t fileLength);

/// Writes the part of a trace line before the blank and the message: position, dots, thread.
/// @param out room for `TraceHeaderRoom(fileLength)` characters; no terminator is written.
/// @return behind the last character written.
wchar_t* PutTraceHeader(wchar_t* out, const wchar_t* file, std::size_t fileLength, int line, unsigned long threadId);
