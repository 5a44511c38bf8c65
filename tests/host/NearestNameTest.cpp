#include "host/NearestName.h"

#include <gtest/gtest.h>

namespace
{

using quonhost::NearestName;
using quonhost::Suggestion;

const std::vector<std::string> kNames = {"folders", "tree", "copy", "move", "remove", "points", "landxml"};

TEST(NearestName, IsOneThatFewEditsLeadTo)
{
    struct Row
    {
        const char* text;
        const char* nearest;  // empty: none
    };
    for (const Row& row : {Row{"tree", "tree"},
                           Row{"tre", "tree"},
                           Row{"teer", "tree"},
                           Row{"trees", "tree"},
                           Row{"TREE", "tree"},
                           Row{"cpoy", "copy"},
                           Row{"cop", "copy"},
                           Row{"mov", "move"},
                           Row{"remvoe", "remove"},
                           Row{"points.", "points"},
                           Row{"land", "landxml"},
                           Row{"l", "landxml"},
                           Row{"foldres", "folders"},
                           Row{"landXML", "landxml"},
                           Row{"nonsense", ""},
                           Row{"", ""},
                           Row{"xyz", ""},
                           Row{"/", ""},
                           Row{"survey.xml", ""},
                           Row{"\xC3\xA9", ""}})
    {
        EXPECT_EQ(NearestName(row.text, kNames).value_or(""), row.nearest) << row.text;
    }
}

TEST(NearestName, IsNotSoughtForTextsOfAnyLength)
{
    EXPECT_EQ(NearestName(std::string(10'000'000, 't'), kNames), std::nullopt);
    EXPECT_EQ(NearestName("tree", {}), std::nullopt);
}

TEST(NearestName, IsTheFirstOfEqualOnes)
{
    EXPECT_EQ(NearestName("dog", {"deg", "dig"}), "deg");
}

TEST(Suggestion, IsEmptyWithoutANearName)
{
    EXPECT_EQ(Suggestion("tre", kNames), "; did you mean \"tree\"?");
    EXPECT_EQ(Suggestion("nonsense", kNames), "");
}

}  // namespace
