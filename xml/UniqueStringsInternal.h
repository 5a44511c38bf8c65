/// @file
/// Appends strings to an array that does not have them yet.
#pragma once

#include <afx.h>
#include <afxcoll.h>

#include <string_view>
#include <unordered_set>

namespace xml_internal
{

/// Looks a string up in constant time. While one lives nobody else changes the array.
class UniqueStrings
{
public:
    explicit UniqueStrings(CStringArray& target) : m_target(target)
    {
        for (INT_PTR i = 0; i < target.GetSize(); ++i)
        {
            m_known.insert(ViewOf(target[i]));
        }
    }
    UniqueStrings(const UniqueStrings&) = delete;
    UniqueStrings& operator=(const UniqueStrings&) = delete;

    /// Appends `string`, a `CString` or its characters, unless some entry equals it. Case matters.
    template <typename String>
    void Append(const String& string)
    {
        if (m_known.find(std::wstring_view(string)) == m_known.end())
        {
            const INT_PTR added = m_target.Add(string);
            m_known.insert(ViewOf(m_target[added]));
        }
    }

private:
    // The view stays valid as long as the array holds the string: an array that grows moves only the strings, and the
    // characters stay where they are.
    static std::wstring_view ViewOf(const CString& string) { return std::wstring_view(string.GetString()); }

    CStringArray& m_target;
    std::unordered_set<std::wstring_view> m_known;
};

}  // namespace xml_internal
