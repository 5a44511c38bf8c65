// What the tests of path values share.
#pragma once

#include <afx.h>

#include <random>
#include <string>
#include <string_view>

#include "paths/QuonPath.h"

namespace quon_test
{

inline std::wstring Text(const QuonPath& path)
{
    return static_cast<const wchar_t*>(path);
}

inline std::wstring Text(const CString& text)
{
    return text.GetString();
}

/// The separator that a path writes. Assignment, unlike construction, takes it over from the path that is looked at.
inline std::wstring SeparatorOf(const QuonPath& path)
{
    QuonPath probe;
    probe = path;
    probe = L"";
    probe.AddTrailingSeparator();
    return Text(probe);
}

/// A path with the separator "/" and the text as it is.
inline QuonPath& MakeForward(QuonPath& path, const wchar_t* text)
{
    path.Assign(text, QuonPathForwardSlash);
    return path;
}

/// A text of `length` times the same character.
inline std::wstring Repeated(std::size_t length, wchar_t ch)
{
    return std::wstring(length, ch);
}

/// Random texts of all that path rules look at: letters, both separators, quotes, dots and colons.
class RandomTexts
{
public:
    explicit RandomTexts(unsigned seed, std::wstring alphabet = L"aB\\\\//\".:")
        : m_engine(seed), m_alphabet(std::move(alphabet))
    {
    }

    std::wstring Next(std::size_t longest)
    {
        std::wstring text(Below(longest + 1), L' ');
        for (wchar_t& ch : text)
        {
            ch = m_alphabet[Below(m_alphabet.size())];
        }
        return text;
    }

    // The engine's numbers are the same everywhere, those of the standard distributions are not.
    std::size_t Below(std::size_t bound) { return m_engine() % bound; }

private:
    std::mt19937 m_engine;
    std::wstring m_alphabet;
};

}  // namespace quon_test
