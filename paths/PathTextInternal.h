// The rules about the text of a path, as functions of texts alone: no object, no allocation, no operating system.
#pragma once

#include <cstddef>
#include <string_view>

namespace QuonPathText
{

/// The most characters that a part of a split path has: the parts are as long as the fixed buffers for them, less the
/// terminating zero.
inline constexpr std::size_t kMaxPart = 263;

constexpr bool IsSeparator(wchar_t ch)
{
    return ch == L'\\' || ch == L'/';
}

/// What parts components. The double quote is among them so that a quoted path can be given as it was typed.
constexpr bool IsDelimiter(wchar_t ch)
{
    return IsSeparator(ch) || ch == L'"';
}

constexpr bool EndsInSeparator(std::wstring_view text)
{
    return !text.empty() && IsSeparator(text.back());
}

constexpr bool BeginsWithTwoSeparators(std::wstring_view text)
{
    return text.size() >= 2 && IsSeparator(text[0]) && IsSeparator(text[1]);
}

/// Takes the next component off the front of `rest`, delimiters before it included; empty when there is none.
std::wstring_view TakeComponent(std::wstring_view& rest);

std::wstring_view LastComponent(std::wstring_view text);

/// True when Normalize() would give the text itself. False may be said of a text that it would not change.
bool IsNormal(std::wstring_view text, wchar_t separator);

/// Writes the normal form of `text` to `out`, which has room for one character more than `text` and may be the very
/// place where `text` stands. No terminating zero is written.
/// @return the number of characters written.
std::size_t Normalize(std::wstring_view text, wchar_t separator, wchar_t* out);

/// Writes what stays of `text` without its first component to `out`, which has room for `text` and may be the very
/// place where it stands. No terminating zero is written.
/// @return the number of characters written.
std::size_t WithoutFirstComponent(std::wstring_view text, wchar_t separator, wchar_t* out);

/// The length to which the text is cut to lose its last component.
std::size_t LengthWithoutLastComponent(std::wstring_view text);

std::size_t LengthWithoutTrailingSeparators(std::wstring_view text);

/// The parts of a path, as views of the text that was split.
struct Parts
{
    std::wstring_view drive;
    std::wstring_view directory;
    std::wstring_view name;
    std::wstring_view extension;
};

/// Splits as the C run-time's _wsplitpath does, with each part bounded by kMaxPart.
Parts SplitPlain(std::wstring_view text);

/// SplitPlain() with a UNC path's server and share made the drive. The views may point into the object itself.
class SplitText
{
public:
    SplitText(std::wstring_view text, wchar_t separator);
    SplitText(const SplitText&) = delete;
    SplitText& operator=(const SplitText&) = delete;

    const Parts& Get() const { return m_parts; }
    /// Name and extension as one text.
    std::wstring_view FileName() const { return m_fileName; }

private:
    void RewriteUncDirectory(wchar_t separator);

    Parts m_parts;
    std::wstring_view m_fileName;
    wchar_t m_driveBuffer[kMaxPart + 3];
    wchar_t m_directoryBuffer[kMaxPart];
    wchar_t m_fileNameBuffer[2 * kMaxPart];
};

}  // namespace QuonPathText
