#include "host/landxml/XmlText.h"

#include "host/Console.h"

#include <algorithm>

namespace quonhost
{

bool IsXmlText(std::wstring_view text)
{
    return std::none_of(text.begin(), text.end(), [](wchar_t ch) { return ch < L' ' || ch >= 0xFFFE; });
}

void AppendXmlText(std::string& document, std::wstring_view text)
{
    for (const char ch : ToUtf8(text))
    {
        switch (ch)
        {
            case '&':
                document += "&amp;";
                break;
            case '<':
                document += "&lt;";
                break;
            case '>':
                document += "&gt;";
                break;
            case '"':
                document += "&quot;";
                break;
            default:
                document += ch;
                break;
        }
    }
}

}  // namespace quonhost
