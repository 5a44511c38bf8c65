#include "support/TraceLog.h"

#include <comdef.h>
#include <gtest/gtest.h>

#include <atomic>
#include <string>
#include <thread>

#include "helpers/HardLimit.h"
#include "helpers/ImportPatch.h"
#include "support/StringHelpers.h"
#include "support/Wide.h"

namespace
{

using quon_test::ImportPatch;
using quon_test::Wide;

constexpr wchar_t kLibrary[] = L"QuonWin32Utils.dll";
constexpr SHORT kKeyIsDown = static_cast<SHORT>(0x8000);
constexpr SHORT kKeyWasPressedSince = 1;

struct BoxState
{
    int boxes = 0;
    HWND owner = nullptr;
    std::wstring text;
    bool hasCaption = false;
    std::wstring caption;
    UINT type = 0;
    int answer = IDOK;
    int keyQueries = 0;
    int queriedKey = 0;
    SHORT keyState = 0;
};
BoxState g_box;

int WINAPI FakeMessageBox(HWND owner, LPCWSTR text, LPCWSTR caption, UINT type)
{
    ++g_box.boxes;
    g_box.owner = owner;
    g_box.text = text;
    g_box.hasCaption = caption != nullptr;
    g_box.caption = caption != nullptr ? caption : L"";
    g_box.type = type;
    return g_box.answer;
}

SHORT WINAPI FakeKeyState(int key)
{
    ++g_box.keyQueries;
    g_box.queriedKey = key;
    return g_box.keyState;
}

class ErrorBox : public testing::Test
{
protected:
    ErrorBox()
        : m_messageBox(kLibrary, "MessageBoxW", &FakeMessageBox),
          m_keyState(kLibrary, "GetAsyncKeyState", &FakeKeyState)
    {
        g_box = BoxState();
    }

    // Calls, and tells whether a box was shown.
    static bool Shows(const wchar_t* file, int line)
    {
        const int before = g_box.boxes;
        m_result = ShowComErrorBox(_com_error(E_FAIL), file, line);
        return g_box.boxes != before;
    }

    static inline int m_result = 0;

private:
    ImportPatch<decltype(&::MessageBoxW)> m_messageBox;
    ImportPatch<decltype(&::GetAsyncKeyState)> m_keyState;
};

TEST_F(ErrorBox, ShowsTheSystemsText)
{
    for (const int answer : {IDOK, IDCANCEL, 0})
    {
        g_box.answer = answer;
        EXPECT_EQ(ShowErrorBox(5), answer);
        EXPECT_EQ(g_box.text, Wide(GetSystemErrorText(5)));
        EXPECT_FALSE(g_box.text.empty());
        EXPECT_EQ(g_box.owner, nullptr);
        EXPECT_TRUE(g_box.hasCaption);
        EXPECT_EQ(g_box.caption, L"");
        EXPECT_EQ(g_box.type, static_cast<UINT>(MB_OKCANCEL));
    }
    EXPECT_EQ(g_box.boxes, 3);
    EXPECT_EQ(g_box.keyQueries, 0);
}

TEST_F(ErrorBox, ShowsAnEmptyTextForAnUnknownCode)
{
    EXPECT_EQ(ShowErrorBox(0xDEADBEEF), IDOK);
    EXPECT_EQ(g_box.boxes, 1);
    EXPECT_EQ(g_box.text, L"");
}

TEST_F(ErrorBox, ShowsTheTextOfAComError)
{
    EXPECT_EQ(ShowComErrorBox(_com_error(E_OUTOFMEMORY), L"text.cpp", 1), IDOK);
    EXPECT_EQ(g_box.text, Wide(GetComErrorText(_com_error(E_OUTOFMEMORY))));
    EXPECT_FALSE(g_box.text.empty());
    EXPECT_EQ(g_box.owner, nullptr);
    EXPECT_TRUE(g_box.hasCaption);
    EXPECT_EQ(g_box.caption, L"");
    EXPECT_EQ(g_box.type, static_cast<UINT>(MB_OKCANCEL));
}

TEST_F(ErrorBox, ShowsAgainAfterOkWithoutShift)
{
    EXPECT_TRUE(Shows(L"plain.cpp", 10));
    EXPECT_EQ(m_result, IDOK);
    EXPECT_EQ(g_box.queriedKey, VK_SHIFT);
    // Only the high bit tells that the key is down now.
    g_box.keyState = kKeyWasPressedSince;
    EXPECT_TRUE(Shows(L"plain.cpp", 10));
    EXPECT_TRUE(Shows(L"plain.cpp", 10));
    EXPECT_EQ(g_box.keyQueries, 3);
}

TEST_F(ErrorBox, IsSilentAfterOkWithShift)
{
    g_box.keyState = kKeyIsDown;
    EXPECT_TRUE(Shows(L"shift.cpp", 10));
    g_box.keyState = 0;
    g_box.answer = IDCANCEL;
    for (int i = 0; i < 3; ++i)
    {
        EXPECT_FALSE(Shows(L"shift.cpp", 10));
        EXPECT_EQ(m_result, IDOK);
    }
    EXPECT_EQ(g_box.keyQueries, 1);
    // Every other position still shows.
    EXPECT_TRUE(Shows(L"shift.cpp", 11));
    EXPECT_TRUE(Shows(L"shift.cpp", 1));
    EXPECT_TRUE(Shows(L"shift.cpp", -10));
    EXPECT_TRUE(Shows(L"SHIFT.cpp", 10));
    EXPECT_TRUE(Shows(L".\\shift.cpp", 10));
    EXPECT_TRUE(Shows(L"", 10));
    EXPECT_FALSE(Shows(L"shift.cpp", 10));
}

TEST_F(ErrorBox, MakesItsKeyOfFileAndLineText)
{
    g_box.keyState = kKeyIsDown;
    EXPECT_TRUE(Shows(L"key#1", 2));
    // The same text, though another position.
    EXPECT_FALSE(Shows(L"key#1", 2));
    EXPECT_TRUE(Shows(L"key", 12));
    EXPECT_TRUE(Shows(nullptr, 5));
    EXPECT_FALSE(Shows(L"(null)", 5));
}

TEST_F(ErrorBox, HeedsShiftWithOkOnly)
{
    g_box.keyState = kKeyIsDown;
    for (const int answer : {IDCANCEL, 0})
    {
        g_box.answer = answer;
        EXPECT_TRUE(Shows(L"cancel.cpp", 10));
        EXPECT_EQ(m_result, answer);
        EXPECT_TRUE(Shows(L"cancel.cpp", 10));
    }
    EXPECT_EQ(g_box.keyQueries, 0);
}

TEST_F(ErrorBox, KeepsManySilencedPositions)
{
    g_box.keyState = kKeyIsDown;
    for (int line = 0; line < 2000; ++line)
    {
        ASSERT_TRUE(Shows(L"many.cpp", line));
    }
    for (int line = 0; line < 2000; ++line)
    {
        ASSERT_FALSE(Shows(L"many.cpp", line));
    }
}

// What a helper thread saw of a real box before it pressed one of its buttons.
struct SeenBox
{
    bool found = false;
    bool hasOk = false;
    bool hasCancel = false;
    bool hasOwner = false;
    std::wstring caption;
    std::wstring text;

