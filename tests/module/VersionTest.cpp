#include <afx.h>

#include <gtest/gtest.h>

#include <cwchar>
#include <string>
#include <vector>

#include "helpers/ModuleNames.h"

namespace
{

// The file version of a DLL beside this program as "major.minor.patch.build"; empty without a version resource.
std::wstring FileVersionOf(const wchar_t* name)
{
    wchar_t program[MAX_PATH] = {};
    ::GetModuleFileNameW(nullptr, program, MAX_PATH);
    const std::wstring file = std::wstring(program, std::wcsrchr(program, L'\\') + 1) + name;
    const wchar_t* const path = file.c_str();
    DWORD ignored = 0;
    std::vector<char> data(::GetFileVersionInfoSizeW(path, &ignored));
    VS_FIXEDFILEINFO* info = nullptr;
    UINT size = 0;
    if (data.empty() || !::GetFileVersionInfoW(path, 0, static_cast<DWORD>(data.size()), data.data()) ||
        !::VerQueryValueW(data.data(), L"\\", reinterpret_cast<void**>(&info), &size))
    {
        return L"";
    }
    return std::to_wstring(HIWORD(info->dwFileVersionMS)) + L"." + std::to_wstring(LOWORD(info->dwFileVersionMS)) +
           L"." + std::to_wstring(HIWORD(info->dwFileVersionLS)) + L"." +
           std::to_wstring(LOWORD(info->dwFileVersionLS));
}

TEST(VersionResource, IsTheProjectsInBothLibraries)
{
    EXPECT_EQ(FileVersionOf(quon_test::kLibraryModule), QUON_PROJECT_VERSION L".0");
    EXPECT_EQ(FileVersionOf(quon_test::kFrameworkModule), QUON_PROJECT_VERSION L".0");
}

}  // namespace
