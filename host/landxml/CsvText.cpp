#include "host/landxml/CsvText.h"

#include "host/Console.h"
#include "host/landxml/FileErrors.h"
#include "host/landxml/NumberText.h"
#include "host/landxml/XmlEncoding.h"

#include <algorithm>

namespace quonhost
{
namespace
{

constexpr std::string_view kBlanks = " \t\r\n";

std::string_view Trimmed(std::string_view text, std::string_view characters)
{
    const size_t first = text.find_first_not_of(characters);
    return first == std::string_view::npos ? std::string_view()
                                           : text.substr(first, text.find_last_not_of(characters) - first + 1);
}

// ASCII only: the names of the columns are.
std::string LowerCase(std::string_view text)
{
    std::string lower(text);
    std::transform(lower.begin(), lower.end(), lower.begin(),
                   [](char ch) { return ch >= 'A' && ch <= 'Z' ? static_cast<char>(ch - 'A' + 'a') : ch; });
    return lower;
}

bool IsName(const CsvColumn& column, std::string_view field)
{
    const std::string lower = LowerCase(field);
    return lower == column.name || (!column.otherName.empty() && lower == column.otherName);
}

std::wstring Quoted(std::string_view text)
{
    return L"\"" + ToWide(text) + L"\"";
}

std::optional<double> ParseWithComma(std::string_view field)
{
    std::string text(field);
    std::replace(text.begin(), text.end(), ',', '.');
    return ParseNumber(std::string_view(text));
}

// A number with whichever mark: for telling a header from a row.
bool IsNumber(std::string_view field)
{
    return ParseNumber(field) || ParseWithComma(field);
}

}  // namespace

CsvReader::CsvReader(const std::wstring& name, std::string bytes, const CsvFormat& format,
                     std::vector<CsvColumn> columns)
    : m_name(name),
      m_text(XmlBytesAsUtf8(name, std::move(bytes))),
      m_format(format),
      m_columns(std::move(columns)),
      m_fieldOf(m_columns.size()),
      m_decimalMark(format.decimalMark.value_or(0))
{
    if (!NextLine())
    {
        throw FileError(m_name, L"the file is empty");
    }
    if (IsHeader())
    {
        TakeHeader();
    }
    else
    {
        for (size_t column = 0; column < std::min(m_columns.size(), m_fields.size()); ++column)
        {
            m_fieldOf[column] = column;
        }
        m_isFirstRowRead = true;
    }
    m_fieldCount = m_fields.size();
    RequireColumns();
}

void CsvReader::Fail(const std::wstring& what) const
{
    throw LineError(m_name, m_line, what);
}

// Reads the next line that is not blank into the fields.
bool CsvReader::NextLine()
{
    while (m_at < m_text.size())
    {
        const size_t end = std::min(m_text.find('\n', m_at), m_text.size());
        const std::string_view line = std::string_view(m_text).substr(m_at, end - m_at);
        m_at = std::min(end + 1, m_text.size());
        ++m_line;
        if (Trimmed(line, kBlanks).empty())
        {
            continue;
        }
        if (m_fieldCount == 0)
        {
            ChooseSeparator(line);
        }
        if (const wchar_t* const complaint = Split(line, m_separator))
        {
            Fail(complaint);
        }
        return true;
    }
    return false;
}

// The first separator that gives the required columns is the one. Codes may hold the others.
void CsvReader::ChooseSeparator(std::string_view line)
{
    const auto required = static_cast<size_t>(
        std::count_if(m_columns.begin(), m_columns.end(), [](const CsvColumn& column) { return column.isRequired; }));
    m_separator = m_format.separator.value_or(',');
    for (const char separator : {'\t', ';', ','})
    {
        const bool isWhole = Split(line, separator) == nullptr;
        if (!m_format.separator && isWhole && m_fields.size() >= required)
        {
            m_separator = separator;
            return;
        }
    }
}

// Splits a line into the fields. Returns what is wrong with it, or null.
const wchar_t* CsvReader::Split(std::string_view line, char separator)
{
    const std::string_view blanks = separator == '\t' ? " \r" : " \t\r";
    m_fields.clear();
    for (size_t at = 0; at <= line.size(); ++at)
    {
        at = std::min(line.find_first_not_of(blanks, at), line.size());
        if (at == line.size() || line[at] != '"')
        {
            const size_t end = std::min(line.find(separator, at), line.size());
            m_fields.emplace_back(Trimmed(line.substr(at, end - at), blanks));
            at = end;
            continue;
        }
        std::string field;
        for (++at; at < line.size() && (line[at] != '"' || line.substr(at, 2) == "\"\""); ++at)
        {
            field += line[at];
            at += line[at] == '"' ? 1 : 0;
        }
        if (at >= line.size())
        {
            return L"a quote is not closed";
        }
        m_fields.push_back(std::move(field));
        const size_t end = std::min(line.find(separator, at), line.size());
        if (!Trimmed(line.substr(at + 1, end - at - 1), blanks).empty())
        {
            return L"there is text after a closing quote";
        }
        at = end;
    }
    return nullptr;
}

// One name will do, for the others may be misspelt; but a row may have such a word for its code, and then it has
// numbers too.
bool CsvReader::IsHeader() const
{
    bool hasName = false;
    for (const std::string& field : m_fields)
    {
        if (IsNumber(field))
        {
            return false;
        }
        hasName = hasName || std::any_of(m_columns.begin(), m_columns.end(),
                                         [&field](const CsvColumn& column) { return IsName(column, field); });
    }
    return hasName;
}

void CsvReader::TakeHeader()
{
    for (size_t field = 0; field < m_fields.size(); ++field)
    {
        const auto column = std::find_if(m_columns.begin(), m_columns.end(),
                                         [&](const CsvColumn& known) { return IsName(known, m_fields[field]); });
        if (column == m_columns.end())
        {
            Fail(L"unknown column: " + Quoted(m_fields[field]));
        }
        std::optional<size_t>& place = m_fieldOf[static_cast<size_t>(column - m_columns.begin())];
        if (place)
        {
            Fail(L"the column " + Quoted(m_fields[field]) + L" is there twice");
        }
        place = field;
    }
}

void CsvReader::RequireColumns() const
{
    for (size_t column = 0; column < m_columns.size(); ++column)
    {
        if (m_columns[column].isRequired && !m_fieldOf[column])
        {
            Fail(L"the column " + Quoted(m_columns[column].name) + L" is missing");
        }
    }
    if (m_fieldCount > m_columns.size())
    {
        Fail(L"there is a column too many");
    }
}

bool CsvReader::Next()
{
    if (m_isFirstRowRead)
    {
        m_isFirstRowRead = false;
        return true;
    }
    if (!NextLine())
    {
        return false;
    }
    if (m_fields.size() != m_fieldCount)
    {
        Fail(m_fields.size() < m_fieldCount ? L"a column is missing" : L"there is a column too many");
    }
    return true;
}

std::string_view CsvReader::Field(size_t column) const
{
    return m_fieldOf[column] ? std::string_view(m_fields[*m_fieldOf[column]]) : std::string_view();
}

double CsvReader::Number(size_t column)
{
    const std::string_view field = Field(column);
    const bool hasComma = field.find(',') != std::string_view::npos;
    const std::optional<double> number = hasComma ? ParseWithComma(field) : ParseNumber(field);
    if (!number || (hasComma && field.find('.') != std::string_view::npos))
    {
        Fail(ToWide(m_columns[column].name) + L" is not a number: " + Quoted(field));
    }
    if (hasComma || field.find('.') != std::string_view::npos)
    {
        RequireOneDecimalMark(field, hasComma ? ',' : '.', column);
    }
    return *number;
}

// Where both marks occur, one of them may separate thousands.
void CsvReader::RequireOneDecimalMark(std::string_view field, char mark, size_t column)
{
    if (m_decimalMark == 0)
    {
        m_decimalMark = mark;
        m_decimalMarkLine = m_line;
    }
    if (m_decimalMark != mark)
    {
        const std::wstring other = m_decimalMark == ',' ? L"a comma" : L"a point";
        const std::wstring where = m_decimalMarkLine == 0 ? L"" : L", as in line " + std::to_wstring(m_decimalMarkLine);
        Fail(ToWide(m_columns[column].name) + L" does not have " + other + L" as its decimal mark" + where + L": " +
             Quoted(field));
    }
}

std::wstring QuoteField(const std::wstring& field)
{
    std::wstring plain = field;
    std::replace_if(
        plain.begin(), plain.end(), [](wchar_t ch) { return ch < L' '; }, L' ');
    const bool hasOuterBlank = !plain.empty() && (plain.front() == L' ' || plain.back() == L' ');
    if (!hasOuterBlank && plain.find_first_of(L",;\"") == std::wstring::npos)
    {
        return plain;
    }
    std::wstring quoted = L"\"";
    for (const wchar_t ch : plain)
    {
        quoted.append(ch == L'"' ? 2 : 1, ch);
    }
    return quoted + L'"';
}

}  // namespace quonhost
