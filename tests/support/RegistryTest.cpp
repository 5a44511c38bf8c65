#include "support/Registry.h"

#include <gtest/gtest.h>

#include <cstring>
#include <string>

#include "helpers/ImportPatch.h"

namespace
{

using quon_test::ImportPatch;

constexpr wchar_t kLibrary[] = L"QuonWin32Utils.dll";
constexpr wchar_t kKey[] = L"Software\\QuonWin32UtilsTest";

struct RegistryCalls
{
    HKEY openedBelow;
    std::wstring openedPath;
    DWORD openOptions;
    REGSAM access;
    HKEY opened;
    std::wstring queried;
    DWORD givenSize;
    int queries;
};
RegistryCalls g_registry;

LONG WINAPI RecordingOpen(HKEY key, LPCWSTR path, DWORD options, REGSAM access, PHKEY result)
{
    const LONG error = ::RegOpenKeyExW(key, path, options, access, result);
    g_registry.openedBelow = key;
    g_registry.openedPath = path;
    g_registry.openOptions = options;
    g_registry.access = access;
    g_registry.opened = error == ERROR_SUCCESS ? *result : nullptr;
    return error;
}

LONG WINAPI RecordingQuery(HKEY key, LPCWSTR name, LPDWORD reserved, LPDWORD type, LPBYTE data, LPDWORD size)
{
    ++g_registry.queries;
    g_registry.queried = name;
    g_registry.givenSize = *size;
    return ::RegQueryValueExW(key, name, reserved, type, data, size);
}

// A key below the machine's part of the registry, gone at the end.
class MachineRegistry : public testing::Test
{
protected:
    MachineRegistry()
    {
        g_registry = RegistryCalls();
        EXPECT_EQ(::RegCreateKeyExW(HKEY_LOCAL_MACHINE, kKey, 0, nullptr, 0, KEY_ALL_ACCESS, nullptr, &m_key, nullptr),
                  ERROR_SUCCESS);
    }

    ~MachineRegistry() override
    {
        ::RegCloseKey(m_key);
        ::RegDeleteKeyW(HKEY_LOCAL_MACHINE, kKey);
    }

