// Comma-separated values whose columns have names: what must be seen to before the parser is given the text.
#pragma once

#include <afx.h>

#include "host/Console.h"

#include <string>
#include <string_view>
#include <vector>

namespace quonhost
{

/// A complaint about one line of a file.
CommandError LineError(const std::string& file, unsigned int line, const std::string& what);

/// The contents of a file of comma-separated values, made to begin with a header of lower-case names.
struct CsvText
{
    std::string file;          ///< what its errors call it
    std::string text;          ///< begins with a header and ends in a line end
    bool hasOwnHeader = true;  ///< false: the header was put in front, and the file's first line is the second one

    /// The line of the file for a line of the text.
    unsigned int LineOfFile(unsigned int line) const { return hasOwnHeader ? line : line - 1; }
    /// The number of lines below the header, blank ones included.
    size_t CountRows() const;
};

/// Takes the first line for a header when it holds one of `names`, in whatever case, and no number. Without a header
/// the columns stand in the order of `names`, as many as the first line has fields. A byte order mark is dropped.
/// @throws CommandError when the text is empty or holds a NUL byte
CsvText PrepareCsv(const std::string& file, std::string text, const std::vector<std::string_view>& names);

/// The whole of a file. @throws CommandError when it cannot be read
std::string ReadWholeFile(const std::string& name);

/// The field in quotes if it needs them: it holds a comma or a quote, or a blank at an end. Line breaks and other
/// control characters, which the parser does not take, become blanks.
std::string QuoteField(const std::string& field);

}  // namespace quonhost