    bool IsWhole() const { return hasOk && hasCancel && !text.empty(); }
};

HWND FindBox(DWORD processId)
{
    for (HWND window = nullptr; (window = ::FindWindowExW(nullptr, window, L"#32770", nullptr)) != nullptr;)
    {
        DWORD owner = 0;
        ::GetWindowThreadProcessId(window, &owner);
        // A box is complete only once it is shown.
        if (owner == processId && ::IsWindowVisible(window))
        {
            return window;
        }
    }
    return nullptr;
}

std::wstring WindowText(HWND window)
{
    wchar_t text[1024] = {};
    ::GetWindowTextW(window, text, 1024);
    return text;
}

SeenBox LookAt(HWND box)
{
    SeenBox seen;
    seen.found = true;
    seen.hasOk = ::GetDlgItem(box, IDOK) != nullptr;
    seen.hasCancel = ::GetDlgItem(box, IDCANCEL) != nullptr;
    seen.hasOwner = ::GetWindow(box, GW_OWNER) != nullptr;
    seen.caption = WindowText(box);
    const HWND label = ::GetDlgItem(box, 0xFFFF);
    seen.text = label != nullptr ? WindowText(label) : L"";
    return seen;
}

// Presses a button of a box that another thread shows, once the box is all there, and after a long wait as it is: the
// other thread must not wait for ever. Gives up when `isOver`, because then there is no box to come.
SeenBox AnswerBox(int answer, const std::atomic<bool>& isOver)
{
    constexpr ULONGLONG kLimit = 120000;
    const ULONGLONG start = ::GetTickCount64();
    while (!isOver)
    {
        if (const HWND box = FindBox(::GetCurrentProcessId()))
        {
            const SeenBox seen = LookAt(box);
            if (seen.IsWhole() || ::GetTickCount64() - start > kLimit)
            {
                ::PostMessageW(box, WM_COMMAND, static_cast<WPARAM>(answer), 0);
                return seen;
            }
        }
        ::Sleep(10);
    }
    return {};
}

// Shows a box by `show` and presses the button `answer`. @return what the box looked like
template <typename Show>
SeenBox ShowAndAnswer(int answer, const Show& show)
{
    const quon_test::HardLimit limit;
    SeenBox seen;
    std::atomic<bool> isOver = false;
    std::thread helper([&] { seen = AnswerBox(answer, isOver); });
    EXPECT_EQ(show(), answer);
    isOver = true;
    helper.join();
    return seen;
}

TEST(RealErrorBox, ShowsTextAndButtonsAndReturnsTheAnswer)
{
    const _com_error error(E_OUTOFMEMORY);
    for (const int answer : {IDOK, IDCANCEL})
    {
        SCOPED_TRACE(answer);
        SeenBox seen = ShowAndAnswer(answer, [] { return ShowErrorBox(5); });
        EXPECT_TRUE(seen.found && seen.hasOk && seen.hasCancel);
        EXPECT_FALSE(seen.hasOwner);
        EXPECT_EQ(seen.caption, L"");
        EXPECT_EQ(seen.text, Wide(GetSystemErrorText(5)));

        seen = ShowAndAnswer(answer, [&] { return ShowComErrorBox(error, L"real.cpp", 1); });
        EXPECT_TRUE(seen.found && seen.hasOk && seen.hasCancel);
        EXPECT_EQ(seen.caption, L"");
        EXPECT_EQ(seen.text, Wide(GetComErrorText(error)));
    }
}

}  // namespace
