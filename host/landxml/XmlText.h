// What an XML document can hold, and how it is escaped.
#pragma once

#include <afx.h>

#include <string>
#include <string_view>

namespace quonhost
{

/// Returns whether an attribute can hold the text on one line: it has no control characters.
bool IsXmlText(std::wstring_view text);

/// Appends the text, escaped for an element or an attribute in double quotes, as UTF-8.
void AppendXmlText(std::string& document, std::wstring_view text);

}  // namespace quonhost
