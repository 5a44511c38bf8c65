// From a change of a file to the callback that tells of it, one file and up to 100 of one folder.
#include <afx.h>

#include "BenchmarkSupport.h"
#include "helpers/TemporaryFolder.h"
#include "monitoring/QuonFileEventServer.h"

#include <benchmark/benchmark.h>

#include <memory>
#include <string>
#include <vector>

using namespace quon_benchmark;

namespace
{

constexpr DWORD kSettlingMilliseconds = 500;
constexpr DWORD kLongestWait = 5000;
constexpr int kAttempts = 5;

// Dispatches messages until `isDone` or the time has passed. @return whether it is done
template <typename IsDone>
bool Pump(DWORD milliseconds, const IsDone& isDone)
{
    const DWORD start = ::GetTickCount();
    for (DWORD passed = 0; passed < milliseconds; passed = ::GetTickCount() - start)
    {
        MSG message;
        while (::PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE))
        {
            ::DispatchMessageW(&message);
        }
        if (isDone())
        {
            return true;
        }
        ::MsgWaitForMultipleObjectsEx(0, nullptr, milliseconds - passed, QS_ALLINPUT, MWMO_INPUTAVAILABLE);
    }
    return false;
}

// Files that grow by a byte at a time.
class GrowingFiles
{
public:
    explicit GrowingFiles(int count)
    {
        for (int index = 0; index < count; ++index)
        {
            m_paths.push_back(m_folder.WriteFile(L"points " + std::to_wstring(index) + L".txt", "1"));
        }
    }

    const std::wstring& Folder() const { return m_folder.Path(); }
    const std::vector<std::wstring>& Paths() const { return m_paths; }

    void Grow() const
    {
        for (const std::wstring& path : m_paths)
        {
            const HANDLE file =
                ::CreateFileW(path.c_str(), FILE_APPEND_DATA, FILE_SHARE_READ, nullptr, OPEN_EXISTING, 0, nullptr);
            DWORD written = 0;
            ::WriteFile(file, "1", 1, &written, nullptr);
            ::CloseHandle(file);
            Require(written == 1, "a file that grows");
        }
    }

private:
    quon_test::TemporaryFolder m_folder;
    std::vector<std::wstring> m_paths;
};

class CountingSink : public QuonFileEventSink
{
public:
    std::size_t sizes = 0;

    void OnFileNameChanged(const QuonFileEventId*) override {}
    void OnFolderNameChanged(const QuonFileEventId*) override {}
    void OnAttributesChanged(const QuonFileEventId*) override {}
    void OnSizeChanged(const QuonFileEventId*) override { ++sizes; }
    void OnLastWriteChanged(const QuonFileEventId*) override {}
    void OnLastAccessChanged(const QuonFileEventId*) override {}
    void OnWatchFailed(const QuonFileEventId*, const DWORD*) override { Require(false, "a folder that is watched"); }
    void OnReservedEvent1(const QuonFileEventId*) override {}
    void OnReservedEvent2(const QuonFileEventId*) override {}
};

// The library tells of each file.
class QuonWatch
{
public:
    explicit QuonWatch(int count) : m_files(count)
    {
        for (const std::wstring& path : m_files.Paths())
        {
            QuonFileEventId id = 0;
            Require(GetFileEventServer()->Subscribe(path.c_str(), FILE_NOTIFY_CHANGE_SIZE, &m_sink, &id) == S_OK,
                    "a subscription");
            m_ids.push_back(id);
        }
    }
    ~QuonWatch()
    {
        for (const QuonFileEventId id : m_ids)
        {
            GetFileEventServer()->Unsubscribe(id);
        }
    }
    QuonWatch(const QuonWatch&) = delete;
    QuonWatch& operator=(const QuonWatch&) = delete;

    // A change is signalled more than once: the watcher looks a second time, and must be done with that.
    void Prepare()
    {
        Pump(2 * kSettlingMilliseconds, [] { return false; });
        m_sink.sizes = 0;
    }

    // A change in the moment in which the watcher arms its notification anew can get lost under Wine; the next one is
    // told. A run in which that happens is a slow one, and only the fastest counts.
    void Change()
    {
        const auto areTold = [this] { return m_sink.sizes >= m_files.Paths().size(); };
        for (int attempt = 0; attempt < kAttempts; ++attempt)
        {
            m_files.Grow();
            if (Pump(kLongestWait, areTold))
            {
                return;
            }
        }
        Require(false, "changes that are told");
    }

private:
    GrowingFiles m_files;
    CountingSink m_sink;
    std::vector<QuonFileEventId> m_ids;
};

// The limit: the folder's notification, armed afresh before each change, and the pause; no file is looked at.
class BareWatch
{
public:
    explicit BareWatch(int count) : m_files(count) {}
    ~BareWatch() { Disarm(); }
    BareWatch(const BareWatch&) = delete;
    BareWatch& operator=(const BareWatch&) = delete;

    void Prepare()
    {
        Disarm();
        m_change = ::FindFirstChangeNotificationW(m_files.Folder().c_str(), FALSE, FILE_NOTIFY_CHANGE_SIZE);
        Require(m_change != INVALID_HANDLE_VALUE, "a notification");
    }

    void Change()
    {
        m_files.Grow();
        Require(::WaitForSingleObject(m_change, kLongestWait) == WAIT_OBJECT_0, "a change that is signalled");
        ::Sleep(kSettlingMilliseconds);
    }

private:
    void Disarm()
    {
        if (m_change != INVALID_HANDLE_VALUE)
        {
            ::FindCloseChangeNotification(m_change);
        }
    }

    GrowingFiles m_files;
    HANDLE m_change = INVALID_HANDLE_VALUE;
};

template <typename Watch>
void AddWatch(const std::string& work, int size, const std::string& contender)
{
    const auto watch = std::make_shared<Watch>(size);
    watch->Prepare();
    watch->Change();
    AddPrepared(
        work, size, contender, [watch] { watch->Prepare(); }, [watch] { watch->Change(); });
}

void AddBoth(const std::string& work, int size)
{
    AddWatch<QuonWatch>(work, size, "quon");
    AddWatch<BareWatch>(work, size, "limit: bare notification and 500 ms");
}

void AddContenders(const Sizes& sizes)
{
    AddBoth("change to callback", 1);
    for (const int size : sizes.UpTo(100))
    {
        AddBoth("changes of files of one folder, all told", size);
    }
}

}  // namespace

int main(int argc, char** argv)
{
    const int result = Run(argc, argv, &AddContenders);
    GetFileEventServer()->Shutdown();
    return result;
}
