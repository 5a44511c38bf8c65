// Attach and detach, seen from the journal that the framework keeps of its start and end calls.

#include <afxwin.h>

#include "quon_framework_journal.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <iterator>
#include <string>
#include <thread>
#include <vector>

namespace
{

std::vector<std::string> Journal(DWORD threadId = 0)
{
    std::vector<std::string> names;
    const CString journal = QuonFrameworkJournal(threadId);
    for (int start = 0; start >= 0 && !journal.IsEmpty();)
    {
        const CString name = journal.Tokenize(L"\n", start);
        if (start >= 0)
        {
            names.emplace_back(name.GetString(), name.GetString() + name.GetLength());
        }
    }
    return names;
}

std::vector<QuonFrameworkCall> Calls()
{
    std::vector<QuonFrameworkCall> calls(100);
    calls.resize(QuonFrameworkCalls(calls.data(), calls.size()));
    return calls;
}

// The calls of one name; those about the framework's own records are left out.
std::vector<QuonFrameworkCall> CallsOf(const std::string& name)
{
    std::vector<QuonFrameworkCall> found;
    for (const QuonFrameworkCall& call : Calls())
    {
        if (!call.system && name == call.name)
        {
            found.push_back(call);
        }
    }
    return found;
}

// How many records came into a list of another module state than the host's and were not deleted again.
int RecordsLeftElsewhere()
{
    int count = 0;
    for (const QuonFrameworkCall& call : Calls())
    {
        const std::string name = call.name;
        if (call.moduleState != AfxGetAppModuleState())
        {
            count += name == "CDynLinkLibrary" ? 1 : 0;
            count -= name == "~CDynLinkLibrary" ? 1 : 0;
        }
    }
    return count;
}

// The library's own module state is a variable of the library.
HMODULE ModuleOf(const AFX_MODULE_STATE* state)
{
    HMODULE module = nullptr;
    ::GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT,
                         reinterpret_cast<LPCWSTR>(state), &module);
    return module;
}

// The records in the list in which the host's framework looks things up, to be compared before and after.
std::vector<const CDynLinkLibrary*> HostList()
{
    std::vector<const CDynLinkLibrary*> records;
    for (const CDynLinkLibrary* record = AfxGetAppModuleState()->m_libraryList; record != nullptr;
         record = record->m_pNextDLL)
    {
        records.push_back(record);
    }
    return records;
}

// Records of the library in the list in which the host's framework looks things up.
int RecordsInHost(HMODULE module)
{
    int count = 0;
    for (const CDynLinkLibrary* record = AfxGetAppModuleState()->m_libraryList; record != nullptr;
         record = record->m_pNextDLL)
    {
        count += record->m_hModule == module ? 1 : 0;
    }
    return count;
}

class LoadedLibrary
{
public:
    LoadedLibrary() : m_module(::LoadLibraryW(L"QuonWin32Utils.dll")), m_error(::GetLastError()) {}
    ~LoadedLibrary() { Free(); }
    LoadedLibrary(const LoadedLibrary&) = delete;
    LoadedLibrary& operator=(const LoadedLibrary&) = delete;

    void Free()
    {
        if (m_module != nullptr)
        {
            ::FreeLibrary(m_module);
            m_module = nullptr;
        }
    }
    HMODULE Module() const { return m_module; }
    DWORD Error() const { return m_error; }

private:
    HMODULE m_module;
    DWORD m_error;
};

class ModuleTest : public testing::Test
{
protected:
    void SetUp() override
    {
        ASSERT_EQ(::GetModuleHandleW(L"QuonWin32Utils.dll"), nullptr);
        ASSERT_TRUE(AfxWinInit(::GetModuleHandleW(nullptr), nullptr, ::GetCommandLineW(), 0));
        QuonFrameworkClearJournal();
    }
    void TearDown() override { QuonFrameworkClearJournal(); }
};

TEST_F(ModuleTest, ProcessAttachInitialisesCoreThenInstanceThenExtensionModuleThenJoinsTheHost)
{
    const LoadedLibrary library;
    ASSERT_NE(library.Module(), nullptr);
    EXPECT_THAT(Journal(),
                testing::ElementsAre("AfxCoreInitModule", "AfxWinInit", "AfxInitExtensionModule", "CDynLinkLibrary"));
}

TEST_F(ModuleTest, ProcessDetachReleasesTheTemporaryMapsThenEndsFrameworkAndExtensionModule)
{
    LoadedLibrary library;
    ASSERT_NE(library.Module(), nullptr);
    QuonFrameworkClearJournal();
    library.Free();
    EXPECT_THAT(Journal(),
                testing::ElementsAre("AfxLockTempMaps", "AfxUnlockTempMaps", "AfxWinTerm", "AfxTermExtensionModule",
                                     "AfxTermExtensionModule", "~CDynLinkLibrary"));
}

