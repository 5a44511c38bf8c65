// Point texts of ten megabytes and more that try every way of being slow or of overflowing something.
#include "points/QuonPointString.h"

#include <gtest/gtest.h>

#include <string>

#include "points/QuonSortedPointString.h"
#include "points/QuonUnsortedPointString.h"
#include "helpers/HardLimit.h"

namespace
{

constexpr std::size_t kLength = 10 * 1024 * 1024 / sizeof(wchar_t);

std::wstring Repeat(const std::wstring& unit)
{
    std::wstring text;
    text.reserve(kLength + unit.size());
    while (text.size() < kLength)
    {
        text += unit;
    }
    return text;
}

struct Row
{
    const char* name;
    std::wstring text;
    bool isValid;
    unsigned long count;          // as GetPointCount tells it
    const wchar_t* withoutTwins;  // the text that RemoveDuplicates leaves
    const wchar_t* rest;          // what RemovePoints leaves of 2-4
    unsigned long number;         // what AddPoint reads
};

constexpr unsigned long kLength32 = static_cast<unsigned long>(kLength);

std::vector<Row> Rows()
{
    const std::wstring digits(kLength, L'9');
    return {
        {"one number", digits, true, 1, L"2147483647", L"2-4", 2147483647},
        {"zeros, then a digit", std::wstring(kLength, L'0') + L"7", true, 1, L"7", L"2-4", 7},
        {"nothing but zeros", std::wstring(kLength, L'0'), false, 0, L"", L"2-4", 0},
        {"a range between two numbers", digits + L"-" + digits, true, 1, L"2147483647", L"2-4", 2147483647},
        {"blanks within a range", L"1" + std::wstring(kLength, L' ') + L"-" + std::wstring(kLength, L' ') + L"3", true,
         3, L"1-3", L"4", 1},
        {"the same point over and over", Repeat(L"5,"), true, kLength32 / 2, L"5", L"2-4", 5},
        {"the same range over and over", Repeat(L"1-9,"), true, kLength32 / 4 * 9, L"1-9", L"", 1},
        {"minus signs", std::wstring(kLength, L'-'), false, 0, L"", L"2-4", 0},
        {"a number and minus signs", L"1" + std::wstring(kLength, L'-'), false, 0, L"", L"2-4", 1},
        {"one comparison", std::wstring(kLength, L'<') + L"=7", true, 1, L"0", L"2-4", 0},
        {"letters", std::wstring(kLength, L'x'), false, 0, L"", L"2-4", 0},
        {"a letter at the end", Repeat(L"5,") + L"x", false, kLength32 / 2, L"5", L"2-4", 5},
        {"zero characters at once", std::wstring(kLength, L'\0'), true, 0, L"", L"2-4", 0},
    };
}

TEST(HostilePoints, TextsOfTenMegabytesAreWalkedAndRewritten)
{
    const quon_test::HardLimit limit;
    for (const Row& row : Rows())
    {
        SCOPED_TRACE(row.name);
        QuonPointString string(row.text.c_str());
        EXPECT_EQ(string.IsValid() != FALSE, row.isValid);
        string.SetText(row.text.c_str());
        EXPECT_EQ(string.GetPointCount(), row.count);
        for (const BOOL sorted : {TRUE, FALSE})
        {
            string.SetText(row.text.c_str());
            string.RemoveDuplicates(sorted);
            // The point of a comparison, 0, is in no set: a sorted text loses it.
            const bool isLost = sorted && row.withoutTwins[0] == L'0';
            EXPECT_STREQ(string.GetText(), isLost ? L"" : row.withoutTwins);
        }
        string.SetText(L"2-4");
        string.RemovePoints(row.text.c_str(), TRUE);
        EXPECT_STREQ(string.GetText(), row.rest);
    }
}

TEST(HostilePoints, SetsTakeTextsOfTenMegabytes)
{
    const quon_test::HardLimit limit;
    for (const Row& row : Rows())
    {
        SCOPED_TRACE(row.name);
        // A point that takes a set to its full size costs 256 MB: not for each row.
        if (row.number == 2147483647)
        {
            continue;
        }
        QuonSortedPointString sorted;
        sorted.AddPoint(row.text.c_str());
        sorted.UpdateText();
        QuonUnsortedPointString unsorted;
        unsorted.AddPoint(row.text.c_str());
        unsorted.UpdateText();
        // A sorted set ignores the 0 of a text without a number, an unsorted one takes it.
        const std::wstring number = std::to_wstring(row.number);
        EXPECT_STREQ(sorted.GetText(), row.number == 0 ? L"" : number.c_str());
        EXPECT_STREQ(unsorted.GetText(), number.c_str());
    }
}

TEST(HostilePoints, LabelsAreKeptWhole)
{
    QuonPointString string;
    const std::wstring label(kLength, L'l');
    string.SetLabel(label.c_str());
    EXPECT_TRUE(string.GetLabel() == label);
}

}  // namespace
