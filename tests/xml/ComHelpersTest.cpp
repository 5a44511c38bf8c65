#include "xml/ComHelpers.h"

#include "helpers/ImportPatch.h"
#include "xml/DomFakes.h"
#include "xml/XmlTestSupport.h"
#include "helpers/Thorough.h"

#include <ctime>
#include <random>

namespace
{

using namespace quon_test;

std::wstring SystemText(HRESULT result)
{
    wchar_t text[1024] = {};
    ::FormatMessageW(FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS, nullptr, static_cast<DWORD>(result), 0,
                     text, 1024, nullptr);
    return text;
}

TEST(FormatHResultText, HoldsTheCodeAndTheSystemsText)
{
    const std::wstring fileNotFound = SystemText(HRESULT_FROM_WIN32(ERROR_FILE_NOT_FOUND));
    ASSERT_FALSE(fileNotFound.empty());
    struct Row
    {
        HRESULT result;
        std::wstring text;
    };
    const Row rows[] = {
        {static_cast<HRESULT>(0x80070002), L"HRESULT = 0x80070002 .\n\t" + fileNotFound},
        {S_OK, L"HRESULT = 0x00000000 .\n\t" + SystemText(S_OK)},
        {S_FALSE, L"HRESULT = 0x00000001 .\n\t" + SystemText(S_FALSE)},
        {E_FAIL, L"HRESULT = 0x80004005 .\n\t" + SystemText(E_FAIL)},
        // Upper-case digits, and nothing behind the tab for a code that the system does not know.
        {static_cast<HRESULT>(0xDEADBEEF), L"HRESULT = 0xDEADBEEF .\n\t"},
    };
    for (const Row& row : rows)
    {
        SCOPED_TRACE(row.result);
        EXPECT_EQ(std::wstring(FormatHResultText(row.result).GetString()), row.text);
    }
}

// What the library asks of the system, and the buffers that it has given back.
struct MessageRequest
{
    DWORD flags = 0, code = 0, language = 0;
    bool bare = false;
    void* buffer = nullptr;
};
MessageRequest g_request;
std::vector<void*> g_freed;

TEST(FormatHResultText, AsksTheSystemInItsLanguageAndFreesTheBuffer)
{
    g_request = {};
    g_freed.clear();
    const ImportPatch<DWORD(WINAPI*)(DWORD, LPCVOID, DWORD, DWORD, LPWSTR, DWORD, char**)> asking(
        L"QuonWin32Utils.dll", "FormatMessageW",
        [](DWORD flags, LPCVOID source, DWORD code, DWORD language, LPWSTR buffer, DWORD size,
           char** arguments) -> DWORD {
            g_request = {flags, code, language, source == nullptr && size == 0 && arguments == nullptr, nullptr};
            const DWORD length = ::FormatMessageW(flags, source, code, language, buffer, size, arguments);
            g_request.buffer = *reinterpret_cast<void**>(buffer);
            return length;
        });
    const ImportPatch<decltype(&::LocalFree)> freeing(L"QuonWin32Utils.dll", "LocalFree", [](HLOCAL memory) -> HLOCAL {
        g_freed.push_back(memory);
        return ::LocalFree(memory);
    });
    FormatHResultText(E_FAIL);
    EXPECT_EQ(g_request.flags, static_cast<DWORD>(FORMAT_MESSAGE_ALLOCATE_BUFFER | FORMAT_MESSAGE_IGNORE_INSERTS |
                                                  FORMAT_MESSAGE_FROM_SYSTEM));
    EXPECT_EQ(g_request.code, static_cast<DWORD>(E_FAIL));
    EXPECT_EQ(g_request.language, 0u);
    EXPECT_TRUE(g_request.bare);
    ASSERT_NE(g_request.buffer, nullptr);
    EXPECT_EQ(g_freed, std::vector<void*>{g_request.buffer});
}

TEST(FormatLocalTime, FollowsTheFormatInLocalTime)
{
    tm parts = {};
    parts.tm_year = 2007 - 1900;
    parts.tm_mon = 2;
    parts.tm_mday = 4;
    parts.tm_hour = 14;
    parts.tm_min = 5;
    parts.tm_sec = 9;
    parts.tm_isdst = -1;
    const __time64_t time = ::_mktime64(&parts);
    ASSERT_NE(time, -1);
    EXPECT_EQ(FormatLocalTime(time, L"%Y-%m-%d"), L"2007-03-04");
    EXPECT_EQ(FormatLocalTime(time, L"%H-%M-%S"), L"14-05-09");
    EXPECT_EQ(FormatLocalTime(time, L"100%%"), L"100%");
}

TEST(FormatLocalTime, IsEmptyWhenAStepFails)
{
    const std::wstring fits(127, L'x');
    EXPECT_EQ(FormatLocalTime(0, nullptr), L"");
    EXPECT_EQ(FormatLocalTime(-1000000, L"%Y"), L"") << "a time before the first one";
    EXPECT_EQ(FormatLocalTime(86400, L""), L"");
    EXPECT_EQ(FormatLocalTime(86400, fits.c_str()), fits.c_str()) << "127 characters and the end fill the buffer";
    EXPECT_STREQ(FormatLocalTime(86400, (fits + L"x").c_str()).GetString(), L"");
}

TEST(AppendUniqueStrings, AppendsWhatIsMissingInOrder)
{
    struct Row
    {
        std::initializer_list<const wchar_t*> source;
        std::initializer_list<const wchar_t*> target;
        Strings result;
    };
    const Row rows[] = {
        {{L"a", L"b", L"a"}, {}, {L"a", L"b"}},
        {{}, {}, {}},
        {{}, {L"a", L"a"}, {L"a", L"a"}},
        {{L"b", L"a", L"c"}, {L"a"}, {L"a", L"b", L"c"}},
        {{L"A", L"a"}, {L"a"}, {L"a", L"A"}},
        {{L"", L""}, {}, {L""}},
        {{L"x"}, {L"x"}, {L"x"}},
    };
    for (const Row& row : rows)
    {
        CStringArray source;
        CStringArray target;
        Fill(source, row.source);
        Fill(target, row.target);
        AppendUniqueStrings(source, target);
        EXPECT_EQ(Contents(target), row.result);
    }
}

TEST(AppendUniqueStrings, TakesAnArrayAsItsOwnTarget)
{
    CStringArray array;
    Fill(array, {L"a", L"b", L"a"});
    AppendUniqueStrings(array, array);
    EXPECT_EQ(Contents(array), (Strings{L"a", L"b", L"a"}));
}

TEST(AppendUniqueStrings, AgreesWithASearchPerEntry)
{
    std::mt19937 random(20070304);
    for (int round = 0; round < quon_test::Cases(50); ++round)
    {
        CStringArray source;
        CStringArray target;
        Strings expected;
        for (unsigned i = random() % 20; i > 0; --i)
        {
            const std::wstring entry(1 + random() % 2, static_cast<wchar_t>(L'a' + random() % 4));
            target.Add(entry.c_str());
            expected.push_back(entry);
        }
        for (unsigned i = random() % 60; i > 0; --i)
        {
            const std::wstring entry(1 + random() % 3, static_cast<wchar_t>(L'a' + random() % 6));
            source.Add(entry.c_str());
            if (std::find(expected.begin(), expected.end(), entry) == expected.end())
            {
                expected.push_back(entry);
            }
        }
        AppendUniqueStrings(source, target);
        ASSERT_EQ(Contents(target), expected) << "round " << round;
    }
}

TEST(ContainsString, ComparesWithCase)
{
    CStringArray strings;
    EXPECT_FALSE(ContainsString(L"", strings));
    Fill(strings, {L"one", L"Two", L""});
    EXPECT_TRUE(ContainsString(L"one", strings));
    EXPECT_TRUE(ContainsString(L"Two", strings));
    EXPECT_TRUE(ContainsString(L"", strings));
    EXPECT_FALSE(ContainsString(L"two", strings));
    EXPECT_FALSE(ContainsString(L"on", strings));
}

TEST(NotImplementedNodeFunction, ReleasesItsArgumentAndFails)
{
    const ComApartment com;
    ForwardingAnyNode node(MSXML2::IXMLDOMNodePtr{});
    EXPECT_EQ(NotImplementedNodeFunction(MSXML2::IXMLDOMNodePtr(&node)), E_FAIL);
    EXPECT_EQ(node.references, 1);
    EXPECT_EQ(NotImplementedNodeFunction(MSXML2::IXMLDOMNodePtr()), E_FAIL);
}

TEST(Msxml2, WrappersRaiseWithTheObjectsOwnDescription)
{
    const ComApartment com;
    for (const bool supports : {true, false})
    {
        SCOPED_TRACE(supports);
        DescribingList list;
        list.supports = supports ? S_OK : S_FALSE;
        try
        {
            static_cast<MSXML2::IXMLDOMNodeList*>(&list)->Getlength();
            ADD_FAILURE() << "nothing raised";
        }
        catch (const _com_error& error)
        {
            EXPECT_EQ(error.Error(), E_ACCESSDENIED);
            const _bstr_t description = error.Description();
            EXPECT_EQ(description.length() == 0 ? L"" : std::wstring(description), supports ? L"not today" : L"");
        }
        EXPECT_EQ(list.references, 1);
        ::SetErrorInfo(0, nullptr);
    }
}

TEST(Msxml2, MembersOfAnEmptyPointerRaise)
{
    EXPECT_EQ(ErrorOf([] { MSXML2::IXMLDOMNodePtr()->GetnodeName(); }), E_POINTER);
    EXPECT_EQ(ErrorOf([] { MSXML2::IXMLDOMDocumentPtr()->GetreadyState(); }), E_POINTER);
}

#if !defined(_MSC_VER)
TEST(Msxml2, TextConversionsThatTheCompilerLacks)
{
    const _bstr_t wide(L"north");
    EXPECT_STREQ(static_cast<const char*>(wide), "north");
    EXPECT_STREQ(static_cast<const char*>(_bstr_t(L"")), "");
    EXPECT_EQ(_com_util::ConvertBSTRToString(nullptr), nullptr);
    EXPECT_STREQ(static_cast<const wchar_t*>(_bstr_t("south")), L"south");
    EXPECT_EQ(_bstr_t("").length(), 0u);
    EXPECT_EQ(_com_util::ConvertStringToBSTR(nullptr), nullptr);
}
#endif

}  // namespace
