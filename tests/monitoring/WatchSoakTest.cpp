// Subscribing and unsubscribing over and over while files are written: nothing is lost, nothing hangs, and no handle
// stays open.
#include "monitoring/MonitoringTestSupport.h"

#include "helpers/HardLimit.h"
#include "helpers/TemporaryFolder.h"
#include "helpers/Thorough.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <atomic>
#include <memory>
#include <random>
#include <thread>

using namespace quon_test;

namespace
{

constexpr size_t kFolders = 20;
constexpr size_t kCycles = 200;

std::atomic<int> openNotifications;

HANDLE WINAPI CountingFindFirst(const wchar_t* folder, BOOL subtree, DWORD mask)
{
    const HANDLE notification = ::FindFirstChangeNotificationW(folder, subtree, mask);
    openNotifications += notification != INVALID_HANDLE_VALUE ? 1 : 0;
    return notification;
}

BOOL WINAPI CountingFindClose(HANDLE notification)
{
    --openNotifications;
    return ::FindCloseChangeNotification(notification);
}

// The pause after each signal would make hours of so many.
void WINAPI ShortSleep(DWORD milliseconds)
{
    ::Sleep(milliseconds == 500 ? 1 : milliseconds);
}

class WatchSoak : public testing::Test
{
protected:
    WatchSoak()
    {
        for (size_t index = 0; index < kFolders; ++index)
        {
            const std::wstring name = L"folder" + std::to_wstring(index) + L"\\File.txt";
            folder.WriteFile(name, "0");
            names.push_back(name);
        }
    }

    // Writes the files one after the other, each time with another size, until it is told to stop.
    void WriteUntilStopped()
    {
        for (size_t round = 1; !isStopping; ++round)
        {
            folder.WriteFile(names[round % kFolders], std::string(1 + round % 1000, 'x'));
            ::Sleep(1);
        }
    }

    const Patch<decltype(&::FindFirstChangeNotificationW)> first{kLibrary, "FindFirstChangeNotificationW",
                                                                 &CountingFindFirst};
    const Patch<decltype(&::FindCloseChangeNotification)> close{kLibrary, "FindCloseChangeNotification",
                                                                &CountingFindClose};
    const Patch<decltype(&::Sleep)> sleep{kLibrary, "Sleep", &ShortSleep};
    TemporaryFolder folder;
    std::vector<std::wstring> names;
    std::atomic<bool> isStopping = false;
};

struct Subscription
{
    std::unique_ptr<RecordingSink> sink;
    QuonFileEventId id;
};

TEST_F(WatchSoak, KeepsUpWithManySubscriptions)
{
    const HardLimit limit(kHangLimit + SoakMilliseconds());
    const ULONGLONG end = ::GetTickCount64() + SoakMilliseconds();
    QuonFileEventServer* const server = TheServer();
    WindowJournal& journal = TheWindowJournal();
    std::thread writer([this] { WriteUntilStopped(); });
    std::mt19937 random(1);
    std::vector<Subscription> live;
    size_t events = 0;
    size_t acknowledged = 0;

    const auto pump = [&](DWORD milliseconds) {
        PumpFor(milliseconds);
        for (const WindowMessage& message : journal.messages)
        {
            acknowledged += message.number == kMsgRemove ? 1u : 0u;
        }
        journal.messages.clear();
    };
    const auto unsubscribe = [&](size_t index) {
        EXPECT_EQ(server->Unsubscribe(live[index].id), S_OK);
        events += live[index].sink->calls.size();
        // Gone at once: it must not be called any more.
        live.erase(live.begin() + static_cast<std::ptrdiff_t>(index));
    };
    size_t cycles = 0;
    // On a machine that is busy with other things all cycles may be over before anything is heard.
    for (; cycles < kCycles || events == 0 || ::GetTickCount64() < end; ++cycles)
    {
        Subscription subscription = {std::make_unique<RecordingSink>(), 0};
        const std::wstring& name = names[random() % kFolders];
        ASSERT_EQ(server->Subscribe((folder / name).c_str(), 0x1F, subscription.sink.get(), &subscription.id), S_OK);
        live.push_back(std::move(subscription));
        if (live.size() > 2 * kFolders || random() % 3 == 0)
        {
            unsubscribe(random() % live.size());
        }
        pump(random() % 20);
    }
    while (!live.empty())
    {
        unsubscribe(live.size() - 1);
    }
    isStopping = true;
    writer.join();
    EXPECT_TRUE(PumpUntil([&] {
        pump(0);
        return acknowledged == cycles;
    }));
    EXPECT_EQ(openNotifications, 0);
    std::printf("%zu subscriptions, %zu calls\n", cycles, events);

    // After all that, a change is told as on the first day.
    RecordingSink sink;
    QuonFileEventId id = 0;
    ASSERT_EQ(server->Subscribe((folder / names[0]).c_str(), 0x8, &sink, &id), S_OK);
    EXPECT_TRUE(PumpUntil([] { return openNotifications == 1; }));
    folder.WriteFile(names[0], std::string(5000, 'y'));
    EXPECT_TRUE(PumpUntil([&] { return !sink.calls.empty(); }));
    EXPECT_EQ(sink.calls.front(), "size");
    EXPECT_EQ(server->Unsubscribe(id), S_OK);
    EXPECT_TRUE(PumpUntil([] { return openNotifications == 0; }));
    server->Shutdown();
}

}  // namespace
