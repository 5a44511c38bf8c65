// Construction, copying, flags, and what tells or changes the shape of a path's text.
#include "paths/QuonPath.h"

#include <gtest/gtest.h>

#include <climits>
#include <cstring>
#include <type_traits>
#include <utility>

#include "helpers/RunTimeLocale.h"
#include "paths/PathTestSupport.h"

using quon_test::MakeForward;
using quon_test::Repeated;
using quon_test::SeparatorOf;
using quon_test::Text;

namespace
{

// A framework string counts its characters; what reads the text as a zero-terminated one stops at the zero.
TEST(QuonPathConstruction, TakesACStringWithAZeroInsideWhole)
{
    const CString text(L"C:\\a\0b", 6);
    QuonPath path(text, 0);
    EXPECT_STREQ(static_cast<const wchar_t*>(path), L"C:\\a");
    EXPECT_TRUE(path.IsCharAt(5, L'b'));
    path.Append(L"c");
    EXPECT_EQ(std::wstring(static_cast<const wchar_t*>(path), 8), std::wstring(L"C:\\a\0b\\c", 8));
    path = text;
    EXPECT_TRUE(path.IsCharAt(5, L'b'));
}

TEST(QuonPathConstruction, TakesTheTextOfEverySource)
{
    const wchar_t* const expected = L"C:\\a";
    EXPECT_EQ(Text(QuonPath()), L"");
    EXPECT_EQ(Text(QuonPath(L"C:\\a", 0)), expected);
    EXPECT_EQ(Text(QuonPath(std::wstring(L"C:\\a"), 0)), expected);
    EXPECT_EQ(Text(QuonPath(CString(L"C:\\a"), 0)), expected);
    EXPECT_EQ(Text(QuonPath(QuonPath(L"C:\\a", 0), 0)), expected);
}

TEST(QuonPathConstruction, NullIsTheEmptyText)
{
    const wchar_t* const none = nullptr;
    EXPECT_EQ(Text(QuonPath(none, 0)), L"");
    QuonPath path(L"a", 0);
    path = none;
    EXPECT_EQ(Text(path), L"");
    path = L"a";
    path.Assign(none, QuonPathAddTrailing);
    EXPECT_EQ(Text(path), L"\\");
}

TEST(QuonPathConstruction, StandardStringEndsAtItsFirstZero)
{
    const std::wstring text(L"ab\0cd", 5);
    EXPECT_EQ(Text(QuonPath(text, QuonPathAddTrailing)), L"ab\\");
    QuonPath path;
    path = text;
    EXPECT_EQ(Text(path.Append(text)), L"ab\\ab");
}

TEST(QuonPathConstruction, EveryFormAppliesTheFlags)
{
    const QuonPathFlags flags = QuonPathForwardSlash | QuonPathAddTrailing;
    EXPECT_EQ(Text(QuonPath(L"a", flags)), L"a/");
    EXPECT_EQ(Text(QuonPath(std::wstring(L"a"), flags)), L"a/");
    EXPECT_EQ(Text(QuonPath(CString(L"a"), flags)), L"a/");
    EXPECT_EQ(Text(QuonPath(QuonPath(L"a", 0), flags)), L"a/");
    EXPECT_EQ(Text(QuonPath(9, flags)), L"/");
}

TEST(QuonPathConstruction, FlagsSetTheSeparatorOfACopyAnew)
{
    QuonPath forward;
    MakeForward(forward, L"a");
    EXPECT_EQ(SeparatorOf(QuonPath(forward, 0)), L"\\");
    EXPECT_EQ(SeparatorOf(QuonPath(forward, QuonPathForwardSlash)), L"/");
}

TEST(QuonPathCopying, CopyConstructionResetsTheSeparator)
{
    QuonPath forward;
    MakeForward(forward, L"a/b");
    const QuonPath copy(forward);
    EXPECT_EQ(Text(copy), L"a/b");
    EXPECT_EQ(SeparatorOf(copy), L"\\");
    EXPECT_EQ(SeparatorOf(forward), L"/");
}

TEST(QuonPathCopying, MovingIsCopying)
{
    QuonPath forward;
    MakeForward(forward, L"a/b");
    const QuonPath moved(std::move(forward));
    EXPECT_EQ(Text(moved), L"a/b");
    EXPECT_EQ(SeparatorOf(moved), L"\\");
    EXPECT_EQ(Text(forward), L"a/b");
}

TEST(QuonPathCopying, AssignmentCarriesTheSeparator)
{
    QuonPath forward;
    MakeForward(forward, L"a/b");
    QuonPath assigned(L"x", 0);
    assigned = forward;
    EXPECT_EQ(Text(assigned), L"a/b");
    EXPECT_EQ(SeparatorOf(assigned), L"/");
    assigned = QuonPath(L"y", 0);
    EXPECT_EQ(SeparatorOf(assigned), L"\\");
}

TEST(QuonPathCopying, SelfAssignmentDoesNothing)
{
    QuonPath forward;
    MakeForward(forward, L"a/b");
    const QuonPath& same = forward;
    forward = same;
    EXPECT_EQ(Text(forward), L"a/b");
    EXPECT_EQ(SeparatorOf(forward), L"/");
}

TEST(QuonPathCopying, AssigningAStringKeepsTheSeparator)
{
    QuonPath forward;
    MakeForward(forward, L"a");
    forward = L"b\\c";
    EXPECT_EQ(Text(forward), L"b\\c");
    EXPECT_EQ(SeparatorOf(forward), L"/");
    forward = CString(L"d");
    EXPECT_EQ(Text(forward), L"d");
    EXPECT_EQ(SeparatorOf(forward), L"/");
    forward = std::wstring(L"e");
    EXPECT_EQ(Text(forward), L"e");
    EXPECT_EQ(SeparatorOf(forward), L"/");
}

TEST(QuonPathCopying, CopiesDoNotSeeEachOthersChanges)
{
    QuonPath original(L"a\\b", 0);
    QuonPath copy(original);
    copy.RemoveLastComponent();
    EXPECT_EQ(Text(copy), L"a\\");
    EXPECT_EQ(Text(original), L"a\\b");
    QuonPath joined(original);
    joined.Append(L"c");
    EXPECT_EQ(Text(original), L"a\\b");
}

TEST(QuonPathCopying, PartOfTheOwnTextMayBeAssigned)
{
    QuonPath path(L"C:\\folder\\name", 0);
    path = static_cast<const wchar_t*>(path) + 3;
    EXPECT_EQ(Text(path), L"folder\\name");
    path.Assign(static_cast<const wchar_t*>(path) + 7, 0);
    EXPECT_EQ(Text(path), L"name");
    path.Assign(path, QuonPathForwardSlash | QuonPathAddTrailing);
    EXPECT_EQ(Text(path), L"name/");
}

TEST(QuonPathCopying, NothingIsVirtualOrDerived)
{
    EXPECT_FALSE(std::is_polymorphic_v<QuonPath>);
    EXPECT_EQ(sizeof(QuonPath), sizeof(CString) + sizeof(const wchar_t*));
}

TEST(QuonPathCopying, TextStandsBeforeTheSeparator)
{
    const QuonPath path(L"a", 0);
    const wchar_t* fields[2] = {};
    static_assert(sizeof(fields) == sizeof(path));
    std::memcpy(static_cast<void*>(fields), static_cast<const void*>(&path), sizeof(path));
    EXPECT_EQ(fields[0], static_cast<const wchar_t*>(path));
    EXPECT_STREQ(fields[1], L"\\");
}

TEST(QuonPathCopying, SeparatorIsOneOfTwoStaticTexts)
{
    const auto separator = [](const QuonPath& path) {
        const wchar_t* fields[2] = {};
        std::memcpy(static_cast<void*>(fields), static_cast<const void*>(&path), sizeof(path));
        return fields[1];
    };
    const QuonPath first(L"a", QuonPathForwardSlash);
    const QuonPath second(L"b", QuonPathForwardSlash);
    const QuonPath third(L"c", 0);
    const QuonPath fourth;
    EXPECT_EQ(separator(first), separator(second));
    EXPECT_EQ(separator(third), separator(fourth));
    EXPECT_STREQ(separator(first), L"/");
    EXPECT_STREQ(separator(third), L"\\");
}

TEST(QuonPathAssign, ReplacesTheTextAndAppliesTheFlags)
{
    const QuonPathFlags flags = QuonPathForwardSlash | QuonPathAddTrailing;
    QuonPath path(L"old", 0);
    path.Assign(L"a", flags);
    EXPECT_EQ(Text(path), L"a/");
    path.Assign(std::wstring(L"b"), flags);
    EXPECT_EQ(Text(path), L"b/");
    path.Assign(QuonPath(L"c", 0), flags);
    EXPECT_EQ(Text(path), L"c/");
    EXPECT_EQ(SeparatorOf(path), L"/");
    path.Assign(L"d", 0);
    EXPECT_EQ(SeparatorOf(path), L"\\");
}

TEST(QuonPathFlagNames, HaveTheirValues)
{
    EXPECT_EQ(sizeof(QuonPathFlags), 4u);
    EXPECT_FALSE(std::is_signed_v<QuonPathFlags>);
    EXPECT_EQ(QuonPathForwardSlash, 0x01u);
    EXPECT_EQ(QuonPathBackslash, 0x02u);
    EXPECT_EQ(QuonPathStripTrailing, 0x04u);
    EXPECT_EQ(QuonPathAddTrailing, 0x08u);
    EXPECT_EQ(QuonPathLowerCase, 0x10u);
    EXPECT_EQ(QuonPathUpperCase, 0x20u);
    EXPECT_EQ(QuonPathNormalize, 0x40u);
}

TEST(QuonPathFlags, CaseFollowsTheLocaleOfTheRunTime)
{
    const quon_test::RunTimeLocale german("German");
    EXPECT_EQ(Text(QuonPath(L"\x00C4Z", QuonPathLowerCase)), L"\x00E4z");
    EXPECT_EQ(Text(QuonPath(L"\x00E4z", QuonPathUpperCase)), L"\x00C4Z");
}

struct FlagRow
{
    const wchar_t* text;
    QuonPathFlags flags;
    const wchar_t* expected;
    const wchar_t* separator;
};

TEST(QuonPathFlagsTable, EachGroupIsANumber)
{
    const FlagRow rows[] = {
        {L"aB/c\\", 0x00, L"aB/c\\", L"\\"},
        {L"aB/c\\", 0x01, L"aB/c\\", L"/"},
        {L"aB/c\\", 0x02, L"aB/c\\", L"\\"},
        {L"aB/c\\", 0x03, L"aB/c\\", L"\\"},
        {L"aB/c\\/", 0x04, L"aB/c", L"\\"},
        {L"aB/c", 0x08, L"aB/c\\", L"\\"},
        {L"aB/c", 0x09, L"aB/c/", L"/"},
        {L"aB/c\\", 0x0C, L"aB/c\\", L"\\"},
        {L"aB/c", 0x0C, L"aB/c", L"\\"},
        {L"aB/c", 0x10, L"ab/c", L"\\"},
        {L"aB/c", 0x20, L"AB/C", L"\\"},
        {L"aB/c", 0x30, L"aB/c", L"\\"},
        {L"\x00C4Z", 0x10, L"\x00C4z", L"\\"},  // no locale is set: A to Z alone
        {L"\x00E4z", 0x20, L"\x00E4Z", L"\\"},
        {L"aB//c\\", 0x40, L"aB\\c\\", L"\\"},
        {L"aB//c\\", 0x41, L"aB/c/", L"/"},
        {L"aB//c\\\\", 0x45, L"aB/c", L"/"},
        {L"aB//c", 0x49, L"aB/c/", L"/"},
        {L"aB//c", 0x69, L"AB/C/", L"/"},
        {L"aB//c", 0x59, L"ab/c/", L"/"},
        {L"", 0x08, L"\\", L"\\"},
        {L"", 0x48, L"\\", L"\\"},
        // The trailing separator goes before the text is normalized: the quote that was behind it vanishes later.
        {L"a\\\"", 0x44, L"a", L"\\"},
        {L"a\"", 0x48, L"a\\", L"\\"},
        {L"\\\\", 0x44, L"", L"\\"},
        {L"\\\\", 0x48, L"\\\\\\", L"\\"},
        {L"aB/c\\", 0xFFFFFF80, L"aB/c\\", L"\\"},
        {L"a//b", 0xFFFFFFFF, L"a\\b", L"\\"},
    };
    for (const FlagRow& row : rows)
    {
        SCOPED_TRACE(testing::Message() << "text " << row.text << " flags " << row.flags);
        QuonPath path(row.text, row.flags);
        EXPECT_EQ(Text(path), row.expected);
        EXPECT_EQ(SeparatorOf(path), row.separator);
        QuonPath applied;
        MakeForward(applied, row.text);
        applied.ApplyFlags(row.flags);
        EXPECT_EQ(Text(applied), row.expected);
        EXPECT_EQ(SeparatorOf(applied), row.separator);
    }
}

struct ShapeRow
{
    const wchar_t* text;
    const wchar_t* added;
    const wchar_t* addedForward;
    const wchar_t* removed;
    bool hasTrailing;
    bool isUnc;
};

TEST(QuonPathShape, TrailingSeparatorsAndUncPrefix)
{
    const ShapeRow rows[] = {
        {L"", L"\\", L"/", L"", false, false},
        {L"\\", L"\\", L"\\", L"", true, false},
        {L"/", L"/", L"/", L"", true, false},
        {L"C:", L"C:\\", L"C:/", L"C:", false, false},
        {L"C:\\", L"C:\\", L"C:\\", L"C:", true, false},
        {L"C:/", L"C:/", L"C:/", L"C:", true, false},
        {L"a\\/\\", L"a\\/\\", L"a\\/\\", L"a", true, false},
        {L"a\\b//", L"a\\b//", L"a\\b//", L"a\\b", true, false},
        {L"\\/\\", L"\\/\\", L"\\/\\", L"", true, true},
        {L"\\\\", L"\\\\", L"\\\\", L"", true, true},
        {L"//", L"//", L"//", L"", true, true},
        {L"/\\x", L"/\\x\\", L"/\\x/", L"/\\x", false, true},
        {L"\\/x", L"\\/x\\", L"\\/x/", L"\\/x", false, true},
        {L"\\\\srv", L"\\\\srv\\", L"\\\\srv/", L"\\\\srv", false, true},
        {L"x\\\\", L"x\\\\", L"x\\\\", L"x", true, false},
        {L"\\x", L"\\x\\", L"\\x/", L"\\x", false, false},
        // A double quote is no separator here.
        {L"a\"", L"a\"\\", L"a\"/", L"a\"", false, false},
        {L"a\\\"", L"a\\\"\\", L"a\\\"/", L"a\\\"", false, false},
        {L"\\\"", L"\\\"\\", L"\\\"/", L"\\\"", false, false},
    };
    for (const ShapeRow& row : rows)
    {
        SCOPED_TRACE(testing::Message() << "text " << row.text);
        QuonPath path(row.text, 0);
        EXPECT_EQ(path.HasTrailingSeparator(), row.hasTrailing);
        EXPECT_EQ(path.IsUNC(), row.isUnc);
        path.AddTrailingSeparator();
        EXPECT_EQ(Text(path), row.added);
        MakeForward(path, row.text).AddTrailingSeparator();
        EXPECT_EQ(Text(path), row.addedForward);
        path.Assign(row.text, 0);
        path.RemoveTrailingSeparators();
        EXPECT_EQ(Text(path), row.removed);
    }
}

TEST(QuonPathShape, RemovingTrailingSeparatorsTakesTextsOfAnyLength)
{
    const std::wstring separators = Repeated(32767, L'\\');
    QuonPath path(separators, QuonPathStripTrailing);
    EXPECT_EQ(Text(path), L"");
    path = L"a" + separators;
    path.RemoveTrailingSeparators();
    EXPECT_EQ(Text(path), L"a");
    path = Repeated(32766, L'a') + L"\\";
    path.RemoveTrailingSeparators();
    EXPECT_EQ(Text(path), Repeated(32766, L'a'));
}

struct CharRow
{
    int index;
    wchar_t ch;
    bool expected;
};

TEST(QuonPathShape, IsCharAtClampsBelowAndRefusesAbove)
{
    const CharRow rows[] = {{0, L'a', true},   {0, L'b', false},        {1, L'b', true},  {2, L'c', true},
                            {2, L'\0', false}, {3, L'\0', true},        {3, L'c', false}, {4, L'\0', false},
                            {4, L'a', false},  {INT_MAX, L'\0', false}, {-1, L'a', true}, {-5, L'a', true},
                            {-5, L'b', false}, {INT_MIN, L'a', true}};
    const QuonPath path(L"abc", 0);
    for (const CharRow& row : rows)
    {
        SCOPED_TRACE(testing::Message() << "index " << row.index << " character " << static_cast<int>(row.ch));
        EXPECT_EQ(path.IsCharAt(row.index, row.ch), row.expected);
    }
    EXPECT_TRUE(QuonPath().IsCharAt(0, L'\0'));
    EXPECT_TRUE(QuonPath().IsCharAt(-1, L'\0'));
    EXPECT_FALSE(QuonPath().IsCharAt(1, L'\0'));
}

TEST(QuonPathBackslashFunctions, CountTheBackslashAlone)
{
    const struct
    {
        const wchar_t* text;
        const wchar_t* added;
        const wchar_t* removed;
    } rows[] = {
        {L"", L"\\", L""},       {L"\\", L"\\", L""},          {L"a", L"a\\", L"a"},      {L"a\\", L"a\\", L"a"},
        {L"a/", L"a/\\", L"a/"}, {L"a\\\\", L"a\\\\", L"a\\"}, {L"a/\\", L"a/\\", L"a/"}, {L"a\\/", L"a\\/\\", L"a\\/"},
    };
    for (const auto& row : rows)
    {
        SCOPED_TRACE(testing::Message() << "text " << row.text);
        CString text(row.text);
        AddTrailingBackslash(text);
        EXPECT_EQ(Text(text), row.added);
        text = row.text;
        RemoveTrailingBackslash(text);
        EXPECT_EQ(Text(text), row.removed);
    }
}

}  // namespace
