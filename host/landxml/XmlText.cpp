#include "host/landxml/XmlText.h"

#include <afx.h>

#include <vector>

namespace quonhost
{

bool IsXmlText(const std::string& text)
{
    if (text.empty())
    {
        return true;
    }
    const int length = static_cast<int>(text.size());
    std::vector<wchar_t> wide(text.size());
    const int converted =
        ::MultiByteToWideChar(CP_UTF8, MB_ERR_INVALID_CHARS, text.data(), length, wide.data(), length);
    for (int i = 0; i < converted; ++i)
    {
        if (wide[static_cast<size_t>(i)] < L' ' || wide[static_cast<size_t>(i)] >= 0xFFFE)
        {
            return false;
        }
    }
    return converted > 0;
}

}  // namespace quonhost
