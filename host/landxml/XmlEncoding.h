// The encodings of XML files.
#pragma once

#include <afx.h>

#include <string>

namespace quonhost
{

/// Returns the bytes of an XML file as UTF-8 without a byte order mark. The encoding is the one that a byte order mark,
/// the first characters or the XML declaration give; without any of them it is UTF-8.
/// @throws CommandError when the encoding is not supported or the bytes are not text in it; `name` is the file as error
/// texts show it
std::string XmlBytesAsUtf8(const std::wstring& name, std::string bytes);

}  // namespace quonhost
