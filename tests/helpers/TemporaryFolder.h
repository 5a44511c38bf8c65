/// @file
/// A folder of its own for a test, removed with everything in it when the test ends.
///
/// Include the framework's headers before this one: they insist on being the first to bring in <windows.h>.
#pragma once

#include <afx.h>

#include <cstddef>
#include <cstdint>
#include <stdexcept>
#include <string>
#include <string_view>

namespace quon_test
{

/// A fresh folder below the user's temporary folder; the destructor removes it recursively, read-only entries included.
/// Uses the operating system only, never what is under test. What cannot be done throws std::runtime_error with the
/// error number; the destructor never throws.
class TemporaryFolder
{
public:
    /// @param suffix  Ends the folder's own name: for tests that need a blank, a long or a foreign name.
    explicit TemporaryFolder(std::wstring_view suffix = L"") : m_path(MakeFresh(suffix)) {}

    ~TemporaryFolder()
    {
        LeaveIfCurrent();
        RemoveTree(Verbatim(m_path));
    }

    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;

    /// The full, long path without a trailing separator.
    const std::wstring& Path() const { return m_path; }

    /// The full path of `relative`, which need not exist. An empty `relative` gives the path with a trailing separator.
    std::wstring operator/(std::wstring_view relative) const { return m_path + L'\\' + std::wstring(relative); }

    /// Creates the folder `relative` and its missing parents; an existing one is fine.
    /// @return its full path
    std::wstring MakeFolder(std::wstring_view relative, DWORD attributes = 0) const
    {
        MakeParents(std::wstring(relative) + L'\\');
        std::wstring path = *this / relative;
        if (attributes != 0)
        {
            Check(SetFileAttributesW(Verbatim(path).c_str(), attributes), "SetFileAttributesW", path);
        }
        return path;
    }

    /// Writes a file with exactly these bytes, replacing an existing one (a read-only one too), and creates its missing
    /// parent folders. Attributes other than 0 are set once it is written.
    /// @return its full path
    std::wstring WriteFile(std::wstring_view relative, std::string_view bytes = "", DWORD attributes = 0) const
    {
        MakeParents(relative);
        std::wstring path = *this / relative;
        const std::wstring verbatim = Verbatim(path);
        SetFileAttributesW(verbatim.c_str(), FILE_ATTRIBUTE_NORMAL);
        const File file(
            CreateFileW(verbatim.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr));
        Check(file.handle != INVALID_HANDLE_VALUE, "CreateFileW", path);
        DWORD written = 0;
        Check(::WriteFile(file.handle, bytes.data(), static_cast<DWORD>(bytes.size()), &written, nullptr) != FALSE &&
                  written == bytes.size(),
              "WriteFile", path);
        if (attributes != 0)
        {
            Check(SetFileAttributesW(verbatim.c_str(), attributes), "SetFileAttributesW", path);
        }
        return path;
    }

    /// All bytes of a file. Reads also what another handle has open, if that one lets it.
    std::string ReadFile(std::wstring_view relative) const
    {
        const std::wstring path = *this / relative;
        const File file(
            CreateFileW(Verbatim(path).c_str(), GENERIC_READ, kShareAll, nullptr, OPEN_EXISTING, 0, nullptr));
        Check(file.handle != INVALID_HANDLE_VALUE, "CreateFileW", path);
        std::string bytes;
        char buffer[4096];
        DWORD got = 0;
        do
        {
            Check(::ReadFile(file.handle, buffer, sizeof buffer, &got, nullptr), "ReadFile", path);
            bytes.append(buffer, got);
        } while (got != 0);
        return bytes;
    }

    /// Attributes of an entry, INVALID_FILE_ATTRIBUTES when there is none.
    DWORD Attributes(std::wstring_view relative) const
    {
        return GetFileAttributesW(Verbatim(*this / relative).c_str());
    }

    /// True when a file or folder of that name is there.
    bool Exists(std::wstring_view relative) const { return Attributes(relative) != INVALID_FILE_ATTRIBUTES; }

    /// Sets the times of a file or folder, in 100 ns since 1601, UTC; a null pointer leaves that time alone.
    void SetTimes(std::wstring_view relative, const std::uint64_t* created, const std::uint64_t* accessed,
                  const std::uint64_t* modified) const
    {
        const std::wstring path = *this / relative;
        const File file(CreateFileW(Verbatim(path).c_str(), FILE_WRITE_ATTRIBUTES, kShareAll, nullptr, OPEN_EXISTING,
                                    FILE_FLAG_BACKUP_SEMANTICS, nullptr));
        Check(file.handle != INVALID_HANDLE_VALUE, "CreateFileW", path);
        FILETIME times[3];
        const FILETIME* given[3] = {ToFileTime(created, times[0]), ToFileTime(accessed, times[1]),
                                    ToFileTime(modified, times[2])};
        Check(SetFileTime(file.handle, given[0], given[1], given[2]), "SetFileTime", path);
    }

private:
    static constexpr DWORD kShareAll = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;

