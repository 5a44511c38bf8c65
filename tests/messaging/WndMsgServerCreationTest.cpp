// How the server makes its window and takes it down, which happens once in a process: each test starts this program
// anew with one of the parts that are disabled otherwise.
#include "messaging/QuonWndMsgServer.h"

#include "messaging/MessagingTestSupport.h"
#include "helpers/ChildProcess.h"
#include "helpers/ImportPatch.h"
#include "helpers/ModuleNames.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

using namespace quon_test;
using testing::ElementsAre;
using testing::IsEmpty;

namespace
{

constexpr DWORD kRightEnd = 42;
constexpr DWORD kWrongEnd = 43;

// Never destroyed: the server goes when the variables of this program have gone.
std::vector<std::string>& calls = *new std::vector<std::string>;
WNDCLASSW registeredClass;
std::wstring registeredName;
ATOM atom;
HWND window;

struct WindowRequest
{
    DWORD extendedStyle;
    const wchar_t* className;
    std::wstring name;
    DWORD style;
    RECT place;
    HWND parent;
    HMENU menu;
    HINSTANCE instance;
    void* data;
};

WindowRequest requested;

ATOM WINAPI RecordingRegisterClass(const WNDCLASSW* windowClass)
{
    calls.push_back("RegisterClassW");
    registeredClass = *windowClass;
    registeredName = windowClass->lpszClassName;
    atom = ::RegisterClassW(windowClass);
    return atom;
}

HWND WINAPI RecordingCreateWindow(DWORD extendedStyle, const wchar_t* className, const wchar_t* name, DWORD style,
                                  int x, int y, int width, int height, HWND parent, HMENU menu, HINSTANCE instance,
                                  void* data)
{
    calls.push_back("CreateWindowExW");
    requested = {extendedStyle, className, name, style, {x, y, width, height}, parent, menu, instance, data};
    window =
        ::CreateWindowExW(extendedStyle, className, name, style, x, y, width, height, parent, menu, instance, data);
    return window;
}

ATOM WINAPI FailingRegisterClass(const WNDCLASSW*)
{
    calls.push_back("RegisterClassW");
    return 0;
}

HWND WINAPI FailingCreateWindow(DWORD, const wchar_t*, const wchar_t*, DWORD, int, int, int, int, HWND, HMENU,
                                HINSTANCE, void*)
{
    calls.push_back("CreateWindowExW");
    return nullptr;
}

HMODULE WINAPI FailingGetModuleHandle(const wchar_t* name)
{
    return name == nullptr ? nullptr : ::GetModuleHandleW(name);
}

BOOL WINAPI RecordingDestroyWindow(HWND destroyed)
{
    calls.push_back(destroyed == window ? "DestroyWindow" : "DestroyWindow of another");
    return ::DestroyWindow(destroyed);
}

// At that time the only way to tell the parent is the exit code.
std::vector<std::string>& expectedAtTheEnd = *new std::vector<std::string>;
bool failedBefore = false;

BOOL WINAPI RecordingUnregisterClass(const wchar_t* name, HINSTANCE instance)
{
    const BOOL result = ::UnregisterClassW(name, instance);
    const bool right = result != FALSE && name == MAKEINTATOM(atom) && instance == ::GetModuleHandleW(nullptr) &&
                       calls == expectedAtTheEnd && !failedBefore;
    ::TerminateProcess(::GetCurrentProcess(), right ? kRightEnd : kWrongEnd);
    return result;
}

ChildResult RunPart(const wchar_t* name)
{
    std::fflush(stdout);
    return RunChild(L'"' + OwnProgram() + L"\" --gtest_also_run_disabled_tests --gtest_filter=*DISABLED_" + name);
}

template <typename Function>
using Patch = ImportPatch<Function>;

// Patches that stay until the process has gone.
void WatchTheEnd(std::vector<std::string> expected)
{
    expectedAtTheEnd = std::move(expected);
    failedBefore = testing::Test::HasFailure();
    new Patch<decltype(&::DestroyWindow)>(kLibrary, "DestroyWindow", &RecordingDestroyWindow);
    new Patch<decltype(&::UnregisterClassW)>(kLibrary, "UnregisterClassW", &RecordingUnregisterClass);
}

// What still works without a window.
void ExpectNoWindow(QuonWndMsgServer* server)
{
    ASSERT_NE(server, nullptr);
    EXPECT_EQ(server->GetWindow(), nullptr);
    EXPECT_EQ(QuonWndMsgServer::GetWndMsgServer(), server);
    EXPECT_EQ(server->GetWindow(), nullptr);
    EXPECT_EQ(server->SendToWindow(WM_APP, 0, 0), 0);
    const UINT message = WM_APP;
    UINT cookie = 99;
    EXPECT_EQ(server->AddCallback(&message, &cookie, nullptr), E_POINTER);
}

TEST(Part, DISABLED_Window)
{
    const Patch<decltype(&::RegisterClassW)> registerClass(kLibrary, "RegisterClassW", &RecordingRegisterClass);
    const Patch<decltype(&::CreateWindowExW)> createWindow(kLibrary, "CreateWindowExW", &RecordingCreateWindow);
    QuonWndMsgServer* const server = QuonWndMsgServer::GetWndMsgServer();
    ASSERT_NE(server, nullptr);
    EXPECT_EQ(QuonWndMsgServer::GetWndMsgServer(), server);
    EXPECT_THAT(calls, ElementsAre("RegisterClassW", "CreateWindowExW"));
    const HINSTANCE program = ::GetModuleHandleW(nullptr);

    EXPECT_EQ(registeredName, L"QuonWnd59A9E57ED6664f9e943F19730E161AEE");
    EXPECT_EQ(registeredClass.style, 0u);
    EXPECT_EQ(registeredClass.cbClsExtra, 0);
    EXPECT_EQ(registeredClass.cbWndExtra, 0);
    EXPECT_EQ(registeredClass.hInstance, program);
    EXPECT_EQ(registeredClass.hIcon, nullptr);
    EXPECT_EQ(registeredClass.hCursor, nullptr);
    EXPECT_EQ(registeredClass.hbrBackground, nullptr);
    EXPECT_EQ(registeredClass.lpszMenuName, nullptr);

    EXPECT_EQ(requested.extendedStyle, 0u);
    EXPECT_EQ(requested.className, MAKEINTATOM(atom));
    EXPECT_EQ(requested.name, L"");
    EXPECT_EQ(requested.style, 0u);
    EXPECT_EQ(requested.place.left, 0);
    EXPECT_EQ(requested.place.top, 0);
    EXPECT_EQ(requested.place.right, 1);
    EXPECT_EQ(requested.place.bottom, 1);
    EXPECT_EQ(requested.parent, nullptr);
    EXPECT_EQ(requested.menu, nullptr);
    EXPECT_EQ(requested.instance, program);
    EXPECT_EQ(requested.data, nullptr);
    EXPECT_EQ(server->GetWindow(), window);
    EXPECT_TRUE(::IsWindow(window));

    // First the window, then its class.
    WatchTheEnd({"RegisterClassW", "CreateWindowExW", "DestroyWindow"});
}

TEST(WndMsgServerCreation, MakesOnePlainHiddenWindowAndTakesItDownAtExit)
{
    const ChildResult result = RunPart(L"Window");
    EXPECT_TRUE(result.ended);
    EXPECT_EQ(result.code, kRightEnd);
}

TEST(Part, DISABLED_NoClass)
{
    const Patch<decltype(&::RegisterClassW)> registerClass(kLibrary, "RegisterClassW", &FailingRegisterClass);
    const Patch<decltype(&::CreateWindowExW)> createWindow(kLibrary, "CreateWindowExW", &RecordingCreateWindow);
    ExpectNoWindow(QuonWndMsgServer::GetWndMsgServer());
    EXPECT_THAT(calls, ElementsAre("RegisterClassW"));
    // Would end the process with another code than the expected 0.
    WatchTheEnd({});
}

TEST(WndMsgServerCreation, GoesOnWithoutAClass)
{
    const ChildResult result = RunPart(L"NoClass");
    EXPECT_TRUE(result.ended);
    EXPECT_EQ(result.code, 0u);
}

TEST(Part, DISABLED_NoWindow)
{
    const Patch<decltype(&::RegisterClassW)> registerClass(kLibrary, "RegisterClassW", &RecordingRegisterClass);
    const Patch<decltype(&::CreateWindowExW)> createWindow(kLibrary, "CreateWindowExW", &FailingCreateWindow);
    ExpectNoWindow(QuonWndMsgServer::GetWndMsgServer());
    EXPECT_THAT(calls, ElementsAre("RegisterClassW", "CreateWindowExW"));
    // The class goes all the same, and no window is destroyed.
    WatchTheEnd({"RegisterClassW", "CreateWindowExW"});
}

TEST(WndMsgServerCreation, GoesOnWithoutAWindowAndTakesTheClassDownAtExit)
{
    const ChildResult result = RunPart(L"NoWindow");
    EXPECT_TRUE(result.ended);
    EXPECT_EQ(result.code, kRightEnd);
}

TEST(Part, DISABLED_NoInstance)
{
    const Patch<decltype(&::GetModuleHandleW)> module(kLibrary, "GetModuleHandleW", &FailingGetModuleHandle);
    const Patch<decltype(&::RegisterClassW)> registerClass(kLibrary, "RegisterClassW", &RecordingRegisterClass);
    const Patch<decltype(&::CreateWindowExW)> createWindow(kLibrary, "CreateWindowExW", &RecordingCreateWindow);
    ExpectNoWindow(QuonWndMsgServer::GetWndMsgServer());
    EXPECT_THAT(calls, IsEmpty());
    WatchTheEnd({});
}

TEST(WndMsgServerCreation, GoesOnWithoutAnInstance)
{
    const ChildResult result = RunPart(L"NoInstance");
    EXPECT_TRUE(result.ended);
    EXPECT_EQ(result.code, 0u);
}

class Counter : public QuonWndMsgServer::Callback
{
public:
    void OnMessage(const WndMsgRecord*) override { ++calls; }
    int calls = 0;
};

// The first cookie of a process; nobody else has registered.
TEST(Part, DISABLED_FirstCookie)
{
    Counter counter;
    QuonWndMsgServer* const server = QuonWndMsgServer::GetWndMsgServer();
    UINT cookie = 0;
    for (UINT expected = 1; expected <= 3; ++expected)
    {
        const UINT message = WM_APP + expected;
        EXPECT_EQ(server->AddCallback(&message, &cookie, &counter), S_OK);
        EXPECT_EQ(cookie, expected);
    }
    // Message 4 is registered with cookie 4.
    const UINT both = 4;
    EXPECT_EQ(server->AddCallback(&both, &cookie, &counter), S_OK);
    EXPECT_EQ(cookie, both);
    server->SendToWindow(both, 0, 0);
    EXPECT_EQ(counter.calls, 1);
    EXPECT_EQ(server->RemoveCallback(&both), S_OK);
    EXPECT_EQ(server->RemoveCallback(&both), E_FAIL);
}

TEST(WndMsgServerCreation, StartsItsCookiesWithOne)
{
    const ChildResult result = RunPart(L"FirstCookie");
    EXPECT_TRUE(result.ended);
    EXPECT_EQ(result.code, 0u);
}

const QuonWndMsgServer* endingServer = nullptr;
bool isUnregistered = false;

BOOL WINAPI NotingUnregisterClass(const wchar_t* name, HINSTANCE instance)
{
    isUnregistered = true;
    return ::UnregisterClassW(name, instance);
}

// The first memory that is returned after the class went is that of the registrations.
void __cdecl WatchingFree(void* block)
{
    if (isUnregistered && block != nullptr)
    {
        constexpr size_t kWindow = sizeof(void*);
        constexpr size_t kClassAtom = 2 * sizeof(void*);
        const bool isCleared =
            FieldAt<HWND>(*endingServer, kWindow) == nullptr && FieldAt<ATOM>(*endingServer, kClassAtom) == 0;
        ::TerminateProcess(::GetCurrentProcess(), isCleared ? kRightEnd : kWrongEnd);
    }
    std::free(block);
}

TEST(Part, DISABLED_Cleared)
{
    endingServer = QuonWndMsgServer::GetWndMsgServer();
    ASSERT_NE(FieldAt<HWND>(*endingServer, sizeof(void*)), nullptr);
    ASSERT_NE(FieldAt<ATOM>(*endingServer, 2 * sizeof(void*)), 0);
    static Counter counter;
    const UINT message = WM_APP;
    UINT cookie = 0;
    ASSERT_EQ(QuonWndMsgServer::GetWndMsgServer()->AddCallback(&message, &cookie, &counter), S_OK);
    // They stay until the process has gone. The allocator's call may be in either module.
    new Patch<decltype(&::UnregisterClassW)>(kLibrary, "UnregisterClassW", &NotingUnregisterClass);
    new Patch<void(__cdecl*)(void*)>(kLibrary, "free", &WatchingFree);
    new Patch<void(__cdecl*)(void*)>(quon_test::kFrameworkModule, "free", &WatchingFree);
}

TEST(WndMsgServerCreation, ForgetsItsWindowAndClassBeforeItsRegistrations)
{
    const ChildResult result = RunPart(L"Cleared");
    EXPECT_TRUE(result.ended);
    EXPECT_EQ(result.code, kRightEnd);
}

// A program whose modules end in every way that there is; see MessagingLife.cpp.
TEST(MessagingLifeCycle, EndsInEveryWayWithoutHanging)
{
    const std::wstring program = OwnProgram();
    const std::wstring folder = program.substr(0, program.find_last_of(L"\\/") + 1);
    for (const wchar_t* way : {L"return", L"exit", L"free", L"free-twice", L"worker-left-running"})
    {
        SCOPED_TRACE(std::string(way, way + wcslen(way)));
        const ChildResult result = RunChild(L'"' + folder + L"messaging_life.exe\" " + way);
        EXPECT_TRUE(result.ended);
        EXPECT_EQ(result.code, 42u);
    }
}

}  // namespace
