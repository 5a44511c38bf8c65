#include "host/landxml/ReplacementFile.h"

#include "host/Console.h"
#include "host/FileIdentity.h"
#include "host/Streams.h"
#include "host/landxml/Steps.h"

#include <algorithm>
#include <vector>

namespace quonhost
{
namespace
{

constexpr DWORD kShareAll = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;

// Between two of these the user can stop.
constexpr size_t kBlock = 1 << 20;

std::wstring FullNameOf(const std::wstring& name)
{
    std::wstring full(::GetFullPathNameW(name.c_str(), 0, nullptr, nullptr), L'\0');
    full.resize(::GetFullPathNameW(name.c_str(), static_cast<DWORD>(full.size()), full.data(), nullptr));
    return full.empty() ? name : full;
}

// Opens a file or folder for asking about it, without access to its contents.
FileHandle OpenForQuestions(const std::wstring& name)
{
    return OwnFile(
        ::CreateFileW(name.c_str(), 0, kShareAll, nullptr, OPEN_EXISTING, FILE_FLAG_BACKUP_SEMANTICS, nullptr));
}

bool IsDevice(const std::wstring& path)
{
    const FileHandle file = OpenForQuestions(path);
    return file && ::GetFileType(file.get()) != FILE_TYPE_DISK;
}

// A name that no file has yet may still be the other's.
bool IsSameName(const std::wstring& a, const std::wstring& b)
{
    return ::CompareStringOrdinal(FullNameOf(a).c_str(), -1, FullNameOf(b).c_str(), -1, TRUE) == CSTR_EQUAL;
}

}  // namespace

ReplacementFile::ReplacementFile(const std::wstring& target)
    : m_shownName(L"\"" + target + L"\""), m_target(FullNameOf(target))
{
    if (IsFolder(m_target.c_str()))
    {
        Fail(L"it is a folder");
    }
    if (IsDevice(m_target))
    {
        m_file = OwnFile(::CreateFileW(m_target.c_str(), GENERIC_WRITE, kShareAll, nullptr, OPEN_EXISTING, 0, nullptr));
    }
    else
    {
        OpenBeside();
    }
    if (!m_file)
    {
        FailWithSystemText();
    }
}

// The new file is in the folder of the target: the same file system holds both, and a rename suffices. The process is
// part of its name: two exports to one target must not write to one file.
void ReplacementFile::OpenBeside()
{
    for (int attempt = 0; !m_file; ++attempt)
    {
        const std::wstring path = m_target + L"." + std::to_wstring(::GetCurrentProcessId() + attempt) + L".tmp";
        m_file = OwnFile(::CreateFileW(path.c_str(), GENERIC_READ | GENERIC_WRITE | DELETE, FILE_SHARE_READ, nullptr,
                                       CREATE_NEW, FILE_ATTRIBUTE_NORMAL, nullptr));
        if (m_file)
        {
            m_path = path;
        }
        else if (::GetLastError() != ERROR_FILE_EXISTS)
        {
            return;
        }
    }
}

ReplacementFile::~ReplacementFile()
{
    m_file.reset();
    if (!m_path.empty())
    {
        ::DeleteFileW(m_path.c_str());
    }
}

void ReplacementFile::Fail(const std::wstring& reason) const
{
    throw CommandError(std::wstring_view(m_shownName + L" cannot be written: " + reason));
}

void ReplacementFile::FailWithSystemText() const
{
    const DWORD error = ::GetLastError();
    Fail(SystemErrorText(error));
}

void ReplacementFile::Write(std::string_view contents)
{
    Steps steps(contents.size());
    for (size_t done = 0; done < contents.size();)
    {
        const auto size = static_cast<DWORD>(std::min(contents.size() - done, kBlock));
        DWORD written = 0;
        if (!::WriteFile(m_file.get(), contents.data() + done, size, &written, nullptr))
        {
            FailWithSystemText();
        }
        if (written == 0)
        {
            Fail(SystemErrorText(ERROR_DISK_FULL));
        }
        done += written;
        steps.MoveTo(done);
    }
    // Some file systems report a full disk only now. A device has nothing to flush.
    if (!m_path.empty() && !::FlushFileBuffers(m_file.get()))
    {
        FailWithSystemText();
    }
    steps.Finish();
}

void ReplacementFile::Verify(std::string_view contents)
{
    LARGE_INTEGER size = {};
    if (!::GetFileSizeEx(m_file.get(), &size) || !::SetFilePointerEx(m_file.get(), {}, nullptr, FILE_BEGIN))
    {
        FailWithSystemText();
    }
    bool isSame = static_cast<unsigned long long>(size.QuadPart) == contents.size();
    std::vector<char> block(kBlock);
    for (size_t done = 0; isSame && done < contents.size();)
    {
        DWORD read = 0;
        if (!::ReadFile(m_file.get(), block.data(), static_cast<DWORD>(block.size()), &read, nullptr))
        {
            FailWithSystemText();
        }
        isSame = read > 0 && contents.substr(done, read) == std::string_view(block.data(), read);
        done += read;
    }
    if (!isSame)
    {
        Fail(L"the file that was written does not hold what was written to it");
    }
}

void ReplacementFile::Commit(std::string_view contents)
{
    if (m_path.empty())
    {
        return;
    }
    Verify(contents);
    m_file.reset();
    if (!::MoveFileExW(m_path.c_str(), m_target.c_str(), MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH))
    {
        FailWithSystemText();
    }
    m_path.clear();
}

void WriteWholeOutput(const std::wstring& target, std::string_view contents)
{
    if (target == kStandardStreamName)
    {
        StandardOutput().Write(contents);
        StandardOutput().Flush();
        return;
    }
    ReplacementFile file(target);
    file.Write(contents);
    Steps::StopIfAsked();
    file.Commit(contents);
}

namespace
{

bool AreOneFile(const std::wstring& target, const std::wstring& input)
{
    const bool isToStandard = target == kStandardStreamName;
    const bool isFromStandard = input == kStandardStreamName;
    if (isToStandard || isFromStandard)
    {
        // Redirected from one name to the other, the file would be written while it is read.
        return isToStandard != isFromStandard && (isToStandard ? IsRedirectedTo(STD_OUTPUT_HANDLE, input.c_str())
                                                               : IsRedirectedTo(STD_INPUT_HANDLE, target.c_str()));
    }
    return IsSameName(target, input) || IsSameFile(target.c_str(), input.c_str());
}

}  // namespace

void RequireOtherFile(const std::wstring& target, const std::wstring& input)
{
    if (AreOneFile(target, input))
    {
        throw CommandError(std::wstring_view(L"\"" + target + L"\" is the same file as the input \"" + input +
                                             L"\": choose another name"));
    }
}

}  // namespace quonhost
