// The user's shell folders: real values in the registry, and the exact calls.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <optional>
#include <vector>

#include "paths/PathTestSupport.h"
#include "paths/QuonPath.h"
#include "paths/WellKnownFolders.h"
#include "helpers/ImportPatch.h"

using quon_test::ImportPatch;
using quon_test::Repeated;
using quon_test::Text;

namespace
{

constexpr const wchar_t* kModule = L"QuonWin32Utils.dll";
const wchar_t kKey[] = L"Software\\Microsoft\\Windows\\CurrentVersion\\Explorer\\Shell Folders";

/// One value of the user's shell folders, put back as it was at the end of the scope.
class ShellFolderValue
{
public:
    explicit ShellFolderValue(const wchar_t* name) : m_name(name)
    {
        ::RegCreateKeyExW(HKEY_CURRENT_USER, kKey, 0, nullptr, 0, KEY_ALL_ACCESS, nullptr, &m_key, nullptr);
        DWORD size = 0;
        if (::RegQueryValueExW(m_key, name, nullptr, &m_type, nullptr, &size) == ERROR_SUCCESS)
        {
            m_saved.emplace(size);
            ::RegQueryValueExW(m_key, name, nullptr, &m_type, m_saved->data(), &size);
        }
    }
    ~ShellFolderValue()
    {
        Delete();
        if (m_saved)
        {
            ::RegSetValueExW(m_key, m_name, 0, m_type, m_saved->data(), static_cast<DWORD>(m_saved->size()));
        }
        ::RegCloseKey(m_key);
    }
    ShellFolderValue(const ShellFolderValue&) = delete;
    ShellFolderValue& operator=(const ShellFolderValue&) = delete;

    void Delete() { ::RegDeleteValueW(m_key, m_name); }

    /// Stores exactly these bytes.
    void Set(DWORD type, const void* bytes, std::size_t size)
    {
        ASSERT_EQ(::RegSetValueExW(m_key, m_name, 0, type, static_cast<const BYTE*>(bytes), static_cast<DWORD>(size)),
                  ERROR_SUCCESS);
    }
    void Set(const std::wstring& text) { Set(REG_SZ, text.c_str(), (text.size() + 1) * sizeof(wchar_t)); }

private:
    const wchar_t* m_name;
    HKEY m_key = nullptr;
    DWORD m_type = 0;
    std::optional<std::vector<BYTE>> m_saved;
};

/// What ReadShellFolder() writes, in a buffer of exactly the size that it asks for, guarded behind.
struct ShellFolder
{
    explicit ShellFolder(const wchar_t* name)
    {
        wchar_t buffer[QuonShellFolderBufferSize + 8];
        std::fill(std::begin(buffer), std::end(buffer), L'#');
        buffer[0] = L'?';
        buffer[1] = L'\0';
        error = ReadShellFolder(name, buffer);
        text = buffer;
        for (int index = QuonShellFolderBufferSize; index < QuonShellFolderBufferSize + 8; ++index)
        {
            EXPECT_EQ(buffer[index], L'#');
        }
    }