    struct File
    {
        explicit File(HANDLE opened) : handle(opened) {}
        ~File()
        {
            if (handle != INVALID_HANDLE_VALUE)
            {
                CloseHandle(handle);
            }
        }
        File(const File&) = delete;
        File& operator=(const File&) = delete;

        HANDLE handle;
    };

    [[noreturn]] static void Fail(const char* what, const std::wstring& path, DWORD error)
    {
        std::string text(what);
        text += " failed with error " + std::to_string(error) + ": ";
        for (const wchar_t character : path)
        {
            text += character < 0x80 ? static_cast<char>(character) : '?';
        }
        throw std::runtime_error(text);
    }

    template <typename Result>
    static void Check(Result succeeded, const char* what, const std::wstring& path)
    {
        const DWORD error = GetLastError();
        if (!succeeded)
        {
            Fail(what, path, error);
        }
    }

    // Paths beyond 260 characters and names that Windows would trim are reachable in this form only.
    static std::wstring Verbatim(const std::wstring& path) { return L"\\\\?\\" + path; }

    static const FILETIME* ToFileTime(const std::uint64_t* value, FILETIME& time)
    {
        if (value == nullptr)
        {
            return nullptr;
        }
        time.dwLowDateTime = static_cast<DWORD>(*value & 0xFFFFFFFFu);
        time.dwHighDateTime = static_cast<DWORD>(*value >> 32);
        return &time;
    }

    static std::wstring MakeFresh(std::wstring_view suffix)
    {
        wchar_t shortPath[MAX_PATH + 1];
        wchar_t longPath[MAX_PATH + 1];
        Check(GetTempPathW(MAX_PATH + 1, shortPath), "GetTempPathW", L"");
        // The temporary folder may come with 8.3 names; paths that are compared with found ones need the long names.
        const DWORD length = GetLongPathNameW(shortPath, longPath, MAX_PATH + 1);
        std::wstring base = length != 0 && length <= MAX_PATH ? longPath : shortPath;
        if (base.back() != L'\\')
        {
            base += L'\\';
        }
        for (DWORD attempt = 0;; ++attempt)
        {
            std::wstring path = base + L"quon" + std::to_wstring(GetCurrentProcessId()) + L'-' +
                                std::to_wstring(GetTickCount() + attempt) + std::wstring(suffix);
            if (CreateDirectoryW(Verbatim(path).c_str(), nullptr))
            {
                return path;
            }
            const DWORD error = GetLastError();
            if (error != ERROR_ALREADY_EXISTS)
            {
                Fail("CreateDirectoryW", path, error);
            }
        }
    }

    // Creates every folder of `relative` that a separator ends.
    void MakeParents(std::wstring_view relative) const
    {
        for (std::size_t at = relative.find(L'\\'); at != std::wstring_view::npos; at = relative.find(L'\\', at + 1))
        {
            const std::wstring path = *this / relative.substr(0, at);
            if (!CreateDirectoryW(Verbatim(path).c_str(), nullptr))
            {
                const DWORD error = GetLastError();
                if (error != ERROR_ALREADY_EXISTS)
                {
                    Fail("CreateDirectoryW", path, error);
                }
            }
        }
    }

    // The process's current folder cannot be removed.
    void LeaveIfCurrent() const
    {
        std::wstring current(GetCurrentDirectoryW(0, nullptr), L'\0');
        current.resize(GetCurrentDirectoryW(static_cast<DWORD>(current.size()), current.data()));
        if (_wcsnicmp(current.c_str(), m_path.c_str(), m_path.size()) == 0)
        {
            SetCurrentDirectoryW((m_path + L"\\..").c_str());
        }
    }

    static void RemoveTree(const std::wstring& folder)
    {
        WIN32_FIND_DATAW found;
        const HANDLE search = FindFirstFileW((folder + L"\\*").c_str(), &found);
        if (search != INVALID_HANDLE_VALUE)
        {
            do
            {
                const std::wstring_view name = found.cFileName;
                if (name != L"." && name != L"..")
                {
                    RemoveEntry(folder + L'\\' + std::wstring(name), found.dwFileAttributes);
                }
            } while (FindNextFileW(search, &found));
            FindClose(search);
        }
        RemoveDirectoryW(folder.c_str());
    }

    static void RemoveEntry(const std::wstring& path, DWORD attributes)
    {
        if (attributes & FILE_ATTRIBUTE_READONLY)
        {
            SetFileAttributesW(path.c_str(), FILE_ATTRIBUTE_NORMAL);
        }
        if (!(attributes & FILE_ATTRIBUTE_DIRECTORY))
        {
            DeleteFileW(path.c_str());
        }
        else if (attributes & FILE_ATTRIBUTE_REPARSE_POINT)
        {
            RemoveDirectoryW(path.c_str());  // the link goes, what it points at stays
        }
        else
        {
            RemoveTree(path);
        }
    }

    std::wstring m_path;
};

}  // namespace quon_test
