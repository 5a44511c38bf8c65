/// @file
/// Framework strings as standard ones, which compare with embedded zeros and print themselves in failures.
#pragma once

#include <afx.h>

#include <string>

namespace quon_test
{

inline std::wstring Wide(const CString& text)
{
    return std::wstring(text.GetString(), static_cast<std::size_t>(text.GetLength()));
}

inline CString ToCString(const std::wstring& text)
{
    return CString(text.data(), static_cast<int>(text.size()));
}

}  // namespace quon_test