    LONG error;
    std::wstring text;
};

const wchar_t kUntouched[] = L"?";

TEST(ShellFolders, EndInABackslash)
{
    const struct
    {
        const wchar_t* value;
        const wchar_t* expected;
    } rows[] = {
        {L"C:\\a\\Desktop", L"C:\\a\\Desktop\\"},
        {L"C:\\a\\Desktop\\", L"C:\\a\\Desktop\\"},
        {L"C:\\a\\Desktop\\\\", L"C:\\a\\Desktop\\\\"},
        {L"Desktop", L"Desktop\\"},
        {L"C:/a/Desktop/", L"C:/a/Desktop/\\"},
        {L"\\", L"\\"},
        {L"", L"\\"},
        {L"%USERPROFILE%\\x", L"%USERPROFILE%\\x\\"},
    };
    ShellFolderValue desktop(L"Desktop");
    ShellFolderValue favorites(L"Favorites");
    for (const auto& row : rows)
    {
        SCOPED_TRACE(testing::Message() << "value " << row.value);
        desktop.Set(row.value);
        favorites.Set(L"other");
        const ShellFolder folder(L"Desktop");
        EXPECT_EQ(folder.error, ERROR_SUCCESS);
        EXPECT_EQ(folder.text, row.expected);
        EXPECT_EQ(Text(QuonPath(QuonFolderDesktop, 0)), row.expected);
        favorites.Set(row.value);
        desktop.Set(L"other");
        EXPECT_EQ(Text(QuonPath(QuonFolderFavorites, 0)), row.expected);
    }
}

TEST(ShellFolders, DesktopOfThisUserEndsInABackslash)
{
    EXPECT_TRUE(QuonPath(QuonFolderDesktop, 0).HasTrailingSeparator());
    EXPECT_GT(Text(QuonPath(QuonFolderDesktop, 0)).size(), 3u);
}

TEST(ShellFolders, TypeIsNotLookedAt)
{
    ShellFolderValue value(L"Desktop");
    const wchar_t text[] = L"C:\\a\0second\0";
    for (const DWORD type : {REG_SZ, REG_EXPAND_SZ, REG_MULTI_SZ, REG_BINARY, REG_NONE})
    {
        SCOPED_TRACE(type);
        value.Set(type, text, sizeof(text));
        EXPECT_EQ(ShellFolder(L"Desktop").text, L"C:\\a\\");
    }
    const DWORD number = 0x00620061;
    value.Set(REG_DWORD, &number, sizeof(number));
    EXPECT_EQ(ShellFolder(L"Desktop").text, L"ab\\");
}

TEST(ShellFolders, ValueWithoutATerminatingZeroEndsWithItsBytes)
{
    ShellFolderValue value(L"Desktop");
    for (const std::size_t length : {0u, 1u, 4u, 258u, 259u, 260u})
    {
        SCOPED_TRACE(length);
        const std::wstring text = Repeated(length, L'x');
        value.Set(REG_BINARY, text.data(), length * sizeof(wchar_t));
        const ShellFolder folder(L"Desktop");
        EXPECT_EQ(folder.error, ERROR_SUCCESS);
        EXPECT_EQ(folder.text, text + L"\\");
        EXPECT_EQ(Text(QuonPath(QuonFolderDesktop, 0)), text + L"\\");
    }
    value.Set(REG_BINARY, L"abc", 5);
    EXPECT_EQ(ShellFolder(L"Desktop").text, L"ab\\");
}

TEST(ShellFolders, ValueOfMoreThan520BytesIsRefused)
{
    ShellFolderValue value(L"Desktop");
    value.Set(Repeated(259, L'x'));
    EXPECT_EQ(ShellFolder(L"Desktop").text, Repeated(259, L'x') + L"\\");
    value.Set(Repeated(260, L'x'));
    const ShellFolder folder(L"Desktop");
    EXPECT_EQ(folder.error, ERROR_MORE_DATA);
    EXPECT_EQ(folder.text, kUntouched);
    QuonPath path(L"old", 0);
    path.SetToFolder(QuonFolderDesktop);
    EXPECT_EQ(Text(path), L"old");
}

TEST(ShellFolders, MissingValueLeavesTheText)
{
    ShellFolderValue desktop(L"Desktop");
    ShellFolderValue favorites(L"Favorites");
    desktop.Delete();
    favorites.Delete();
    const ShellFolder folder(L"Desktop");
    EXPECT_EQ(folder.error, ERROR_FILE_NOT_FOUND);
    EXPECT_EQ(folder.text, kUntouched);
    EXPECT_EQ(Text(QuonPath(QuonFolderDesktop, 0)), L"");
    EXPECT_EQ(Text(QuonPath(QuonFolderFavorites, 0)), L"");
    QuonPath path(L"old", 0);
    path.Assign(QuonFolderFavorites, QuonPathAddTrailing);
    EXPECT_EQ(Text(path), L"old\\");
}

// The registry calls, replaced.

struct RegistryCalls
{
    HKEY root = nullptr;
    std::wstring key;
    DWORD options = 1;
    REGSAM access = 0;
    LONG openAnswer = ERROR_SUCCESS;
    std::wstring value;
    DWORD size = 0;
    LONG queryAnswer = ERROR_SUCCESS;
    int closed = 0;
    LONG closeAnswer = ERROR_SUCCESS;
} g_registry;

const HKEY kFakeKey = reinterpret_cast<HKEY>(std::uintptr_t{0x1234});

LONG WINAPI FakeOpenKey(HKEY root, LPCWSTR key, DWORD options, REGSAM access, PHKEY opened)
{
    g_registry.root = root;
    g_registry.key = key;
    g_registry.options = options;
    g_registry.access = access;
    *opened = kFakeKey;
    return g_registry.openAnswer;
}

LONG WINAPI FakeQueryValue(HKEY key, LPCWSTR name, LPDWORD, LPDWORD, LPBYTE data, LPDWORD size)
{
    EXPECT_EQ(key, kFakeKey);
    g_registry.value = name;
    g_registry.size = *size;
    if (g_registry.queryAnswer == ERROR_SUCCESS)
    {
        ::memcpy(data, L"C:\\a", 10);
        *size = 10;
    }
    return g_registry.queryAnswer;
}

LONG WINAPI FakeCloseKey(HKEY key)
{
    EXPECT_EQ(key, kFakeKey);
    ++g_registry.closed;
    return g_registry.closeAnswer;
}

class ShellFolderCalls : public testing::Test
{
protected:
    void SetUp() override { g_registry = RegistryCalls(); }

private:
    ImportPatch<decltype(&::RegOpenKeyExW)> m_open{kModule, "RegOpenKeyExW", &FakeOpenKey};
    ImportPatch<decltype(&::RegQueryValueExW)> m_query{kModule, "RegQueryValueExW", &FakeQueryValue};
    ImportPatch<decltype(&::RegCloseKey)> m_close{kModule, "RegCloseKey", &FakeCloseKey};
};

TEST_F(ShellFolderCalls, KeyIsOpenedWithFullAccessAndClosed)
{
    const ShellFolder folder(L"Personal");
    EXPECT_EQ(folder.error, ERROR_SUCCESS);
    EXPECT_EQ(folder.text, L"C:\\a\\");
    EXPECT_EQ(g_registry.root, HKEY_CURRENT_USER);
    EXPECT_EQ(g_registry.key, kKey);
    EXPECT_EQ(g_registry.options, 0u);
    EXPECT_EQ(g_registry.access, REGSAM{KEY_ALL_ACCESS});
    EXPECT_EQ(g_registry.value, L"Personal");
    EXPECT_EQ(g_registry.size, 520u);
    EXPECT_EQ(g_registry.closed, 1);
}

TEST_F(ShellFolderCalls, PathsAskForTheirValues)
{
    EXPECT_EQ(Text(QuonPath(QuonFolderDesktop, 0)), L"C:\\a\\");
    EXPECT_EQ(g_registry.value, L"Desktop");
    EXPECT_EQ(Text(QuonPath(QuonFolderFavorites, 0)), L"C:\\a\\");
    EXPECT_EQ(g_registry.value, L"Favorites");
}

TEST_F(ShellFolderCalls, RefusedKeyIsTold)
{
    g_registry.openAnswer = ERROR_ACCESS_DENIED;
    const ShellFolder folder(L"Desktop");
    EXPECT_EQ(folder.error, ERROR_ACCESS_DENIED);
    EXPECT_EQ(folder.text, kUntouched);
    EXPECT_EQ(g_registry.size, 0u);
    EXPECT_EQ(g_registry.closed, 0);
    QuonPath path(L"old", 0);
    path.SetToFolder(QuonFolderDesktop);
    EXPECT_EQ(Text(path), L"old");
}

TEST_F(ShellFolderCalls, FailedReadIsToldAndTheKeyClosed)
{
    g_registry.queryAnswer = ERROR_FILE_NOT_FOUND;
    const ShellFolder folder(L"Desktop");
    EXPECT_EQ(folder.error, ERROR_FILE_NOT_FOUND);
    EXPECT_EQ(folder.text, kUntouched);
    EXPECT_EQ(g_registry.closed, 1);
}

TEST_F(ShellFolderCalls, SuccessIsTheClosesResult)
{
    g_registry.closeAnswer = ERROR_INVALID_HANDLE;
    const ShellFolder folder(L"Desktop");
    EXPECT_EQ(folder.error, ERROR_INVALID_HANDLE);
    EXPECT_EQ(folder.text, L"C:\\a\\");
    EXPECT_EQ(g_registry.closed, 1);
}

}  // namespace
