#include "paths/QuonPath.h"

#include "paths/PathStringInternal.h"
#include "paths/PathTextInternal.h"

#include <algorithm>

namespace
{

// Compared and handed on by address, so there is one of each in the process.
const wchar_t kBackslash[] = L"\\";
const wchar_t kSlash[] = L"/";

constexpr QuonPathFlags kSeparatorBits = QuonPathForwardSlash | QuonPathBackslash;
constexpr QuonPathFlags kTrailingBits = QuonPathStripTrailing | QuonPathAddTrailing;
constexpr QuonPathFlags kCaseBits = QuonPathLowerCase | QuonPathUpperCase;

/// What is reserved in a text before its end is cut in place, so that the shortened text can take a Windows path.
constexpr int kReserved = 260;

void CutText(CString& text, std::size_t length)
{
    if (length == static_cast<std::size_t>(text.GetLength()))
    {
        return;
    }
    text.GetBuffer(kReserved);
    text.ReleaseBuffer(static_cast<int>(length));
}

}  // namespace

QuonPath::QuonPath() : m_separator(kBackslash) {}

// Copies are given to callers who expect "\", whatever the original wrote: only assignment carries the separator over.
QuonPath::QuonPath(const QuonPath& other) : m_path(other.m_path), m_separator(kBackslash) {}

QuonPath::QuonPath(const wchar_t* text, QuonPathFlags flags) : m_path(text), m_separator(kBackslash)
{
    ApplyFlags(flags);
}

QuonPath::QuonPath(const std::wstring& text, QuonPathFlags flags) : m_path(text.c_str()), m_separator(kBackslash)
{
    ApplyFlags(flags);
}

QuonPath::QuonPath(const CString& text, QuonPathFlags flags) : m_path(text), m_separator(kBackslash)
{
    ApplyFlags(flags);
}

QuonPath::QuonPath(const QuonPath& other, QuonPathFlags flags) : m_path(other.m_path), m_separator(other.m_separator)
{
    ApplyFlags(flags);
}

QuonPath::QuonPath(QuonFolderId folder, QuonPathFlags flags) : m_separator(kBackslash)
{
    SetToFolder(folder);
    ApplyFlags(flags);
}

QuonPath::~QuonPath() = default;

QuonPath& QuonPath::operator=(const QuonPath& other)
{
    if (this != &other)
    {
        m_path = other.m_path;
        m_separator = other.m_separator;
    }
    return *this;
}

QuonPath& QuonPath::operator=(const wchar_t* text)
{
    m_path = text;
    return *this;
}

QuonPath& QuonPath::operator=(const CString& text)
{
    m_path = text;
    return *this;
}

QuonPath& QuonPath::operator=(const std::wstring& text)
{
    m_path = text.c_str();
    return *this;
}

void QuonPath::Assign(const wchar_t* text, QuonPathFlags flags)
{
    m_path = text;
    ApplyFlags(flags);
}

void QuonPath::Assign(const std::wstring& text, QuonPathFlags flags)
{
    m_path = text.c_str();
    ApplyFlags(flags);
}

void QuonPath::Assign(const QuonPath& other, QuonPathFlags flags)
{
    *this = other;
    ApplyFlags(flags);
}

void QuonPath::Assign(QuonFolderId folder, QuonPathFlags flags)
{
    SetToFolder(folder);
    ApplyFlags(flags);
}

QuonPath::operator const wchar_t*() const
{
    return m_path.GetString();
}

void QuonPath::ApplyFlags(QuonPathFlags flags)
{
    // Each group of bits is a number, not a set: both bits together are none of the two.
    m_separator = (flags & kSeparatorBits) == QuonPathForwardSlash ? kSlash : kBackslash;
    switch (flags & kCaseBits)
    {
        case QuonPathLowerCase:
            m_path.MakeLower();
            break;
        case QuonPathUpperCase:
            m_path.MakeUpper();
            break;
        default:
            break;
    }
    switch (flags & kTrailingBits)
    {
        case QuonPathStripTrailing:
            RemoveTrailingSeparators();
            break;
        case QuonPathAddTrailing:
            AddTrailingSeparator();
            break;
        default:
            break;
    }
    if ((flags & QuonPathNormalize) != 0)
    {
        Normalize();
    }
}

QuonPath QuonPath::Append(const wchar_t* other)
{
    QuonPathText::JoinString(m_path, *m_separator, QuonPathText::View(other));
    return *this;
}

QuonPath QuonPath::Append(const std::wstring& other)
{
    return Append(other.c_str());
}

void QuonPath::Normalize()
{
    QuonPathText::NormalizeString(m_path, *m_separator);
}

void QuonPath::NormalizeToSlashes()
{
    m_separator = kSlash;
    Normalize();
}

void QuonPath::NormalizeToBackslashes()
{
    m_separator = kBackslash;
    Normalize();
}

void QuonPath::AddTrailingSeparator()
{
    if (!HasTrailingSeparator())
    {
        m_path += *m_separator;
    }
}

void QuonPath::RemoveTrailingSeparators()
{
    CutText(m_path, QuonPathText::LengthWithoutTrailingSeparators(QuonPathText::View(m_path)));
}

bool QuonPath::HasTrailingSeparator() const
{
    return QuonPathText::EndsInSeparator(QuonPathText::View(m_path));
}

bool QuonPath::IsUNC() const
{
    return QuonPathText::BeginsWithTwoSeparators(QuonPathText::View(m_path));
}

bool QuonPath::IsCharAt(int index, const wchar_t& ch) const
{
    return index <= m_path.GetLength() && m_path.GetString()[std::max(index, 0)] == ch;
}

void QuonPath::RemoveLastComponent()
{
    CutText(m_path, QuonPathText::LengthWithoutLastComponent(QuonPathText::View(m_path)));
}

QuonPath operator+(const QuonPath& left, const wchar_t* right)
{
    QuonPath joined(left);
    joined.Append(right);
    return joined;
}

QuonPath operator+(const QuonPath& left, const std::wstring& right)
{
    return left + right.c_str();
}

QuonPath operator+(const CString& left, const std::wstring& right)
{
    return QuonPath(left, QuonPathBackslash) + right.c_str();
}

void AddTrailingBackslash(CString& path)
{
    const int length = path.GetLength();
    if (length == 0 || path.GetAt(length - 1) != L'\\')
    {
        path += L'\\';
    }
}

void RemoveTrailingBackslash(CString& path)
{
    const int length = path.GetLength();
    if (length > 0 && path.GetAt(length - 1) == L'\\')
    {
        path.Truncate(length - 1);
    }
}
