#include "support/TraceLog.h"

#include <gtest/gtest.h>

#include <climits>
#include <cstdarg>
#include <string>
#include <thread>
#include <vector>

#include "helpers/ImportPatch.h"
#include "support/RandomText.h"
#include "helpers/Thorough.h"

namespace
{

using quon_test::ImportPatch;
using quon_test::RandomText;

std::vector<std::wstring> g_output;

void WINAPI RecordingOutput(LPCWSTR text)
{
    g_output.emplace_back(text);
}

// Catches what the library writes to the debugger's output.
class OutputRecord
{
public:
    OutputRecord() : m_patch(L"QuonWin32Utils.dll", "OutputDebugStringW", &RecordingOutput) { g_output.clear(); }

    // What was written since the last call; one call of the platform is expected.
    std::wstring Take()
    {
        EXPECT_EQ(g_output.size(), 1U);
        const std::wstring text = g_output.empty() ? std::wstring() : g_output.back();
        g_output.clear();
        return text;
    }

private:
    ImportPatch<decltype(&::OutputDebugStringW)> m_patch;
};

std::wstring ThreadTag(DWORD threadId)
{
    wchar_t tag[16] = {};
    ::_snwprintf(tag, 15, L"TID=%8.8X", static_cast<unsigned int>(threadId));
    return tag;
}

// The layout of a trace line, told with the run-time's formatter.
std::wstring PlainLine(const std::wstring& file, int line, const std::wstring& message)
{
    std::vector<wchar_t> buffer(file.size() + 2048);
    const int n = ::_snwprintf(buffer.data(), buffer.size() - 1, L"%s(%d): LOG ", file.c_str(), line);
    std::wstring header = std::wstring(buffer.data(), static_cast<std::size_t>(n)) + std::wstring(99, L'.');
    const std::wstring tag = ThreadTag(::GetCurrentThreadId());
    std::vector<wchar_t> out(file.size() + 4096);
    int length = 0;
    if (110 - n >= 12)
    {
        header = header.substr(0, 98) + tag;
        length = ::_snwprintf(out.data(), out.size() - 1, L"%-*.*s %s\n", 110, 110, header.c_str(), message.c_str());
    }
    else
    {
        header = header.substr(0, static_cast<std::size_t>(n)) + tag;
        length = ::_snwprintf(out.data(), out.size() - 1, L"%s %s\n", header.c_str(), message.c_str());
    }
    return std::wstring(out.data(), static_cast<std::size_t>(length));
}

TEST(DebugPrint, WritesTheFormattedTextAsItIs)
{
    OutputRecord output;
    DebugPrint(L"plain");
    EXPECT_EQ(output.Take(), L"plain");
    DebugPrint(L"");
    EXPECT_EQ(output.Take(), L"");
    DebugPrint(L"%s, %S, %d, %5.2f, %%, %c, %I64d\n", L"wide \u00e4", "narrow", -5, 2.5, L'x', 1LL << 40);
    EXPECT_EQ(output.Take(), L"wide \u00e4, narrow, -5,  2.50, %, x, 1099511627776\n");
    DebugPrint(nullptr);
    EXPECT_EQ(output.Take(), L"");
}

TEST(DebugPrint, CutsAt2047Characters)
{
    OutputRecord output;
    for (const std::size_t length : {2046U, 2047U, 2048U, 2049U, 5000U})
    {
        SCOPED_TRACE(length);
        const std::wstring text(length, L'y');
        DebugPrint(L"%s", text.c_str());
        EXPECT_EQ(output.Take(), text.substr(0, 2047));
    }
}

TEST(DebugLog, PutsPositionThreadAndMessageIntoColumns)
{
    OutputRecord output;
    DebugLog(L"main", 12, L"x=%d", 1);
    const std::wstring line = output.Take();
    EXPECT_EQ(line, L"main(12): LOG " + std::wstring(84, L'.') + ThreadTag(::GetCurrentThreadId()) + L" x=1\n");
    EXPECT_EQ(line.find(L"TID="), 98U);
}

TEST(DebugLog, NamesTheCallingThread)
{
    OutputRecord output;
    DWORD threadId = 0;
    std::thread([&] {
        threadId = ::GetCurrentThreadId();
        DebugLog(L"worker", 1, L"run");
    }).join();
    EXPECT_NE(threadId, ::GetCurrentThreadId());
    EXPECT_EQ(output.Take(), L"worker(1): LOG " + std::wstring(83, L'.') + ThreadTag(threadId) + L" run\n");
}

TEST(DebugLog, WritesThreadNumbersWithLeadingZerosInUpperCase)
{
    OutputRecord output;
    static DWORD threadId;
    const ImportPatch<decltype(&::GetCurrentThreadId)> patch(L"QuonWin32Utils.dll", "GetCurrentThreadId",
                                                             []() -> DWORD { return threadId; });
    for (const DWORD id : {0UL, 0x1AUL, 0xDEADBEEFUL, 0xFFFFFFFFUL})
    {
        threadId = id;
        DebugLog(L"f", 1, L"m");
        EXPECT_EQ(output.Take().substr(98), ThreadTag(id) + L" m\n");
    }
}

TEST(DebugLog, GivesUpTheColumnsForAPositionLongerThan98)
{
    OutputRecord output;
    const std::wstring tag = ThreadTag(::GetCurrentThreadId());
    const std::wstring position = L"(7): LOG ";
    for (const std::size_t length : {0U, 1U, 88U, 89U, 90U, 91U, 97U, 98U, 99U, 500U, 1000U, 2000U, 40000U})
    {
        SCOPED_TRACE(testing::Message() << "file name of " << length);
        const std::wstring file(length, L'f');
        DebugLog(file.c_str(), 7, L"message %d", 3);
        const std::wstring line = output.Take();
        const std::size_t n = length + position.size();
        const std::wstring dots(n <= 98 ? 98 - n : 0, L'.');
        EXPECT_EQ(line, file + position + dots + tag + L" message 3\n");
        EXPECT_EQ(line, PlainLine(file, 7, L"message 3"));
    }
}

TEST(DebugLog, CutsMessagesAt1023CharactersAndEndsTheLine)
{
    OutputRecord output;
    for (const std::size_t length : {1022U, 1023U, 1024U, 1025U, 9000U})
    {
        SCOPED_TRACE(length);
        const std::wstring message(length, L'm');
        DebugLog(L"file.cpp", 3, L"%s", message.c_str());
        const std::wstring line = output.Take();
        EXPECT_EQ(line, PlainLine(L"file.cpp", 3, message.substr(0, 1023)));
        EXPECT_EQ(line.back(), L'\n');
    }
    const std::wstring message(3000, L'm');
    for (const std::size_t length : {400U, 478U, 479U, 480U, 481U, 482U, 3000U})
    {
        SCOPED_TRACE(testing::Message() << "file name of " << length);
        const std::wstring file(length, L'f');
        DebugLog(file.c_str(), 3, L"%s", message.c_str());
        EXPECT_EQ(output.Take(), PlainLine(file, 3, message.substr(0, 1023)));
    }
}

TEST(DebugLog, AnswersMissingTextsAsTheFormatterDoes)
{
    OutputRecord output;
    DebugLog(nullptr, 1, L"m");
    EXPECT_EQ(output.Take(), PlainLine(L"(null)", 1, L"m"));
    DebugLog(L"f", 1, nullptr);
    EXPECT_EQ(output.Take(), PlainLine(L"f", 1, L""));
    DebugLog(L"f", 1, L"");
    EXPECT_EQ(output.Take(), PlainLine(L"f", 1, L""));
    // A zero character ends the message.
    DebugLog(L"f", 1, L"a%cb", 0);
    EXPECT_EQ(output.Take(), PlainLine(L"f", 1, L"a"));
}

TEST(DebugLog, EqualsTheFormattersLayoutOnRandomLines)
{
    OutputRecord output;
    RandomText random(421);
    for (int round = 0; round < quon_test::Cases(5000); ++round)
    {
        const std::wstring file = random.Text(L"abc\\.%: \u00e4", 130);
        const int lines[] = {0, 1, -1, INT_MAX, INT_MIN, static_cast<int>(random.Number(99999))};
        const int line = lines[random.Number(5)];
        const std::wstring message = random.Text(L"xyz %\n\u4e2d", round % 100 == 0 ? 1500 : 60);
        DebugLog(file.c_str(), line, L"%s", message.c_str());
        ASSERT_EQ(output.Take(), PlainLine(file, line, message.substr(0, 1023))) << testing::PrintToString(file);
    }
}

constexpr DWORD kPrintException = 0x40010006;      // text in the ANSI code page
constexpr DWORD kPrintWideException = 0x4001000A;  // wide text, tried first by newer systems

std::wstring g_debugger;

LONG CALLBACK ListenAsDebugger(EXCEPTION_POINTERS* pointers)
{
    const EXCEPTION_RECORD& record = *pointers->ExceptionRecord;
    const auto length = static_cast<std::size_t>(record.ExceptionInformation[0]);
    if (record.ExceptionCode == kPrintWideException)
    {
        g_debugger.assign(reinterpret_cast<const wchar_t*>(record.ExceptionInformation[1]), length - 1);
        return EXCEPTION_CONTINUE_EXECUTION;
    }
    if (record.ExceptionCode == kPrintException)
    {
        const std::string text(reinterpret_cast<const char*>(record.ExceptionInformation[1]), length - 1);
        g_debugger.assign(text.begin(), text.end());
        return EXCEPTION_CONTINUE_EXECUTION;
    }
    return EXCEPTION_CONTINUE_SEARCH;
}

TEST(TraceOutput, ReachesTheDebugger)
{
    void* const handler = ::AddVectoredExceptionHandler(1, &ListenAsDebugger);
    g_debugger.clear();
    DebugPrint(L"print %d", 1);
    EXPECT_EQ(g_debugger, L"print 1");
    g_debugger.clear();
    DebugLog(L"main", 12, L"x=%d", 1);
    ::RemoveVectoredExceptionHandler(handler);
    EXPECT_EQ(g_debugger, PlainLine(L"main", 12, L"x=1"));
}

}  // namespace