TEST_F(ModuleTest, ThreadDetachReleasesTheTemporaryMapsThenEndsTheThread)
{
    const LoadedLibrary library;
    ASSERT_NE(library.Module(), nullptr);
    QuonFrameworkClearJournal();
    DWORD threadId = 0;
    const HANDLE thread = ::CreateThread(
        nullptr, 0, [](void*) -> DWORD { return 0; }, nullptr, 0, &threadId);
    ASSERT_NE(thread, nullptr);
    ::WaitForSingleObject(thread, INFINITE);
    ::CloseHandle(thread);
    EXPECT_THAT(Journal(threadId), testing::ElementsAre("AfxLockTempMaps", "AfxUnlockTempMaps", "AfxTermThread"));
    EXPECT_EQ(Journal().size(), 3u) << "thread attach calls nothing";
}

TEST_F(ModuleTest, TheHostsListHoldsOneRecordOfTheLibraryWhileItIsLoaded)
{
    LoadedLibrary library;
    const HMODULE module = library.Module();
    ASSERT_NE(module, nullptr);
    EXPECT_EQ(RecordsInHost(module), 1);
    library.Free();
    EXPECT_EQ(RecordsInHost(module), 0);
}

TEST_F(ModuleTest, TheLibrarysOwnListHoldsTheFrameworkWhileItIsLoadedAndNothingAfterwards)
{
    const AFX_EXTENSION_MODULE other = {TRUE, ::GetModuleHandleW(L"kernel32.dll"), nullptr};
    AFX_EXTENSION_MODULE record = other;
    new CDynLinkLibrary(record);
    const std::vector<const CDynLinkLibrary*> hostList = HostList();
    for (int round = 0; round < 3; ++round)
    {
        LoadedLibrary library;
        ASSERT_NE(library.Module(), nullptr);
        EXPECT_EQ(RecordsLeftElsewhere(), 1);
        library.Free();
        EXPECT_EQ(RecordsLeftElsewhere(), 0);
        EXPECT_EQ(HostList(), hostList) << "other modules' records in the host's list are not touched";
    }
    AfxTermExtensionModule(record);
    EXPECT_EQ(HostList().size() + 1, hostList.size());
}

TEST_F(ModuleTest, FrameworkCallsRunUnderTheLibrarysModuleStateAndExtensionModuleCallsUnderTheHosts)
{
    LoadedLibrary library;
    const HMODULE module = library.Module();
    ASSERT_NE(module, nullptr);
    ASSERT_EQ(CallsOf("AfxCoreInitModule").size(), 1u);
    AFX_MODULE_STATE* const own = CallsOf("AfxCoreInitModule")[0].moduleState;
    AFX_MODULE_STATE* const host = AfxGetAppModuleState();
    EXPECT_EQ(ModuleOf(own), module);
    library.Free();

    const struct
    {
        const char* name;
        HMODULE module;
        int argument;
        AFX_MODULE_STATE* state;
    } expected[] = {
        {"AfxCoreInitModule", nullptr, 0, own},
        {"AfxWinInit", module, 0, own},
        {"AfxInitExtensionModule", module, 0, host},
        {"CDynLinkLibrary", module, 0, host},
        {"AfxLockTempMaps", nullptr, 0, own},
        {"AfxUnlockTempMaps", nullptr, -1, own},
        {"AfxWinTerm", nullptr, 0, own},
        {"AfxTermExtensionModule", module, TRUE, own},
        {"AfxTermExtensionModule", module, FALSE, host},
        {"~CDynLinkLibrary", module, 0, host},
    };
    std::size_t index = 0;
    for (const QuonFrameworkCall& call : Calls())
    {
        if (call.system)
        {
            continue;
        }
        ASSERT_LT(index, std::size(expected)) << call.name;
        SCOPED_TRACE(testing::Message() << "call " << index << " " << call.name);
        EXPECT_STREQ(call.name, expected[index].name);
        EXPECT_EQ(call.module, expected[index].module);
        EXPECT_EQ(call.argument, expected[index].argument);
        EXPECT_EQ(call.moduleState, expected[index].state);
        ++index;
    }
    EXPECT_EQ(index, std::size(expected));
}

