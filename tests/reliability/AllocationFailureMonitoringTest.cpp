// Memory that runs out while files are watched and remembered. The folder browser's test is with its fake shell.
//
// Of the file event server only what the caller's thread does can fail here allocation by allocation: the watcher's own
// thread takes memory in an order of its own. The start of the server, tens of thousands of registrations made once in
// a process, has its test beside the server's other tests.
#include "messaging/MessagingTestSupport.h"
#include "messaging/QuonWndMsgServer.h"
#include "monitoring/QuonFileEventServer.h"
#include "monitoring/QuonFileModifiedManager.h"
#include "reliability/Survival.h"
#include "helpers/TemporaryFolder.h"

#include <string>
#include <utility>

using namespace quon_test;

namespace
{

constexpr UINT kMsgAdd = 0x8801;
constexpr UINT kMsgRemoved = 0x8804;

class NoSink final : public QuonFileEventSink
{
public:
    void OnFileNameChanged(const QuonFileEventId*) override { ++m_calls; }
    void OnFolderNameChanged(const QuonFileEventId*) override {}
    void OnAttributesChanged(const QuonFileEventId*) override {}
    void OnSizeChanged(const QuonFileEventId*) override {}
    void OnLastWriteChanged(const QuonFileEventId*) override {}
    void OnLastAccessChanged(const QuonFileEventId*) override {}
    void OnWatchFailed(const QuonFileEventId*, const DWORD*) override {}
    void OnReservedEvent1(const QuonFileEventId*) override {}
    void OnReservedEvent2(const QuonFileEventId*) override {}

    int m_calls = 0;
};

// What goes to the watcher and comes from it.
class WatcherTraffic
{
public:
    WatcherTraffic() { s_active = this; }
    ~WatcherTraffic() { s_active = nullptr; }
    WatcherTraffic(const WatcherTraffic&) = delete;
    WatcherTraffic& operator=(const WatcherTraffic&) = delete;

    // The subscription that was last posted to the watcher, 0 when none was since this was asked before.
    QuonFileEventId TakePosted() { return std::exchange(m_posted, 0); }

    // Until the watcher has freed the record of one subscription.
    bool WaitForRemoval() const { return m_removed.Wait(); }

private:
    static BOOL WINAPI ToThread(DWORD thread, UINT number, WPARAM wParam, LPARAM lParam)
    {
        const BOOL result = ::PostThreadMessageW(thread, number, wParam, lParam);
        if (number == kMsgAdd && result)
        {
            s_active->m_posted = static_cast<QuonFileEventId>(lParam);
        }
        return result;
    }

    static BOOL WINAPI ToWindow(HWND window, UINT number, WPARAM wParam, LPARAM lParam)
    {
        if (number == kMsgRemoved)
        {
            s_active->m_removed.Set();
            return TRUE;
        }
        return ::PostMessageW(window, number, wParam, lParam);
    }

    static inline WatcherTraffic* s_active = nullptr;

    QuonFileEventId m_posted = 0;
    Event m_removed{false};
    ImportPatch<decltype(&::PostThreadMessageW)> m_toThread{kLibrary, "PostThreadMessageW", &ToThread};
    ImportPatch<decltype(&::PostMessageW)> m_toWindow{kLibrary, "PostMessageW", &ToWindow};
};

TEST(AllocationFailureMonitoring, SubscribingAndUnsubscribing)
{
    QuonFileEventServer* const server = GetFileEventServer();
    const TemporaryFolder folder;
    const std::wstring path = folder.Path();
    WatcherTraffic traffic;
    NoSink sink;
    const int places = ExpectSurvives(
        [&] {
            QuonFileEventId id = 0;
            const HRESULT result = server->Subscribe(path.c_str(), FILE_NOTIFY_CHANGE_FILE_NAME, &sink, &id);
            const QuonFileEventId posted = traffic.TakePosted();
            if (result != S_OK)
            {
                // Neither a watch without a record nor one without a sink is on its way.
                EXPECT_TRUE(result == E_OUTOFMEMORY || result == E_FAIL);
                EXPECT_EQ(posted, 0u);
                EXPECT_EQ(id, 0u);
                return;
            }
            EXPECT_EQ(id, posted);
            const int before = sink.m_calls;
            QuonWndMsgServer::GetWndMsgServer()->SendToWindow(0x8800, FILE_NOTIFY_CHANGE_FILE_NAME,
                                                              static_cast<LPARAM>(posted));
            EXPECT_EQ(sink.m_calls, before + 1);
            EXPECT_EQ(server->Unsubscribe(posted), S_OK);
            EXPECT_TRUE(traffic.WaitForRemoval());
            // The acknowledgement ends the identifier's reservation.
            QuonWndMsgServer::GetWndMsgServer()->SendToWindow(kMsgRemoved, 0, static_cast<LPARAM>(posted));
        },
        kReturned);
    // The record, its path, and the sink's entry.
    EXPECT_GE(places, 3);
}

TEST(AllocationFailureMonitoring, AFileThatIsRemembered)
{
    const TemporaryFolder folder;
    int file = 0;
    const int places = ExpectSurvives(
        [&] {
            // Another file each time, whose record stays until the process ends.
            const std::wstring name = std::to_wstring(++file);
            folder.WriteFile(name.c_str(), "text");
            const std::wstring path = folder / name;
            EXPECT_TRUE(QuonFileModifiedManager::IsFileModified(path.c_str()));
        },
        kPlain, 1);
    EXPECT_GE(places, 2);
}

}  // namespace
