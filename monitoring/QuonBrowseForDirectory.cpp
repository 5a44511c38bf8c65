#include "monitoring/QuonBrowseForDirectory.h"

#include <io.h>

#include <memory>

namespace
{

constexpr size_t kBufferLength = 520;
constexpr UINT kFlags = BIF_RETURNONLYFSDIRS | BIF_STATUSTEXT | BIF_RETURNFSANCESTORS | BIF_NEWDIALOGSTYLE;
static_assert(kFlags == 0x4D);

struct Releaser
{
    void operator()(IUnknown* object) const { object->Release(); }
};

struct BstrFreer
{
    void operator()(wchar_t* text) const { ::SysFreeString(text); }
};

// The folder's item list, for the shell's allocator to free; null when the shell does not know the folder.
PIDLIST_RELATIVE ParseFolder(IShellFolder* desktop, HWND owner, const CString& folder)
{
    const std::unique_ptr<wchar_t, BstrFreer> text(::SysAllocString(folder));
    PIDLIST_RELATIVE list = nullptr;
    return SUCCEEDED(desktop->ParseDisplayName(owner, nullptr, text.get(), nullptr, &list, nullptr)) ? list : nullptr;
}

void FreeList(IMalloc* allocator, PIDLIST_RELATIVE& list)
{
    if (list != nullptr)
    {
        allocator->Free(list);
        list = nullptr;
    }
}

void OnSelectionChanged(QuonBrowseForDirectory& browser, HWND dialog, PCIDLIST_ABSOLUTE selection)
{
    CString statusText;
    wchar_t path[kBufferLength] = {};
    if (selection != nullptr && ::SHGetPathFromIDListW(selection, path) && !browser.ValidateFolder(path, statusText))
    {
        ::SendMessageW(dialog, BFFM_ENABLEOK, 0, 0);
    }
    ::SendMessageW(dialog, BFFM_SETSTATUSTEXTW, 0, reinterpret_cast<LPARAM>(statusText.GetString()));
}

}  // namespace

namespace QuonBrowseForDirectory_details
{

/// The work on one object for one showing of the dialog.
struct Dialog
{
    QuonBrowseForDirectory& browser;

    void ParseFolders(const wchar_t* initialFolder, HWND owner, const wchar_t* rootFolder);
    static int CALLBACK OwnCallback(HWND dialog, UINT message, LPARAM parameter, LPARAM self);
};

void Dialog::ParseFolders(const wchar_t* initialFolder, HWND owner, const wchar_t* rootFolder)
{
    // What an earlier call could not free must not be taken for this one's.
    browser.m_initialList = nullptr;
    browser.m_rootList = nullptr;
    IShellFolder* desktopFolder = nullptr;
    if (FAILED(::SHGetDesktopFolder(&desktopFolder)))
    {
        return;
    }
    const std::unique_ptr<IShellFolder, Releaser> desktop(desktopFolder);
    const bool hasInitialFolder = initialFolder != nullptr && ::_waccess(initialFolder, 0) == 0;
    // Both texts before both lists, because copying a text may throw and nobody would free a list then.
    if (hasInitialFolder)
    {
        browser.m_initialFolder = initialFolder;
    }
    if (rootFolder != nullptr)
    {
        browser.m_rootFolder = rootFolder;
    }
    if (hasInitialFolder)
    {
        browser.m_initialList = ParseFolder(desktop.get(), owner, browser.m_initialFolder);
    }
    if (rootFolder != nullptr)
    {
        browser.m_rootList = ParseFolder(desktop.get(), owner, browser.m_rootFolder);
    }
}

int CALLBACK Dialog::OwnCallback(HWND dialog, UINT message, LPARAM parameter, LPARAM self)
{
    auto* const chooser = reinterpret_cast<QuonBrowseForDirectory*>(self);
    if (message == BFFM_INITIALIZED && chooser->m_initialList != nullptr)
    {
        ::SendMessageW(dialog, BFFM_SETSELECTIONW, FALSE, reinterpret_cast<LPARAM>(chooser->m_initialList));
    }
    else if (message == BFFM_SELCHANGED)
    {
        OnSelectionChanged(*chooser, dialog, reinterpret_cast<PCIDLIST_ABSOLUTE>(parameter));
    }
    return 0;
}

}  // namespace QuonBrowseForDirectory_details

QuonBrowseForDirectory::QuonBrowseForDirectory(BFFCALLBACK callback)
    : m_callback(callback), m_initialList(nullptr), m_rootList(nullptr)
{
    ::CoInitialize(nullptr);
}

QuonBrowseForDirectory::~QuonBrowseForDirectory()
{
    ::CoUninitialize();
}

bool QuonBrowseForDirectory::Browse(QuonPath& result, const wchar_t* initialFolder, const wchar_t* title, HWND owner,
                                    const wchar_t* rootFolder)
{
    using QuonBrowseForDirectory_details::Dialog;
    Dialog{*this}.ParseFolders(initialFolder, owner, rootFolder);

    wchar_t buffer[kBufferLength] = {};
    BROWSEINFOW dialog = {};
    dialog.hwndOwner = owner;
    dialog.pidlRoot = reinterpret_cast<PCIDLIST_ABSOLUTE>(m_rootList);
    dialog.pszDisplayName = buffer;
    dialog.lpszTitle = title;
    dialog.ulFlags = kFlags;
    dialog.lpfn = m_callback != nullptr ? m_callback : &Dialog::OwnCallback;
    dialog.lParam = reinterpret_cast<LPARAM>(this);
    PIDLIST_ABSOLUTE chosen = ::SHBrowseForFolderW(&dialog);

    IMalloc* shellAllocator = nullptr;
    if (FAILED(::SHGetMalloc(&shellAllocator)))
    {
        // Nobody is left to free the item lists, the chosen one included.
        return false;
    }
    const std::unique_ptr<IMalloc, Releaser> allocator(shellAllocator);
    const bool isChosen = chosen != nullptr;
    if (isChosen)
    {
        ::SHGetPathFromIDListW(chosen, buffer);
        allocator->Free(chosen);
    }
    FreeList(allocator.get(), m_rootList);
    FreeList(allocator.get(), m_initialList);
    // Last, because it may throw.
    if (isChosen)
    {
        result = buffer;
        result.AddTrailingSeparator();
    }
    return isChosen;
}

bool QuonBrowseForDirectory::ValidateFolder(const wchar_t*, CString&)
{
    return true;
}
