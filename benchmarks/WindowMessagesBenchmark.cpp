// A window message for one registered callback, with 34,824 registrations around it.
#include <afx.h>

#include "BenchmarkSupport.h"
#include "messaging/QuonWndMsgServer.h"

#include <benchmark/benchmark.h>

using namespace quon_benchmark;

namespace
{

constexpr UINT kFirstMessage = WM_USER;
constexpr UINT kRegistrations = 34824;
constexpr UINT kMessage = kFirstMessage + kRegistrations / 2;
constexpr WPARAM kWeight = 3;

// What both the callback and the bare window do with a message.
std::size_t theSum = 0;

class Adding : public QuonWndMsgServer::Callback
{
public:
    void OnMessage(const WndMsgRecord* message) override { theSum += message->wParam; }
};

LRESULT CALLBACK BareProcedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam)
{
    if (message == kMessage)
    {
        theSum += wParam;
    }
    return ::DefWindowProcW(window, message, wParam, lParam);
}

HWND MakeBareWindow()
{
    WNDCLASSW windowClass = {};
    windowClass.lpfnWndProc = &BareProcedure;
    windowClass.hInstance = ::GetModuleHandleW(nullptr);
    windowClass.lpszClassName = L"BareWindow";
    ::RegisterClassW(&windowClass);
    return ::CreateWindowExW(0, windowClass.lpszClassName, L"", 0, 0, 0, 1, 1, nullptr, nullptr, windowClass.hInstance,
                             nullptr);
}

void RegisterAll(QuonWndMsgServer& server)
{
    static Adding callback;  // told until the process ends
    for (UINT index = 0; index < kRegistrations; ++index)
    {
        const UINT message = kFirstMessage + index;
        UINT cookie = 0;
        Require(server.AddCallback(&message, &cookie, &callback) == S_OK, "a registration");
    }
}

std::size_t Send(HWND window, int count)
{
    theSum = 0;
    for (int index = 0; index < count; ++index)
    {
        ::SendMessageW(window, kMessage, kWeight, 0);
    }
    return theSum;
}

void AddContenders(const Sizes& sizes)
{
    QuonWndMsgServer* const server = QuonWndMsgServer::GetWndMsgServer();
    const HWND bare = MakeBareWindow();
    Require(server != nullptr && server->GetWindow() != nullptr && bare != nullptr, "the windows");
    RegisterAll(*server);
    Require(Send(server->GetWindow(), 10) == 10 * kWeight && Send(bare, 10) == 10 * kWeight, "messages sent");

    const std::string work = "SendMessageW to one callback among 34824";
    for (const int size : sizes.UpTo(10000))
    {
        Add(work, size, "quon", [server, size] { benchmark::DoNotOptimize(Send(server->GetWindow(), size)); });
        Add(work, size, "limit: bare window", [bare, size] { benchmark::DoNotOptimize(Send(bare, size)); });
    }
}

}  // namespace

int main(int argc, char** argv)
{
    return Run(argc, argv, &AddContenders);
}