    void Set(const wchar_t* name, DWORD type, const void* data, DWORD size) const
    {
        EXPECT_EQ(::RegSetValueExW(m_key, name, 0, type, static_cast<const BYTE*>(data), size), ERROR_SUCCESS);
    }

private:
    HKEY m_key = nullptr;
};

TEST_F(MachineRegistry, GivesAFourByteValue)
{
    const DWORD stored = 0x12345678;
    Set(L"Number", REG_DWORD, &stored, sizeof stored);
    DWORD read = 0;
    EXPECT_TRUE(ReadMachineRegistryValue(kKey, L"Number", &read));
    EXPECT_EQ(read, stored);
}

TEST_F(MachineRegistry, DoesNotLookAtTheType)
{
    Set(L"Bytes", REG_BINARY, "\x01\x02\x03\x04", 4);
    Set(L"Text", REG_SZ, L"a", 4);
    char bytes[4] = {};
    EXPECT_TRUE(ReadMachineRegistryValue(kKey, L"Bytes", bytes));
    EXPECT_EQ(std::memcmp(bytes, "\x01\x02\x03\x04", 4), 0);
    wchar_t text[2] = {L'x', L'x'};
    EXPECT_TRUE(ReadMachineRegistryValue(kKey, L"Text", text));
    EXPECT_STREQ(text, L"a");
}

TEST_F(MachineRegistry, LeavesTheBytesBehindAShorterValueAlone)
{
    Set(L"Short", REG_BINARY, "\x01\x02", 2);
    Set(L"Empty", REG_BINARY, nullptr, 0);
    unsigned char bytes[8] = {9, 9, 9, 9, 9, 9, 9, 9};
    EXPECT_TRUE(ReadMachineRegistryValue(kKey, L"Empty", bytes));
    EXPECT_EQ(bytes[0], 9);
    EXPECT_TRUE(ReadMachineRegistryValue(kKey, L"Short", bytes));
    EXPECT_EQ(bytes[0], 1);
    EXPECT_EQ(bytes[1], 2);
    EXPECT_EQ(bytes[2], 9);
}

TEST_F(MachineRegistry, RefusesALongerValueAndWritesNothingBehindFourBytes)
{
    const unsigned long long stored = ~0ULL;
    Set(L"Long", REG_QWORD, &stored, sizeof stored);
    unsigned char bytes[8] = {9, 9, 9, 9, 9, 9, 9, 9};
    EXPECT_FALSE(ReadMachineRegistryValue(kKey, L"Long", bytes));
    for (int i = 4; i < 8; ++i)
    {
        EXPECT_EQ(bytes[i], 9) << i;
    }
}

TEST_F(MachineRegistry, FailsForWhatIsNotThere)
{
    DWORD read = 77;
    EXPECT_FALSE(ReadMachineRegistryValue(kKey, L"Missing", &read));
    EXPECT_FALSE(ReadMachineRegistryValue(L"Software\\QuonWin32UtilsTest\\Missing", L"Number", &read));
    EXPECT_FALSE(ReadMachineRegistryValue(kKey, L"", &read));
    EXPECT_EQ(read, 77U);
}

TEST_F(MachineRegistry, GivesTheDefaultValueForAnEmptyName)
{
    const DWORD stored = 5;
    Set(nullptr, REG_DWORD, &stored, sizeof stored);
    DWORD read = 0;
    EXPECT_TRUE(ReadMachineRegistryValue(kKey, CString(), &read));
    EXPECT_EQ(read, 5U);
}

TEST_F(MachineRegistry, WithoutRoomTellsWhetherTheValueIsThere)
{
    const DWORD stored = 5;
    Set(L"Number", REG_DWORD, &stored, sizeof stored);
    EXPECT_TRUE(ReadMachineRegistryValue(kKey, L"Number", nullptr));
    EXPECT_FALSE(ReadMachineRegistryValue(kKey, L"Missing", nullptr));
}

TEST_F(MachineRegistry, OpensForQueriesAndLeavesTheKeyOpen)
{
    const ImportPatch<decltype(&::RegOpenKeyExW)> open(kLibrary, "RegOpenKeyExW", &RecordingOpen);
    const ImportPatch<decltype(&::RegQueryValueExW)> query(kLibrary, "RegQueryValueExW", &RecordingQuery);
    const DWORD stored = 6;
    Set(L"Number", REG_DWORD, &stored, sizeof stored);
    DWORD read = 0;
    EXPECT_TRUE(ReadMachineRegistryValue(kKey, L"Number", &read));
    EXPECT_EQ(g_registry.openedBelow, HKEY_LOCAL_MACHINE);
    EXPECT_EQ(g_registry.openedPath, kKey);
    EXPECT_EQ(g_registry.openOptions, 0U);
    EXPECT_EQ(g_registry.access, static_cast<REGSAM>(KEY_QUERY_VALUE));
    EXPECT_EQ(g_registry.queried, L"Number");
    EXPECT_EQ(g_registry.givenSize, 4U);
    EXPECT_EQ(g_registry.queries, 1);
    // The key that was opened still answers.
    read = 0;
    DWORD size = 4;
    EXPECT_EQ(::RegQueryValueExW(g_registry.opened, L"Number", nullptr, nullptr, reinterpret_cast<BYTE*>(&read), &size),
              ERROR_SUCCESS);
    EXPECT_EQ(read, 6U);
    EXPECT_EQ(::RegCloseKey(g_registry.opened), ERROR_SUCCESS);

    g_registry.queries = 0;
    EXPECT_FALSE(ReadMachineRegistryValue(L"Software\\QuonWin32UtilsTest\\Missing", L"Number", &read));
    EXPECT_EQ(g_registry.queries, 0);
}

}  // namespace
