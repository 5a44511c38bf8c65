// What the tests of the point strings share: walks gathered into vectors, and texts for messages.
#pragma once

#include "points/QuonPointString.h"

#include <string>
#include <utility>
#include <vector>

namespace quon_test
{

using Points = std::vector<unsigned long>;
using Ranges = std::vector<std::pair<unsigned long, unsigned long>>;

inline Points WalkPoints(QuonPointString& string)
{
    Points points;
    unsigned long point = 0;
    for (string.GetFirstPoint(&point); !string.IsDone(); string.GetNextPoint(&point))
    {
        points.push_back(point);
    }
    return points;
}

inline Ranges WalkRanges(QuonPointString& string)
{
    Ranges ranges;
    unsigned long first = 0;
    unsigned long last = 0;
    for (string.GetFirstRange(&first, &last); !string.IsDone(); string.GetNextRange(&first, &last))
    {
        ranges.emplace_back(first, last);
    }
    return ranges;
}

inline std::wstring TextOf(const QuonPointString& string)
{
    return string.GetText().GetString();
}

/// The text in ASCII, for messages: what is not printable there is escaped.
inline std::string Shown(const std::wstring& text)
{
    std::string shown = "\"";
    for (const wchar_t character : text)
    {
        if (character >= L' ' && character < 0x7F)
        {
            shown += static_cast<char>(character);
        }
        else
        {
            shown += "\\u" + std::to_string(static_cast<unsigned>(character));
        }
    }
    return shown + "\"";
}

/// A point string of any class whose protected fields can be seen and set.
template <typename Base>
class Probe : public Base
{
public:
    using Base::Base;
    using Base::m_changed;
    using Base::m_format;
    using Base::m_text;
};

}  // namespace quon_test
