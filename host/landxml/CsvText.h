// Text with separators whose columns have names.
#pragma once

#include <afx.h>

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace quonhost
{

/// How a file is written. What is not given is recognized.
struct CsvFormat
{
    std::optional<char> separator;    ///< ',', ';' or a tab
    std::optional<char> decimalMark;  ///< '.' or ','
};

/// A column that a file may have.
struct CsvColumn
{
    std::string_view name;
    bool isRequired;
    std::string_view otherName = {};
};

/// Reads the rows of a file one after another.
///
/// Fields may be in double quotes, in which a doubled quote is one. Blanks around fields are dropped, blank lines are
/// skipped. The first line is a header when it holds the name of a column, in whatever case, and no number.
class CsvReader
{
public:
    /// @param name the file as error texts show it
    /// @param columns in the order of a file without header
    /// @throws CommandError when the file is empty, is not text, or lacks a required column
    CsvReader(const std::wstring& name, std::string bytes, const CsvFormat& format, std::vector<CsvColumn> columns);

    /// Goes to the next row. Returns false at the end. @throws CommandError for a row that does not fit the columns
    bool Next();

    /// Returns a field of the row by the index of its column; "" when the file does not have the column.
    std::string_view Field(size_t column) const;
    /// Reads a field as a number. @throws CommandError when it is not a finite one
    double Number(size_t column);

    /// Returns the number of the line of the row.
    unsigned int Line() const { return m_line; }
    /// Returns how many bytes of the text were read, and how many it has.
    size_t BytesRead() const { return m_at; }
    size_t ByteCount() const { return m_text.size(); }

    /// Throws a failure in the line of the row.
    [[noreturn]] void Fail(const std::wstring& what) const;

private:
    bool NextLine();
    const wchar_t* Split(std::string_view line, char separator);
    void ChooseSeparator(std::string_view line);
    bool IsHeader() const;
    void TakeHeader();
    void RequireColumns() const;
    void RequireOneDecimalMark(std::string_view field, char mark, size_t column);

    std::wstring m_name;
    std::string m_text;
    CsvFormat m_format;
    std::vector<CsvColumn> m_columns;
    std::vector<std::optional<size_t>> m_fieldOf;  // by column
    std::vector<std::string> m_fields;             // of the row
    size_t m_fieldCount = 0;                       // of a row; 0 as long as it is not known
    size_t m_at = 0;
    unsigned int m_line = 0;
    bool m_isFirstRowRead = false;  // the first line is a row and was not handed out yet
    char m_separator = ',';
    char m_decimalMark = 0;  // 0: not known yet
    unsigned int m_decimalMarkLine = 0;
};

/// Returns the field in quotes if it needs them: it holds a comma, a semicolon, a tab or a quote, or a blank at an end.
/// Line breaks and other control characters become blanks.
std::wstring QuoteField(const std::wstring& field);

}  // namespace quonhost
