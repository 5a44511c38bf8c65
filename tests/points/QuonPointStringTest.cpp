#include "points/QuonPointString.h"

#include "points/PointTestSupport.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cwchar>
#include <string>
#include <type_traits>
#include <utility>

namespace
{

using quon_test::Points;
using quon_test::Probe;
using quon_test::Ranges;
using quon_test::Shown;
using quon_test::TextOf;
using quon_test::WalkPoints;
using quon_test::WalkRanges;

struct WalkRow
{
    std::wstring text;
    bool valid;
    Points points;
};

class PointStringWalk : public testing::TestWithParam<WalkRow>
{
};

TEST_P(PointStringWalk, HandsOutThePointsUpToTheFirstInvalidItem)
{
    const WalkRow& row = GetParam();
    QuonPointString string(row.text.c_str());
    EXPECT_EQ(WalkPoints(string), row.points);
    EXPECT_EQ(WalkPoints(string), row.points) << "a walk can be repeated";
    EXPECT_EQ(TextOf(string), row.text) << "and leaves the text alone";
}

TEST_P(PointStringWalk, IsValidSaysWhetherItGoesToTheEnd)
{
    const WalkRow& row = GetParam();
    QuonPointString string(row.text.c_str());
    for (int call = 0; call < 3; ++call)
    {
        EXPECT_EQ(string.IsValid(), row.valid ? TRUE : FALSE) << "call " << call;
        EXPECT_EQ(string.IsDone(), TRUE);
    }
}

std::vector<WalkRow> WalkRows()
{
    const Points none;
    const unsigned long most = 2147483647;
    return {
        // Nothing and next to nothing.
        {L"", true, none},
        {L" ", true, none},
        {L" \t\r\n\x00A0\x3000 ", true, none},
        {L",", true, none},
        {L",,,", true, none},
        {L" , ,\t, ", true, none},
        // Numbers.
        {L"1", true, {1}},
        {L"1,,2", true, {1, 2}},
        {L"1,2,", true, {1, 2}},
        {L",1,2", true, {1, 2}},
        {L" 1 , 2 ", true, {1, 2}},
        {L"1, ,2, ,", true, {1, 2}},
        {L"007", true, {7}},
        {L"000000000000000000000000000000000000000000009", true, {9}},
        {L"3,1,2,2,3", true, {3, 1, 2, 2, 3}},
        {L"0", false, none},
        {L"000", false, none},
        {L"1,0,2", false, {1}},
        {L"2147483646", true, {2147483646}},
        {L"2147483647", true, {most}},
        {L"2147483648", true, {most}},
        {L"4294967295", true, {most}},
        {L"4294967296", true, {most}},
        {L"99999999999", true, {most}},
        {L"18446744073709551617", true, {most}},
        {L"99999999999999999999999999999999999999999999999", true, {most}},
        // Ranges.
        {L"1-5", true, {1, 2, 3, 4, 5}},
        {L"5-5", true, {5}},
        {L"20-12", true, {20, 19, 18, 17, 16, 15, 14, 13, 12}},
        {L"1-5, 9, 20-18", true, {1, 2, 3, 4, 5, 9, 20, 19, 18}},
        {L"3-1,2,7-8", true, {3, 2, 1, 2, 7, 8}},
        {L"5 - 7", true, {5, 6, 7}},
        {L"5 -7", true, {5, 6, 7}},
        {L"5- 7", true, {5, 6, 7}},
        {L"  5   -   7  ", true, {5, 6, 7}},
        {L"1-3,2-4", true, {1, 2, 3, 2, 3, 4}},
        {L"2147483646-99999999999", true, {2147483646, most}},
        {L"99999999999-2147483646", true, {most, 2147483646}},
        {L"0-5", false, none},
        {L"0-3", false, none},
        {L"0-0", false, none},
        {L"5-0", false, none},
        {L"5-", false, none},
        {L"5 - ", false, none},
        {L"-", false, none},
        {L"-5", false, none},
        {L"-3", false, none},
        {L" - 3", false, none},
        {L"1-2-3", false, none},
        {L"1--3", false, none},
        {L"1-2-", false, none},
        {L"12 34", false, none},
        {L"1 2-3", false, none},
        {L"5-1 0", false, none},
        {L"5 5 -7", false, none},
        // White space at the ends of an item is trimmed, inside only the blank is allowed.
        {L"\t1\t,\n2\r", true, {1, 2}},
        {L"1\x00A0,2", true, {1, 2}},
        {L"1\t-3", false, none},
        {L"1-\t3", false, none},
        {L"1\t2", false, none},
        {L"1\n", true, {1}},
        // Other characters.
        {L"1;2", false, none},
        {L"a", false, none},
        {L"1a", false, none},
        {L"+1", false, none},
        {L"1.5", false, none},
        {L"0x10", false, none},
        {L"1*", false, none},
        {L"\xFF11", false, none},
        {L"1\xFF11", false, none},
        {L"\x0661", false, none},
        {L"\x2013", false, none},
        {L"1\x2013\x0033", false, none},
        {L"1-3,x,7", false, {1, 2, 3}},
        {L"3-1,x,7", false, {3, 2, 1}},
        {L"x,1", false, none},
        {L"1,2x", false, {1}},
        {L"1,2,3 4,5", false, {1, 2}},
        // Comparisons stand for the point 0.
        {L"<5", true, {0}},
        {L">5", true, {0}},
        {L">=5", true, {0}},
        {L"<=5", true, {0}},
        {L"<<=5", true, {0}},
        {L"<>5", true, {0}},
        {L"><><=5", true, {0}},
        {L"<", true, {0}},
        {L"<=", true, {0}},
        {L"< 5", true, {0}},
        {L"<  5", true, {0}},
        {L"<= 5", true, {0}},
        {L"<0", true, {0}},
        {L" <5 , 2", true, {0, 2}},
        {L"1,<5,2", true, {1, 0, 2}},
        {L"3-2,<5,4", true, {3, 2, 0, 4}},
        {L"<99999999999", true, {0}},
        {L"<==5", false, none},
        {L"<=<5", false, none},
        {L"< <5", false, none},
        {L"< =5", false, none},
        {L"=5", false, none},
        {L"==5", false, none},
        {L"=", false, none},
        {L"=<5", false, none},
        {L"5<", false, none},
        {L"5<6", false, none},
        {L"5=", false, none},
        {L"<5=", false, none},
        {L"<5<", false, none},
        {L"<5-7", false, none},
        {L"<-7", false, none},
        {L"<-", false, none},
        {L"5-<7", false, none},
        {L"5-=7", false, none},
        {L"<5 6", false, none},
        {L"<5-", false, none},
        {L"1-3,=5,7", false, {1, 2, 3}},
    };
}

INSTANTIATE_TEST_SUITE_P(Texts, PointStringWalk, testing::ValuesIn(WalkRows()),
                         [](const testing::TestParamInfo<WalkRow>& row) { return "Row" + std::to_string(row.index); });

void PrintTo(const WalkRow& row, std::ostream* out)
{
    *out << Shown(row.text);
}

TEST(QuonPointString, IsEmptyByDefault)
{
    Probe<QuonPointString> string;
    EXPECT_EQ(TextOf(string), L"");
    EXPECT_EQ(string.m_changed, 1);
    EXPECT_FALSE(string.IsDone());
    EXPECT_FALSE(string.HasLabel());
    EXPECT_STREQ(string.GetLabel(), L"");
    EXPECT_TRUE(string.IsValid());
    EXPECT_EQ(string.GetPointCount(), 0u);
    QuonPointString null(nullptr);
    EXPECT_EQ(TextOf(null), L"");
}

TEST(QuonPointString, RangesAreHandedOutAsTheyAreWritten)
{
    QuonPointString string(L" 1-5, 9,,20 - 12, <=7, 5-5, 0-3, 8");
    EXPECT_EQ(WalkRanges(string), (Ranges{{1, 5}, {9, 9}, {20, 12}, {0, 0}, {5, 5}}));
}

TEST(QuonPointString, ABlankTextStoresNoPoint)
{
    for (const wchar_t* const text : {L"", L"  "})
    {
        QuonPointString string(text);
        unsigned long point = 77;
        string.GetFirstPoint(&point);
        EXPECT_TRUE(string.IsDone());
        EXPECT_EQ(point, 77u);
        unsigned long first = 78;
        unsigned long last = 79;
        string.GetFirstRange(&first, &last);
        EXPECT_TRUE(string.IsDone());
        EXPECT_EQ(first, 78u);
        EXPECT_EQ(last, 79u);
    }
}

// What is stored at the end of a walk is no point, but it is not arbitrary either.
TEST(QuonPointString, TheEndOfAWalkRepeatsTheLastItemsFirstBound)
{
    QuonPointString string(L"7,4-5");
    unsigned long point = 0;
    string.GetFirstPoint(&point);
    for (const unsigned long expected : {4ul, 5ul, 4ul, 5ul, 4ul})
    {
        string.GetNextPoint(&point);
        EXPECT_EQ(point, expected);
    }
    EXPECT_TRUE(string.IsDone());
    unsigned long first = 0;
    unsigned long last = 0;
    string.GetNextRange(&first, &last);
    EXPECT_EQ(first, 4u);
    EXPECT_EQ(last, 5u);
}

TEST(QuonPointString, NoItemIsReadPastAnInvalidOne)
{
    QuonPointString string(L"3-2,x,7");
    unsigned long first = 0;
    unsigned long last = 0;
    string.GetFirstRange(&first, &last);
    for (int call = 0; call < 4; ++call)
    {
        string.GetNextRange(&first, &last);
        EXPECT_TRUE(string.IsDone());
        EXPECT_EQ(first, 3u);
        EXPECT_EQ(last, 2u);
    }
}

TEST(QuonPointString, ABoundOfZeroIsStoredAndEndsTheWalk)
{
    QuonPointString string(L"4,0-3");
    unsigned long first = 0;
    unsigned long last = 0;
    string.GetFirstRange(&first, &last);
    EXPECT_FALSE(string.IsDone());
    string.GetNextRange(&first, &last);
    EXPECT_TRUE(string.IsDone());
    EXPECT_EQ(first, 0u);
    EXPECT_EQ(last, 3u);
}

TEST(QuonPointString, TheErrorOfAWalkAnswersTheNextIsValid)
{
    Probe<QuonPointString> string(L"1,x");
    EXPECT_EQ(WalkPoints(string), Points{1});
    string.m_text = L"1,2";
    EXPECT_FALSE(string.IsValid()) << "the text is not looked at";
    EXPECT_TRUE(string.IsValid()) << "by now it is";

    string.SetText(L"1,x");
    EXPECT_EQ(WalkPoints(string), Points{1});
    string.SetText(L"1,2");
    EXPECT_TRUE(string.IsValid()) << "a new text resets the walk and its error";

    string.SetText(L"1,x");
    EXPECT_EQ(WalkPoints(string), Points{1});
    unsigned long point = 0;
    string.m_text = L"1";
    string.GetFirstPoint(&point);
    EXPECT_TRUE(string.IsValid()) << "a new walk clears it too";
}

TEST(QuonPointString, IsValidLeavesTheWalkAtItsEnd)
{
    QuonPointString string(L"1-3,5");
    unsigned long point = 0;
    string.GetFirstPoint(&point);
    EXPECT_FALSE(string.IsDone());
    EXPECT_TRUE(string.IsValid());
    EXPECT_TRUE(string.IsDone());
    string.GetFirstPoint(&point);
    EXPECT_FALSE(string.IsDone());
    EXPECT_EQ(string.GetPointCount(), 4u);
    EXPECT_TRUE(string.IsDone());
    EXPECT_EQ(WalkPoints(string), (Points{1, 2, 3, 5}));
}

TEST(QuonPointString, PointCountAddsInThirtyTwoBits)
{
    struct Row
    {
        const wchar_t* text;
        unsigned long count;
    };
    for (const Row& row : {
             Row{L"", 0},
             Row{L" , ", 0},
             Row{L"1-5", 5},
             Row{L"5-1", 4294967293},
             Row{L"10-5", 4294967292},
             Row{L"1-5,9,7-7", 7},
             Row{L"1-3,1-3", 6},
             Row{L"5-1,1-3", 0},
             Row{L"1-3,x,7-9", 3},
             Row{L"1-3,0,7-9", 3},
             Row{L"x", 0},
             Row{L"<5,1", 2},
             Row{L"1-2000000000", 2000000000},
             Row{L"1-2147483647,1-2147483647", 4294967294},
             Row{L"1-2147483647,1-2147483647,1-3", 1},
         })
    {
        SCOPED_TRACE(Shown(row.text));
        QuonPointString string(row.text);
        EXPECT_EQ(string.GetPointCount(), row.count);
        EXPECT_EQ(string.GetPointCount(), row.count) << "the count begins anew";
    }
}

TEST(QuonPointString, LabelIsStoredAndMeansNothing)
{
    QuonPointString string(L"1-3");
    string.SetLabel(L"Survey, x");
    EXPECT_TRUE(string.HasLabel());
    EXPECT_STREQ(string.GetLabel(), L"Survey, x");
    EXPECT_TRUE(string.IsValid());
    EXPECT_EQ(WalkPoints(string), (Points{1, 2, 3}));
    string.SetLabel(string.GetLabel());
    EXPECT_STREQ(string.GetLabel(), L"Survey, x");
    string.SetLabel(L"");
    EXPECT_FALSE(string.HasLabel());
    string.SetLabel(L"x");
    string.SetLabel(nullptr);
    EXPECT_FALSE(string.HasLabel());
    EXPECT_STREQ(string.GetLabel(), L"");
}

TEST(QuonPointString, SetTextResetsTheWalkAndKeepsTheLabel)
{
    Probe<QuonPointString> string(L"9-7,5");
    string.SetLabel(L"label");
    unsigned long point = 0;
    string.GetFirstPoint(&point);
    string.m_changed = 0;
    string.m_format[0] = L'x';
    string.m_format[1] = L'y';
    string.SetText(L"2");
    EXPECT_EQ(TextOf(string), L"2");
    EXPECT_EQ(string.m_changed, 1);
    EXPECT_EQ(string.m_format[0], L'\0');
    EXPECT_EQ(string.m_format[1], L'y') << "only the first character is cleared";
    EXPECT_STREQ(string.GetLabel(), L"label");
    EXPECT_FALSE(string.IsDone());
    string.GetNextPoint(&point);
    EXPECT_TRUE(string.IsDone()) << "there is no walk to go on with";
    EXPECT_EQ(point, 0u);
    string.SetText(string.GetText());
    EXPECT_EQ(TextOf(string), L"2");
    string.SetText(string.GetText().GetString() + 1);
    EXPECT_EQ(TextOf(string), L"");
    string.SetText(nullptr);
    EXPECT_EQ(TextOf(string), L"");
}

TEST(QuonPointString, AssignTakesTheTextAlone)
{
    QuonPointString source(L"4,5");
    source.SetLabel(L"source");
    unsigned long point = 0;
    source.GetFirstPoint(&point);

    Probe<QuonPointString> string(L"1-3,x");
    string.SetLabel(L"label");
    WalkPoints(string);
    string.m_changed = 0;
    string.m_format[0] = L'x';
    string.m_format[1] = L'y';
    string.Assign(source);
    EXPECT_EQ(TextOf(string), L"4,5");
    EXPECT_FALSE(string.HasLabel()) << "emptied, not copied";
    EXPECT_EQ(string.m_changed, 1);
    EXPECT_EQ(string.m_format[0], L'\0');
    EXPECT_EQ(string.m_format[1], L'y');
    EXPECT_FALSE(string.IsDone());
    EXPECT_TRUE(string.IsValid()) << "the error is reset";
    source.GetNextPoint(&point);
    EXPECT_EQ(point, 5u) << "the source's walk goes on";
    EXPECT_STREQ(source.GetLabel(), L"source");
}

TEST(QuonPointString, AssigningToItselfDoesNothing)
{
    Probe<QuonPointString> string(L"1-3");
    string.SetLabel(L"label");
    unsigned long point = 0;
    string.GetFirstPoint(&point);
    string.m_changed = 0;
    string.Assign(string);
    EXPECT_EQ(TextOf(string), L"1-3");
    EXPECT_STREQ(string.GetLabel(), L"label");
    EXPECT_EQ(string.m_changed, 0);
    string.GetNextPoint(&point);
    EXPECT_EQ(point, 2u) << "the walk goes on";
}

TEST(QuonPointString, CopiesCarryTheWalkTheLabelAndTheBuffer)
{
    Probe<QuonPointString> string(L" 9-7,5,x");
    string.SetLabel(L"label");
    string.m_changed = 0;
    string.m_format[0] = L'a';
    string.m_format[127] = L'z';
    unsigned long point = 0;
    string.GetFirstPoint(&point);
    string.GetNextPoint(&point);

    Probe<QuonPointString> copy(string);
    Probe<QuonPointString> assigned(L"1");
    assigned = string;
    for (Probe<QuonPointString>* const each : {&copy, &assigned, &string})
    {
        EXPECT_EQ(TextOf(*each), L" 9-7,5,x");
        EXPECT_STREQ(each->GetLabel(), L"label");
        EXPECT_EQ(each->m_changed, 0);
        EXPECT_EQ(each->m_format[0], L'a');
        EXPECT_EQ(each->m_format[127], L'z');
        for (const unsigned long expected : {7ul, 5ul})
        {
            each->GetNextPoint(&point);
            EXPECT_EQ(point, expected);
            EXPECT_FALSE(each->IsDone());
        }
        each->GetNextPoint(&point);
        EXPECT_TRUE(each->IsDone());
    }
    Probe<QuonPointString> ended(string);
    EXPECT_TRUE(ended.IsDone());
    EXPECT_FALSE(ended.IsValid()) << "the error is copied too";
}

// A walk over ranges leaves the cursor at 0, and a number leaves the direction of the range before it.
TEST(QuonPointString, PointsAfterRangesGoOnFromTheCursor)
{
    unsigned long first = 0;
    unsigned long last = 0;
    QuonPointString ascending(L"1-2,7");
    ascending.GetFirstRange(&first, &last);
    ascending.GetNextRange(&first, &last);
    for (const unsigned long expected : {1ul, 2ul, 3ul})
    {
        ascending.GetNextPoint(&first);
        EXPECT_EQ(first, expected);
    }
    QuonPointString descending(L"2-1,7,9");
    descending.GetFirstRange(&first, &last);
    descending.GetNextRange(&first, &last);
    descending.GetNextPoint(&first);
    EXPECT_EQ(first, 9u);
}

// A walk reads the text as it was when it began.
TEST(QuonPointString, AWalkDoesNotSeeLaterTexts)
{
    Probe<QuonPointString> string(L"1,2,3");
    unsigned long point = 0;
    string.GetFirstPoint(&point);
    string.m_text = L"7,8,9";
    string.GetNextPoint(&point);
    EXPECT_EQ(point, 2u);
}

static_assert(std::has_virtual_destructor_v<QuonPointString>);
static_assert(std::is_copy_constructible_v<QuonPointString>);

// Numbers of all lengths, alone and as bounds, at the end of a text and behind other items.
TEST(QuonPointString, ReadsNumbersOfEveryLengthInEveryPlace)
{
    const std::wstring digits = L"1234567890123";
    for (std::size_t firstLength = 1; firstLength <= digits.size(); ++firstLength)
    {
        for (std::size_t lastLength = 0; lastLength <= digits.size(); ++lastLength)
        {
            const std::wstring first = digits.substr(0, firstLength);
            const std::wstring last = lastLength != 0 ? digits.substr(0, lastLength) : first;
            const std::wstring item = lastLength != 0 ? first + L"-" + last : first;
            const auto value = [](const std::wstring& number) {
                return static_cast<unsigned long>(std::min<long long>(std::stoll(number), 2147483647));
            };
            const std::pair<unsigned long, unsigned long> range(value(first), value(last));
            for (const wchar_t* const before : {L"", L"7,", L"7, "})
            {
                for (const wchar_t* const behind : {L"", L" ", L",", L",8", L", 8", L" ,8", L",\t8", L"\t,8"})
                {
                    const std::wstring text = before + item + behind;
                    SCOPED_TRACE(Shown(text));
                    Ranges expected;
                    if (*before != L'\0')
                    {
                        expected.push_back({7, 7});
                    }
                    expected.push_back(range);
                    if (text.back() == L'8' && text.size() > std::wcslen(before) + item.size())
                    {
                        expected.push_back({8, 8});
                    }
                    QuonPointString string(text.c_str());
                    EXPECT_EQ(WalkRanges(string), expected);
                    EXPECT_EQ(string.IsValid(), TRUE);
                }
            }
        }
    }
}

// Room is made for the points up to the last item's at once: they may just as well lie before it, or far beyond.
TEST(QuonPointString, TheOrderOfTheItemsDoesNotMatterForASortedResult)
{
    for (const wchar_t* const text :
         {L"5000000,1,100000", L"1,100000,5000000", L"5000000,100000,1", L"1,5000000,x", L"100000,5000000,1, "})
    {
        SCOPED_TRACE(Shown(text));
        QuonPointString string(text);
        string.RemoveDuplicates(TRUE);
        EXPECT_EQ(TextOf(string),
                  std::wstring(text).find(L'x') == std::wstring::npos ? L"1,100000,5000000" : L"1,5000000");
    }
    std::wstring upAndDown;
    std::wstring expected;
    for (int point = 2; point < 40000; point += 2)
    {
        upAndDown += std::to_wstring(100 * point) + L",";
        expected += L"," + std::to_wstring(100 * point);
    }
    QuonPointString string((upAndDown + L"1").c_str());
    string.RemoveDuplicates(TRUE);
    EXPECT_EQ(TextOf(string), L"1" + expected);
}

}  // namespace
