#include "support/StringHelpers.h"

#include <gtest/gtest.h>

#include "support/Wide.h"

namespace
{

using quon_test::Wide;

struct CaptionRow
{
    const wchar_t* text;
    const wchar_t* label;
    const wchar_t* trimmed;
};

TEST(MakeCaption, TrimsAndDressesLabels)
{
    const CaptionRow rows[] = {
        {L"  Name ", L"\nName: ", L"Name"},
        {L"Name:", L"\nName: ", L"Name:"},
        {L"Name: ", L"\nName: ", L"Name:"},
        {L"Name :", L"\nName : ", L"Name :"},
        {L"   ", L"", L""},
        {L"", L"", L""},
        {L":", L"\n: ", L":"},
        {L"x", L"\nx: ", L"x"},
        // A line feed at the beginning is white space: it is trimmed and put back.
        {L"\nName", L"\nName: ", L"Name"},
        {L"\r\n\tName\v\f", L"\nName: ", L"Name"},
        {L"two\nlines", L"\ntwo\nlines: ", L"two\nlines"},
        {L"\u00a0Name\u3000", L"\nName: ", L"Name"},
        {L"Name::", L"\nName:: ", L"Name::"},
    };
    for (const CaptionRow& row : rows)
    {
        SCOPED_TRACE(testing::PrintToString(row.text));
        CString text(row.text);
        MakeCaption(text, true);
        EXPECT_EQ(Wide(text), row.label);
        text = row.text;
        MakeCaption(text, false);
        EXPECT_EQ(Wide(text), row.trimmed);
    }
}

TEST(MakeCaption, IsStableOnItsOwnResult)
{
    CString text(L"Name");
    MakeCaption(text, true);
    const CString once(text);
    MakeCaption(text, true);
    EXPECT_EQ(text, once);
}

}  // namespace
