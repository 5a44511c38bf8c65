#include "monitoring/QuonBrowseForDirectory.h"

#include "messaging/MessagingTestSupport.h"
#include "reliability/Survival.h"
#include "helpers/ImportPatch.h"
#include "helpers/TemporaryFolder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <cstddef>
#include <functional>
#include <memory>
#include <string>
#include <thread>
#include <vector>

using namespace quon_test;
using testing::ElementsAre;
using testing::IsEmpty;

namespace
{

template <typename Function>
using Patch = ImportPatch<Function>;

std::string Narrow(const std::wstring& text)
{
    return std::string(text.begin(), text.end());
}

// Item lists of this test: texts that only this shell understands.
PIDLIST_ABSOLUTE ListOf(const wchar_t* path)
{
    return reinterpret_cast<PIDLIST_ABSOLUTE>(const_cast<wchar_t*>(path));
}

std::wstring TextOf(const void* list)
{
    return list != nullptr ? static_cast<const wchar_t*>(list) : L"(null)";
}

// The shell as the test wants it, with all that is asked of it in order.
class FakeShell : public IShellFolder, public IMalloc
{
public:
    FakeShell() { s_active = this; }
    ~FakeShell() { s_active = nullptr; }
    FakeShell(const FakeShell&) = delete;
    FakeShell& operator=(const FakeShell&) = delete;

    std::vector<std::string> calls;
    BROWSEINFOW dialog = {};
    std::wstring title;
    PIDLIST_ABSOLUTE chosen = nullptr;
    bool hasDesktop = true;
    bool hasAllocator = true;
    bool canParse = true;
    bool hasPath = true;
    /// What happens while the dialog is open.
    std::function<void(const BROWSEINFOW&)> open;

    // The one interface that both bases share.
    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID, void**) override { return E_NOINTERFACE; }
    ULONG STDMETHODCALLTYPE AddRef() override { return 1; }
    ULONG STDMETHODCALLTYPE Release() override
    {
        calls.push_back("release");
        return 1;
    }

    HRESULT STDMETHODCALLTYPE ParseDisplayName(HWND owner, IBindCtx* context, LPWSTR name, ULONG*,
                                               PIDLIST_RELATIVE* list, ULONG*) override
    {
        calls.push_back("parse " + Narrow(name) + (context == nullptr ? "" : " in a context") + " for " +
                        std::to_string(reinterpret_cast<std::uintptr_t>(owner)) +
                        (::SysStringLen(name) == std::wcslen(name) ? "" : " as no BSTR"));
        // An answer that a failed call must not leave behind.
        *list = reinterpret_cast<PIDLIST_RELATIVE>(ListOf(name == std::wstring(L"c:\\root") ? L"root" : L"initial"));
        return canParse ? S_OK : E_INVALIDARG;
    }

    void STDMETHODCALLTYPE Free(void* block) override { calls.push_back("free " + Narrow(TextOf(block))); }

