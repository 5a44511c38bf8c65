#include "paths/PathStringInternal.h"

#include "base/LengthInternal.h"
#include "base/MemoryInternal.h"
#include "paths/PathTextInternal.h"

#include <algorithm>
#include <cwchar>

namespace QuonPathText
{

namespace
{

/// Room for a text that is gone at the end of the scope: on the stack for the paths of every day.
class Scratch
{
public:
    explicit Scratch(std::size_t length)
        : m_data(length <= kLocalLength ? m_local : m_string.GetBuffer(ToStringLength(length)))
    {
    }
    Scratch(const Scratch&) = delete;
    Scratch& operator=(const Scratch&) = delete;

    wchar_t* Data() { return m_data; }

private:
    static constexpr std::size_t kLocalLength = 520;

    wchar_t m_local[kLocalLength];
    CString m_string;
    wchar_t* m_data;
};

}  // namespace

std::wstring_view View(const CString& text)
{
    return {text.GetString(), static_cast<std::size_t>(text.GetLength())};
}

std::wstring_view View(const wchar_t* text)
{
    return text == nullptr ? std::wstring_view() : std::wstring_view(text);
}

CString MakeString(std::wstring_view text)
{
    return CString(text.data(), ToStringLength(text.size()));
}

void SetText(CString& target, std::wstring_view text)
{
    target.SetString(text.data(), ToStringLength(text.size()));
}

void NormalizeString(CString& text, wchar_t separator)
{
    if (IsNormal(View(text), separator))
    {
        return;
    }
    const auto length = static_cast<std::size_t>(text.GetLength());
    // A path that cannot be rewritten for lack of memory still names the same file: it is left as it is.
    RunsInMemory([&] {
        wchar_t* const buffer = text.GetBuffer(ToStringLength(length + 1));
        text.ReleaseBuffer(ToStringLength(Normalize({buffer, length}, separator, buffer)));
    });
}

void JoinString(CString& text, wchar_t separator, std::wstring_view other)
{
    // `other` comes first: it may lie in the buffer that is rewritten below.
    Scratch scratch(other.size() + 1);
    std::wstring_view tail(scratch.Data(), Normalize(other, separator, scratch.Data()));

    const auto oldLength = static_cast<std::size_t>(text.GetLength());
    const bool isNormal = IsNormal(View(text), separator);
    // Both normal forms may be longer than their texts by one character, and one separator comes between them.
    wchar_t* const buffer = text.GetBuffer(ToStringLength(oldLength + 2 + tail.size()));
    std::size_t length = isNormal ? oldLength : Normalize({buffer, oldLength}, separator, buffer);
    if (length > 0 && !tail.empty())
    {
        if (!IsSeparator(buffer[length - 1]))
        {
            buffer[length++] = separator;
        }
        const auto skipped = std::find_if_not(tail.begin(), tail.end(), IsSeparator) - tail.begin();
        tail.remove_prefix(static_cast<std::size_t>(skipped));
    }
    tail.copy(buffer + length, tail.size());
    text.ReleaseBuffer(ToStringLength(length + tail.size()));
}

}  // namespace QuonPathText
