#include "host/landxml/ReplacementFile.h"

#include <afx.h>

#include "host/Console.h"

#include <string>

namespace quonhost
{
namespace
{

bool IsFolder(const wchar_t* path)
{
    const DWORD attributes = ::GetFileAttributesW(path);
    return attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
}

[[noreturn]] void FailToWrite(const QuonPath& target, const std::wstring& reason)
{
    throw CommandError(L"\"" + std::wstring(target) + L"\" cannot be written: " + reason);
}

// The folder is part of the name, so that the file system of the target holds both and a rename suffices. The process
// is part of it too: two exports to one target must not write to one file.
std::wstring NameBeside(const QuonPath& target)
{
    return std::wstring(target) + L"." + std::to_wstring(::GetCurrentProcessId()) + L".tmp";
}

}  // namespace

ReplacementFile::ReplacementFile(const QuonPath& target)
    : m_target(target), m_path(NameBeside(target), QuonPathBackslash)
{
    const std::wstring folder(m_target.GetFolder());
    if (!folder.empty() && !IsFolder(folder.c_str()))
    {
        FailToWrite(m_target, L"its folder does not exist");
    }
    if (IsFolder(m_target))
    {
        FailToWrite(m_target, L"it is a folder");
    }
}

ReplacementFile::~ReplacementFile()
{
    // After Commit there is nothing left of that name.
    ::DeleteFileW(m_path);
}

void ReplacementFile::Commit()
{
    if (!::MoveFileExW(m_path, m_target, MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH))
    {
        const DWORD error = ::GetLastError();
        FailToWrite(m_target, L"error " + std::to_wstring(error));
    }
}

}  // namespace quonhost