    HRESULT STDMETHODCALLTYPE EnumObjects(HWND, SHCONTF, IEnumIDList**) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE BindToObject(PCUIDLIST_RELATIVE, IBindCtx*, REFIID, void**) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE BindToStorage(PCUIDLIST_RELATIVE, IBindCtx*, REFIID, void**) override
    {
        return E_NOTIMPL;
    }
    HRESULT STDMETHODCALLTYPE CompareIDs(LPARAM, PCUIDLIST_RELATIVE, PCUIDLIST_RELATIVE) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE CreateViewObject(HWND, REFIID, void**) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE GetAttributesOf(UINT, PCUITEMID_CHILD_ARRAY, SFGAOF*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE GetUIObjectOf(HWND, UINT, PCUITEMID_CHILD_ARRAY, REFIID, UINT*, void**) override
    {
        return E_NOTIMPL;
    }
    HRESULT STDMETHODCALLTYPE GetDisplayNameOf(PCUITEMID_CHILD, SHGDNF, STRRET*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE SetNameOf(HWND, PCUITEMID_CHILD, LPCWSTR, SHGDNF, PITEMID_CHILD*) override
    {
        return E_NOTIMPL;
    }
    void* STDMETHODCALLTYPE Alloc(SIZE_T) override { return nullptr; }
    void* STDMETHODCALLTYPE Realloc(void*, SIZE_T) override { return nullptr; }
    SIZE_T STDMETHODCALLTYPE GetSize(void*) override { return 0; }
    int STDMETHODCALLTYPE DidAlloc(void*) override { return -1; }
    void STDMETHODCALLTYPE HeapMinimize() override {}

private:
    static HRESULT WINAPI GetDesktop(IShellFolder** folder)
    {
        s_active->calls.push_back("desktop");
        *folder = s_active;
        return s_active->hasDesktop ? S_OK : E_FAIL;
    }

    static HRESULT WINAPI GetAllocator(IMalloc** allocator)
    {
        s_active->calls.push_back("allocator");
        *allocator = s_active;
        return s_active->hasAllocator ? S_OK : E_FAIL;
    }

    static PIDLIST_ABSOLUTE WINAPI Show(BROWSEINFOW* dialog)
    {
        s_active->calls.push_back("dialog in " + Narrow(TextOf(dialog->pidlRoot)));
        s_active->dialog = *dialog;
        s_active->title = TextOf(dialog->lpszTitle);
        // The buffer is the caller's, of 520 characters.
        std::fill_n(dialog->pszDisplayName, 519, L'x');
        dialog->pszDisplayName[519] = L'\0';
        if (s_active->open)
        {
            s_active->open(*dialog);
        }
        return s_active->chosen;
    }

    static BOOL WINAPI GetPath(PCIDLIST_ABSOLUTE list, wchar_t* path)
    {
        s_active->calls.push_back("path of " + Narrow(TextOf(list)));
        if (!s_active->hasPath)
        {
            path[0] = L'\0';
            return FALSE;
        }
        std::wcscpy(path, TextOf(list).c_str());
        return TRUE;
    }

    static LRESULT WINAPI Send(HWND window, UINT message, WPARAM wParam, LPARAM lParam)
    {
        std::string call = "send " + std::to_string(reinterpret_cast<std::uintptr_t>(window)) + ' ' +
                           std::to_string(message - WM_USER) + ' ' + std::to_string(wParam) + ' ';
        const bool isText = message == BFFM_SETSTATUSTEXTW || message == BFFM_SETSELECTIONW;
        s_active->calls.push_back(
            call + (isText ? Narrow(TextOf(reinterpret_cast<const void*>(lParam))) : std::to_string(lParam)));
        return 0;
    }

    static inline FakeShell* s_active = nullptr;

    Patch<decltype(&::SHGetDesktopFolder)> m_desktop{kLibrary, "SHGetDesktopFolder", &GetDesktop};
    Patch<decltype(&::SHGetMalloc)> m_allocator{kLibrary, "SHGetMalloc", &GetAllocator};
    Patch<decltype(&::SHBrowseForFolderW)> m_show{kLibrary, "SHBrowseForFolderW", &Show};
    Patch<decltype(&::SHGetPathFromIDListW)> m_path{kLibrary, "SHGetPathFromIDListW", &GetPath};
    Patch<decltype(&::SendMessageW)> m_send{kLibrary, "SendMessageW", &Send};
};

const HWND kOwner = reinterpret_cast<HWND>(std::uintptr_t{77});
const HWND kDialog = reinterpret_cast<HWND>(std::uintptr_t{9});

std::wstring Text(const QuonPath& path)
{
    return static_cast<const wchar_t*>(path);
}

class BrowseForDirectory : public testing::Test
{
protected:
    bool Browse(const wchar_t* initial = nullptr, const wchar_t* root = nullptr, const wchar_t* title = nullptr)
    {
        return browser.Browse(result, initial, title, kOwner, root);
    }

    FakeShell shell;
    QuonBrowseForDirectory browser{nullptr};
    QuonPath result{L"before", 0};
    // An initial folder must exist.
    TemporaryFolder folder;
};

TEST_F(BrowseForDirectory, AsksTheShellInThisOrder)
{
    shell.chosen = ListOf(L"c:\\a");
    EXPECT_TRUE(Browse(folder.Path().c_str(), L"c:\\root", L"Title"));
    EXPECT_THAT(shell.calls, ElementsAre("desktop", "parse " + Narrow(folder.Path()) + " for 77",
                                         "parse c:\\root for 77", "release", "dialog in root", "allocator",
                                         "path of c:\\a", "free c:\\a", "free root", "free initial", "release"));
    EXPECT_EQ(Text(result), L"c:\\a\\");
    EXPECT_EQ(shell.dialog.hwndOwner, kOwner);
    EXPECT_EQ(shell.title, L"Title");
    EXPECT_EQ(shell.dialog.ulFlags, 0x4Du);
    EXPECT_NE(shell.dialog.lpfn, nullptr);
    EXPECT_EQ(shell.dialog.lParam, reinterpret_cast<LPARAM>(&browser));
    EXPECT_EQ(shell.dialog.iImage, 0);
}

TEST_F(BrowseForDirectory, LeavesTheResultOnCancel)
{
    EXPECT_FALSE(Browse(folder.Path().c_str()));
    EXPECT_EQ(Text(result), L"before");
    EXPECT_THAT(shell.calls, ElementsAre("desktop", "parse " + Narrow(folder.Path()) + " for 77", "release",
                                         "dialog in (null)", "allocator", "free initial", "release"));
    EXPECT_EQ(shell.title, L"(null)");
}

TEST_F(BrowseForDirectory, EndsTheResultInOneSeparator)
{
    const struct
    {
        const wchar_t* chosen;
        const wchar_t* result;
        QuonPathFlags flags;
    } rows[] = {
        {L"C:\\", L"C:\\", 0},
        {L"C:\\a", L"C:\\a\\", 0},
        {L"C:/a/", L"C:/a/", 0},
        {L"\\\\srv\\share", L"\\\\srv\\share\\", 0},
        {L"C:\\a", L"C:\\a/", QuonPathForwardSlash},
    };
    for (const auto& row : rows)
    {
        shell.chosen = ListOf(row.chosen);
        result.Assign(L"before", row.flags);
        EXPECT_TRUE(Browse());
        EXPECT_EQ(Text(result), row.result);
    }
}

// The shell's answer is not looked at: what it left in the buffer is the result.
TEST_F(BrowseForDirectory, TakesAFolderWithoutAPathForTheRoot)
{
    shell.chosen = ListOf(L"a printer");
    shell.hasPath = false;
    EXPECT_TRUE(Browse());
    EXPECT_EQ(Text(result), L"\\");
}

TEST_F(BrowseForDirectory, IgnoresAnInitialFolderThatDoesNotExist)
{
    shell.open = [](const BROWSEINFOW& dialog) { dialog.lpfn(kDialog, BFFM_INITIALIZED, 0, dialog.lParam); };
    for (const std::wstring& initial : {folder / L"missing", std::wstring()})
    {
        shell.calls.clear();
        EXPECT_FALSE(Browse(initial.c_str()));
        EXPECT_THAT(shell.calls, ElementsAre("desktop", "release", "dialog in (null)", "allocator", "release"));
    }
}

// The root may be anything that the shell knows.
TEST_F(BrowseForDirectory, DoesNotAskWhetherTheRootExists)
{
    EXPECT_FALSE(Browse(nullptr, L"c:\\root"));
    EXPECT_THAT(shell.calls, ElementsAre("desktop", "parse c:\\root for 77", "release", "dialog in root", "allocator",
                                         "free root", "release"));
}

TEST_F(BrowseForDirectory, GoesOnWithoutFoldersThatCannotBeParsed)
{
    shell.canParse = false;
    shell.open = [](const BROWSEINFOW& dialog) { dialog.lpfn(kDialog, BFFM_INITIALIZED, 0, dialog.lParam); };
    EXPECT_FALSE(Browse(folder.Path().c_str(), L"c:\\root"));
    EXPECT_THAT(shell.calls,
                ElementsAre("desktop", "parse " + Narrow(folder.Path()) + " for 77", "parse c:\\root for 77", "release",
                            "dialog in (null)", "allocator", "release"));
}

TEST_F(BrowseForDirectory, GoesOnWithoutADesktop)
{
    shell.hasDesktop = false;
    shell.chosen = ListOf(L"c:\\a");
    EXPECT_TRUE(Browse(folder.Path().c_str(), L"c:\\root"));
    EXPECT_THAT(shell.calls,
                ElementsAre("desktop", "dialog in (null)", "allocator", "path of c:\\a", "free c:\\a", "release"));
}

// The lists of that call are lost, and the next call must not use them.
TEST_F(BrowseForDirectory, FailsWithoutAnAllocatorEvenWhenAFolderWasChosen)
{
    shell.hasAllocator = false;
    shell.chosen = ListOf(L"c:\\a");
    EXPECT_FALSE(Browse(folder.Path().c_str(), L"c:\\root"));
    EXPECT_EQ(Text(result), L"before");
    EXPECT_EQ(shell.calls.back(), "allocator");

    shell.hasAllocator = true;
    shell.calls.clear();
    shell.open = [](const BROWSEINFOW& dialog) { dialog.lpfn(kDialog, BFFM_INITIALIZED, 0, dialog.lParam); };
    EXPECT_TRUE(Browse());
    EXPECT_THAT(shell.calls, ElementsAre("desktop", "release", "dialog in (null)", "allocator", "path of c:\\a",
                                         "free c:\\a", "release"));
}

// The shell's lists are nobody's once the call has ended, and no block of the run-time's heap.
TEST_F(BrowseForDirectory, FreesItsListsWhenMemoryRunsOut)
{
    class ListAccount
    {
    public:
        explicit ListAccount(FakeShell& shell) : m_shell(shell) {}
        ~ListAccount()
        {
            EXPECT_EQ(Count("free "), Count("parse ") + Count("dialog ")) << "lists made, and lists freed";
            std::vector<std::string>().swap(m_shell.calls);
        }
        ListAccount(const ListAccount&) = delete;
        ListAccount& operator=(const ListAccount&) = delete;

    private:
        std::ptrdiff_t Count(const std::string& begin) const
        {
            return std::count_if(m_shell.calls.begin(), m_shell.calls.end(),
                                 [&begin](const std::string& call) { return call.starts_with(begin); });
        }
        FakeShell& m_shell;
    };
    const std::wstring initial = folder.Path();
    shell.chosen = ListOf(L"c:\\a");
    shell.open = [](const BROWSEINFOW& dialog) {
        dialog.lpfn(kDialog, BFFM_INITIALIZED, 0, dialog.lParam);
        dialog.lpfn(kDialog, BFFM_SELCHANGED, reinterpret_cast<LPARAM>(L"c:\\a"), dialog.lParam);
    };
    const int places = ExpectSurvives(
        [&] {
            const ListAccount account(shell);
            QuonBrowseForDirectory fresh(nullptr);
            QuonPath chosen;
            fresh.Browse(chosen, initial.c_str(), L"Title", nullptr, L"c:\\root");
        },
        kPlain);
    // The texts of two folders, and the path.
    EXPECT_GE(places, 3);
}

int CALLBACK OtherCallback(HWND, UINT, LPARAM, LPARAM)
{
    return 0;
}

TEST_F(BrowseForDirectory, UsesTheCallersCallback)
{
    QuonBrowseForDirectory withOther(&OtherCallback);
    withOther.Browse(result, nullptr, nullptr, nullptr, nullptr);
    EXPECT_EQ(shell.dialog.lpfn, &OtherCallback);
    EXPECT_EQ(shell.dialog.lParam, reinterpret_cast<LPARAM>(&withOther));
    EXPECT_EQ(shell.dialog.hwndOwner, nullptr);
}

// Refuses all folders whose names hold "no", with a word about each.
class Choosy : public QuonBrowseForDirectory
{
public:
    Choosy() : QuonBrowseForDirectory(nullptr) {}

    bool ValidateFolder(const wchar_t* path, CString& statusText) override
    {
        asked.push_back(Narrow(path));
        hasText = hasText || !statusText.IsEmpty();
        statusText = CString(L"about ") + path;
        return std::wstring(path).find(L"no") == std::wstring::npos;
    }

    std::vector<std::string> asked;
    bool hasText = false;
};

class OwnCallback : public BrowseForDirectory
{
protected:
    // Calls the class's own callback while the dialog is open; what it does is in the shell's calls alone.
    template <typename Browser>
    void InDialog(Browser& shown, const wchar_t* initial, const std::function<void(const BROWSEINFOW&)>& act)
    {
        shell.open = [&](const BROWSEINFOW& dialog) {
            shell.calls.clear();
            act(dialog);
            seen = shell.calls;
        };
        shown.Browse(result, initial, nullptr, kOwner, nullptr);
    }

    std::vector<std::string> seen;
};

TEST_F(OwnCallback, SelectsTheInitialFolder)
{
    InDialog(browser, folder.Path().c_str(),
             [](const BROWSEINFOW& dialog) { EXPECT_EQ(dialog.lpfn(kDialog, BFFM_INITIALIZED, 0, dialog.lParam), 0); });
    EXPECT_THAT(seen, ElementsAre("send 9 103 0 initial"));
    EXPECT_EQ(BFFM_SETSELECTIONW, 0x467u);
}

TEST_F(OwnCallback, SelectsNothingWithoutAnInitialFolder)
{
    InDialog(browser, nullptr,
             [](const BROWSEINFOW& dialog) { EXPECT_EQ(dialog.lpfn(kDialog, BFFM_INITIALIZED, 0, dialog.lParam), 0); });
    EXPECT_THAT(seen, IsEmpty());
}

TEST_F(OwnCallback, AllowsEveryFolderWithoutAStatusText)
{
    InDialog(browser, nullptr, [](const BROWSEINFOW& dialog) {
        EXPECT_EQ(dialog.lpfn(kDialog, BFFM_SELCHANGED, reinterpret_cast<LPARAM>(L"c:\\no"), dialog.lParam), 0);
    });
    EXPECT_THAT(seen, ElementsAre("path of c:\\no", "send 9 104 0 "));
    CString text;
    EXPECT_TRUE(browser.ValidateFolder(L"c:\\no", text));
    EXPECT_TRUE(text.IsEmpty());
}

TEST_F(OwnCallback, AsksADerivedClassAndShowsItsStatusText)
{
    Choosy choosy;
    InDialog(choosy, nullptr, [](const BROWSEINFOW& dialog) {
        for (const wchar_t* const path : {L"c:\\yes", L"c:\\no", L"c:\\yes"})
        {
            EXPECT_EQ(dialog.lpfn(kDialog, BFFM_SELCHANGED, reinterpret_cast<LPARAM>(path), dialog.lParam), 0);
        }
    });
    EXPECT_THAT(choosy.asked, ElementsAre("c:\\yes", "c:\\no", "c:\\yes"));
    EXPECT_FALSE(choosy.hasText);
    EXPECT_THAT(seen, ElementsAre("path of c:\\yes", "send 9 104 0 about c:\\yes", "path of c:\\no", "send 9 101 0 0",
                                  "send 9 104 0 about c:\\no", "path of c:\\yes", "send 9 104 0 about c:\\yes"));
    EXPECT_EQ(BFFM_ENABLEOK, 0x465u);
    EXPECT_EQ(BFFM_SETSTATUSTEXTW, 0x468u);
}

TEST_F(OwnCallback, DoesNotAskAboutWhatHasNoPath)
{
    Choosy choosy;
    shell.hasPath = false;
    InDialog(choosy, nullptr, [](const BROWSEINFOW& dialog) {
        EXPECT_EQ(dialog.lpfn(kDialog, BFFM_SELCHANGED, 0, dialog.lParam), 0);
        EXPECT_EQ(dialog.lpfn(kDialog, BFFM_SELCHANGED, reinterpret_cast<LPARAM>(L"no"), dialog.lParam), 0);
    });
    EXPECT_THAT(choosy.asked, IsEmpty());
    EXPECT_THAT(seen, ElementsAre("send 9 104 0 ", "path of no", "send 9 104 0 "));
}

TEST_F(OwnCallback, IgnoresOtherMessages)
{
    Choosy choosy;
    InDialog(choosy, folder.Path().c_str(), [](const BROWSEINFOW& dialog) {
        for (const UINT message : {0u, UINT{BFFM_VALIDATEFAILEDA}, UINT{BFFM_VALIDATEFAILEDW}, 5u, 99u})
        {
            EXPECT_EQ(dialog.lpfn(kDialog, message, reinterpret_cast<LPARAM>(L"c:\\no"), dialog.lParam), 0);
        }
    });
    EXPECT_THAT(seen, IsEmpty());
}

std::vector<std::string> comCalls;

HRESULT WINAPI RecordingInitialize(void* reserved)
{
    comCalls.push_back(reserved == nullptr ? "initialize" : "initialize something");
    return ::CoInitialize(reserved);
}

void WINAPI RecordingUninitialize()
{
    comCalls.push_back("uninitialize");
    ::CoUninitialize();
}

TEST(BrowseForDirectoryLife, KeepsComInitialised)
{
    const Patch<decltype(&::CoInitialize)> initialize(kLibrary, "CoInitialize", &RecordingInitialize);
    const Patch<decltype(&::CoUninitialize)> uninitialize(kLibrary, "CoUninitialize", &RecordingUninitialize);
    comCalls.clear();
    {
        const QuonBrowseForDirectory first(nullptr);
        const QuonBrowseForDirectory second(&OtherCallback);
        EXPECT_THAT(comCalls, ElementsAre("initialize", "initialize"));
    }
    EXPECT_THAT(comCalls, ElementsAre("initialize", "initialize", "uninitialize", "uninitialize"));
}

int liveStrings = 0;

BSTR WINAPI CountingAlloc(const OLECHAR* text)
{
    ++liveStrings;
    return ::SysAllocString(text);
}

void WINAPI CountingFree(BSTR text)
{
    --liveStrings;
    ::SysFreeString(text);
}

TEST_F(BrowseForDirectory, FreesItsTexts)
{
    const Patch<decltype(&::SysAllocString)> alloc(kLibrary, "SysAllocString", &CountingAlloc);
    const Patch<decltype(&::SysFreeString)> free(kLibrary, "SysFreeString", &CountingFree);
    int most = 0;
    shell.open = [&](const BROWSEINFOW&) { most = liveStrings; };
    Browse(folder.Path().c_str(), L"c:\\root");
    EXPECT_EQ(most, 0);
    EXPECT_EQ(liveStrings, 0);
}

TEST(BrowseForDirectoryLayout, IsTheOneThatOtherModulesKnow)
{
    EXPECT_EQ(sizeof(QuonBrowseForDirectory), 6 * sizeof(void*));
    const QuonBrowseForDirectory browser(&OtherCallback);
    EXPECT_EQ((FieldAt<BFFCALLBACK>(browser, 8)), &OtherCallback);
    EXPECT_EQ((FieldAt<void*>(browser, 32)), nullptr);
    EXPECT_EQ((FieldAt<void*>(browser, 40)), nullptr);
#if !defined(_MSC_VER)
    // A virtual destructor takes two places with this compiler.
    EXPECT_EQ(SlotOf(&QuonBrowseForDirectory::Browse), 2u);
    EXPECT_EQ(SlotOf(&QuonBrowseForDirectory::ValidateFolder), 3u);
#endif
}

// The dialog that a thread shows, null when it shows none.
HWND FindDialog(DWORD thread)
{
    HWND found = nullptr;
    ::EnumThreadWindows(
        thread,
        [](HWND window, LPARAM wanted) {
            wchar_t name[16] = {};
            ::GetClassNameW(window, name, 16);
            if (std::wstring(name) == L"#32770" && ::IsWindowVisible(window))
            {
                *reinterpret_cast<HWND*>(wanted) = window;
                return FALSE;
            }
            return TRUE;
        },
        reinterpret_cast<LPARAM>(&found));
    return found;
}

// The real dialog: another thread finds its window and presses a button, once the initial folder is selected.
class RealDialog : public Choosy
{
public:
    bool Show(QuonPath& result, const wchar_t* initial, WPARAM button)
    {
        if (initial == nullptr)
        {
            m_isSelected.Set();
        }
        else
        {
            m_initial = initial;
        }
        std::atomic<bool> isOver = false;
        std::thread presser([this, &isOver, button, thread = ::GetCurrentThreadId()] {
            m_isSelected.Wait();
            HWND dialog = nullptr;
            while (!isOver && (dialog = FindDialog(thread)) == nullptr)
            {
                ::Sleep(10);
            }
            // It comes after what the dialog has still to do for its selection.
            ::PostMessageW(dialog, WM_COMMAND, button, 0);
        });
        const bool isChosen = Browse(result, initial, L"Choose", nullptr, nullptr);
        isOver = true;
        presser.join();
        return isChosen;
    }

    bool ValidateFolder(const wchar_t* path, CString& statusText) override
    {
        const bool isValid = Choosy::ValidateFolder(path, statusText);
        if (path == m_initial)
        {
            m_isSelected.Set();
        }
        return isValid;
    }

private:
    const Event m_isSelected;
    std::wstring m_initial;
};

TEST(BrowseForDirectoryReal, ReturnsTheInitialFolderOnOk)
{
    const TemporaryFolder folder;
    folder.MakeFolder(L"yes");
    RealDialog dialog;
    QuonPath result(L"before", 0);
    EXPECT_TRUE(dialog.Show(result, (folder / L"yes").c_str(), IDOK));
    EXPECT_EQ(Text(result), folder / L"yes\\");
    EXPECT_THAT(dialog.asked, testing::Contains(Narrow(folder / L"yes")));
}

TEST(BrowseForDirectoryReal, LeavesTheResultOnCancel)
{
    RealDialog dialog;
    QuonPath result(L"before", 0);
    EXPECT_FALSE(dialog.Show(result, nullptr, IDCANCEL));
    EXPECT_EQ(Text(result), L"before");
}

}  // namespace
