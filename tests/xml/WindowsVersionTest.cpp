// The version of the system, and 64-bit values on systems that have no variant for them.
#include "helpers/ImportPatch.h"
#include "helpers/ModuleNames.h"
#include "xml/DomFakes.h"
#include "xml/XmlTestSupport.h"
#include "xml/XmlValues.h"

#include <cstdint>
#include <cwchar>
#include <limits>

namespace
{

using namespace quon_test;

constexpr wchar_t kLibrary[] = L"QuonWin32Utils.dll";

// The answer is cached for the life of a process: each version gets a process of its own.

DWORD g_major = 0;
DWORD g_minor = 0;
int g_asked = 0;

BOOL WINAPI AnswerVersion(LPOSVERSIONINFOW version)
{
    ++g_asked;
    if (version->dwOSVersionInfoSize != 276)
    {
        return FALSE;
    }
    version->dwMajorVersion = g_major;
    version->dwMinorVersion = g_minor;
    return TRUE;
}

// 1 when both calls said yes, 0 when both said no, 2 otherwise and when the system was not asked exactly once.
int AskTwice(DWORD major, DWORD minor)
{
    g_major = major;
    g_minor = minor;
    const ImportPatch<decltype(&::GetVersionExW)> patch(kLibrary, "GetVersionExW", &AnswerVersion);
    const bool first = IsWindowsXPOrLater();
    g_major = first ? 4 : 10;
    const bool second = IsWindowsXPOrLater();
    return g_asked != 1 || first != second ? 2 : static_cast<int>(first);
}

TEST(IsWindowsXPOrLaterDeathTest, ComparesTheVersionOnce)
{
    ::testing::FLAGS_gtest_death_test_style = "threadsafe";
    struct Row
    {
        DWORD major, minor;
        int answer;
    };
    for (const Row row : {Row{4, 90, 0}, Row{5, 0, 0}, Row{5, 1, 1}, Row{5, 2, 1}, Row{6, 0, 1}, Row{10, 0, 1}})
    {
        SCOPED_TRACE(row.major * 100 + row.minor);
        EXPECT_EXIT(::_exit(AskTwice(row.major, row.minor)), ::testing::ExitedWithCode(row.answer), "");
    }
}

int AskInVain()
{
    const ImportPatch<decltype(&::GetVersionExW)> patch(kLibrary, "GetVersionExW",
                                                        [](OSVERSIONINFOW*) -> BOOL { return FALSE; });
    return static_cast<int>(IsWindowsXPOrLater());
}

TEST(IsWindowsXPOrLaterDeathTest, IsFalseWhenTheSystemDoesNotSay)
{
    ::testing::FLAGS_gtest_death_test_style = "threadsafe";
    EXPECT_EXIT(::_exit(AskInVain()), ::testing::ExitedWithCode(0), "");
}

// Beyond 64 bits run-times differ: some saturate, some wrap.
constexpr wchar_t kBeyondInt64[] = L"99999999999999999999";

std::int64_t ReadByTheRunTime(const wchar_t* text)
{
#if defined(_MSC_VER)
    // Newer run-times export no such function: it is the program's own there, and the same one.
    const auto scan = &std::swscanf;
#else
    using Scan = int(__cdecl*)(const wchar_t*, const wchar_t*, ...);
    const auto scan = reinterpret_cast<Scan>(
        reinterpret_cast<void*>(::GetProcAddress(::GetModuleHandleW(quon_test::kRunTimeModule), "swscanf")));
#endif
    std::int64_t value = 0;
    return scan(text, L"%I64d", &value) == 1 ? value : 0;
}

// 0 when 64-bit values go through text in a process whose system is older than XP.
int CheckOldSystem()
{
    const ComApartment com;
    g_major = 5;
    g_minor = 0;
    const ImportPatch<decltype(&::GetVersionExW)> patch(kLibrary, "GetVersionExW", &AnswerVersion);
    struct Row
    {
        const wchar_t* text;
        std::int64_t value;
    };
    int row = 1;
    for (const Row& expected :
         {Row{L"9223372036854775807", 9223372036854775807}, Row{L"-5", -5}, Row{L" 12 m", 12}, Row{L"2.5", 2},
          Row{L"abc", 0}, Row{L"", 0}, Row{kBeyondInt64, ReadByTheRunTime(kBeyondInt64)}})
    {
        const MSXML2::IXMLDOMDocumentPtr document =
            Parse((std::wstring(L"<r><v>") + expected.text + L"</v></r>").c_str());
        if (GetXmlInt64(Find(document, L"r"), L"v") != expected.value)
        {
            return row;
        }
        ++row;
    }
    class Recorder : public ForwardingElement
    {
    public:
        using ForwardingElement::ForwardingElement;
        std::wstring text;
        HRESULT STDMETHODCALLTYPE raw_setAttribute(BSTR, VARIANT value) override
        {
            text = value.vt == VT_BSTR ? value.bstrVal : L"no text";
            return S_OK;
        }
    };
    Recorder element(Find(Parse(L"<r/>"), L"r"));
    SetXmlInt64(MSXML2::IXMLDOMNodePtr(&element), L"a", std::numeric_limits<std::int64_t>::min());
    return element.text == L"-9223372036854775808" ? 0 : 99;
}

TEST(IsWindowsXPOrLaterDeathTest, OlderSystemsExchange64BitsAsText)
{
    ::testing::FLAGS_gtest_death_test_style = "threadsafe";
    EXPECT_EXIT(::_exit(CheckOldSystem()), ::testing::ExitedWithCode(0), "");
}

TEST(IsWindowsXPOrLater, IsTrueOfTheSystemOfTheseTests)
{
    EXPECT_TRUE(IsWindowsXPOrLater());
}

}  // namespace
