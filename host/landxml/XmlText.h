// What an XML document can hold.
#pragma once

#include <afx.h>

#include <string>

namespace quonhost
{

/// Whether the text is UTF-8 and may stand in an attribute on one line: it holds no control characters.
bool IsXmlText(const std::string& text);

}  // namespace quonhost
