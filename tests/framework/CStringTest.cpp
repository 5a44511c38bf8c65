// The string against the framework's documented behaviour: construction, sharing, buffers, conversions, operators.
#include <gtest/gtest.h>
#include <afx.h>
#include <afxdisp.h>
#include <climits>
#include <string>
#include <thread>
#include <vector>

namespace
{
std::wstring Text(const CString& text)
{
    return {text.GetString(), static_cast<size_t>(text.GetLength())};
}

/// The result of the COleException that `action` throws, or S_OK when it throws none.
template <typename Action>
SCODE ThrownResult(Action action)
{
    try
    {
        action();
    }
    catch (COleException* error)
    {
        const SCODE result = error->m_sc;
        error->Delete();
        return result;
    }
    return S_OK;
}

template <typename Action>
bool ThrowsMemoryException(Action action)
{
    try
    {
        action();
    }
    catch (CMemoryException* error)
    {
        error->Delete();
        return true;
    }
    return false;
}

TEST(CStringTest, IsOnePointerToItsCharacters)
{
    const CString text(L"abc");
    const wchar_t* characters = nullptr;
    ASSERT_EQ(sizeof(text), sizeof(characters));
    memcpy(&characters, &text, sizeof(characters));
    EXPECT_EQ(characters, text.GetString());
    EXPECT_STREQ(characters, L"abc");
}

TEST(CStringTest, IsConstructedFromEverySource)
{
    const wchar_t* const noText = nullptr;
    const char* const noNarrowText = nullptr;
    struct Row
    {
        const char* name;
        CString text;
        std::wstring expected;
    };
    const Row rows[] = {
        {"default", CString(), L""},
        {"null", CString(noText), L""},
        {"empty", CString(L""), L""},
        {"text", CString(L"abc"), L"abc"},
        {"narrow null", CString(noNarrowText), L""},
        {"narrow empty", CString(""), L""},
        {"narrow", CString("abc"), L"abc"},
        {"pointer and length", CString(L"abcdef", 3), L"abc"},
        {"pointer and no length", CString(L"abcdef", 0), L""},
        {"null and no length", CString(noText, 0), L""},
        {"zeros within", CString(L"a\0b\0", 4), std::wstring(L"a\0b\0", 4)},
        {"narrow and length", CString("abcdef", 2), L"ab"},
        {"character", CString(L'x'), L"x"},
        {"characters", CString(L'x', 5), L"xxxxx"},
        {"no characters", CString(L'x', 0), L""},
        {"narrow characters", CString('y', 2), L"yy"},
        {"surrogates", CString(L"\xD83D\xDE00"), L"\xD83D\xDE00"},
    };
    for (const Row& row : rows)
    {
        SCOPED_TRACE(row.name);
        EXPECT_EQ(Text(row.text), row.expected);
        EXPECT_EQ(row.text.IsEmpty(), row.expected.empty());
        EXPECT_EQ(row.text.GetString()[row.text.GetLength()], L'\0');
    }
}

TEST(CStringTest, ConvertsNarrowTextFromTheAnsiCodePage)
{
    for (int byte = 1; byte < 256; ++byte)
    {
        SCOPED_TRACE(byte);
        const char narrow[] = {static_cast<char>(byte), 0};
        wchar_t wide[4] = {};
        MultiByteToWideChar(CP_ACP, 0, narrow, -1, wide, 4);
        EXPECT_EQ(Text(CString(narrow)), wide);
        CString assigned(L"before");
        assigned = narrow;
        EXPECT_EQ(Text(assigned), wide);
    }
}

TEST(CStringTest, RejectsANegativeLengthAndANullPointerWithALength)
{
    EXPECT_EQ(ThrownResult([] { CString(L"abc", -1); }), E_INVALIDARG);
    EXPECT_EQ(ThrownResult([] { CString(static_cast<const wchar_t*>(nullptr), 1); }), E_INVALIDARG);
    EXPECT_EQ(ThrownResult([] { CString().GetBuffer(-1); }), E_INVALIDARG);
}

TEST(CStringTest, CopiesShareTheirCharactersUntilOneIsWritten)
{
    CString first(L"abc");
    CString second(first);
    CString third;
    third = second;
    EXPECT_EQ(first.GetString(), second.GetString());
    EXPECT_EQ(first.GetString(), third.GetString());
    second.SetAt(1, L'-');
    EXPECT_EQ(first.GetString(), third.GetString());
    EXPECT_EQ(Text(first), L"abc");
    EXPECT_EQ(Text(second), L"a-c");
    const wchar_t* own = second.GetString();
    second.SetAt(0, L'+');
    EXPECT_EQ(second.GetString(), own);
}

TEST(CStringTest, EmptyStringsShareOneText)
{
    CString text(L"abc");
    text.Empty();
    EXPECT_EQ(text.GetString(), CString().GetString());
    EXPECT_EQ(text.GetString(), CString(L"").GetString());
    CString assigned(L"abc");
    assigned = L"";
    EXPECT_EQ(assigned.GetString(), text.GetString());
    CString written;
    written.GetBuffer(3)[0] = L'x';
    written.ReleaseBufferSetLength(1);
    EXPECT_TRUE(CString().IsEmpty());
    EXPECT_EQ(*CString().GetString(), L'\0');
}

TEST(CStringTest, EveryWriterLeavesCopiesAlone)
{
    const std::vector<void (*)(CString&)> writers = {
        [](CString& s) { s += L"x"; },
        [](CString& s) { s += L'x'; },
        [](CString& s) { s += s; },
        [](CString& s) { s.Insert(1, L'x'); },
        [](CString& s) { s.Insert(1, L"xyz"); },
        [](CString& s) { s.Delete(0, 2); },
        [](CString& s) { s.Replace(L'a', L'b'); },
        [](CString& s) { s.Replace(L"a", L"bb"); },
        [](CString& s) { s.Remove(L'a'); },
        [](CString& s) { s.Trim(); },
        [](CString& s) { s.TrimLeft(L' '); },
        [](CString& s) { s.TrimRight(L" "); },
        [](CString& s) { s.MakeLower(); },
        [](CString& s) { s.MakeUpper(); },
        [](CString& s) { s.MakeReverse(); },
        [](CString& s) { s.SetAt(0, L'x'); },
        [](CString& s) { s.GetBuffer()[0] = L'x'; },
        [](CString& s) { s.GetBufferSetLength(2); },
        [](CString& s) { s.Truncate(1); },
        [](CString& s) { s.Format(L"%d", 5); },
        [](CString& s) { s.AppendFormat(L"%d", 5); },
        [](CString& s) { s = L"other"; },
        [](CString& s) { s = L'x'; },
        [](CString& s) { s.Empty(); },
        [](CString& s) { s.Preallocate(100); },
    };
    for (size_t i = 0; i < writers.size(); ++i)
    {
        SCOPED_TRACE(i);
        const CString copy(L"  aBcAbC  ");
        CString text(copy);
        writers[i](text);
        EXPECT_EQ(Text(copy), L"  aBcAbC  ");
    }
}

TEST(CStringTest, MovesTakeTheCharactersAlong)
{
    CString source(L"abc");
    const wchar_t* characters = source.GetString();
    CString target(static_cast<CString&&>(source));
    EXPECT_EQ(target.GetString(), characters);
    CString assigned(L"old");
    assigned = static_cast<CString&&>(target);
    EXPECT_EQ(assigned.GetString(), characters);
    EXPECT_EQ(Text(assigned), L"abc");
}

TEST(CStringTest, SelfAssignmentKeepsTheText)
{
    CString text(L"abc");
    CString& same = text;
    text = same;
    EXPECT_EQ(Text(text), L"abc");
    text = static_cast<CString&&>(same);
    EXPECT_EQ(Text(text), L"abc");
    text = text.GetString();
    EXPECT_EQ(Text(text), L"abc");
}

TEST(CStringTest, TakesAPartOfItselfAsASource)
{
    CString text(L"abcdef");
    text = text.GetString() + 3;
    EXPECT_EQ(Text(text), L"def");
    text.SetString(text.GetString() + 1, 1);
    EXPECT_EQ(Text(text), L"e");
    text = L"abcdef";
    text = text.Mid(2, 3);
    EXPECT_EQ(Text(text), L"cde");
    text += text;
    EXPECT_EQ(Text(text), L"cdecde");
    text += text.GetString() + 4;
    EXPECT_EQ(Text(text), L"cdecdede");
    text = text + text;
    EXPECT_EQ(Text(text), L"cdecdedecdecdede");
    const CString shared(text);
    text = text.GetString() + 13;
    EXPECT_EQ(Text(text), L"ede");
    EXPECT_EQ(Text(shared), L"cdecdedecdecdede");
}

TEST(CStringTest, AppendsItselfWhileItGrows)
{
    CString text(L"ab");
    std::wstring expected(L"ab");
    for (int i = 0; i < 12; ++i)
    {
        text += text;
        expected += expected;
        text.Append(text.GetString() + 1, 3);
        expected += expected.substr(1, 3);
        ASSERT_EQ(Text(text), expected) << i;
    }
}

TEST(CStringTest, AppendsItselfWhenItsCharactersMoveFarAway)
{
    // Blocks of this size are given back to the system at once: reading the old one would crash.
    CString text(L'x', 1000000);
    text.Append(text.GetString() + 1);
    text += text;
    EXPECT_EQ(text.GetLength(), 2 * 1999999);
    EXPECT_EQ(text.Remove(L'x'), 2 * 1999999);
}

TEST(CStringTest, AppendStopsAtAZero)
{
    CString text(L"x");
    text.Append(L"ab\0cd", 5);
    EXPECT_EQ(Text(text), L"xab");
    text += CString(L"c\0d", 3);
    EXPECT_EQ(Text(text), L"xabc");
    // Joining two strings keeps the zeros.
    EXPECT_EQ(Text(CString(L"a\0b", 3) + CString(L"c\0", 2)), std::wstring(L"a\0bc\0", 5));
}

TEST(CStringTest, AppendingOneCharacterAtATimeAllocatesSeldom)
{
    CString text;
    int allocations = 0;
    int room = text.GetAllocLength();
    for (int i = 0; i < 200000; ++i)
    {
        text += static_cast<wchar_t>(L'a' + i % 26);
        allocations += room != text.GetAllocLength();
        room = text.GetAllocLength();
    }
    EXPECT_EQ(text.GetLength(), 200000);
    EXPECT_EQ(text[199999], L'a' + 199999 % 26);
    EXPECT_LT(allocations, 40);
    EXPECT_LT(room, 400000);
}

TEST(CStringTest, GetBufferKeepsTheTextAndMakesRoom)
{
    for (const int wanted : {0, 1, 3, 4, 7, 8, 9, 100, 100000})
    {
        SCOPED_TRACE(wanted);
        CString text(L"abc");
        const CString copy(text);
        wchar_t* buffer = text.GetBuffer(wanted);
        EXPECT_NE(static_cast<const wchar_t*>(buffer), copy.GetString());
        EXPECT_STREQ(buffer, L"abc");
        EXPECT_GE(text.GetAllocLength(), wanted < 3 ? 3 : wanted);
        EXPECT_EQ(text.GetLength(), 3);
        wmemset(buffer, L'x', static_cast<size_t>(text.GetAllocLength()) + 1);
        text.ReleaseBuffer();
        EXPECT_EQ(text.GetLength(), text.GetAllocLength());
        EXPECT_EQ(text.GetString()[text.GetLength()], L'\0');
    }
}

TEST(CStringTest, ReleaseBufferTakesTheLengthFromTheTerminator)
{
    CString text;
    wcscpy(text.GetBuffer(20), L"abc");
    EXPECT_EQ(text.GetLength(), 0);
    text.ReleaseBuffer();
    EXPECT_EQ(Text(text), L"abc");
    text.GetBuffer(10);
    text.ReleaseBuffer(2);
    EXPECT_EQ(Text(text), L"ab");
    text.GetBuffer(10);
    text.ReleaseBuffer(0);
    EXPECT_TRUE(text.IsEmpty());
    CString untouched;
    untouched.ReleaseBuffer();
    EXPECT_TRUE(untouched.IsEmpty());
    const int tooMuch = text.GetAllocLength() + 1;
    EXPECT_EQ(ThrownResult([&] { text.ReleaseBuffer(tooMuch); }), E_INVALIDARG);
    EXPECT_EQ(ThrownResult([&] { text.ReleaseBuffer(-2); }), E_INVALIDARG);
    EXPECT_EQ(ThrownResult([&] { text.ReleaseBufferSetLength(-1); }), E_INVALIDARG);
}

TEST(CStringTest, SetsTheLengthOfItsBuffer)
{
    CString text(L"abc");
    wchar_t* buffer = text.GetBufferSetLength(5);
    EXPECT_EQ(text.GetLength(), 5);
    EXPECT_EQ(buffer[5], L'\0');
    wmemcpy(buffer, L"a\0c\0e", 5);
    text.ReleaseBufferSetLength(5);
    EXPECT_EQ(Text(text), std::wstring(L"a\0c\0e", 5));
    text.GetBufferSetLength(1);
    EXPECT_EQ(Text(text), L"a");
    text.Truncate(0);
    EXPECT_TRUE(text.IsEmpty());
}

TEST(CStringTest, PreallocatedRoomIsUsedAndGivenBack)
{
    CString text(L"abc");
    text.Preallocate(1000);
    const wchar_t* characters = text.GetString();
    EXPECT_GE(text.GetAllocLength(), 1000);
    for (int i = 3; i < 1000; ++i)
    {
        text += L'x';
    }
    EXPECT_EQ(text.GetString(), characters);
    text.Truncate(3);
    text.FreeExtra();
    EXPECT_EQ(Text(text), L"abc");
    EXPECT_LT(text.GetAllocLength(), 16);
}

TEST(CStringTest, ReadsAndWritesSingleCharacters)
{
    CString text(L"abc");
    EXPECT_EQ(text.GetAt(0), L'a');
    EXPECT_EQ(text[2], L'c');
    EXPECT_EQ(text[3], L'\0');
    text.SetAt(2, L'x');
    EXPECT_EQ(Text(text), L"abx");
}

TEST(CStringTest, WrongIndicesThrow)
{
    CString text(L"abc");
    CString empty;
    EXPECT_EQ(ThrownResult([&] { text.GetAt(-1); }), E_INVALIDARG);
    EXPECT_EQ(ThrownResult([&] { text.GetAt(4); }), E_INVALIDARG);
    EXPECT_EQ(ThrownResult([&] { text[INT_MAX]; }), E_INVALIDARG);
    EXPECT_EQ(ThrownResult([&] { text.SetAt(-1, L'x'); }), E_INVALIDARG);
    EXPECT_EQ(ThrownResult([&] { text.SetAt(3, L'x'); }), E_INVALIDARG);
    EXPECT_EQ(ThrownResult([&] { empty.SetAt(0, L'x'); }), E_INVALIDARG);
    EXPECT_EQ(ThrownResult([&] { empty.GetAt(0); }), S_OK);
    EXPECT_EQ(Text(text), L"abc");
}

TEST(CStringTest, TooLongATextThrowsTheMemoryException)
{
    CString text(L"abc");
    EXPECT_TRUE(ThrowsMemoryException([&] { text.GetBuffer(INT_MAX); }));
    EXPECT_EQ(Text(text), L"abc");
}

TEST(CStringTest, IsAssignedFromEverySource)
{
    const CString other(L"other");
    CString text(L"before");
    EXPECT_EQ(Text(text = other), L"other");
    EXPECT_EQ(Text(text = CString(L"temporary")), L"temporary");
    EXPECT_EQ(Text(text = L"wide"), L"wide");
    EXPECT_EQ(Text(text = "narrow"), L"narrow");
    EXPECT_EQ(Text(text = L'w'), L"w");
    EXPECT_EQ(Text(text = 'n'), L"n");
    EXPECT_EQ(Text(text = static_cast<const wchar_t*>(nullptr)), L"");
    EXPECT_EQ(Text(text = static_cast<const char*>(nullptr)), L"");
    EXPECT_EQ(Text(text = L'\0'), L"");
}

TEST(CStringTest, JoinsOnBothSides)
{
    const CString text(L"bc");
    const CString empty;
    const wchar_t* const noText = nullptr;
    EXPECT_EQ(Text(text + text), L"bcbc");
    EXPECT_EQ(Text(text + L"de"), L"bcde");
    EXPECT_EQ(Text(L"a" + text), L"abc");
    EXPECT_EQ(Text(text + L'd'), L"bcd");
    EXPECT_EQ(Text(L'a' + text), L"abc");
    EXPECT_EQ(Text(text + 'd'), L"bcd");
    EXPECT_EQ(Text('a' + text), L"abc");
    EXPECT_EQ(Text(text + "de"), L"bcde");
    EXPECT_EQ(Text(text + noText), L"bc");
    EXPECT_EQ(Text(noText + text), L"bc");
    EXPECT_EQ(Text(empty + empty), L"");
    EXPECT_EQ(Text(CString(L"a") + L"b" + L'c' + CString(L"d")), L"abcd");
}

TEST(CStringTest, AppendsEverySource)
{
    CString text;
    text += CString(L"a");
    text += L"b";
    text += L'c';
    text += "d";
    text += 'e';
    text += L"";
    text += static_cast<const wchar_t*>(nullptr);
    text.AppendChar(L'f');
    text.Append(L"ghi", 2);
    text.Append(CString(L"j"));
    EXPECT_EQ(Text(text), L"abcdefghj");
    // One character is one even when it is zero.
    text += L'\0';
    EXPECT_EQ(text.GetLength(), 10);
}

TEST(CStringTest, ConvertsToCharactersWithoutBeingAsked)
{
    const CString text(L"abc");
    const wchar_t* characters = text;
    EXPECT_EQ(characters, text.GetString());
    EXPECT_EQ(wcslen(text), 3U);
}

TEST(CStringTest, MakesASystemString)
{
    const CString text(L"a\0b", 3);
    BSTR copy = text.AllocSysString();
    EXPECT_EQ(SysStringLen(copy), 3U);
    EXPECT_EQ(wmemcmp(copy, L"a\0b", 4), 0);
    SysFreeString(copy);
    BSTR none = CString().AllocSysString();
    EXPECT_NE(none, nullptr);
    EXPECT_EQ(SysStringLen(none), 0U);
    SysFreeString(none);
}

TEST(CStringTest, CountsItsCopiesAcrossThreads)
{
    CString original(L"shared by all");
    std::vector<std::thread> threads;
    for (int i = 0; i < 4; ++i)
    {
        threads.emplace_back([copy = original] {
            for (int n = 0; n < 100000; ++n)
            {
                CString first(copy);
                CString second;
                second = first;
                CString third(static_cast<CString&&>(first));
                CString none;
                none = CString();
                ASSERT_EQ(second.GetString(), copy.GetString());
                if (n % 100 == 0)
                {
                    third += L'x';
                    ASSERT_EQ(third.GetLength(), 14);
                }
            }
        });
    }
    for (std::thread& thread : threads)
    {
        thread.join();
    }
    threads.clear();
    // All copies are gone: writing needs no characters of its own any more.
    const wchar_t* characters = original.GetString();
    EXPECT_EQ(static_cast<const wchar_t*>(original.GetBuffer()), characters);
    EXPECT_EQ(Text(original), L"shared by all");
}
}  // namespace
