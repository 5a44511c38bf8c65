// The tables of imports that fail, one for each part of the library: what stands here they share.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "helpers/TemporaryFolder.h"

namespace quon_test::import_failure
{

inline constexpr std::uintptr_t kMinusOne = ~std::uintptr_t{0};
inline constexpr std::uintptr_t kZero = 0;
inline constexpr std::uintptr_t kNoMemory = 0x8007000E;
inline constexpr std::uintptr_t kFailed = 0x80004005;

// The folder of a test, with a file, a read-only file and a tree.
class Folder : public TemporaryFolder
{
public:
    Folder()
    {
        WriteFile(L"file", "text");
        WriteFile(L"locked", "text", FILE_ATTRIBUTE_READONLY);
        WriteFile(L"tree\\sub\\file", "text");
    }
    std::wstring File() const { return *this / L"file"; }
};

struct Row
{
    const char* import;
    std::uintptr_t failure;
    std::string expected;  // what the operation says when the import fails
    std::function<std::string(const Folder&)> operation;
};

inline std::string Narrow(const wchar_t* text)
{
    const std::wstring wide = text;
    return std::string(wide.begin(), wide.end());
}

std::vector<Row> PathRows();
std::vector<Row> SupportRows();
std::vector<Row> MessagingRows();
std::vector<Row> XmlRows();

}  // namespace quon_test::import_failure