TEST_F(ModuleTest, ThreadDetachRunsUnderTheLibrarysModuleState)
{
    const LoadedLibrary library;
    ASSERT_NE(library.Module(), nullptr);
    QuonFrameworkClearJournal();
    std::thread([] {}).join();
    const std::vector<QuonFrameworkCall> calls = Calls();
    ASSERT_EQ(calls.size(), 3u);
    for (const QuonFrameworkCall& call : calls)
    {
        SCOPED_TRACE(call.name);
        EXPECT_EQ(ModuleOf(call.moduleState), library.Module());
        EXPECT_EQ(call.module, nullptr);
    }
    EXPECT_EQ(calls[1].argument, -1);
}

TEST_F(ModuleTest, TheHostKeepsItsOwnModuleStateAndInstance)
{
    AFX_MODULE_STATE* const before = AfxGetModuleState();
    const LoadedLibrary library;
    ASSERT_NE(library.Module(), nullptr);
    EXPECT_EQ(AfxGetModuleState(), before);
    EXPECT_EQ(AfxGetInstanceHandle(), ::GetModuleHandleW(nullptr));
}

TEST_F(ModuleTest, LoadingTwiceAttachesOnce)
{
    const LoadedLibrary library;
    ASSERT_NE(library.Module(), nullptr);
    QuonFrameworkClearJournal();
    const LoadedLibrary again;
    EXPECT_EQ(again.Module(), library.Module());
    EXPECT_TRUE(Journal().empty());
}

struct FaultRow
{
    const char* call;
    QuonFrameworkFault fault;
    std::vector<std::string> attachCalls;
};

void PrintTo(const FaultRow& row, std::ostream* out)
{
    *out << row.call << (row.fault == QuonFrameworkFault::MemoryException ? " throws" : " returns FALSE");
}

class ModuleFaultTest : public ModuleTest, public testing::WithParamInterface<FaultRow>
{
};

TEST_P(ModuleFaultTest, MakesTheAttachFailAndLeavesNothingBehind)
{
    const FaultRow& row = GetParam();
    const std::vector<const CDynLinkLibrary*> hostList = HostList();
    QuonFrameworkFailNext(row.call, row.fault);
    {
        const LoadedLibrary library;
        EXPECT_EQ(library.Module(), nullptr);
        EXPECT_EQ(library.Error(), static_cast<DWORD>(ERROR_DLL_INIT_FAILED));
    }
    // The attach stopped at the call that failed; then came the detach of what there was.
    const std::vector<std::string> calls = Journal();
    ASSERT_GE(calls.size(), row.attachCalls.size());
    EXPECT_EQ(
        std::vector<std::string>(calls.begin(), calls.begin() + static_cast<std::ptrdiff_t>(row.attachCalls.size())),
        row.attachCalls);
    const std::vector<std::string> rest(calls.begin() + static_cast<std::ptrdiff_t>(row.attachCalls.size()),
                                        calls.end());
    EXPECT_THAT(rest, testing::ElementsAre("AfxLockTempMaps", "AfxUnlockTempMaps", "AfxWinTerm",
                                           "AfxTermExtensionModule", "AfxTermExtensionModule"));
    EXPECT_EQ(RecordsLeftElsewhere(), 0);
    EXPECT_EQ(HostList(), hostList);

    QuonFrameworkClearJournal();
    const LoadedLibrary second;
    EXPECT_NE(second.Module(), nullptr) << "a later attempt succeeds";
    EXPECT_EQ(RecordsInHost(second.Module()), 1);
}

INSTANTIATE_TEST_SUITE_P(
    EachCall, ModuleFaultTest,
    testing::Values(FaultRow{"AfxCoreInitModule", QuonFrameworkFault::MemoryException, {"AfxCoreInitModule"}},
                    FaultRow{"AfxWinInit", QuonFrameworkFault::MemoryException, {"AfxCoreInitModule", "AfxWinInit"}},
                    FaultRow{"AfxWinInit", QuonFrameworkFault::ReturnFalse, {"AfxCoreInitModule", "AfxWinInit"}},
                    FaultRow{"AfxInitExtensionModule",
                             QuonFrameworkFault::MemoryException,
                             {"AfxCoreInitModule", "AfxWinInit", "AfxInitExtensionModule"}},
                    FaultRow{"AfxInitExtensionModule",
                             QuonFrameworkFault::ReturnFalse,
                             {"AfxCoreInitModule", "AfxWinInit", "AfxInitExtensionModule"}},
                    FaultRow{"CDynLinkLibrary",
                             QuonFrameworkFault::MemoryException,
                             {"AfxCoreInitModule", "AfxWinInit", "AfxInitExtensionModule", "CDynLinkLibrary"}}));

}  // namespace
