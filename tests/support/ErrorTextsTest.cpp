#include "support/StringHelpers.h"

#include <comdef.h>
#include <gtest/gtest.h>

#include "helpers/ImportPatch.h"
#include "support/Wide.h"

namespace
{

using quon_test::ImportPatch;
using quon_test::Wide;

constexpr wchar_t kLibrary[] = L"QuonWin32Utils.dll";

std::wstring SystemText(DWORD code)
{
    wchar_t buffer[4096] = {};
    const DWORD length = ::FormatMessageW(FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS, nullptr, code, 0,
                                          buffer, 4096, nullptr);
    return std::wstring(buffer, length);
}

TEST(GetSystemErrorText, IsTheSystemsTextWithItsLineBreak)
{
    const DWORD codes[] = {0, 2, 5, 32, 87, 112, 193, 0x80004005UL, 0x8007000EUL};
    for (const DWORD code : codes)
    {
        SCOPED_TRACE(testing::Message() << "code " << code);
        const std::wstring text = Wide(GetSystemErrorText(code));
        EXPECT_EQ(text, SystemText(code));
        ASSERT_GE(text.size(), 2U);
        EXPECT_EQ(text.substr(text.size() - 2), L"\r\n");
    }
}

TEST(GetSystemErrorText, KeepsInsertMarks)
{
    // "%1 is not a valid Win32 application."
    EXPECT_NE(GetSystemErrorText(ERROR_BAD_EXE_FORMAT).Find(L"%1"), -1);
}

TEST(GetSystemErrorText, IsEmptyForAnUnknownCode)
{
    EXPECT_TRUE(GetSystemErrorText(0xDEADBEEF).IsEmpty());
    EXPECT_TRUE(GetSystemErrorText(0x2FFFFFFF).IsEmpty());
}

// va_list spelt out: as a template argument the name would lose an attribute of the compiler's.
using FormatMessageFunction = DWORD(WINAPI*)(DWORD, LPCVOID, DWORD, DWORD, LPWSTR, DWORD, char**);

struct FormatCall
{
    DWORD flags;
    LPCVOID source;
    DWORD code;
    DWORD language;
    DWORD size;
};
FormatCall g_formatCall;
void* g_released;
int g_releases;

DWORD WINAPI RecordingFormatMessage(DWORD flags, LPCVOID source, DWORD code, DWORD language, LPWSTR buffer, DWORD size,
                                    va_list* arguments)
{
    g_formatCall = {flags, source, code, language, size};
    const DWORD length = ::FormatMessageW(flags, source, code, language, buffer, size, arguments);
    g_released = *reinterpret_cast<void**>(buffer);
    return length;
}

HLOCAL WINAPI CountingLocalFree(HLOCAL memory)
{
    if (memory != nullptr && memory == g_released)
    {
        ++g_releases;
    }
    return ::LocalFree(memory);
}

TEST(GetSystemErrorText, AsksOnceAndReleasesTheBuffer)
{
    const ImportPatch<FormatMessageFunction> format(kLibrary, "FormatMessageW", &RecordingFormatMessage);
    const ImportPatch<decltype(&::LocalFree)> release(kLibrary, "LocalFree", &CountingLocalFree);
    g_releases = 0;
    GetSystemErrorText(5);
    EXPECT_EQ(g_formatCall.flags, 0x1300U);
    EXPECT_EQ(g_formatCall.source, nullptr);
    EXPECT_EQ(g_formatCall.code, 5U);
    EXPECT_EQ(g_formatCall.language, 0U);
    EXPECT_EQ(g_releases, 1);
}

_com_error DescribedError(const wchar_t* description)
{
    ICreateErrorInfo* create = nullptr;
    EXPECT_EQ(::CreateErrorInfo(&create), S_OK);
    create->SetDescription(const_cast<LPOLESTR>(description));
    IErrorInfo* info = nullptr;
    EXPECT_EQ(create->QueryInterface(IID_IErrorInfo, reinterpret_cast<void**>(&info)), S_OK);
    create->Release();
    return _com_error(E_FAIL, info);  // takes the reference over
}

TEST(GetComErrorText, PrefersTheDescription)
{
    EXPECT_EQ(GetComErrorText(DescribedError(L"The surface has no faces.")), L"The surface has no faces.");
    EXPECT_EQ(Wide(GetComErrorText(DescribedError(L""))), SystemText(static_cast<DWORD>(E_FAIL)));
    EXPECT_EQ(Wide(GetComErrorText(_com_error(E_OUTOFMEMORY))), SystemText(static_cast<DWORD>(E_OUTOFMEMORY)));
    EXPECT_TRUE(GetComErrorText(_com_error(static_cast<HRESULT>(0xA0001234))).IsEmpty());
}

TEST(ClsidToString, IsTheRegistryForm)
{
    EXPECT_EQ(ClsidToString(CLSID_NULL), L"{00000000-0000-0000-0000-000000000000}");
    const CLSID clsid = {0xF6D90F11, 0x9C73, 0x11D3, {0xB3, 0x2E, 0x00, 0xC0, 0x4F, 0x99, 0x0B, 0xB4}};
    EXPECT_EQ(ClsidToString(clsid), L"{F6D90F11-9C73-11D3-B32E-00C04F990BB4}");
}

HRESULT WINAPI FailingStringFromClsid(REFCLSID, LPOLESTR*)
{
    return E_OUTOFMEMORY;
}

void* g_taskMemory;
int g_taskReleases;

HRESULT WINAPI RecordingStringFromClsid(REFCLSID clsid, LPOLESTR* text)
{
    const HRESULT result = ::StringFromCLSID(clsid, text);
    g_taskMemory = *text;
    return result;
}

void WINAPI CountingTaskMemFree(void* memory)
{
    if (memory != nullptr && memory == g_taskMemory)
    {
        ++g_taskReleases;
    }
    ::CoTaskMemFree(memory);
}

TEST(ClsidToString, ReleasesTheBuffer)
{
    const ImportPatch<decltype(&::StringFromCLSID)> make(kLibrary, "StringFromCLSID", &RecordingStringFromClsid);
    const ImportPatch<decltype(&::CoTaskMemFree)> release(kLibrary, "CoTaskMemFree", &CountingTaskMemFree);
    g_taskReleases = 0;
    ClsidToString(CLSID_NULL);
    EXPECT_EQ(g_taskReleases, 1);
}

TEST(ClsidToString, IsEmptyWhenTheSystemFails)
{
    const ImportPatch<decltype(&::StringFromCLSID)> make(kLibrary, "StringFromCLSID", &FailingStringFromClsid);
    EXPECT_TRUE(ClsidToString(CLSID_NULL).IsEmpty());
}

}  // namespace
